// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/tasks/Tasks.h"

#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemPath.h"
#include "organising/dates/Reminders.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskMirror.h"
#include "organising/tasks/TaskRepeats.h"

#include <chrono>

namespace tomelet {

using namespace std::chrono_literals;

// -- reading ----------------------------------------------------------------------------------------------------------

bool tm_bookIsTasklist(const QString &book)
{
    return itemExists(taskStorePath(book));
}

QString taskIcon(TaskState state, bool due)
{
    switch (state) {
    case TaskState::NoTask: return {};
    case TaskState::Done: return QStringLiteral("task-done");
    case TaskState::Canceled: return QStringLiteral("task-canceled");
    case TaskState::Started: return due ? QStringLiteral("task-started-due") : QStringLiteral("task-started");
    case TaskState::Open: break;
    }
    return due ? QStringLiteral("task-open-due") : QStringLiteral("task-open");
}

QString tm_taskIconForStateIsDue(const QString &state, bool due)
{
    return taskIcon(taskStateFromText(state), due);
}

QString taskImageName(const QString &icon)
{
    const Settings &values = settings();
    if (icon.isEmpty() || !values.boolean(QStringLiteral("darkTheme"))) return icon;
    const bool black =
        values.boolean(QStringLiteral("useBlackForDarkTheme")) && !values.boolean(QStringLiteral("useSolarizedTheme"));
    return icon + (black ? QStringLiteral("-black") : QStringLiteral("-dark"));
}

QString tm_iconForTask(const QString &path)
{
    const QString book = parentPath(path);
    if (pathIsPlainBook(path) || !tm_bookIsTasklist(book)) return {};
    const TaskStore store(book);
    const TaskRecord record = store.record(store.keyFor(lastPathComponent(path)));
    return taskIcon(stateOf(record), isOverdue(record, platform().clock.now()));
}

bool tm_itemIsTask(const QString &path)
{
    return !tm_iconForTask(path).isEmpty();
}

bool tm_taskIsDoneOrCanceled(const QString &text)
{
    return text.contains(u"done") || text.contains(u"canceled");
}

std::optional<TaskRecord> tm_getAllTaskDetails(const QString &path)
{
    const TaskStore store(parentPath(path));
    const QString key = store.keyFor(lastPathComponent(path));
    if (key.isNull()) return std::nullopt;
    return store.record(key);
}

QDateTime tm_dueDateForTask(const QString &path)
{
    return dueDateOf(tm_getAllTaskDetails(path).value_or(TaskRecord()));
}

QDateTime dueDateOf(const TaskRecord &record)
{
    if (stateOf(record) == TaskState::NoTask) return farPast();
    const QDateTime due = dateField(record, taskField::dueDate);
    return due.isValid() ? due : farFuture();
}

QDateTime tm_doneDateForTask(const QString &path)
{
    const QDateTime changed = dateField(tm_getAllTaskDetails(path).value_or(TaskRecord()), taskField::changed);
    return changed.isValid() ? changed : farFuture();
}

// -- the ring of states -----------------------------------------------------------------------------------------------

namespace {

// One step of the ring: where it leads, and what it does to the book's counters.
struct Step
{
    TaskState to;
    int done = 0;
    int due = 0;
    bool mayRepeat = false;
    bool changesReminders = false;
};

Step stepFrom(TaskState state)
{
    switch (state) {
    case TaskState::Started: return {TaskState::Done, +1, -1, true, true};
    case TaskState::Done: return {TaskState::Canceled};
    case TaskState::Canceled: return {TaskState::Open, -1, +1, false, true};
    default: return {TaskState::Started, 0, 0, false, true};
    }
}

void applyStep(TaskStore &store, TaskRecord &record, const Step &step, bool overdue)
{
    if (step.to == TaskState::Open) record.remove(taskField::state);
    else record.insert(taskField::state, textOfTaskState(step.to));
    store.setDoneCount(std::max<qlonglong>(0, store.doneCount() + step.done));
    store.setDueCount(std::max<qlonglong>(0, store.dueCount() + (overdue ? step.due : 0)));
}

} // namespace

QString tm_toggleTaskWithDate(const QString &path, const QDateTime &date)
{
    const QDateTime now = platform().clock.now();
    const QString name = lastPathComponent(path);
    TaskStore store(parentPath(path));
    const QString key = store.keyFor(name);
    TaskRecord record = store.record(key);
    const bool overdue = isOverdue(record, now);
    Step step{TaskState::Started};
    if (key.isNull()) {
        record = {{taskField::state, textOfTaskState(TaskState::Started)}, {taskField::changed, now}};
        store.setRecord(name, record);
    } else {
        step = stepFrom(stateOf(record));
        applyStep(store, record, step, overdue);
        record.insert(taskField::changed, date.isValid() ? date : now);
        store.setRecord(key, record);
    }
    if (store.isReadable()) store.save();
    announceTask(path);
    announceFile(store.path());
    if (step.changesReminders && record.contains(taskField::dueDate)) rebuildRemindersSoon();
    if (step.mayRepeat && !record.value(taskField::repeatType).toString().isEmpty())
        platform().delayedCalls.schedule(QStringLiteral("tm_addRepeatingTask"), path, 300ms,
                                         [path] { tm_addRepeatingTask(path); });
    if (step.to != TaskState::Started) mirrorTaskState(path, step.to);
    return taskIcon(step.to, overdue);
}

QString tm_toggleTask(const QString &path)
{
    return tm_toggleTaskWithDate(path, platform().clock.now());
}

// -- records ----------------------------------------------------------------------------------------------------------

void tm_toggleItemIsTask(const QString &path)
{
    const QString book = parentPath(path);
    const QString name = lastPathComponent(path);
    TaskStore store(book);
    const bool isNew = !store.isReadable();
    const QString key = store.keyFor(name);
    TaskRecord record{{taskField::changed, platform().clock.now()}};
    if (key.isNull() || stateOf(store.record(key)) != TaskState::NoTask)
        record.insert(taskField::state, textOfTaskState(TaskState::NoTask));
    store.setRecord(key.isNull() ? name : key, record);
    if (!store.save()) return;
    if (isNew) tasklistChanged({}, book);
    tm_correctTaskCountAtPath(book);
    announceTask(path);
    announceFile(store.path());
}

void tm_setTaskDetails(const QString &path, const TaskRecord &record)
{
    const QString book = parentPath(path);
    if (!tm_bookIsTasklist(book)) return;
    TaskStore store(book);
    store.setRecord(lastPathComponent(path), record);
    store.save();
    announceTask(path);
    announceFile(store.path());
    rebuildRemindersSoon();
}

void tm_moveTaskToPath(const QString &path, const QString &target)
{
    TaskStore store(parentPath(path));
    const QString key = store.keyFor(lastPathComponent(path));
    if (key.isNull()) return;
    const TaskRecord record = store.record(key);
    store.remove(key);
    store.save();
    if (!target.isEmpty()) tm_setTaskDetails(target, record);
}

// -- whole tasklists --------------------------------------------------------------------------------------------------

void tm_toggleTasklistKeepingDetails(const QString &book, bool keep)
{
    const QString active = taskStorePath(book);
    const QString inactive = inactiveTaskStorePath(book);
    // Neither move overwrites what stands there, so that two stores of one book are both kept.
    if (itemExists(active)) (void)(keep ? moveItem(active, inactive) : removeItem(active));
    else if (itemExists(inactive)) (void)moveItem(inactive, active);
    else writeStore(active, QVariantMap());
    announceFile(active);
    announceFile(inactive);
    const bool isTasklist = itemExists(active);
    tasklistChanged(isTasklist ? QString() : book, isTasklist ? book : QString());
    rebuildRemindersSoon();
}

void tm_resetTasklist(const QString &book)
{
    const bool isNew = !tm_bookIsTasklist(book);
    if (writeStore(taskStorePath(book), QVariantMap()) && isNew) tasklistChanged({}, book);
    announceFile(taskStorePath(book));
    announceTask(book);
    rebuildRemindersSoon();
}

} // namespace tomelet
