// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/TextUtilities.h"

#include "conversion/CodeRanges.h"
#include "conversion/Patterns.h"
#include "foundation/Collation.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/PathForms.h"

#include <QLocale>

#include <libxml/HTMLparser.h>
#include <unicode/ubrk.h>

#include <algorithm>
#include <memory>

namespace tomelet {

// -- pages ------------------------------------------------------------------------------------------------------------

namespace {

// The string value of an HTML document, as XPath defines it.
QString stringValue(const QString &html)
{
    const QByteArray bytes = html.toUtf8();
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        htmlReadMemory(bytes.constData(), int(bytes.size()), nullptr, "UTF-8",
                       HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET),
        &xmlFreeDoc);
    xmlNode *root = document ? xmlDocGetRootElement(document.get()) : nullptr;
    if (!root) return {};
    const std::unique_ptr<xmlChar, decltype(xmlFree)> content(xmlNodeGetContent(root), xmlFree);
    return QString::fromUtf8(reinterpret_cast<const char *>(content.get()));
}

} // namespace

QString tm_htmlToPlainText(const QString &html)
{
    if (const qsizetype mark = html.indexOf(plainRepresentationMark); mark >= 0) {
        const qsizetype from = mark + plainRepresentationMark.size();
        const qsizetype end = html.indexOf(u"-->", from);
        QString text = html.mid(from, end < 0 ? -1 : end - from);
        return text.replace(QStringLiteral("\\-\\-\\>"), QStringLiteral("-->")).trimmed();
    }
    QString rest = html;
    const qsizetype headEnd = html.indexOf(u"</head>");
    if (html.contains(u"<html") && headEnd >= 0) rest = html.mid(headEnd + 7);
    rest.remove(u'\n');
    rest = regexSweep(rest, QStringLiteral("<script.*?</script>"), {}, PatternDotAll);
    rest = regexSweep(rest, QStringLiteral("<style.*?</style>"), {}, PatternDotAll);
    return stringValue(rest).trimmed();
}

QString tm_htmlToPlainQuick(const QString &html)
{
    static const std::pair<QString, QString> literals[] = {
        {QStringLiteral("</li><li>"), QStringLiteral("\n- ")},  {QStringLiteral("<li>"), QStringLiteral("- ")},
        {QStringLiteral("<div>"), QStringLiteral("\n")},        {QStringLiteral("<br>"), QStringLiteral("\n")},
        {QStringLiteral("</div>"), QStringLiteral("\n")},       {QStringLiteral("</p>"), QStringLiteral("\n")},
        {QStringLiteral("<hr>"), QStringLiteral("\n----\n\n")}, {QStringLiteral("</th>"), QStringLiteral(" ")},
        {QStringLiteral("</td>"), QStringLiteral(" ")},
    };
    static const std::pair<QString, QString> sweeps[] = {
        {QStringLiteral("</h[1-6]>"), QStringLiteral("\n")}, {QStringLiteral("(?s)<style .+?/style>"), {}},
        {QStringLiteral("(?s)<script.*?>.*?</script>"), {}}, {QStringLiteral("</?[^>]+?>"), {}},
        {QStringLiteral("\n{2,}"), QStringLiteral("\n\n")},
    };
    QString text = regexSweep(tm_getInnerHTML(html), QStringLiteral(">\\n\\s+<"), QStringLiteral(">\n<"));
    for (const auto &[from, to] : literals) text.replace(from, to);
    for (const auto &[pattern, to] : sweeps) text = regexSweep(text, pattern, to);
    return tm_stringByReplacingHTMLEntities(text.trimmed());
}

QString tm_getInnerHTML(const QString &html)
{
    const Range body = rangeOfPattern(html, QStringLiteral("<body.*?>(.*?)</body>"), PatternDotAll, wholeRange, 1);
    if (body.isFound()) return substring(html, body).trimmed();
    const qsizetype headEnd = html.indexOf(u"</head>");
    return (headEnd < 0 ? html : html.mid(headEnd + 7)).trimmed();
}

QString tm_getTitleFromHTML(const QString &html)
{
    const Range range = rangeOfPattern(html, QStringLiteral("<title.*?>(.*?)</title>"), PatternDotAll, wholeRange, 1);
    QString title = substring(html, range).replace(u'\n', u' ').trimmed();
    return tm_stringByReplacingHTMLEntities(regexSweep(title, QStringLiteral(" +"), QStringLiteral(" ")));
}

