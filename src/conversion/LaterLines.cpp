// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/LaterLines.h"

#include <algorithm>

namespace tomelet {

// An index is written in two units of the private use area.
static constexpr char16_t indexBase = 0xE000;
static constexpr int indexBits = 11;

QString LaterLines::putAside(const QString &text)
{
    if (!m_used) return text;
    // The last line can still be trimmed, and what follows on it can make it another one.
    qsizetype solid = text.size();
    while (solid > 0 && text[solid - 1].isSpace()) --solid;
    const qsizetype last = text.left(solid).lastIndexOf(u'\n');
    QString result;
    qsizetype from = 0;
    while (from < last) {
        qsizetype begin = from;
        while (begin < last && text[begin] == u'\n') ++begin;
        const qsizetype gap = m_marking == Lists ? text.indexOf(QStringLiteral("\n\n"), begin) : -1;
        const qsizetype end = gap < 0 ? last : std::min(gap, last);
        const qsizetype lineEnd = text.indexOf(u'\n', begin);
        const qsizetype firstEnd = lineEnd < 0 ? end : std::min(end, lineEnd);
        result.append(QStringView(text).sliced(from, firstEnd - from));
        result.append(placeholderFor(text.mid(firstEnd, end - firstEnd)));
        from = end;
    }
    return result.append(QStringView(text).sliced(from));
}

QString LaterLines::placeholderFor(const QString &lines)
{
    const size_t index = m_blocks.size();
    if (lines.size() <= placeholderSize || index >= size_t(1) << (2 * indexBits)) return lines;
    m_blocks.push_back({lines});
    const QChar placeholder[] = {sign, QChar(char16_t(indexBase + (index >> indexBits))),
                                 QChar(char16_t(indexBase + (index & ((1U << indexBits) - 1))))};
    return QString(placeholder, placeholderSize);
}

size_t LaterLines::indexAt(const QString &text, qsizetype at) const
{
    return (size_t(text[at + 1].unicode() - indexBase) << indexBits) + size_t(text[at + 2].unicode() - indexBase);
}

void LaterLines::mark(const QString &text)
{
    if (!m_used) return;
    for (qsizetype at = text.indexOf(sign); at >= 0; at = text.indexOf(sign, at + placeholderSize))
        ++m_blocks[indexAt(text, at)].marks;
}

// Where a line takes its marks; -1 for a line that takes none. Marked lines have a blank behind their sign.
qsizetype LaterLines::markPosition(const QString &text, qsizetype lineStart) const
{
    const auto at = [&text](qsizetype i) { return i < text.size() ? text[i] : QChar(); };
    if (m_marking == Quotes) return at(lineStart) == u'>' && at(lineStart + 1) == u' ' ? lineStart : -1;
    qsizetype begin = lineStart;
    while (at(begin) == u' ' || at(begin) == u'\t') ++begin;
    qsizetype i = begin;
    while (at(i).isDigit()) ++i;
    const bool isItem = i > begin ? at(i) == u'.' : at(i) == u'-';
    return isItem && at(i + 1) == u' ' ? begin : -1;
}

void LaterLines::appendMarked(QString &result, const QString &text, qsizetype from, qsizetype end,
                              qsizetype marks) const
{
    const QString once = m_marking == Lists ? QStringLiteral("    ") : QStringLiteral("> ");
    while (from < end) {
        const qsizetype line = text.indexOf(u'\n', from) + 1;
        if (line == 0 || line > end) break;
        const qsizetype at = markPosition(text, line);
        const qsizetype upTo = at < 0 ? line : at;
        result.append(QStringView(text).sliced(from, upTo - from));
        if (at >= 0) result.append(once.repeated(marks));
        from = upTo;
    }
    result.append(QStringView(text).sliced(from, end - from));
}

QString LaterLines::restored(const QString &text) const
{
    if (m_blocks.empty()) return text;
    struct Reading
    {
        const QString *text;
        qsizetype from;
        qsizetype marks;
    };
    QString result;
    std::vector<Reading> stack{{&text, 0, 0}};
    while (!stack.empty()) {
        Reading &now = stack.back();
        const qsizetype found = now.text->indexOf(sign, now.from);
        const qsizetype end = found < 0 ? now.text->size() : found;
        if (now.marks == 0) result.append(QStringView(*now.text).sliced(now.from, end - now.from));
        else appendMarked(result, *now.text, now.from, end, now.marks);
        if (found < 0) {
            stack.pop_back();
            continue;
        }
        const Block &block = m_blocks[indexAt(*now.text, found)];
        now.from = found + placeholderSize;
        stack.push_back({&block.text, 0, now.marks + block.marks});
    }
    return result;
}

} // namespace tomelet
