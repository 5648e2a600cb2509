// SPDX-License-Identifier: GPL-3.0-or-later
// A range of a text in UTF-16 code units.
#pragma once

#include <QString>

#include <limits>
#include <optional>

namespace tomelet {

struct Range
{
    /// The location of what was not found.
    static constexpr qsizetype notFound = std::numeric_limits<qsizetype>::max();

    qsizetype location = notFound;
    qsizetype length = 0;

    [[nodiscard]] constexpr bool isFound() const { return location != notFound; }
    /// The first unit behind the range.
    [[nodiscard]] constexpr qsizetype end() const { return location + length; }
    [[nodiscard]] constexpr bool contains(qsizetype position) const
    {
        return position >= location && position - location < length;
    }
    friend constexpr bool operator==(const Range &, const Range &) = default;
};

/// As an argument: from the start to the end, however long the text is. {5, Range::notFound} is the rest from
/// 5 on.
inline constexpr Range wholeRange{0, Range::notFound};

/// The part of the text that the range covers; null where the range is not found or reaches outside.
[[nodiscard]] QString substring(const QString &text, Range range);
/// Replaces the range, which must lie in the text.
void replaceRange(QString &text, Range range, QStringView replacement);

/// "{4, 2}"; inverse of rangeFromText.
[[nodiscard]] QString textOfRange(Range range);
/// Nothing for a text of another form and for negative numbers.
[[nodiscard]] std::optional<Range> rangeFromText(QStringView text);

} // namespace tomelet
