// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenplay/FNHTMLScript.h"

#include "conversion/RegexLayer.h"
#include "foundation/Log.h"
#include "foundation/Resources.h"
#include "foundation/SafeWriter.h"
#include "screenplay/FNPaginator.h"

#include <QHash>

namespace tomelet {

namespace {

// -- title page -------------------------------------------------------------------------------------------------------

QString titleParagraph(const QString &key, const QStringList &values)
{
    QString text;
    for (const QString &value : values) text += value + QStringLiteral("<br>");
    return QStringLiteral("<p class='") + key + QStringLiteral("'>") + text + QStringLiteral("</p>");
}

QString titlePageOf(const FNTitlePage &page)
{
    if (page.isEmpty()) return {};
    QHash<QString, QStringList> entries;
    for (const FNTitleEntry &entry : page) entries.insert(entry.key, entry.values);
    struct Row
    {
        const char *key, *otherwise;
    };
    static constexpr Row rows[] = {{"title", "Untitled"}, {"credit", "written by"}, {"authors", "Anonymous"},
                                   {"source", nullptr},   {"draft date", nullptr},  {"contact", nullptr}};
    QString text = QStringLiteral("<div id='script-title'>");
    for (const Row &row : rows) {
        const QString key = QLatin1StringView(row.key);
        if (entries.contains(key)) text += titleParagraph(key, entries.value(key));
        else if (row.otherwise) text += titleParagraph(key, {QLatin1StringView(row.otherwise)});
    }
    return text + QStringLiteral("</div>");
}

// -- texts ------------------------------------------------------------------------------------------------------------

QString withoutForcingMark(const FNElement &element, QString text)
{
    const bool isMarked = (element.is(FNType::Character) && text.startsWith(u'@')) ||
                          (element.is(FNType::SceneHeading) && text.startsWith(u'.')) ||
                          (element.is(FNType::Lyrics) && text.startsWith(u'~')) ||
                          (element.is(FNType::Action) && text.startsWith(u'!'));
    return isMarked ? text.sliced(1) : text;
}

// Tags that cross are mended by the browser.
QString withEmphasis(QString text)
{
    static const std::pair<QString, QString> rows[] = {
        {QStringLiteral("(_\\*{3}|\\*{3}_)([^<>]+)(_\\*{3}|\\*{3}_)"),
         QStringLiteral("<strong><em><u>$2</strong></em></u>")},
        {QStringLiteral("(\\*{3})([^<>]+)(\\*{3})"), QStringLiteral("<strong><em>$2</strong></em>")},
        {QStringLiteral("(_\\*{2}|\\*{2}_)([^<>]+)(_\\*{2}|\\*{2}_)"), QStringLiteral("<strong><u>$2</u></strong>")},
        {QStringLiteral("(_\\*{1}|\\*{1}_)([^<>]+)(_\\*{1}|\\*{1}_)"), QStringLiteral("<em><u>$2</em></u>")},
        {QStringLiteral("(\\*{2})([^<>]+)(\\*{2})"), QStringLiteral("<strong>$2</strong>")},
        {QStringLiteral("(?<!\\\\)(\\*{1})([^<>]+)(\\*{1})"), QStringLiteral("<em>$2</em>")},
        {QStringLiteral("(_)([^<>_]+)(_)"), QStringLiteral("<u>$2</u>")},
    };
    if (!text.contains(u'*') && !text.contains(u'_')) return text;
    for (const auto &[pattern, replacement] : rows)
        text = stringByReplacingOccurrencesOfRegex(text, pattern, replacement);
    return text;
}

qsizetype endOfLineAt(const QString &text, qsizetype from)
{
    static const QString ends = QStringLiteral("\n\v\f\r\u0085\u2028\u2029");
    while (from < text.size() && !ends.contains(text[from])) ++from;
    return from;
}

// What stands between "[[" and the next "]]" of the line. By hand, since a pattern would look for the end of each "[["
// of a line that has no "]]".
QString withoutNotes(const QString &text)
{
    QString rest;
    qsizetype kept = 0, lineEnd = 0;
    for (qsizetype start = 0; (start = text.indexOf(QLatin1StringView("[["), start)) >= 0;) {
        if (start >= lineEnd) lineEnd = endOfLineAt(text, start);
        const qsizetype end = QStringView(text).first(lineEnd).indexOf(QLatin1StringView("]]"), start + 2);
        if (end < 0) {
            start = lineEnd;
            continue;
        }
        rest += QStringView(text).sliced(kept, start - kept);
        start = kept = end + 2;
    }
    return rest + QStringView(text).sliced(kept);
}

QString shownText(const FNElement &element)
{
    QString text = element.elementText;
    if (element.is(FNType::SceneHeading) && element.sceneNumber)
        text = QStringLiteral("<span class='scene-number-left'>") + *element.sceneNumber + QStringLiteral("</span>") +
               text + QStringLiteral("<span class='scene-number-right'>") + *element.sceneNumber +
               QStringLiteral("</span>");
    if (element.is(FNType::Character) && element.isDualDialogue) text.remove(u'^');
    return withoutNotes(withEmphasis(withoutForcingMark(element, text)));
}

QString paragraph(const FNElement &element)
{
    const QString text = shownText(element);
    if (text.isEmpty()) return {};
    const QString classes = FNHTMLScript::htmlClassForType(element.elementType) +
                            (element.isCentered ? QStringLiteral(" center") : QString());
    return QStringLiteral("<p class='") + classes + QStringLiteral("'>") + text + QStringLiteral("</p>\n");
}

// -- pages ------------------------------------------------------------------------------------------------------------

/// The two columns of speakers who speak at once.
class DualColumns
{
public:
    /// What stands in front of the element.
    [[nodiscard]] QString before(const FNElement &element)
    {
        if (element.isSpoken()) return {};
        if (!element.is(FNType::Character) || !element.isDualDialogue) return close();
        if (m_open == 1) {
            m_open = 2;
            return QStringLiteral("</div>\n<div class='dual-dialogue-right'>\n");
        }
        const QString closed = close();
        m_open = 1;
        return closed + QStringLiteral("<div class='dual-dialogue'>\n<div class='dual-dialogue-left'>\n");
    }

