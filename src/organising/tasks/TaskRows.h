// SPDX-License-Identifier: GPL-3.0-or-later
// Tasks in lists: the task side of a row, and the tasks of all tasklists that are due.
#pragma once

#include "library/Organiser.h"

#include <QString>
#include <QVariant>

namespace tomelet {

/// The task side of an item's row. `record` is its task record; it is looked up for an invalid one. One
/// ascending sort by the date puts first what is no task, then tasks by their due dates, then tasks without
/// one, then the done and then the canceled ones, the latest first.
[[nodiscard]] TaskRow taskRowOf(const QString &path, const QVariant &record);
/// The due date of a row's task that is still to be done; invalid for none.
[[nodiscard]] QDateTime dueDateOfRow(const QVariantMap &row);
/// When a row's task was done or canceled; invalid for all others and where nobody knows.
[[nodiscard]] QDateTime finishingDateOfRow(const QVariantMap &row);

/// How many tasks are due, and how many of them overdue.
struct DueCounts
{
    qlonglong taken = 0;
    qlonglong overdue = 0;
};
/// The moment up to which tasks count as due: now, or the end of a coming day by the setting
/// `dueTasksLookAhead`.
[[nodiscard]] QDateTime dueHorizon();
/// The menu "Look Ahead for Due Tasks": its titles in the order of the setting's values, and the choice of
/// one.
[[nodiscard]] QStringList dueLookAheadTitles();
void chooseDueLookAhead(int index);
/// Writes nothing, so that any thread may ask.
[[nodiscard]] DueCounts countDueTasks(const QString &root);
/// The same question for the first one alone.
[[nodiscard]] bool anyTaskIsDue(const QString &root);
/// The rows of all tasks that are due, in the order of the stores; or, as numbers, how many these are and how
/// many of them are overdue. Puts the counters of overdue tasks right on its way.
[[nodiscard]] QVariantList tm_arrayOfDueTasksAsNumbers(const QString &root, bool numbers);

/// The number of open check boxes in a document; 0 for those that have none by their kind.
[[nodiscard]] qlonglong openChecklistItems(const QString &path);
/// Counts them on a queue of its own and hands the number over on the main thread. Whoever asks sees to it
/// that the row still shows the same item by then.
void countOpenChecklistItems(const QString &path, std::function<void(qlonglong)> taker);

} // namespace tomelet
