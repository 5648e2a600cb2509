// SPDX-License-Identifier: GPL-3.0-or-later
// Reminders through the desktop's notification service: org.freedesktop.Notifications of the Desktop
// Notifications Specification, on the session bus.
#pragma once

#include "organising/dates/ReminderDelivery.h"

#include <QHash>
#include <QObject>

namespace tomelet {

class DesktopReminders final : public QObject, public ReminderPresenter
{
    Q_OBJECT

public:
    DesktopReminders();

    void present(const Reminder &reminder, const Answers &answers) override;
    void withdraw(const QString &path) override;

private Q_SLOTS:
    void actionInvoked(uint id, const QString &action);
    void notificationClosed(uint id, uint reason);

private:
    struct Shown
    {
        QString path;
        Answers answers;
    };
    [[nodiscard]] uint idOf(const QString &path) const;

    QHash<uint, Shown> m_shown; ///< by the number that the service gave it
};

} // namespace tomelet
