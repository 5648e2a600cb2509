// SPDX-License-Identifier: GPL-3.0-or-later
// The discount library as a Markdown engine.
#pragma once

#include <QString>

namespace tomelet {

/// The HTML fragment of a Markdown text. With `titleBlock`, a title block of "%" lines at the top becomes a header.
/// An empty result when the library gives none.
[[nodiscard]] QString discountToHtml(const QString &text, bool titleBlock, bool smartyPants);

} // namespace tomelet
