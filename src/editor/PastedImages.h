// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures and other files that are pasted or dropped into a document.
#pragma once

#include <QByteArray>
#include <QString>

namespace tomelet {

/// Puts the bytes into `TMImages` of the book, under the name or one like it that is free; the same bytes
/// under that name are used as they are. The reference for the document ("TMImages/a%20b.png"), "" when
/// nothing could be written.
[[nodiscard]] QString storeInImages(const QString &book, const QString &name, const QByteArray &bytes);
/// The HTML for a file that was dropped into a document of the book: a copy in `TMImages` for pictures from
/// outside, a link for everything else. "" when it cannot be read.
[[nodiscard]] QString htmlForDroppedFile(const QString &book, const QString &file);
/// The name of a picture that has none: "Image 2026-11-21 16.35.02.png".
[[nodiscard]] QString nameForPastedImage();

} // namespace tomelet
