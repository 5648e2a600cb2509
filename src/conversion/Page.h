// SPDX-License-Identifier: GPL-3.0-or-later
// Documents as complete pages: what the formatted view shows.
#pragma once

#include <QString>

namespace tomelet {

/// A body in the frame of a whole page with the item's title and style sheet. The title is the first heading of
/// level 1, else the file's name without extension.
[[nodiscard]] QString tm_createFormattedDocWithBody(const QString &path, const QString &body);
/// The page of a Markdown document; an unreadable file gives a page with an empty body.
[[nodiscard]] QString pageOfMarkdown(const QString &path);
/// The complete page of any document: Markdown, HTML, plain text, pictures, and a card for what cannot be shown.
[[nodiscard]] QString pageForItem(const QString &path);

} // namespace tomelet
