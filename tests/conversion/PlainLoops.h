// SPDX-License-Identifier: GPL-3.0-or-later
// The steps from HTML to Markdown that look again from the top after each replacement, in their plain and
// slow form.
#pragma once

#include "conversion/HtmlSteps_p.h"
#include "conversion/NestedRewrites.h"
#include "library/Root.h"

namespace tomelet::test {

using namespace Qt::StringLiterals;

inline QString loopOfFirstMatches(QString text, const QString &pattern, int options,
                                  const MatchReplacement &replacement)
{
    for (;;) {
        const PatternMatches found = firstMatchOfPattern(text, pattern, options);
        if (found.isEmpty()) return text;
        replaceRange(text, found[0].range(), replacement(found[0], text));
    }
}

inline QString plainParagraph(const PatternMatch &match, const QString &text)
{
    const QString content = substring(text, match.group(1));
    return content.isEmpty() ? QString() : QString(u'\n' + content + u'\n');
}

inline QString plainLink(const PatternMatch &match, const QString &text)
{
    const QString root = tomeletRoot();
    QString address = substring(text, match.group(1));
    if (!root.isEmpty()) address.remove(root);
    const QString label = substring(text, match.group(2));
    return address.startsWith(u"x-apple") ? label : QString(u'[' + label + u"]("_s + address + u')');
}

inline QString plainImage(const PatternMatch &match, const QString &text)
{
    const QString root = tomeletRoot();
    QString source = substring(text, match.group(1));
    if (!root.isEmpty()) source.remove(root);
    return u"![]("_s + source.replace(u')', u"%29"_s) + u')';
}

inline QString plainTable(const PatternMatch &match, const QString &text)
{
    QString table = substring(text, match.group(1));
    QStringList cells;
    const PatternMatches heads = matchesOfPattern(table, u"<th(\\b[^>]*)>"_s, PatternCaseInsensitive);
    for (size_t i = 0; i < heads.size(); ++i) {
        const QString attributes = substring(table, heads[i].group(1));
        cells.append(attributes.contains(u"right")    ? u" ----------: "_s
                     : attributes.contains(u"center") ? u" :---------: "_s
                                                      : u" ----------- "_s);
    }
    for (const auto &[pattern, to] : {std::pair{u"(?s)<colgroup>.+?</colgroup>"_s, u""_s},
                                      {u"\\s*</td>\\s*<td\\b[^>]*>"_s, u" | "_s},
                                      {u"</td>\\s*</tr>"_s, u"\n"_s},
                                      {u"<tr\\b[^>]*>\\s*<td\\b[^>]*>"_s, u""_s},
                                      {u"<tbody\\b[^>]*>"_s, u""_s},
                                      {u"</tbody>"_s, u""_s},
                                      {u"</th>\\s*<th\\b[^>]*>"_s, u" | "_s},
                                      {u"</th>\\s*</tr>"_s, u"\n"_s},
                                      {u"<tr\\b[^>]*>\\s*<th\\b[^>]*>"_s, u""_s},
                                      {u"<thead\\b[^>]*>"_s, u""_s},
                                      {u"^[\\s|]*$"_s, u""_s},
                                      {u"\\n{2,}"_s, u"\n"_s}})
        table = regexSweep(table, pattern, to);
    table.replace(u"</thead>"_s, cells.join(u'|') + u'\n').replace(u"\n\n"_s, u"\n"_s);
    return u"\n\n"_s + table.trimmed() + u"\n\n"_s;
}

inline QString plainDefinitions(const PatternMatch &match, const QString &text)
{
    QString list = substring(text, match.group(1));
    for (const auto &[pattern, to] :
         {std::pair{u"<dt.*?>"_s, u"\n"_s}, {u"</dt>"_s, u"\n"_s}, {u"<dd.*?>"_s, u": "_s}, {u"</dd>"_s, u"\n"_s}})
        list = regexSweep(list, pattern, to, PatternDotAll);
    return u'\n' + list + u'\n';
}

// A step, and what it has to give.
struct PlainLoop
{
    void (*step)(QString &text);
    QString pattern;
    MatchReplacement replacement;

    [[nodiscard]] QString result(const QString &text) const
    {
        return loopOfFirstMatches(text, pattern, PatternDotAll, replacement);
    }
};

inline const PlainLoop plainParagraphs{convertParagraphs, u"<p\\b.*?>(.*?)</p>"_s, plainParagraph};
inline const PlainLoop plainLinks{convertLinks, u"<a [^>]*?href=\"(.+?)\".*?>(.*?)</a>"_s, plainLink};
inline const PlainLoop plainImages{convertImages, u"<img[^>]* src=\"(.+?)\".*?>"_s, plainImage};
inline const PlainLoop plainTables{convertTables, u"<table.*?>(.*?)</table>"_s, plainTable};
inline const PlainLoop plainDefinitionLists{convertDefinitionLists, u"<dl\\b.*?>(.*?)</dl>"_s, plainDefinitions};

} // namespace tomelet::test
