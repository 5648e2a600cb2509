// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/HtmlToMarkdown.h"

#include "conversion/Edits.h"
#include "conversion/LaterLines.h"
#include "conversion/NestedRewrites.h"
#include "conversion/Patterns.h"
#include "conversion/StyleSheets.h"
#include "conversion/TextUtilities.h"
#include "foundation/Platform.h"
#include "library/Root.h"

#include <algorithm>

namespace tomelet {

namespace {

struct Sweep
{
    QString pattern;
    QString replacement;
};

void sweepAll(QString &text, std::initializer_list<Sweep> sweeps)
{
    for (const Sweep &sweep : sweeps) text = regexSweep(text, sweep.pattern, sweep.replacement);
}

void removeLiterals(QString &text, std::initializer_list<QString> literals)
{
    for (const QString &literal : literals) text.remove(literal);
}

QString trimmedBlanks(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && (text[begin] == u' ' || text[begin] == u'\t')) ++begin;
    while (end > begin && (text[end - 1] == u' ' || text[end - 1] == u'\t')) --end;
    return text.mid(begin, end - begin);
}

// -- the body and its classes -----------------------------------------------------------------------------------------

QString bodyOf(const QString &html)
{
    const Range body = rangeOfPattern(html, QStringLiteral("<body.*?>(.*)</body>"), PatternDotAll, wholeRange, 1);
    QString text = body.isFound() ? substring(html, body) : html;
    sweepAll(text, {{QStringLiteral("<!DOCTYPE .*?>"), {}},
                    {QStringLiteral("^\\s*(<.+)$"), QStringLiteral("$1")},
                    {QStringLiteral("(-\\s)?<li class=\"tm_checkbox\">"), QStringLiteral("<li>[ ]\t")},
                    {QStringLiteral("(-\\s)?<li class=\"tm_checkbox_done\">"), QStringLiteral("<li>[x]\t")}});
    return text;
}

// Class blocks go back to the form that the preparation expands, when the page's own sheet lists their class.
void restoreClassBlocks(QString &text, const QString &html)
{
    const Range style = rangeOfPattern(html, QStringLiteral("(?s:<style .*?</style>)"));
    if (!style.isFound()) return;
    const QStringList classes = tm_customClassesInStylesheet(substring(html, style));
    if (classes.isEmpty()) return;
    for (const auto &pattern : {QStringLiteral("<div[^>]*?class=\"(.*?)\"[^>]*?>(.*?)</div>"),
                                QStringLiteral("<p[^>]*?class=\"(.*?)\"[^>]*?>(.*?)</p>")}) {
        const PatternMatches matches = matchesOfPattern(text, pattern, PatternDotAll);
        Edits edits;
        for (size_t i = matches.size(); i-- > 0;) {
            const QString name = substring(text, matches[i].group(1));
            if (!classes.contains(name)) continue;
            const QString content = regexSweep(trimmedBlanks(substring(text, matches[i].group(2))),
                                               QStringLiteral("^<p>(.*)</p>$"), QStringLiteral("$1"));
            edits.replace(matches[i].range(), QStringLiteral("\n> %") + name + QStringLiteral("%\n") + content + u'\n');
        }
        text = edits.appliedTo(text);
    }
}

// -- inline -----------------------------------------------------------------------------------------------------------

void dropWhatMarkdownHasNoWordFor(QString &text)
{
    sweepAll(text, {{QStringLiteral("<(ul|ol)( .*?)?>\\n*"), QStringLiteral("<$1>")},
                    {QStringLiteral("\\n*<li( .*?)?>\\n*"), QStringLiteral("<li>")},
                    {QStringLiteral("<a name=.*?></a>\\n?"), {}},
                    {QStringLiteral("(?s:<span[^>]*?>(.*?)</span>)"), QStringLiteral("$1")},
                    {QStringLiteral("<font .*?>"), {}},
                    {QStringLiteral("<link .*?>"), {}},
                    {QStringLiteral("<iframe .*?</iframe>\\n?"), {}},
                    {QStringLiteral("<meta .*?>\\n?"), {}},
                    {QStringLiteral("<!--.*?-->\\n?"), {}},
                    {QStringLiteral("<script.*?</script>\\n?"), {}},
                    {QStringLiteral("<style .*?</style>\\n?"), {}},
                    {QStringLiteral("<title.*?</title>\\n?"), {}}});
    removeLiterals(text, {QStringLiteral("</font>"), QStringLiteral("</div>")});
}

void convertBreaks(QString &text)
{
    sweepAll(text, {{QStringLiteral("\\p{Z}?<mark .*?>"), QStringLiteral(" ==")},
                    {QStringLiteral("\\p{Z}?<mark>"), QStringLiteral(" ==")},
                    {QStringLiteral("</mark>\\p{Z}?"), QStringLiteral("== ")}});
    removeLiterals(text, {QStringLiteral("<strong></strong>"), QStringLiteral("<p></p>"), QStringLiteral("<b><br></b>"),
                          QStringLiteral("<i><br></i>"), QStringLiteral("<u><br></u>"), QStringLiteral("</b><b>"),
                          QStringLiteral("</i><i>"), QStringLiteral("</u><u>"), QStringLiteral("</s><s>")});
    sweepAll(text, {{QStringLiteral("<div.*?>"), QStringLiteral("\n")},
                    {QStringLiteral("<br/?>"), QStringLiteral("<br>")},
                    {QStringLiteral("<br .*?>"), QStringLiteral("<br>")}});
    const bool strict = settings().boolean(QStringLiteral("useMarkdownStrictly"));
    const QString lineBreak = strict ? QStringLiteral("  \n") : QStringLiteral("\n");
    text.replace(QStringLiteral("<br>\n"), lineBreak).replace(QStringLiteral("<br>"), lineBreak);
    text = regexSweep(text, QStringLiteral("</?o:[^>]+>"), {});
}

void convertParagraphs(QString &text)
{
    text = replaceFirstMatches(text, QStringLiteral("<p\\b.*?>(.*?)</p>"), PatternDotAll, QStringLiteral("<p"),
                               QStringLiteral("</p>"), [](const PatternMatch &match, const QString &all) {
                                   const QString content = substring(all, match.group(1));
                                   return content.isEmpty() ? QString() : QString(u'\n' + content + u'\n');
                               });
}

void convertEmphasis(QString &text)
{
    const bool underscores = settings().boolean(QStringLiteral("useUnderscoreToEmphasizeMD"));
    const auto marked = [](const QString &marker) { return QString(marker + QStringLiteral("$2") + marker); };
    const QString strong = marked(underscores ? QStringLiteral("__") : QStringLiteral("**"));
    const QString light = marked(underscores ? QStringLiteral("_") : QStringLiteral("*"));
    sweepAll(text, {{QStringLiteral("<b( .*?)?>[\\s\\n]*(.*?)[\\s\\n]*</b>"), strong},
                    {QStringLiteral("<strong( .*?)?>[\\s\\n]*(.*?)[\\s\\n]*</strong>"), strong},
                    {QStringLiteral("<i( .*?)?>[\\s\\n]*(.*?)[\\s\\n]*</i>"), light},
                    {QStringLiteral("<em( .*?)?>[\\s\\n]*(.*?)[\\s\\n]*</em>"), light},
                    {QStringLiteral("<strike( .*?)?>\\s*?\\n?"), QStringLiteral("~~")},
                    {QStringLiteral("\\n?\\s*?</strike>"), QStringLiteral("~~")},
                    {QStringLiteral("<del( .*?)?>\\s*?\\n?"), QStringLiteral("~~")},
                    {QStringLiteral("\\n?\\s*?</del>"), QStringLiteral("~~")},
                    {QStringLiteral("<hr( .*?)?>\\s*"), QStringLiteral("\n----\n\n")}});
}

// -- blocks -----------------------------------------------------------------------------------------------------------

void convertQuotes(QString &text)
{
    text = regexSweep(text, QStringLiteral("<blockquote( .*?)?>\\n*"), QStringLiteral("\n<blockquote>"));
    LaterLines later(LaterLines::Quotes, text);
    text = replaceInnermost(text, {QStringLiteral("blockquote")}, [&later](const QString &, const QString &content) {
        if (content.isEmpty()) return QString();
        later.mark(content);
        return later.putAside(QStringLiteral("> ") +
                              content.trimmed().replace(QStringLiteral("\n> "), QStringLiteral("\n> > ")));
    });
    text = later.restored(text);
}

void convertCode(QString &text)
{
    text.replace(QStringLiteral("<pre><code>"), QStringLiteral("~~~~\n"), Qt::CaseInsensitive)
        .replace(QStringLiteral("</code></pre>"), QStringLiteral("~~~~\n"), Qt::CaseInsensitive)
        .replace(QStringLiteral("<p><code>"), QStringLiteral("`"), Qt::CaseInsensitive)
        .replace(QStringLiteral("</code></p>"), QStringLiteral("`\n"), Qt::CaseInsensitive);
    text = regexSweep(text, QStringLiteral("<code[^<]*?>"), QStringLiteral("`"));
    text.replace(QStringLiteral("</code>"), QStringLiteral("`"), Qt::CaseInsensitive);
}

QString withNestedListsIndented(const QString &text)
{
    return regexSweep(text, QStringLiteral("\n([ \t]*)(-|\\d+\\.)\\s"), QStringLiteral("\n$1    $2 "), PatternDotAll);
}

// One piece between closing item tags: the rest of the item before, which held a nested list, and the item itself.
QString listPiece(const QString &piece, const QString &marker)
{
    const QString trimmed = piece.trimmed();
    if (trimmed.isEmpty()) return {};
    const qsizetype item = trimmed.indexOf(u"<li>");
    const QString before = item < 0 ? trimmed : trimmed.left(item);
    QString content = item < 0 ? QString() : trimmed.mid(item).remove(QStringLiteral("<li>")).trimmed();
    QString result;
    if (!before.isEmpty()) result = withNestedListsIndented(u'\n' + before);
    if (!content.isEmpty())
        result += QString(marker + withNestedListsIndented(content))
                      .replace(QStringLiteral("\n-  ["), QStringLiteral("\n- ["));
    return result;
}

QString markdownList(const QString &name, const QString &content)
{
    QString list;
    const QStringList pieces = content.split(QStringLiteral("</li>"));
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const QString marker = name == u"ol" ? QStringLiteral("\n%1. ").arg(i + 1) : QStringLiteral("\n- ");
        list += listPiece(pieces[i], marker);
    }
    return list.replace(QStringLiteral("\n\n"), QStringLiteral("\n"));
}

