// SPDX-License-Identifier: GPL-3.0-or-later
// The store that makes a book a tasklist: `TMTasklistDetails.plist`, a dictionary of task records by file
// name with two counters. It is read whole, changed and written whole; nothing of it outlives one operation.
//
// The counters `__DoneItemCount__` and `__DueItemCount__` are decimal texts and only a cache. A record's
// fields are all optional; a document of a tasklist without a record is an open task.
#pragma once

#include "foundation/Collation.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace tomelet {

class StoreBatch;

using TaskRecord = QVariantMap;

namespace taskField {
inline const QString state = QStringLiteral("State");     ///< "started", "done", "canceled", "no_task"; absent: open
inline const QString dueDate = QStringLiteral("DueDate"); ///< a whole minute
inline const QString changed = QStringLiteral("Changed"); ///< of a done or canceled task: when it was finished
inline const QString repeatType = QStringLiteral("RepeatType");
inline const QString repeatUnit = QStringLiteral("RepeatUnit");
inline const QString repeatFactor = QStringLiteral("RepeatFactor");
} // namespace taskField

[[nodiscard]] QString taskStorePath(const QString &book);
/// The store of a tasklist that was switched off.
[[nodiscard]] QString inactiveTaskStorePath(const QString &book);

enum class TaskState { Open, Started, Done, Canceled, NoTask };
/// Open for every other text.
[[nodiscard]] TaskState taskStateFromText(const QString &text);
/// The stored form, "open" for the default, which is never stored.
[[nodiscard]] QString textOfTaskState(TaskState state);
[[nodiscard]] TaskState stateOf(const TaskRecord &record);
/// Done, canceled and no task: what counts as done and is never due.
[[nodiscard]] bool isSettled(TaskState state);
/// A date of a record; invalid where it is missing or of another type.
[[nodiscard]] QDateTime dateField(const TaskRecord &record, const QString &field);
/// The record has a due date before `now`, whatever its state.
[[nodiscard]] bool isOverdue(const TaskRecord &record, const QDateTime &now);

/// A record whose document lies in the book.
struct LiveTask
{
    QString key;  ///< as the store has it
    QString name; ///< as the folder has it; the two may differ in their normal form
    TaskRecord record;
};

/// The records of a store by whether their documents are there.
struct TasksOfBook
{
    std::vector<LiveTask> live;
    QStringList vanished;        ///< keys without a document, and keys that another key of the same document outranks
    bool folderIsListed = false; ///< false when the folder could not be read: then nothing is known to be gone
};

class TaskStore
{
public:
    /// Reads the store of the book; a missing one and one that is no property list are empty.
    explicit TaskStore(const QString &book);

    [[nodiscard]] const QString &path() const { return m_path; }
    /// It exists and holds a dictionary.
    [[nodiscard]] bool isReadable() const { return m_readable; }
    /// It holds nothing at all, not even counters.
    [[nodiscard]] bool isEmpty() const { return m_values.isEmpty(); }
    [[nodiscard]] QStringList keys() const;

    /// The key of the document's record: the very name, else the first that is equal by the locale. Null for
    /// none.
    [[nodiscard]] QString keyFor(const QString &name) const;
    /// The record under a key; what is no dictionary reads as empty.
    [[nodiscard]] TaskRecord record(const QString &key) const { return m_values.value(key).toMap(); }
    void setRecord(const QString &key, const TaskRecord &record) { m_values.insert(key, record); }
    void remove(const QString &key) { m_values.remove(key); }
    [[nodiscard]] TasksOfBook tasks() const;

    [[nodiscard]] qlonglong doneCount() const;
    [[nodiscard]] qlonglong dueCount() const;
    void setDoneCount(qlonglong count);
    void setDueCount(qlonglong count);

    /// Writes what was changed, also into a store that somebody else wrote meanwhile; one that could not be read is set
    /// aside first. False when that failed.
    bool save();
    /// The same together with other stores.
    void save(StoreBatch &batch);

private:
    [[nodiscard]] QVariantMap changesIn(QVariantMap stored) const;

    QString m_book;
    QString m_path;
    QVariantMap m_values;
    QVariantMap m_saved;
    bool m_readable = false;
};

/// The records of a book for a list, which looks up one document after the other.
class TaskRecords
{
public:
    explicit TaskRecords(const QString &book);
    /// The document's record; empty for none.
    [[nodiscard]] TaskRecord of(const QString &name) const;

private:
    TaskStore m_store;
    QStringList m_keys;
    LocalizedIndex m_index;
};

[[nodiscard]] bool isTaskCounter(const QString &key);

/// Tells views that the item's icon may have changed.
void announceTask(const QString &path);
/// Tells the library that the file changed just now.
void announceFile(const QString &path);

} // namespace tomelet
