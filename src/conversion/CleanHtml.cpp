// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/HtmlToMarkdown.h"

#include "conversion/Edits.h"
#include "conversion/HtmlSteps_p.h"

namespace tomelet {

namespace {

void removeStyleAttributes(QString &text)
{
    const PatternMatches matches =
        matchesOfPattern(text, QStringLiteral("<[^>]+?( style=\".+?\").*?>"), PatternCaseInsensitive);
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;) {
        const bool kept = substring(text, matches[i].range()).contains(u"style=\"background-color:") ||
                          substring(text, matches[i].group(1)).contains(u"white-space:pre");
        if (!kept) edits.replace(matches[i].group(1), {});
    }
    text = edits.appliedTo(text);
}

// Where the tag in front of a position begins, or earlier: only that one can be the outer of two now.
qsizetype tagInFront(const QString &text, qsizetype at)
{
    const qsizetype end = at > 0 ? text.lastIndexOf(u'>', at - 1) : -1;
    return end > 0 ? text.lastIndexOf(u'>', end - 1) + 1 : 0;
}

} // namespace

void mergeDoubleContainers(QString &text)
{
    static const QString pattern = QStringLiteral("(<div[^>]*?>\\s*<div[^>]*?>)((?!<div).*?)(</div>\\s*</div>)");
    qsizetype from = 0;
    for (;;) {
        const PatternMatches found =
            firstMatchOfPattern(text, pattern, PatternCaseInsensitive | PatternDotAll, {from, text.size() - from});
        if (found.isEmpty()) return;
        const Range front = found[0].group(1);
        const Range back = found[0].group(3);
        const qsizetype opening = QStringView(text).sliced(front.location, front.length).indexOf(u"<div>");
        const qsizetype closing = QStringView(text).sliced(back.location, back.length).lastIndexOf(u"</div>");
        if (opening < 0 || closing < 0) return;
        text.remove(back.location + closing, 6);
        text.remove(front.location + opening, 5);
        from = tagInFront(text, front.location);
    }
}

QString tm_removeParagraphsNestedInCustomClasses(const QString &html)
{
    return regexSweep(html, QStringLiteral("(?s)(<div class=[^>]*?>)\\s*<p>(.*?)</p>\\s*</div>"),
                      QStringLiteral("$1$2</div>"));
}

QString tm_htmlWithoutInlineStyles(const QString &html)
{
    QString text = regexSweep(html, QStringLiteral("(<[^>]+?) class=\"\"(.*?>)"), QStringLiteral("$1$2"));
    text.remove(QStringLiteral("<p></p>"), Qt::CaseInsensitive);
    sweepAll(text, {{QStringLiteral("(<[^>]+?) style=\"color: inherit;\"(.*?>)"), QStringLiteral("$1$2")},
                    {QStringLiteral("(<[^>]+?) style=\"text-align: initial;\"(.*?>)"), QStringLiteral("$1$2")},
                    {QStringLiteral("(<[^>]+?) style=\"text-align: initial; text-indent: 0em;\"(.*?>)"),
                     QStringLiteral("$1$2")},
                    {QStringLiteral("<span>(.+?)</span>"), QStringLiteral("$1")}});
    removeStyleAttributes(text);
    text.replace(QStringLiteral("<span class=\"Apple-converted-space\">&nbsp;</span>"), QStringLiteral(" "))
        .replace(QStringLiteral("&nbsp;"), QStringLiteral(" "));
    sweepAll(text, {{QStringLiteral("([^\\n])(<h[1-6])"), QStringLiteral("$1\n\n$2")},
                    {QStringLiteral("(</p>)\\n*"), QStringLiteral("$1\n\n")},
                    {QStringLiteral("(?<!\\n)(<p ?>)"), QStringLiteral("\n\n$1")},
                    {QStringLiteral("\\n*(<p ?>)"), QStringLiteral("\n\n$1")},
                    {QStringLiteral("([^\\n])(</?[ou]l ?)"), QStringLiteral("$1\n$2")},
                    {QStringLiteral("([^\\n])(<li ?)"), QStringLiteral("$1\n$2")},
                    {QStringLiteral("(<br/?>)(?!</)(?!\\n)"), QStringLiteral("$1\n")},
                    {QStringLiteral("<img[^>]*? src=\"\"[^>]*?>"), {}},
                    {QStringLiteral("</?o:[^>]+>"), {}}});
    text.remove(QStringLiteral("</b><b>"), Qt::CaseInsensitive).remove(QStringLiteral("</i><i>"), Qt::CaseInsensitive);
    mergeDoubleContainers(text);
    text = tm_removeParagraphsNestedInCustomClasses(text);
    sweepAll(text, {{QStringLiteral("\\n\\s*\\n"), QStringLiteral("\n\n")},
                    {QStringLiteral("\\n{3,}"), QStringLiteral("\n\n")}});
    return text.trimmed();
}

} // namespace tomelet
