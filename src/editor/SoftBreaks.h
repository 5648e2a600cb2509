// SPDX-License-Identifier: GPL-3.0-or-later
// Endless lines for text widgets, which lay a line out as a whole at each key: the widget shows such a line in pieces,
// with a soft break between two of them that is no part of the text. A soft break is a line end between two marks that
// have no width (U+206A, which no text needs). Positions are UTF-16 units.
#pragma once

#include <QString>

namespace tomelet {

/// Longer lines are shown in pieces.
inline constexpr qsizetype longestWholeLine = 20000;

/// The text as a widget shows it; the very text where no line is that long, or where it holds such a mark itself.
[[nodiscard]] QString withSoftBreaks(const QString &text);
/// The text that is shown so. What is left of a soft break that was cut into is a line end or nothing.
[[nodiscard]] QString withoutSoftBreaks(const QString &shown);

/// A position of the text in what is shown; never inside of a soft break.
[[nodiscard]] qsizetype shownPosition(const QString &shown, qsizetype position);
/// And back; inside of a soft break it is that of the break.
[[nodiscard]] qsizetype textPosition(const QString &shown, qsizetype shownPosition);
/// A line that a soft break stands in front of.
[[nodiscard]] bool isContinuation(QStringView shownLine);

} // namespace tomelet