QString tm_getArticleFromHTML(const QString &html)
{
    if (!html.contains(u"<article")) return html;
    logLine(QStringLiteral("contain article"));
    const QString cut =
        regexSweep(html, QStringLiteral("(?sm)<body([^>]*?)>.+?<article"), QStringLiteral("<body$1><article"));
    return regexSweep(cut, QStringLiteral("(?sm)</article>.+?</body>"), QStringLiteral("</article></body>"));
}

QString tm_stripMarkdownFromHTML(const QString &page)
{
    return regexSweep(page, plainRepresentationMark + QStringLiteral(".+?-->"), {}, PatternDotAll).trimmed();
}

// -- texts ------------------------------------------------------------------------------------------------------------

QString tm_stringByReplacingHTMLEntities(const QString &text)
{
    // The order matters: ampersands go last, so that nothing is resolved twice.
    static const std::pair<QString, QString> table[] = {
        {QStringLiteral("&nbsp;"), QStringLiteral(" ")},   {QStringLiteral("&lt;"), QStringLiteral("<")},
        {QStringLiteral("&gt;"), QStringLiteral(">")},     {QStringLiteral("&hellip;"), QStringLiteral("...")},
        {QStringLiteral("…"), QStringLiteral("...")},      {QStringLiteral("&quot;"), QStringLiteral("\"")},
        {QStringLiteral("&lsquo;"), QStringLiteral("'")},  {QStringLiteral("&rsquo;"), QStringLiteral("'")},
        {QStringLiteral("&ldquo;"), QStringLiteral("\"")}, {QStringLiteral("&rdquo;"), QStringLiteral("\"")},
        {QStringLiteral("&ndash;"), QStringLiteral("–")},  {QStringLiteral("&#8211;"), QStringLiteral("–")},
        {QStringLiteral("&mdash;"), QStringLiteral("—")},  {QStringLiteral("&#8212;"), QStringLiteral("—")},
        {QStringLiteral("&#8217;"), QStringLiteral("'")},  {QStringLiteral("&#8230;"), QStringLiteral("…")},
        {QStringLiteral("&#8249;"), QStringLiteral("‹")},  {QStringLiteral("&#8250;"), QStringLiteral("›")},
    };
    QString result = text;
    const bool hasEntities = text.contains(u'&');
    for (const auto &[from, to] : table)
        if (hasEntities || !from.startsWith(u'&')) result.replace(from, to);
    if (!hasEntities) return result;
    result = regexSweep(result, QStringLiteral("&#.+?;"), {});
    return result.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
}

QString tm_convertMarkdownToPlainText(const QString &text)
{
    static const std::pair<QString, QString> table[] = {
        {QStringLiteral(R"(\!\[.*?\]\((.*?)\))"), {}},
        {QStringLiteral("`{1,3}(.*?)`{1,3}"), QStringLiteral("$1")},
        {QStringLiteral(R"(\[([^\[]*?)\]\((.*?)\))"), QStringLiteral("$1 ($2)")},
        {QStringLiteral(R"(\*\*(?=\S)(.*?)(?=\S)\*\*)"), QStringLiteral("$1")},
        {QStringLiteral(R"(\*(?=\S)(.*?)(?=\S)\*)"), QStringLiteral("$1")},
        {QStringLiteral(R"(_(?=\S)(.*?)(?=\S)_)"), QStringLiteral("$1")},
        {QStringLiteral("~~(.*?)~~"), QStringLiteral("$1")},
        {QStringLiteral(R"((?m)^#{1,6}\s)"), {}},
        {QStringLiteral(R"((?m)^:\s)"), {}},
        {QStringLiteral(R"((?m)^>\s?%.*?%\s*?$)"), {}},
        {QStringLiteral(R"((?m)^>\s?)"), {}},
        {QStringLiteral(R"((?m)^```[\s\S]*?```$)"), {}},
        {QStringLiteral("(?m)^---$"), {}},
        {QStringLiteral(R"((?<!\\)<[^>]+?>)"), {}},
        {QStringLiteral(R"(\\(<[^>]+?>))"), QStringLiteral("$1")},
    };
    QString result = text;
    for (const auto &[pattern, to] : table) result = regexSweep(result, pattern, to);
    return regexSweep(result.trimmed(), QStringLiteral("\n{2,}"), QStringLiteral("\n\n")).trimmed();
}

