// SPDX-License-Identifier: GPL-3.0-or-later
// Reminders: a projection of all task stores, never changed one at a time. They are kept in the root's state
// folder
// (`Reminders.plist`), so that they outlive the program and whichever program runs can deliver them.
//
// The file holds three lists of {path, fireDate}: `Scheduled`, `Waiting` (its moment has come while no
// program was there to show it) and `Delivered`.
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QVariant>

namespace tomelet {

struct Reminder
{
    QString path; ///< of the item; also what tells reminders apart
    QDateTime fireDate;
    friend bool operator==(const Reminder &, const Reminder &) = default;
};

/// What a rebuild knows of a task that has a due date and is still to be done.
struct ReminderCandidate
{
    QString path;
    QDateTime modDate; ///< the stored due date
    QDateTime fireDate;
    bool countsUp = true; ///< `counterIncrement`
    int repeatInterval = 0;
    QString taskState;
};

/// The candidates of all tasklists, the earliest due date first. What lies below `TMResources` or in a trash
/// has none.
[[nodiscard]] QList<ReminderCandidate> reminderCandidates();

/// Rebuilds all reminders from the stores. Each task whose date lies in the future gets one; an overdue one
/// gets none.
void tm_repostAllNotifications();
/// The same half a second later; a burst of calls costs one rebuild.
void rebuildRemindersSoon();

/// The reminder as a dictionary: deliveryDate, title, informativeText, soundName (only with an alert time),
/// userInfo {taskPath}, actionButtonTitle, identifier. The interval is not applied.
[[nodiscard]] QVariantMap tm_notificationForDate(const QString &path, const QDateTime &date, qlonglong repeat);
[[nodiscard]] QString reminderTitle();
/// The file's name without extension.
[[nodiscard]] QString reminderText(const QString &path);

// -- for those who deliver
[[nodiscard]] QList<Reminder> scheduledReminders();
[[nodiscard]] QList<Reminder> deliveredReminders();
/// Takes the reminders whose moment has come, and those that wait, and notes them as delivered. Of several
/// programs that ask, one gets each.
[[nodiscard]] QList<Reminder> takeDueReminders();
/// Puts one back that could not be shown.
void returnReminder(const Reminder &reminder);

/// The person chose a reminder: shows its task.
void tm_openTaskFromNotification(const QString &path);

/// Posted after each rebuild.
inline const QString remindersRebuiltNotification = QStringLiteral("TMLTRemindersRebuiltNotification");

} // namespace tomelet
