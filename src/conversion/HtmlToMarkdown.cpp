// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/HtmlToMarkdown.h"

#include "conversion/Edits.h"
#include "conversion/HtmlSteps_p.h"
#include "conversion/StyleSheets.h"
#include "conversion/TextUtilities.h"
#include "foundation/Platform.h"

namespace tomelet {

namespace {

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

// Every match ends with the closing tag: behind the last one there is nothing to look for, and much to try in
// vain.
void sweepElement(QString &text, const QString &name, const QString &marked)
{
    const QString closer = QStringLiteral("</") + name + u'>';
    const qsizetype last = text.lastIndexOf(closer);
    if (last < 0) return;
    const qsizetype end = last + closer.size();
    const QString pattern = u'<' + name + QStringLiteral("( .*?)?>[\\s\\n]*(.*?)[\\s\\n]*") + closer;
    text = regexSweep(text.left(end), pattern, marked) + QStringView(text).sliced(end);
}

void convertEmphasis(QString &text)
{
    const bool underscores = settings().boolean(QStringLiteral("useUnderscoreToEmphasizeMD"));
    const auto marked = [](const QString &marker) { return QString(marker + QStringLiteral("$2") + marker); };
    const QString strong = marked(underscores ? QStringLiteral("__") : QStringLiteral("**"));
    const QString light = marked(underscores ? QStringLiteral("_") : QStringLiteral("*"));
    sweepElement(text, QStringLiteral("b"), strong);
    sweepElement(text, QStringLiteral("strong"), strong);
    sweepElement(text, QStringLiteral("i"), light);
    sweepElement(text, QStringLiteral("em"), light);
    sweepAll(text, {{QStringLiteral("<strike( .*?)?>\\s*?\\n?"), QStringLiteral("~~")},
                    {QStringLiteral("\\n?\\s*?</strike>"), QStringLiteral("~~")},
                    {QStringLiteral("<del( .*?)?>\\s*?\\n?"), QStringLiteral("~~")},
                    {QStringLiteral("\\n?\\s*?</del>"), QStringLiteral("~~")},
                    {QStringLiteral("<hr( .*?)?>\\s*"), QStringLiteral("\n----\n\n")}});
}

// -- blocks -----------------------------------------------------------------------------------------------------------

void convertCode(QString &text)
{
    text.replace(QStringLiteral("<pre><code>"), QStringLiteral("~~~~\n"), Qt::CaseInsensitive)
        .replace(QStringLiteral("</code></pre>"), QStringLiteral("~~~~\n"), Qt::CaseInsensitive)
        .replace(QStringLiteral("<p><code>"), QStringLiteral("`"), Qt::CaseInsensitive)
        .replace(QStringLiteral("</code></p>"), QStringLiteral("`\n"), Qt::CaseInsensitive);
    text = regexSweep(text, QStringLiteral("<code[^<]*?>"), QStringLiteral("`"));
    text.replace(QStringLiteral("</code>"), QStringLiteral("`"), Qt::CaseInsensitive);
}

// White space as the patterns know it.
bool isPatternSpace(QChar c)
{
    return c == u'\t' || c == u'\n' || c == u'\f' || c == u'\r' || c.category() == QChar::Separator_Space ||
           c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph;
}

// The first matches of "\s*<h([123456]).*?>\s*" again and again. The white space in front is looked for from
// the tag backwards: deep lists have too much of it to be tried from each blank on. A heading right in front
// gives its own.
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
    convertImages(text);
    convertDefinitionLists(text);
    return tidied(text);
}

} // namespace tomelet
