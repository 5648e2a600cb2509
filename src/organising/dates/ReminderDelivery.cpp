// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/dates/ReminderDelivery.h"

#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "organising/tasks/TaskLists.h"

#include <algorithm>
#include <chrono>

namespace tomelet {

// A timer stands still while the machine sleeps, and the clock can be set: so it never waits longer than
// this.
static constexpr qint64 longestWait = 60 * 1000;

ReminderDelivery::ReminderDelivery(ReminderPresenter &presenter)
    : m_presenter(presenter)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        deliverDue();
        waitForNext();
    });
    m_rebuilt = notifications().observe(remindersRebuiltNotification, [this](const QVariantMap &) {
        withdrawOutdated();
        deliverDue();
        waitForNext();
    });
    deliverDue();
    waitForNext();
}

ReminderDelivery::~ReminderDelivery() = default;

void ReminderDelivery::deliverDue()
{
    // Delivering sets off a rebuild, which delivers: without anyone to show reminders that would never end.
    if (m_nextTry->isValid() && platform().clock.now() < *m_nextTry) return;
    for (const Reminder &reminder : takeDueReminders()) deliver(reminder);
}

void ReminderDelivery::deliver(const Reminder &reminder)
{
    logLine(QStringLiteral("did deliver notification"));
    m_shown.insert(reminder.path, reminder.fireDate);
    m_presenter.present(reminder, {[path = reminder.path] { tm_openTaskFromNotification(path); },
                                   [reminder, nextTry = m_nextTry] {
                                       returnReminder(reminder);
                                       *nextTry = platform().clock.now().addMSecs(longestWait);
                                   }});
    // Its task has just become overdue.
    tm_correctTaskCountAtPath(parentPath(reminder.path));
}

// A task that was done, or has another date, is not to be reminded of any longer.
void ReminderDelivery::withdrawOutdated()
{
    const QList<Reminder> delivered = deliveredReminders();
    m_shown.removeIf([&](const auto &shown) {
        const bool stands = delivered.contains(Reminder{shown.key(), shown.value()});
        if (!stands) m_presenter.withdraw(shown.key());
        return !stands;
    });
}

void ReminderDelivery::waitForNext()
{
    qint64 wait = longestWait;
    const QDateTime now = platform().clock.now();
    for (const Reminder &reminder : scheduledReminders())
        wait = std::min(wait, std::max<qint64>(0, now.msecsTo(reminder.fireDate)));
    m_timer.start(std::chrono::milliseconds(wait));
}

} // namespace tomelet