// Whether a list around this one does nothing more to its lines than to indent them and to drop empty ones.
bool isSettled(const QString &list)
{
    static const QString touched[] = {QStringLiteral("<li>"), QStringLiteral("</li>"), QStringLiteral("<ul"),
                                      QStringLiteral("<ol"),  QStringLiteral("</ul>"), QStringLiteral("</ol>")};
    // A sign alone on its line takes the next line to it when it is indented.
    if (rangeOfPattern(list, QStringLiteral("\n[ \t]*(-|\\d+\\.)([^\\S ]|\\z)")).isFound()) return false;
    return std::none_of(std::begin(touched), std::end(touched), [&](const QString &t) { return list.contains(t); });
}

void convertLists(QString &text)
{
    LaterLines later(LaterLines::Lists, text);
    text = replaceInnermost(text, {QStringLiteral("ul"), QStringLiteral("ol")},
                            [&later](const QString &name, const QString &content) {
                                later.mark(content);
                                const QString list = markdownList(name, content);
                                return QString((isSettled(list) ? later.putAside(list) : list) + u'\n');
                            });
    text = later.restored(text);
    text.replace(QStringLiteral("<li>"), QStringLiteral("- "), Qt::CaseInsensitive)
        .replace(QStringLiteral("</li>"), QStringLiteral("\n"), Qt::CaseInsensitive);
}

