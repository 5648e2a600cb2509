// SPDX-License-Identifier: GPL-3.0-or-later
// The rewriting of a Markdown text before an engine sees it: what the engines do not know of the notebook's own
// syntax is lowered to what each of them accepts.
#pragma once

#include <QString>

namespace tomelet {

/// Which engine a text is prepared for; any other number runs the common steps alone.
enum MarkdownConverter : int { DiscountConverter = 0, OwnConverter = 1 };

[[nodiscard]] QString tm_stringPreparedForConversionWith(const QString &text, int converter);
/// Two blanks at the end of each line that is to break there. The result ends with one line end more.
[[nodiscard]] QString tm_makeEveryNewlineaLinebreak(const QString &text);

/// The line that a page whose style brings a formula renderer appends to its source.
inline const QString mathMark = QStringLiteral("\n\n<!-- TMLT: handling mathjax -->");

} // namespace tomelet
