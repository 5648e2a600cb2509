// SPDX-License-Identifier: GPL-3.0-or-later
// Contexts of items. The property `Tags` of each item is the truth; the index from context to items and the list of all
// contexts follow it.
#pragma once

#include "foundation/Progress.h"

#include <QSet>
#include <QString>
#include <QStringList>

namespace tomelet {

// -- words in texts
/// The contexts in a text, in their order: words that begin with one marker, outside fenced code, less the excluded.
[[nodiscard]] QStringList tm_extractTagsFromString(const QString &text);
/// The word begins with a marker. Not to be called with an empty word.
[[nodiscard]] bool tm_tagIsManagedAutomatically(const QString &word);
/// A page with those of the tags marked, where they stand in its text, that are contexts managed automatically.
[[nodiscard]] QString tm_assignClassToContextTags(const QString &html, const QStringList &tags);
/// The contexts that complete what stands before the caret; nothing where no context is being typed.
[[nodiscard]] QStringList contextsForCompletion(const QString &textBeforeCaret);

// -- all contexts
/// The list as it stands, each word once; makes its folder, notes the root beside the index.
[[nodiscard]] QStringList tm_unfilteredListOfAllTags();
/// The verified list: entries of vanished items leave the index, and unused automatic words the list.
[[nodiscard]] QStringList tm_listOfAllAvailableTags();
/// Appends what the list lacks, compared under the locale.
void tm_mergeTagListWithList(QStringList &list, const QStringList &other);
/// Puts a context "New Context 1", or the first free number, on the list; the word.
QString makeNewContext();
/// The contexts that a person begins with, where there are none yet.
void writeDefaultContexts();

// -- one context
/// Full paths of the items that hold it, in index order, verified against their `Tags`.
[[nodiscard]] QStringList tm_listOfAllItemsForTag(const QString &word);
[[nodiscard]] qlonglong tm_numberOfItemsForTag(const QString &word);
/// Gives the context another name, or deletes it for an empty one. Unless silent, the person is asked whether the
/// texts of its documents are to follow.
void tm_renameTagTo(const QString &word, const QString &newWord, bool renameSilently = false);
/// Never extract the word again, and delete the context.
void tm_excludeTag(const QString &word);

// -- one item
/// The item's `Tags`, each once, as far as the verified list holds them.
[[nodiscard]] QStringList tm_verifiedTagList(const QString &path);
/// The same without the mark of a favourite: what a person sees as the item's contexts.
[[nodiscard]] QStringList contextsOf(const QString &path);
void tm_setTag(const QString &path, const QString &word);
void tm_clearTag(const QString &path, const QString &word);
/// Takes all contexts off the item; the mark of a favourite stays.
void tm_clearAllTags(const QString &path);
void tm_updateContextsRemoving(const QString &path, const QStringList &removing, const QStringList &adding);
/// Adds every context of the text to the item.
void tm_collectTagsFromText(const QString &path, const QString &text);
/// Brings index and list in line with one item, named by itself or by its property file.
void tm_collectTagsInPlist(const QString &path);
/// The same for many items.
void collectTagsOf(const QStringList &paths);
/// Moves an item, and for a book all that lies in it, in the index; an empty target takes it out.
void tm_changePathInTagDBToPath(const QString &path, const QString &target);

// -- the whole library; each gives the number of items it looked at. Stopped half-way, the next run begins again.
/// Collects from all property files that changed since the last time.
qsizetype collectNewContexts(const Progress &progress = {});
/// Makes the index anew from the `Tags` of all items. The marks of favourites stay.
qsizetype tm_refreshContexts(const Progress &progress = {});
/// Reads the contexts out of the texts of all documents and adds them to the items.
qsizetype extractContextsFromDocuments(const Progress &progress = {});

} // namespace tomelet