// White space as the patterns know it.
bool isPatternSpace(QChar c)
{
    return c == u'\t' || c == u'\n' || c == u'\f' || c == u'\r' || c.category() == QChar::Separator_Space ||
           c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph;
}

// The first matches of "\s*<h([123456]).*?>\s*" again and again. The white space in front is looked for from the tag
// backwards: deep lists have too much of it to be tried from each blank on. A heading right in front gives its own.
void convertHeadings(QString &text)
{
    static const QString pattern = QStringLiteral("<h([123456]).*?>\\s*");
    QString result;
    qsizetype from = 0;
    const PatternMatches tags = matchesOfPattern(text, pattern, PatternDotAll);
    for (size_t i = 0; i < tags.size(); ++i) {
        const Range range = tags[i].range();
        result.append(QStringView(text).sliced(from, range.location - from));
        while (!result.isEmpty() && isPatternSpace(result.back())) result.chop(1);
        const qsizetype level = substring(text, tags[i].group(1)).toInt();
        result.append(QStringLiteral("\n\n")).append(QString(level, u'#')).append(u' ');
        from = range.end();
    }
    result.append(QStringView(text).sliced(from));
    text = regexSweep(result, QStringLiteral("</h\\d?>\\n*"), QStringLiteral("\n\n"));
}

