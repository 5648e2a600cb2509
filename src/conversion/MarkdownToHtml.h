// SPDX-License-Identifier: GPL-3.0-or-later
// Markdown as a complete page: preparation, one of two engines, and the repair of what the engine gave.
#pragma once

#include <QString>

namespace tomelet {

/// The page of an existing file (by its item path) or of a text. An unreadable file gives a page with an empty body.
[[nodiscard]] QString tm_markdownToHTML(const QString &pathOrText);
/// The page that an existing file would have if it held this text.
[[nodiscard]] QString markdownPageWithText(const QString &path, const QString &text);
/// The notebook's own engine on a prepared text of the document at the path; the fragment.
[[nodiscard]] QString tm_ownMarkdownWithPath(const QString &text, const QString &path);
/// A body in the frame of a whole page with the item's title and style sheet.
[[nodiscard]] QString tm_createFormattedDocWithBody(const QString &pathOrText, const QString &body);
/// The frame alone: a body as it is, with that title and the style sheet of the item.
[[nodiscard]] QString pageFrame(const QString &path, const QString &title, const QString &body);

} // namespace tomelet
