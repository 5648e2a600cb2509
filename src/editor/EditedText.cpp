// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditedText.h"

#include <algorithm>

namespace tomelet {

namespace {

Range cutTo(qsizetype size, Range range)
{
    const qsizetype start = std::clamp<qsizetype>(range.location, 0, size);
    return {start, std::clamp<qsizetype>(range.length, 0, size - start)};
}

// Where a position of the text before comes to stand.
qsizetype moved(qsizetype position, const std::vector<Replacement> &replacements)
{
    qsizetype shift = 0;
    for (const auto &[range, text] : replacements) {
        if (range.location >= position && range.end() != position) break;
        if (position < range.end()) return range.location + shift + text.size();
        shift += text.size() - range.length;
    }
    return position + shift;
}

} // namespace

EditedText::EditedText(QString text, Range selection)
    : m_text(std::move(text))
    , m_selection(cutTo(m_text.size(), selection))
    , m_originalSize(m_text.size())
    , m_untouchedInFront(m_text.size())
    , m_untouchedBehind(m_text.size())
{}

void EditedText::select(Range selection)
{
    m_selection = cutTo(m_text.size(), selection);
}

QChar EditedText::at(qsizetype position) const
{
    return position >= 0 && position < m_text.size() ? m_text[position] : QChar();
}

void EditedText::tm_replaceCharactersInRange(Range range, const QString &replacement)
{
    replaceAll({{range, replacement}});
}

void EditedText::replaceAll(const std::vector<Replacement> &replacements)
{
    if (replacements.empty()) return;
    const qsizetype first = replacements.front().range.location;
    const qsizetype last = replacements.back().range.end();
    m_untouchedInFront = std::min(m_untouchedInFront, first);
    m_untouchedBehind = std::min(m_untouchedBehind, m_text.size() - last);
    const qsizetype start = moved(m_selection.location, replacements);
    const qsizetype end = moved(m_selection.end(), replacements);

    QString middle;
    qsizetype done = first;
    for (const auto &[range, text] : replacements) {
        middle += QStringView(m_text).sliced(done, range.location - done);
        middle += text;
        done = range.end();
    }
    m_text.replace(first, last - first, middle);
    m_selection = {start, end - start};
}

Replacement EditedText::change() const
{
    if (m_untouchedInFront == m_originalSize && m_untouchedBehind == m_originalSize && m_text.size() == m_originalSize)
        return {};
    // Both sides may have been left alone in a text that repeats itself; the middle is never less than nothing.
    const qsizetype behind =
        std::min({m_untouchedBehind, m_originalSize - m_untouchedInFront, m_text.size() - m_untouchedInFront});
    return {{m_untouchedInFront, m_originalSize - m_untouchedInFront - behind},
            m_text.mid(m_untouchedInFront, m_text.size() - m_untouchedInFront - behind)};
}

Replacement smallestReplacement(QStringView from, QStringView to)
{
    if (from == to) return {};
    qsizetype front = std::mismatch(from.begin(), from.end(), to.begin(), to.end()).first - from.begin();
    if (front > 0 && from[front - 1].isHighSurrogate()) --front;
    const QStringView fromRest = from.sliced(front);
    const QStringView toRest = to.sliced(front);
    qsizetype behind =
        std::mismatch(fromRest.rbegin(), fromRest.rend(), toRest.rbegin(), toRest.rend()).first - fromRest.rbegin();
    if (behind > 0 && fromRest[fromRest.size() - behind].isLowSurrogate()) --behind;
    return {{front, fromRest.size() - behind}, toRest.chopped(behind).toString()};
}

bool isLineEnd(QChar unit)
{
    return unit == u'\n' || unit == u'\r' || unit == QChar::ParagraphSeparator;
}

qsizetype lineEndLength(QStringView text)
{
    if (text.endsWith(u"\r\n")) return 2;
    return !text.isEmpty() && isLineEnd(text.back()) ? 1 : 0;
}

Range paragraphRange(QStringView text, Range range)
{
    const auto insideCrLf = [&](qsizetype position) {
        return position > 0 && position < text.size() && text[position] == u'\n' && text[position - 1] == u'\r';
    };
    qsizetype start = range.location;
    while (start > 0 && (!isLineEnd(text[start - 1]) || insideCrLf(start))) --start;
    // A range that ends behind a line end does not touch the next paragraph.
    qsizetype end = range.length > 0 ? range.end() : range.location;
    if (range.length > 0 && isLineEnd(text[end - 1]) && !insideCrLf(end)) return {start, end - start};
    while (end < text.size() && !isLineEnd(text[end])) ++end;
    if (end < text.size()) end += text.sliced(end).startsWith(u"\r\n") ? 2 : 1;
    return {start, end - start};
}

Range withoutLineEnd(QStringView text, Range paragraph)
{
    return {paragraph.location, paragraph.length - lineEndLength(text.sliced(paragraph.location, paragraph.length))};
}

} // namespace tomelet