QString delimiterRow(const QString &table)
{
    QStringList cells;
    const PatternMatches heads = matchesOfPattern(table, QStringLiteral("<th(\\b[^>]*)>"), PatternCaseInsensitive);
    for (size_t i = 0; i < heads.size(); ++i) {
        const QString attributes = substring(table, heads[i].group(1));
        cells.append(attributes.contains(u"right")    ? QStringLiteral(" ----------: ")
                     : attributes.contains(u"center") ? QStringLiteral(" :---------: ")
                                                      : QStringLiteral(" ----------- "));
    }
    return cells.join(u'|');
}

QString markdownTable(QString table)
{
    const QString delimiter = delimiterRow(table);
    sweepAll(table, {{QStringLiteral("(?s)<colgroup>.+?</colgroup>"), {}},
                     {QStringLiteral("\\s*</td>\\s*<td\\b[^>]*>"), QStringLiteral(" | ")},
                     {QStringLiteral("</td>\\s*</tr>"), QStringLiteral("\n")},
                     {QStringLiteral("<tr\\b[^>]*>\\s*<td\\b[^>]*>"), {}},
                     {QStringLiteral("<tbody\\b[^>]*>"), {}},
                     {QStringLiteral("</tbody>"), {}},
                     {QStringLiteral("</th>\\s*<th\\b[^>]*>"), QStringLiteral(" | ")},
                     {QStringLiteral("</th>\\s*</tr>"), QStringLiteral("\n")},
                     {QStringLiteral("<tr\\b[^>]*>\\s*<th\\b[^>]*>"), {}},
                     {QStringLiteral("<thead\\b[^>]*>"), {}},
                     {QStringLiteral("^[\\s|]*$"), {}},
                     {QStringLiteral("\\n{2,}"), QStringLiteral("\n")}});
    table.replace(QStringLiteral("</thead>"), delimiter + u'\n').replace(QStringLiteral("\n\n"), QStringLiteral("\n"));
    return QStringLiteral("\n\n") + table.trimmed() + QStringLiteral("\n\n");
}

void convertTables(QString &text)
{
    text = replaceFirstMatches(text, QStringLiteral("<table.*?>(.*?)</table>"), PatternDotAll, QStringLiteral("<table"),
                               QStringLiteral("</table>"), [](const PatternMatch &match, const QString &all) {
                                   return markdownTable(substring(all, match.group(1)));
                               });
}

void convertLinks(QString &text)
{
    const QString root = tomeletRoot();
    const auto belowRoot = [&root](QString address) { return root.isEmpty() ? address : address.remove(root); };
    text = replaceFirstMatches(text, QStringLiteral("<a [^>]*?href=\"(.+?)\".*?>(.*?)</a>"), PatternDotAll,
                               QStringLiteral("<a "), QStringLiteral("</a>"),
                               [&](const PatternMatch &match, const QString &all) {
                                   const QString address = belowRoot(substring(all, match.group(1)));
                                   const QString label = substring(all, match.group(2));
                                   if (address.startsWith(u"x-apple")) return label;
                                   return QString(u'[' + label + QStringLiteral("](") + address + u')');
                               });
    text = replaceFirstMatches(text, QStringLiteral("<img[^>]* src=\"(.+?)\".*?>"), PatternDotAll,
                               QStringLiteral("<img"), QStringLiteral(">"),
                               [&](const PatternMatch &match, const QString &all) {
                                   const QString source = belowRoot(substring(all, match.group(1)))
                                                              .replace(u')', QStringLiteral("%29"));
                                   return QString(QStringLiteral("![](") + source + u')');
                               });
}

