// SPDX-License-Identifier: GPL-3.0-or-later
// Tasks in the plural: the list of all tasklists, the counters of each store, and how many tasks lie below a
// book.
//
// The setting `allTaskLists` holds every tasklist as a normalised path ("/" is the root). It is a cache;
// while a collection runs (`rebuildingAllTasklistsFlag`), readers walk the folders instead.
#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

namespace tomelet {

// -- the list of tasklists
/// Walks the folders below the root and stores the list. Links are not followed; what lies in a trash is left
/// out.
QStringList tm_listOfTasklists(const QString &root);
/// The list for readers: as stored; walked for while a collection runs, and once, without storing it, where none
/// is stored for this root.
[[nodiscard]] QStringList knownTasklists();
/// This program made a tasklist of a book (second path), or an ordinary book of a tasklist (first path).
void tasklistChanged(const QString &removing, const QString &adding);
/// Books came, went or moved.
void booksChanged();
/// The thorough collection: all tasklists and all books (the setting `booksList`), every store recounted, new
/// contexts collected. Does nothing within 2 seconds of the last one.
void updateListOfTasklists();
/// The list alone, by a walk.
void updateListOfTasklistsQuick();
/// Takes one tasklist off the list and puts one on; each is a book or its store, or empty.
void updateListOfTasklistRemoving(const QString &removing, const QString &adding);

// -- counters
/// Recounts the store of a book and repairs its counters; with cleanup, also removes the records of documents
/// that are gone. Writes nothing where nothing changes. Sets off a rebuild of the reminders. Gives the number
/// of overdue tasks.
qlonglong tm_correctTaskCountAtPathWithCleanup(const QString &book, bool cleanup);
qlonglong tm_correctTaskCountAtPath(const QString &book);
/// Another program, or this one, changed the store.
void tm_taskPlistChangedAtPath(const QString &store);

/// `totalTasks`, `dueTasks` and `doneTasks` as decimal texts: documents of the book (of those below it too),
/// and what the counters of its stores tell. A relative path is taken from the root.
[[nodiscard]] QVariantMap tm_allOpenTasksCountingDescendants(const QString &book, bool descendants);

} // namespace tomelet
