// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/dates/ReminderDBus.h"

#include "organising/dates/DueDateCalendar.h"

namespace tomelet {

static QVariantMap hintsFor(const Reminder &reminder)
{
    QVariantMap hints{{QStringLiteral("category"), QStringLiteral("x-tomelet.task")},
                      {QStringLiteral("resident"), false}};
    // A day without an alert is told silently.
    if (tm_dueDateHasAlertTime(reminder.fireDate))
        hints.insert(QStringLiteral("sound-name"), QStringLiteral("alarm-clock-elapsed"));
    else hints.insert(QStringLiteral("suppress-sound"), true);
    return hints;
}

void DesktopReminders::present(const Reminder &reminder, const Answers &answers)
{
    static constexpr int untilClosed = 0;
    m_notifications.present({reminder.path, reminderTitle(), reminderText(reminder.path), hintsFor(reminder),
                             untilClosed, answers.opened, answers.failed});
}

} // namespace tomelet
