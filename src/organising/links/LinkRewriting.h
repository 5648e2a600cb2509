// SPDX-License-Identifier: GPL-3.0-or-later
// Links that stay true: what a rename or move changes in the texts of documents.
#pragma once

#include <QString>

namespace tomelet {

/// Rewrites the references in a document that meant an item at its old path. Paths are full. True when the text
/// changed; a text that cannot be read or written is left as it is.
bool tm_renameLinksInDocumentFrom(const QString &document, const QString &oldPath, const QString &newPath);
/// The same for a document's links to itself, queued, while links are managed: for a text that was written after the
/// move of its own file.
void renameOwnLinks(const QString &document, const QString &oldPath);

/// After an item has moved: its own relative references, the documents that refer to it, and the backlinks of those
/// that it refers to. The work is queued, in the order of the moves. Nothing happens while the old path exists.
void tm_adjustLinksAndBacklinksAfterRenameFrom(const QString &newPath, const QString &oldPath);
/// The same after a rename that was made elsewhere: the person is asked whether the links are to follow. Nothing is
/// asked where no links are concerned.
void tm_askToAdjustLinksAndBacklinksAfterRenameFrom(const QString &newPath, const QString &oldPath);
/// After a book has moved: the same for all that lies in it, by one walk below the folder. Queued.
void tm_renameAllLinksFrom(const QString &folder, const QString &oldPath, const QString &newPath);

/// Queues once more the moves whose links a program that was killed left half rewritten.
void finishAbandonedMoves();

} // namespace tomelet
