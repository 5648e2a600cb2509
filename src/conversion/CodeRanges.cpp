// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/CodeRanges.h"

#include "conversion/Patterns.h"

#include <algorithm>

namespace tomelet {

namespace {

qsizetype pointBefore(const QString &text, qsizetype at, qsizetype from)
{
    const bool pair = at - 2 >= from && text[at - 1].isLowSurrogate() && text[at - 2].isHighSurrogate();
    return at - (pair ? 2 : 1);
}

qsizetype pointBehind(const QString &text, qsizetype at)
{
    const bool pair = at + 1 < text.size() && text[at].isHighSurrogate() && text[at + 1].isLowSurrogate();
    return at + (pair ? 2 : 1);
}

// The matches of "[^`]`{1}?[^`]+?`{1}?[^`]", from back tick to back tick: as a pattern it is tried at every character.
void addInlineCode(const QString &text, QList<Range> &ranges)
{
    qsizetype from = 0;
    for (qsizetype open = text.indexOf(u'`'); open >= 0;) {
        const qsizetype close = text.indexOf(u'`', open + 1);
        if (close < 0) return;
        const bool opens = open > from && text[open - 1] != u'`' && close > open + 1;
        if (!opens || close + 1 >= text.size() || text[close + 1] == u'`') {
            open = close;
            continue;
        }
        const qsizetype begin = pointBefore(text, open, from);
        from = pointBehind(text, close + 1);
        ranges.append({begin, from - begin});
        open = text.indexOf(u'`', from);
    }
}

} // namespace

QList<Range> tm_rangesOfFencedCodeBlocks(const QString &text)
{
    // In ICU's sets "\A" is the letter A, so the start of the text opens no fence.
    static const QString fenced = QStringLiteral("[\\A\n]\\s{0,3}([~|`]{3,})[^~`].*?\n\\s{0,3}\\1");
    QList<Range> ranges;
    if (!text.contains(u'`') && !text.contains(u"~~~") && !text.contains(u"|||")) return ranges;
    const PatternMatches blocks = matchesOfPattern(text, fenced, PatternDotAll);
    for (size_t i = 0; i < blocks.size(); ++i) ranges.append(blocks[i].range());
    addInlineCode(text, ranges);
    std::stable_sort(ranges.begin(), ranges.end(),
                     [](const Range &a, const Range &b) { return a.location < b.location; });
    return ranges;
}

bool tm_textCheckingResultsIntersectResult(const QList<Range> &ranges, Range match)
{
    return std::any_of(ranges.begin(), ranges.end(), [&](const Range &range) {
        return range.location <= match.location && range.end() >= match.end();
    });
}

void CodeRanges::update(const QString &text)
{
    if (m_valid) return;
    const QList<Range> ranges = tm_rangesOfFencedCodeBlocks(text);
    m_ranges.assign(ranges.begin(), ranges.end());
    m_farthestEnd.clear();
    qsizetype farthest = 0;
    for (const Range &range : m_ranges) m_farthestEnd.push_back(farthest = std::max(farthest, range.end()));
    m_valid = true;
}

bool CodeRanges::contains(const QString &text, Range match)
{
    update(text);
    const auto behind = std::upper_bound(m_ranges.begin(), m_ranges.end(), match.location,
                                         [](qsizetype at, const Range &range) { return at < range.location; });
    return behind != m_ranges.begin() && m_farthestEnd[size_t(behind - m_ranges.begin()) - 1] >= match.end();
}

bool CodeRanges::overlaps(const QString &text, Range range)
{
    update(text);
    const auto behind = std::lower_bound(m_ranges.begin(), m_ranges.end(), range.end(),
                                         [](const Range &listed, qsizetype end) { return listed.location < end; });
    return behind != m_ranges.begin() && m_farthestEnd[size_t(behind - m_ranges.begin()) - 1] > range.location;
}

// Only marks of code, line ends, and what a fence may follow directly (behind blanks), can open or close code
// elsewhere.
static bool cannotTouchCode(QStringView part)
{
    const bool blankAtEnd = !part.isEmpty() && part.back().isSpace();
    const QStringView solid = blankAtEnd ? part.trimmed() : part;
    if (solid.isEmpty() || solid.back() == u'A') return false;
    return std::none_of(part.begin(), part.end(), [](QChar c) { return QStringView(u"`~|\n\r").contains(c); });
}

bool CodeRanges::noteChange(QStringView oldText, QStringView newText)
{
    if (oldText == newText || (cannotTouchCode(oldText) && cannotTouchCode(newText))) return false;
    m_valid = false;
    return true;
}

} // namespace tomelet
