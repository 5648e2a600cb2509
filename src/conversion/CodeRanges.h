// SPDX-License-Identifier: GPL-3.0-or-later
// The parts of a Markdown text that are code, which rewriting steps leave alone. Positions are UTF-16 units.
#pragma once

#include "foundation/Range.h"

#include <QList>
#include <QString>

#include <vector>

namespace tomelet {

/// Fenced blocks and inline code, sorted by location. A fence that is not closed is none; the character before and
/// after the back ticks of inline code belongs to its range.
[[nodiscard]] QList<Range> tm_rangesOfFencedCodeBlocks(const QString &text);
/// Some listed range contains the whole match.
[[nodiscard]] bool tm_textCheckingResultsIntersectResult(const QList<Range> &ranges, Range match);

/// The code ranges of a text that is rewritten from its end to its start.
class CodeRanges
{
public:
    /// The match lies in code. `text` is the text as it stands; the ranges are found anew when it changed in a way
    /// that matters to what is code.
    [[nodiscard]] bool contains(const QString &text, Range match);
    /// Any part of the range is code.
    [[nodiscard]] bool overlaps(const QString &text, Range range);
    /// Tells of a replacement behind which no match will be asked about any more. True when what is code may have
    /// changed, so that the next question needs the text with the change.
    bool noteChange(QStringView oldText, QStringView newText);
    /// The text is another one.
    void invalidate() { m_valid = false; }
    [[nodiscard]] bool isValid() const { return m_valid; }

private:
    void update(const QString &text);

    bool m_valid = false;
    std::vector<Range> m_ranges;
    std::vector<qsizetype> m_farthestEnd; // the largest end among the ranges up to each
};

} // namespace tomelet