void convertDefinitionLists(QString &text)
{
    text = replaceFirstMatches(text, QStringLiteral("<dl\\b.*?>(.*?)</dl>"), PatternDotAll, QStringLiteral("<dl"),
                               QStringLiteral("</dl>"), [](const PatternMatch &match, const QString &all) {
                                   QString list = substring(all, match.group(1));
                                   for (const auto &[pattern, to] :
                                        {std::pair{QStringLiteral("<dt.*?>"), QStringLiteral("\n")},
                                         {QStringLiteral("</dt>"), QStringLiteral("\n")},
                                         {QStringLiteral("<dd.*?>"), QStringLiteral(": ")},
                                         {QStringLiteral("</dd>"), QStringLiteral("\n")}})
                                       list = regexSweep(list, pattern, to, PatternDotAll);
                                   return QString(u'\n' + list + u'\n');
                               });
}

QString tidied(QString text)
{
    sweepAll(text, {{QStringLiteral("(-\\s)?<input .*?type=\"checkbox\" .*?checked.*?>"), QStringLiteral("- [x] ")},
                    {QStringLiteral("(-\\s)?<input .*?type=\"checkbox\".*?>"), QStringLiteral("- [ ] ")}});
    text = tm_stringByReplacingHTMLEntities(text);
    text = regexSweep(text, QStringLiteral("^\\s*$"), QStringLiteral("\n"), PatternLineAnchored);
    return regexSweep(text, QStringLiteral("\\n\\n+"), QStringLiteral("\n\n")).trimmed();
}

} // namespace

QString tm_markdownifyHTML(const QString &html)
{
    QString text = bodyOf(html);
    restoreClassBlocks(text, html);
    dropWhatMarkdownHasNoWordFor(text);
    convertBreaks(text);
    convertParagraphs(text);
    convertEmphasis(text);
    convertQuotes(text);
    convertCode(text);
    convertLists(text);
    convertHeadings(text);
    convertTables(text);
    convertLinks(text);
    convertDefinitionLists(text);
    return tidied(text);
}

// -- cleaning ---------------------------------------------------------------------------------------------------------

namespace {

void removeStyleAttributes(QString &text)
{
    const PatternMatches matches = matchesOfPattern(text, QStringLiteral("<[^>]+?( style=\".+?\").*?>"),
                                                    PatternCaseInsensitive);
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;) {
        const bool kept = substring(text, matches[i].range()).contains(u"style=\"background-color:") ||
                          substring(text, matches[i].group(1)).contains(u"white-space:pre");
        if (!kept) edits.replace(matches[i].group(1), {});
    }
    text = edits.appliedTo(text);
}

// A plain div inside another one says nothing.
void mergeDoubleContainers(QString &text)
{
    static const QString pattern =
        QStringLiteral("(<div[^>]*?>\\s*<div[^>]*?>)((?!<div).*?)(</div>\\s*</div>)");
    for (;;) {
        const PatternMatches found = firstMatchOfPattern(text, pattern, PatternCaseInsensitive | PatternDotAll);
        if (found.isEmpty()) return;
        const Range front = found[0].group(1);
        const Range back = found[0].group(3);
        const qsizetype opening = QStringView(text).sliced(front.location, front.length).indexOf(u"<div>");
        const qsizetype closing = QStringView(text).sliced(back.location, back.length).lastIndexOf(u"</div>");
        if (opening < 0 || closing < 0) return;
        text.remove(back.location + closing, 6);
        text.remove(front.location + opening, 5);
    }
}

} // namespace

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
