// SPDX-License-Identifier: GPL-3.0-or-later
// The pictures and other attachments of a book's documents, in the folder `TMImages` of the book.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// The references "TMImages/name" in a text, each once, in their order.
[[nodiscard]] QStringList tm_setOfEmbeddedPhotos(const QString &text);
/// Copies a document's pictures to the book of the target and cleans the book it came from. Works after the move:
/// properties and text are read from whichever of the two places has them.
void tm_copyEmbeddedPhotosToPath(const QString &path, const QString &target);
/// Moves pictures that nothing refers to any more to the trash. Gives up at any doubt: a placeholder of a file that
/// is still downloading, or a document that cannot be read.
void tm_cleanupImagesFolder(const QString &book);

} // namespace tomelet
