// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/SoftBreaks.h"

namespace tomelet {

namespace {

constexpr QChar mark(u'\u206a');
constexpr QStringView softBreak(u"\u206a\n\u206a");
constexpr qsizetype piece = 4000;

void appendInPieces(QString &shown, QStringView line)
{
    while (line.size() > piece) {
        const bool cutsPair = line[piece - 1].isHighSurrogate() && line[piece].isLowSurrogate();
        const qsizetype length = cutsPair ? piece + 1 : piece;
        shown += line.first(length);
        line = line.sliced(length);
        if (!line.isEmpty()) shown += softBreak;
    }
    shown += line;
}

// What stands at a mark and is no part of the text: a whole soft break, or the mark alone.
qsizetype foreignUnits(const QString &shown, qsizetype at)
{
    return QStringView(shown).sliced(at).startsWith(softBreak) ? softBreak.size() : 1;
}

} // namespace

QString withSoftBreaks(const QString &text)
{
    if (text.size() <= longestWholeLine || text.contains(mark)) return text;
    QString shown;
    for (qsizetype start = 0; start <= text.size();) {
        const qsizetype found = text.indexOf(u'\n', start);
        const qsizetype end = found < 0 ? text.size() : found;
        const QStringView line = QStringView(text).sliced(start, end - start);
        if (line.size() > longestWholeLine) appendInPieces(shown, line);
        else shown += line;
        if (found >= 0) shown += u'\n';
        start = end + 1;
    }
    return shown;
}

QString withoutSoftBreaks(const QString &shown)
{
    QString text;
    text.reserve(shown.size());
    qsizetype start = 0;
    for (qsizetype at = shown.indexOf(mark); at >= 0; at = shown.indexOf(mark, start)) {
        text += QStringView(shown).sliced(start, at - start);
        start = at + foreignUnits(shown, at);
    }
    return text += QStringView(shown).sliced(start);
}

qsizetype shownPosition(const QString &shown, qsizetype position)
{
    qsizetype foreign = 0;
    for (qsizetype at = shown.indexOf(mark); at >= 0 && at - foreign <= position;) {
        const qsizetype units = foreignUnits(shown, at);
        foreign += units;
        at = shown.indexOf(mark, at + units);
    }
    return position + foreign;
}

qsizetype textPosition(const QString &shown, qsizetype shownPosition)
{
    qsizetype foreign = 0;
    for (qsizetype at = shown.indexOf(mark); at >= 0 && at < shownPosition;) {
        const qsizetype units = foreignUnits(shown, at);
        foreign += std::min(units, shownPosition - at);
        at = shown.indexOf(mark, at + units);
    }
    return shownPosition - foreign;
}

bool isContinuation(QStringView shownLine)
{
    return shownLine.startsWith(mark);
}

} // namespace tomelet
