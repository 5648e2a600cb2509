// SPDX-License-Identifier: GPL-3.0-or-later
// Reminders as notifications of the desktop.
#pragma once

#include "foundation/DesktopNotifications.h"
#include "organising/dates/ReminderDelivery.h"

namespace tomelet {

class DesktopReminders final : public ReminderPresenter
{
public:
    void present(const Reminder &reminder, const Answers &answers) override;
    void withdraw(const QString &path) override { m_notifications.withdraw(path); }

private:
    DesktopNotifications m_notifications;
};

} // namespace tomelet
