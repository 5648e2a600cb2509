// SPDX-License-Identifier: GPL-3.0-or-later
// Patterns as the conversion steps use them: all matches of a text are collected once, with the ranges of all
// groups, and then the text is rewritten from the last match to the first, so that the ranges in front stay
// valid.
//
// Patterns are ICU's with ICU's default flags, each compiled once. A pattern that does not compile has no
// matches, and neither has an empty text: the step changes nothing. Ranges are in UTF-16 units. All functions
// can be called from any thread; callbacks may call them again.
#pragma once

#include "foundation/Range.h"

#include <QString>

#include <functional>
#include <initializer_list>
#include <span>
#include <utility>
#include <vector>

namespace tomelet {

/// Flags of a pattern, to be summed: 24 is dot-all and line-anchored.
enum PatternOption { PatternCaseInsensitive = 1, PatternDotAll = 8, PatternLineAnchored = 16 };

/// One match: a view into the PatternMatches that it came from.
class PatternMatch
{
public:
    explicit PatternMatch(std::span<const Range> groups)
        : m_groups(groups)
    {}

    [[nodiscard]] Range range() const { return m_groups[0]; }
    /// Group 0 is the whole match. Not found for a group that took no part or that the pattern does not have.
    [[nodiscard]] Range group(size_t number) const { return number < m_groups.size() ? m_groups[number] : Range(); }
    [[nodiscard]] size_t groupCount() const { return m_groups.size() - 1; }

private:
    std::span<const Range> m_groups;
};

/// All matches of a pattern in a text, in order.
class PatternMatches
{
public:
    PatternMatches() = default;
    PatternMatches(std::vector<Range> ranges, size_t rangesOfMatch)
        : m_ranges(std::move(ranges))
        , m_rangesOfMatch(rangesOfMatch)
    {}

    [[nodiscard]] size_t size() const { return m_ranges.size() / m_rangesOfMatch; }
    [[nodiscard]] bool isEmpty() const { return m_ranges.empty(); }
    [[nodiscard]] PatternMatch operator[](size_t i) const
    {
        return PatternMatch(std::span(m_ranges).subspan(i * m_rangesOfMatch, m_rangesOfMatch));
    }

private:
    std::vector<Range> m_ranges;
    size_t m_rangesOfMatch = 1;
};

/// All matches within the range. The pattern sees the range alone, as if it were the whole text.
[[nodiscard]] PatternMatches matchesOfPattern(const QString &text, const QString &pattern, int options = 0,
                                              Range range = wholeRange);
/// The same with a bound on the work, for patterns that can take long on texts made to that end: after so many times
/// ten thousand points of return the matches found so far are all.
[[nodiscard]] PatternMatches matchesWithinSteps(const QString &text, const QString &pattern, int options, Range range,
                                                int steps);
/// The first match alone, or none.
[[nodiscard]] PatternMatches firstMatchOfPattern(const QString &text, const QString &pattern, int options = 0,
                                                 Range range = wholeRange);
/// Where the first match lies, or a group of it; not found without one.
[[nodiscard]] Range rangeOfPattern(const QString &text, const QString &pattern, int options = 0,
                                   Range range = wholeRange, size_t group = 0);
[[nodiscard]] bool isPatternValid(const QString &pattern, int options = 0);

/// Called for each match, from the last to the first. The ranges are those of the text before the first
/// change; the working text may be changed at the match and behind it, not in front of it.
using PatternRewriter = std::function<void(const PatternMatch &match, QString &text)>;

/// Collects all matches of `text`, then calls the rewriter for each, from the last to the first. Gives their
/// number.
///
///     rewriteEachMatch(text, u"\\*(\\w+)\\*"_s, 0, [](const PatternMatch &match, QString &working) {
///         replaceRange(working, match.range(), substring(working, match.group(1)));
///     });                                             // "a *b* c" becomes "a b c"
size_t rewriteEachMatch(QString &text, const QString &pattern, int options, const PatternRewriter &rewriter);

/// Replaces several groups of one match, the highest number first; groups that took no part are left out.
/// Groups that lie in one another cannot both be replaced.
void replaceGroups(QString &text, const PatternMatch &match,
                   std::initializer_list<std::pair<size_t, QString>> replacements);

/// The regex sweep: all matches replaced at once by ICU's template ("$1" is a group, a backslash takes the
/// next character as it is). The text unchanged where the pattern or the template is none.
[[nodiscard]] QString regexSweep(const QString &text, const QString &pattern, const QString &replacement,
                                 int options = 0);

} // namespace tomelet
