// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/dates/ReminderStore_p.h"

#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/Root.h"

namespace tomelet {

namespace {

const QString pathKey = QStringLiteral("path");
const QString dateKey = QStringLiteral("fireDate");
const QString scheduledKey = QStringLiteral("Scheduled");
const QString waitingKey = QStringLiteral("Waiting");
const QString deliveredKey = QStringLiteral("Delivered");

QList<Reminder> remindersFrom(const QVariant &list)
{
    QList<Reminder> reminders;
    for (const QVariant &entry : list.toList()) {
        const QVariantMap values = entry.toMap();
        const Reminder reminder{values.value(pathKey).toString(), values.value(dateKey).toDateTime()};
        if (!reminder.path.isEmpty() && reminder.fireDate.isValid()) reminders.append(reminder);
    }
    return reminders;
}

QVariantList listOf(const QList<Reminder> &reminders)
{
    QVariantList list;
    list.reserve(reminders.size());
    for (const Reminder &reminder : reminders)
        list.append(QVariantMap{{pathKey, reminder.path}, {dateKey, reminder.fireDate}});
    return list;
}

} // namespace

ReminderStore::ReminderStore()
    : m_path(joinPath(rootStateFolder(), QStringLiteral("Reminders.plist")))
{
    // A lock that cannot be had in time is done without: at worst a reminder shows twice.
    static constexpr int patience = 2000;
    if (makeFolder(rootStateFolder())) {
        m_lock = std::make_unique<QLockFile>(joinPath(rootStateFolder(), QStringLiteral("Reminders.lock")));
        m_lock->tryLock(patience);
    }
    m_saved = readDictionary(m_path);
    scheduled = remindersFrom(m_saved.value(scheduledKey));
    waiting = remindersFrom(m_saved.value(waitingKey));
    delivered = remindersFrom(m_saved.value(deliveredKey));
}

void ReminderStore::save()
{
    const QVariantMap values{
        {scheduledKey, listOf(scheduled)}, {waitingKey, listOf(waiting)}, {deliveredKey, listOf(delivered)}};
    const bool isEmpty = scheduled.isEmpty() && waiting.isEmpty() && delivered.isEmpty();
    if (values == m_saved || (isEmpty && m_saved.isEmpty()) || !m_lock) return;
    writeStore(m_path, values);
    m_saved = values;
}

// -- for those who deliver --------------------------------------------------------------------------------------------

QList<Reminder> scheduledReminders()
{
    return ReminderStore().scheduled;
}

QList<Reminder> deliveredReminders()
{
    return ReminderStore().delivered;
}

QList<Reminder> takeDueReminders()
{
    const QDateTime now = platform().clock.now();
    ReminderStore store;
    QList<Reminder> due = store.waiting;
    for (const Reminder &reminder : store.scheduled)
        if (reminder.fireDate <= now) due.append(reminder);
    if (due.isEmpty()) return due;
    store.waiting.clear();
    store.scheduled.removeIf([&now](const Reminder &reminder) { return reminder.fireDate <= now; });
    store.delivered += due;
    store.save();
    return due;
}

void returnReminder(const Reminder &reminder)
{
    ReminderStore store;
    store.delivered.removeAll(reminder);
    store.waiting.append(reminder);
    store.save();
}

} // namespace tomelet
