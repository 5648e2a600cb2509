// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures and other files that are pasted or dropped into a document.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tomelet {

/// Puts the bytes into `TMImages` of the book, under the name or one like it that is free; the same bytes
/// under that name are used as they are. The reference for the document ("TMImages/a%20b.png"), "" when
/// nothing could be written.
[[nodiscard]] QString storeInImages(const QString &book, const QString &name, const QByteArray &bytes);
/// The HTML for files that were dropped into a document of the book: copies in `TMImages` for pictures, links for
/// everything else. The names of pictures that cannot be copied are added to `failed`.
[[nodiscard]] QString htmlForDroppedFiles(const QString &book, const QStringList &files, QStringList &failed);
/// The name of a picture that has none: "Image 2026-11-21 16.35.02.png".
[[nodiscard]] QString nameForPastedImage();

} // namespace tomelet
