// SPDX-License-Identifier: GPL-3.0-or-later
// Single tasks: what a document's record makes of it, the ring of its states, and what becomes of the record
// when the document moves. A document is a task because it lies in a book with a task store.
//
// All operations take item paths. Without a store, or with one that cannot be read, reading answers as for no
// record and writing does nothing, except where told.
#pragma once

#include "organising/tasks/TaskStore.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace tomelet {

// -- reading
/// The book has a task store; its content does not matter.
[[nodiscard]] bool tm_bookIsTasklist(const QString &book);
/// "task-open", "task-started", "task-done", "task-canceled", with "-due" behind the first two when the due
/// date has passed; "" for what is no task.
[[nodiscard]] QString tm_iconForTask(const QString &path);
[[nodiscard]] QString tm_taskIconForStateIsDue(const QString &state, bool due);
[[nodiscard]] QString taskIcon(TaskState state, bool due);
/// The name of the image for an icon in the theme in force: the same, or with "-dark" or "-black" behind it.
[[nodiscard]] QString taskImageName(const QString &icon);
[[nodiscard]] bool tm_itemIsTask(const QString &path);
/// The text, an icon or a state, holds "done" or "canceled".
[[nodiscard]] bool tm_taskIsDoneOrCanceled(const QString &text);
[[nodiscard]] std::optional<TaskRecord> tm_getAllTaskDetails(const QString &path);
/// The due date; the far future for none, the far past for what is deliberately no task.
[[nodiscard]] QDateTime tm_dueDateForTask(const QString &path);
/// The same for a record that was read.
[[nodiscard]] QDateTime dueDateOf(const TaskRecord &record);
/// The moment of the last change, which is when a finished task was finished; the far future for none.
[[nodiscard]] QDateTime tm_doneDateForTask(const QString &path);

// -- changing
/// Makes a document of a tasklist no task, or a fresh open task again; due date and repeat go either way.
/// Makes the book a tasklist where it is none, and replaces a store that cannot be read.
void tm_toggleItemIsTask(const QString &path);
/// Open, started, done, canceled, open again: one step on. Gives the new icon. A step into "done" of a
/// repeating task makes its next occurrence a moment later; all steps but the one into "started" are marked
/// in the document that the task was taken from.
QString tm_toggleTask(const QString &path);
/// The same with the moment of the change.
QString tm_toggleTaskWithDate(const QString &path, const QDateTime &date);
/// Replaces the whole record. Nothing at all in a book that is no tasklist; replaces a store that cannot be
/// read.
void tm_setTaskDetails(const QString &path, const TaskRecord &record);
/// Takes the record to another name or book; it is dropped for an empty target and for a book that is no
/// tasklist.
void tm_moveTaskToPath(const QString &path, const QString &target);

// -- whole tasklists
/// Switches a tasklist off, keeping its store aside or deleting it, or switches a book on, with the store
/// that was kept aside or a new one.
void tm_toggleTasklistKeepingDetails(const QString &book, bool keep);
/// Forgets all states, dates and repeats of a book.
void tm_resetTasklist(const QString &book);

/// One store out of two versions of it: of each record the one that was changed last. What only one side has
/// is kept.
[[nodiscard]] QVariantMap tm_dictionaryByMergingWithTaskDetails(const QVariantMap &store, const QVariantMap &other);

} // namespace tomelet
