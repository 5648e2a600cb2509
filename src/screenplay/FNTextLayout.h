// SPDX-License-Identifier: GPL-3.0-or-later
// Where lines of a typewriter's type end. All signs are equally wide, so that widths are counts of them.
// Positions are in UTF-16 units. No function reads further than it has to.
#pragma once

#include <QString>

namespace tomelet {

struct FNFont
{
    QString name = QStringLiteral("Courier");
    double pointSize = 12;
};

/// How many signs of the font stand in so many points; at least one.
[[nodiscard]] int columnsInWidth(const FNFont &font, int width);

/// A text whose blanks at the end take no lines.
class FNMeasuredText
{
public:
    explicit FNMeasuredText(const QString &text);

    /// How many lines it takes from `from` on, but no more than `most`. Blanks alone take one, no text none.
    [[nodiscard]] int lines(qsizetype from, int columns, int most) const;
    /// Where the part ends that fits into so many lines; the text's length when all of it does.
    [[nodiscard]] qsizetype endOfLines(qsizetype from, int columns, int lines) const;
    /// The end of the last sentence, its blanks included, whose words end no later than `end`; `from` when there is
    /// none. A sentence ends behind full stops, question or exclamation marks, or behind a line.
    [[nodiscard]] qsizetype endOfSentences(qsizetype from, qsizetype end) const;

private:
    [[nodiscard]] qsizetype endOfLine(qsizetype from, int columns) const;

    QString m_text;
    qsizetype m_end; ///< without the blanks at the end
};

} // namespace tomelet