    [[nodiscard]] QString close()
    {
        if (m_open == 0) return {};
        m_open = 0;
        return QStringLiteral("</div>\n</div>\n");
    }

private:
    int m_open = 0; ///< the column, from 1
};

QString pageText(const FNPaginator::Page &page)
{
    QString text;
    DualColumns columns;
    for (const FNElement &element : page) {
        if (element.isHidden()) continue;
        text += columns.before(element);
        text += element.is(FNType::PageBreak) ? QStringLiteral("</section>\n<section>\n") : paragraph(element);
    }
    return text + columns.close();
}

QString pagesOf(const FNScript &script)
{
    FNPaginator paginator = FNPaginator::initWithScript(script);
    paginator.paginate();
    QString text;
    for (qsizetype i = 0; i < paginator.numberOfPages(); ++i) {
        if (i > 0) text += QStringLiteral("<p class='page-break'>%1.</p>\n").arg(i + 1);
        text += pageText(paginator.pageAtIndex(i));
    }
    return text;
}

} // namespace

FNHTMLScript FNHTMLScript::initWithScript(const FNScript &script)
{
    FNHTMLScript page;
    page.script = script;
    return page;
}

QString FNHTMLScript::htmlClassForType(const QString &type)
{
    return type.toLower().replace(u' ', u'-');
}

QString FNHTMLScript::cssText()
{
    const auto sheet = readFile(resourcePath(QStringLiteral("CSS/ScriptCSS.css")));
    if (!sheet) logLine(QStringLiteral("Couldn't load CSS"));
    return QString::fromUtf8(sheet.value_or(QByteArray()));
}

const QString &FNHTMLScript::bodyForScript()
{
    if (bodyText.isNull()) bodyText = QStringLiteral("") + titlePageOf(script.titlePage) + pagesOf(script);
    return bodyText;
}

QString FNHTMLScript::html()
{
    return QStringLiteral("<!DOCTYPE html>\n<html>\n<head>\n<style type='text/css'>\n") + cssText() +
           QStringLiteral("</style>\n</head>\n<body>\n<article>\n<section>\n") + bodyForScript() +
           QStringLiteral("</section>\n</article>\n</body>\n</html>");
}

QString pageOfScreenplay(const QString &path)
{
    return FNHTMLScript::initWithScript(FNScript::initWithFile(path)).html();
}

} // namespace tomelet