static bool isLineEnd(QChar c)
{
    return c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator || c == u'\x85';
}

// The lines that the range touches, with the last one's line end.
static Range lineRange(const QString &text, Range range)
{
    qsizetype begin = range.location;
    while (begin > 0 && !isLineEnd(text[begin - 1])) --begin;
    qsizetype end = std::max(range.end(), begin);
    while (end < text.size() && !isLineEnd(text[end])) ++end;
    if (end + 1 < text.size() && text[end] == u'\r' && text[end + 1] == u'\n') ++end;
    if (end < text.size()) ++end;
    return {begin, end - begin};
}

QString tm_stringByRemovingComments(const QString &text)
{
    if (!text.contains(u"//")) return text;
    QString result = text;
    CodeRanges code;
    const PatternMatches matches = matchesOfPattern(text, QStringLiteral(R"(^\s*//.*?$)"), PatternLineAnchored);
    for (size_t i = matches.size(); i-- > 0;) {
        if (code.contains(result, matches[i].range())) continue;
        const Range lines = lineRange(result, matches[i].range());
        const QString removed = result.mid(lines.location, lines.length);
        result.remove(lines.location, lines.length);
        // A comment without marks of code takes none away; what stood behind it is not asked about any more.
        if (removed.contains(u'`') || removed.contains(u'~') || removed.contains(u'|')) code.invalidate();
    }
    return result;
}

// -- words ------------------------------------------------------------------------------------------------------------

qlonglong tm_wordCount(const QString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> words(
        ubrk_open(UBRK_WORD, QLocale().name().toLatin1().constData(), reinterpret_cast<const UChar *>(text.utf16()),
                  int32_t(text.size()), &status),
        &ubrk_close);
    if (U_FAILURE(status)) return 0;
    qlonglong count = 0;
    qlonglong boundaries = 0;
    while (ubrk_next(words.get()) != UBRK_DONE) {
        if (ubrk_getRuleStatus(words.get()) >= UBRK_WORD_NUMBER) ++count;
        // A newer count takes the place of this one.
        if (++boundaries % 65536 == 0 && settings().contains(QStringLiteral("stopWordCharCount"))) break;
    }
    return count;
}

QString tm_formattedWordCount(const QString &text)
{
    if (settings().contains(QStringLiteral("stopWordCharCount"))) return QLocale().toString(0);
    return QLocale().toString(tm_wordCount(text));
}

// -- titles -----------------------------------------------------------------------------------------------------------

static QString trimmedOf(const QString &text, QStringView characters)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && characters.contains(text[begin])) ++begin;
    while (end > begin && characters.contains(text[end - 1])) --end;
    return text.mid(begin, end - begin);
}

static QString shortened(QString line)
{
    if (line.size() < 121) return line;
    qsizetype window = 25;
    if (line.size() < 146) {
        line.append(u' ');
        window = line.size() - 118;
    }
    const qsizetype blank = QStringView(line).sliced(119, std::min(window, line.size() - 119)).indexOf(u' ');
    return line.left(blank < 0 ? 119 : 119 + blank);
}

QString tm_firstLineOfText(const QString &text)
{
    QStringView rest = text;
    if (rest.startsWith(u"---\n")) rest = rest.sliced(4);
    else if (rest.startsWith(u'%')) rest = rest.sliced(1);
    if (rest.startsWith(u"Title:") || rest.startsWith(u"title:")) rest = rest.sliced(6);
    rest = rest.trimmed();
    const auto lineEnd = std::find_if(rest.begin(), rest.end(), isLineEnd);
    QString line = shortened(rest.first(lineEnd - rest.begin()).trimmed().toString());
    line.replace(u'/', u'-');
    const QString trimmed = trimmedOf(line, u"-_+#& ");
    return trimmed.isEmpty() ? line : trimmed;
}

bool tm_stringMatchesFirstLineOfText(const QString &name, const QString &text)
{
    const QString line = tm_firstLineOfText(text);
    return localizedCompare(name, line) == 0 || localizedCompare(name, tm_escapeIllegalCharacters(line)) == 0;
}

} // namespace tomelet
