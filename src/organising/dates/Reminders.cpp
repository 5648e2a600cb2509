// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/dates/Reminders.h"

#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "organising/dates/DueDateCalendar.h"
#include "organising/dates/ReminderStore_p.h"
#include "organising/dates/RepeatRule.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskStore.h"
#include "organising/tasks/Tasks.h"

#include <QSet>

#include <algorithm>
#include <chrono>

namespace tomelet {

namespace {

bool remindsOfTasks(const QString &book)
{
    return !tm_itemIsTrashed(book) && !tm_normalizedPath(book).startsWith(u"/TMResources");
}

ReminderCandidate candidateFor(const QString &path, const LiveTask &task, const QDateTime &now)
{
    const QDateTime due = dateField(task.record, taskField::dueDate);
    ReminderCandidate candidate{path, due, due, true, 0, task.record.value(taskField::state).toString()};
    const auto rule = repeatRuleOf(task.record);
    if (!rule || rule->whenDone) return candidate;
    // A missed occurrence has no reminder, and with it its next date plays no part.
    candidate.countsUp = due >= now;
    candidate.repeatInterval = repeatInterval(*rule);
    return candidate;
}

QStringList booksThatRemind()
{
    QStringList books = knownTasklists();
    if (!books.contains(u"/") && tm_bookIsTasklist(tomeletRoot())) books.append(QStringLiteral("/"));
    return books;
}

} // namespace

QList<ReminderCandidate> reminderCandidates()
{
    const QString root = tomeletRoot();
    const QDateTime now = platform().clock.now();
    QList<ReminderCandidate> candidates;
    for (const QString &entry : booksThatRemind()) {
        const QString book = fullPathOf(entry, root);
        if (!remindsOfTasks(book)) continue;
        const TaskStore store(book);
        for (const LiveTask &task : store.tasks().live)
            if (!isSettled(stateOf(task.record)) && dateField(task.record, taskField::dueDate).isValid())
                candidates.append(candidateFor(joinPath(book, task.name), task, now));
    }
    std::ranges::stable_sort(candidates, {}, &ReminderCandidate::modDate);
    return candidates;
}

// -- the rebuild ------------------------------------------------------------------------------------------------------

namespace {

// Keeps those whose task is still overdue by that very date: the others speak of what has changed since.
void keepOverdue(QList<Reminder> &reminders, const QHash<QString, QDateTime> &overdue)
{
    reminders.removeIf([&](const Reminder &reminder) { return overdue.value(reminder.path) != reminder.fireDate; });
}

} // namespace

void tm_repostAllNotifications()
{
    logLine(QStringLiteral("reposting notifications"));
    if (rootLooksUnmounted()) return;
    const QDateTime now = platform().clock.now();
    QList<Reminder> scheduled;
    QHash<QString, QDateTime> overdue;
    for (const ReminderCandidate &candidate : reminderCandidates()) {
        if (candidate.modDate > now) scheduled.append({candidate.path, candidate.fireDate});
        else overdue.insert(candidate.path, candidate.modDate);
    }
    {
        ReminderStore store;
        // What came due since the last look has been shown to nobody yet.
        for (const Reminder &reminder : store.scheduled)
            if (reminder.fireDate <= now) store.waiting.append(reminder);
        keepOverdue(store.waiting, overdue);
        keepOverdue(store.delivered, overdue);
        store.scheduled = scheduled;
        store.save();
    }
    logLine(
        QStringLiteral("reposting done, %1 are due, %2 have notifications").arg(overdue.size()).arg(scheduled.size()));
    notifications().post(remindersRebuiltNotification);
}

void rebuildRemindersSoon()
{
    using namespace std::chrono_literals;
    platform().delayedCalls.schedule(QStringLiteral("tm_repostAllNotifications"), {}, 500ms, tm_repostAllNotifications);
}

// -- one reminder -----------------------------------------------------------------------------------------------------

QString reminderTitle()
{
    return localized(TOMELET_TEXT("Due Task"));
}

QString reminderText(const QString &path)
{
    return pathWithoutExtension(lastPathComponent(path));
}

QVariantMap tm_notificationForDate(const QString &path, const QDateTime &date, qlonglong)
{
    QVariantMap reminder{
        {QStringLiteral("deliveryDate"), date},
        {QStringLiteral("title"), reminderTitle()},
        {QStringLiteral("informativeText"), reminderText(path)},
        {QStringLiteral("userInfo"), QVariantMap{{QStringLiteral("taskPath"), path}}},
        {QStringLiteral("actionButtonTitle"), localized(TOMELET_TEXT("Open"))},
        {QStringLiteral("identifier"), path},
    };
    if (tm_dueDateHasAlertTime(date)) reminder.insert(QStringLiteral("soundName"), QStringLiteral("default"));
    return reminder;
}

void tm_openTaskFromNotification(const QString &path)
{
    announceFile(taskStorePath(parentPath(path)));
    notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), path);
}

} // namespace tomelet
