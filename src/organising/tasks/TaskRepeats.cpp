// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/tasks/TaskRepeats.h"

#include "foundation/Conversions.h"
#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "organising/dates/DueDateTexts.h"
#include "organising/dates/Reminders.h"
#include "organising/dates/RepeatRule.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskStore.h"

namespace tomelet {

// -- due dates --------------------------------------------------------------------------------------------------------

static QDateTime wholeMinute(const QDateTime &date)
{
    static constexpr qint64 minute = 60 * 1000;
    const qint64 moment = date.toMSecsSinceEpoch();
    const qint64 beyond = ((moment % minute) + minute) % minute;
    return QDateTime::fromMSecsSinceEpoch(moment - beyond, Qt::UTC);
}

// The recount stands between the two, so that whoever reads the store finds it right.
static void announceDueDate(const QString &path, const TaskStore &store)
{
    announceTask(path);
    tm_correctTaskCountAtPath(parentPath(path));
    announceFile(store.path());
}

void tm_setDueDate(const QString &path, const QDateTime &date)
{
    if (!date.isValid()) return;
    const QDateTime now = platform().clock.now();
    const QDateTime due = wholeMinute(date);
    const QString name = lastPathComponent(path);
    TaskStore store(parentPath(path));
    const QString key = store.keyFor(name);
    TaskRecord record = store.record(key);
    qlonglong count = store.dueCount();
    if (!isSettled(stateOf(record))) count += (due < now ? 1 : 0) - (isOverdue(record, now) ? 1 : 0);
    count = std::max<qlonglong>(0, count);
    record.insert(taskField::dueDate, due);
    record.insert(taskField::changed, now);
    if (store.isReadable()) {
        store.setRecord(key.isNull() ? name : key, record);
        if (count != store.dueCount()) store.setDueCount(count);
        store.save();
    }
    announceDueDate(path, store);
}

void tm_clearDueDate(const QString &path)
{
    const QDateTime now = platform().clock.now();
    TaskStore store(parentPath(path));
    const QString key = store.keyFor(lastPathComponent(path));
    if (key.isNull()) return;
    TaskRecord record = store.record(key);
    const TaskState state = stateOf(record);
    const bool finished = state == TaskState::Done || state == TaskState::Canceled;
    if (isOverdue(record, now) && !finished && store.dueCount() >= 1) store.setDueCount(store.dueCount() - 1);
    for (const QString &field :
         {taskField::dueDate, taskField::repeatType, taskField::repeatUnit, taskField::repeatFactor})
        record.remove(field);
    record.insert(taskField::changed, now);
    store.setRecord(key, record);
    store.save();
    announceDueDate(path, store);
}

// -- repeat rules -----------------------------------------------------------------------------------------------------

std::optional<QStringList> tm_repeatDetails(const QString &path)
{
    const TaskStore store(parentPath(path));
    const TaskRecord record = store.record(store.keyFor(lastPathComponent(path)));
    if (!record.contains(taskField::repeatType)) return std::nullopt;
    return QStringList{textFromVariant(record.value(taskField::repeatType)),
                       textFromVariant(record.value(taskField::repeatUnit)),
                       textFromVariant(record.value(taskField::repeatFactor))};
}

void tm_setRepeatDetails(const QString &path, const QStringList &details)
{
    TaskStore store(parentPath(path));
    const QString name = lastPathComponent(path);
    const QString key = store.keyFor(name);
    TaskRecord record = store.record(key);
    static const QString fields[] = {taskField::repeatType, taskField::repeatUnit, taskField::repeatFactor};
    for (qsizetype i = 0; i < 3; ++i) {
        if (details.isEmpty()) record.remove(fields[i]);
        else record.insert(fields[i], details.value(i));
    }
    if (store.isReadable() && (!details.isEmpty() || !key.isNull())) {
        store.setRecord(key.isNull() ? name : key, record);
        store.save();
    }
    if (details.isEmpty()) announceFile(store.path());
}

QString tm_readableRepeatDetails(const QString &path)
{
    return tm_readableRepeatDetailsForDetails(tm_repeatDetails(path).value_or(QStringList()));
}

// -- the next occurrence ----------------------------------------------------------------------------------------------

namespace {

// The date that the next occurrence is counted from: the due date, or the day of finishing at its time of
// day.
QDateTime countedFrom(const QDateTime &due, const RepeatRule &rule, const QDateTime &now)
{
    if (!rule.whenDone) return due;
    const QTime time = (rule.unit == CalendarUnit::Hour ? now : due).toLocalTime().time();
    return momentOf(now.toLocalTime().date(), QTime(time.hour(), time.minute()));
}

QString pathForHistory(const QString &path, const QDateTime &now)
{
    const QString stamp = tm_shortDateTimeString(now).replace(u'/', u'.').replace(u':', u'.');
    const QString name = lastPathComponent(path);
    const QString extension = pathExtension(name);
    const QString ending = extension.isEmpty() ? QString() : u'.' + extension;
    // A long name is cut, not the stamp behind it; a number may still follow.
    const QString tail = QStringLiteral(" - ") + stamp;
    const QString stem = stemThatFits(pathWithoutExtension(name), tail + QStringLiteral(" 999") + ending);
    return tm_uniqueNameForFileatPath(stem + tail + ending, parentPath(path));
}

} // namespace

void tm_addRepeatingTask(const QString &path)
{
    const QDateTime now = platform().clock.now();
    TaskStore store(parentPath(path));
    const QString key = store.keyFor(lastPathComponent(path));
    TaskRecord record = store.record(key);
    const auto rule = repeatRuleOf(record);
    const QDateTime due = dateField(record, taskField::dueDate);
    // A moment has passed since the task was done: it may have changed again, or be gone.
    if (!rule || !due.isValid() || stateOf(record) != TaskState::Done || !itemExists(path)) return;
    const QDateTime base = countedFrom(due, *rule, now);
    const QDateTime next = nextOccurrence(base, *rule, now);
    if (!next.isValid()) return;

    const QString copy = pathForHistory(path, now);
    if (const FileResult copied = copyItem(path, copy); !copied)
        return logLine(QStringLiteral("Copy failed: %1").arg(copied.message));
    if (itemExists(tm_plistPath(path))) (void)copyItem(tm_plistPath(path), tm_plistPath(copy));
    store.setRecord(
        lastPathComponent(copy),
        {{taskField::dueDate, base}, {taskField::state, record.value(taskField::state)}, {taskField::changed, now}});
    record.insert(taskField::dueDate, next);
    record.remove(taskField::state);
    store.setRecord(key, record);
    store.save();
    announceFile(copy);
    announceFile(store.path());
    announceTask(path);
    notifications().post(taskRepeatedNotification, {{QStringLiteral("path"), path}, {QStringLiteral("copy"), copy}});
    rebuildRemindersSoon();
}

} // namespace tomelet
