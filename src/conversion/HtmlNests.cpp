// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/HtmlSteps_p.h"

#include "conversion/LaterLines.h"
#include "conversion/NestedRewrites.h"

#include <algorithm>

namespace tomelet {

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

namespace {

QString withNestedListsIndented(const QString &text)
{
    return regexSweep(text, QStringLiteral("\n([ \t]*)(-|\\d+\\.)\\s"), QStringLiteral("\n$1    $2 "), PatternDotAll);
}

// One piece between closing item tags: the rest of the item before, which held a nested list, and the item
// itself.
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

} // namespace

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

} // namespace tomelet
