// SPDX-License-Identifier: GPL-3.0-or-later
// Moving, copying, duplicating and deleting items with all that travels along: the property file, contexts, the task,
// the place in custom orders, links, and the pictures embedded in the text.
#pragma once

#include <QString>

namespace tomelet {

/// Moves or renames. Nothing is overwritten; a failed move changes nothing at all.
bool tm_moveItemToPath(const QString &path, const QString &target);
/// The same without waiting for it: the move runs as a delayed call.
void tm_moveItemToPathAsync(const QString &path, const QString &target);
/// Copies with property file, pictures and task.
bool tm_copyItemToPath(const QString &path, const QString &target);
/// Copies beside the item under the name "Note copy.md".
bool tm_duplicateItemAtPath(const QString &path);
/// The path that the next duplicate will have.
[[nodiscard]] QString pathForDuplicate(const QString &path);
/// Gives a document that was made from another one its properties and task, less what belongs to the source alone.
void tm_finishDuplicateTo(const QString &path, const QString &target);
/// Removes the item and its property file for good.
bool tm_deleteItemAtPath(const QString &path);

/// A new book "Untitled" in the book, or in the root for an empty path; its path, "" when it could not be made.
[[nodiscard]] QString makeNewBook(const QString &parent, const QString &name = {});
/// Keeps the setting `defaultInbox` true after a move of the inbox or of a book above it; an empty or trashed target
/// removes it. True when the setting changed or an item came into or left the inbox.
bool followInbox(const QString &path, const QString &target);

} // namespace tomelet
