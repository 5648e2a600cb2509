// SPDX-License-Identifier: GPL-3.0-or-later
// HTML as Markdown, by a fixed series of rewrites whose order is the design; there is no parser, so nothing fails.
#pragma once

#include <QString>

namespace tomelet {

/// Markdown in the notebook's dialect, trimmed. What no rewrite reaches stays as HTML, which Markdown accepts.
[[nodiscard]] QString tm_markdownifyHTML(const QString &html);
/// The HTML without inline styles (but for background colours and preformatted spans), laid out anew, trimmed.
[[nodiscard]] QString tm_htmlWithoutInlineStyles(const QString &html);

/// Takes the paragraph tags out of class blocks that hold one paragraph.
[[nodiscard]] QString tm_removeParagraphsNestedInCustomClasses(const QString &html);

} // namespace tomelet
