// SPDX-License-Identifier: GPL-3.0-or-later
// Delivers reminders at their moments while it lives, through whatever shows them to the person.
#pragma once

#include "foundation/NotificationCenter.h"
#include "organising/dates/Reminders.h"

#include <QHash>
#include <QTimer>

#include <functional>
#include <memory>

namespace tomelet {

/// What shows reminders. Calls come on the main thread, and the functions handed over are to be called there.
class ReminderPresenter
{
public:
    virtual ~ReminderPresenter() = default;

    struct Answers
    {
        std::function<void()> opened; ///< the person chose it, or its action "Open"
        std::function<void()> failed; ///< it could not be shown
    };
    /// Shows the reminder; one of the same path is replaced. Answers may be called later or never.
    virtual void present(const Reminder &reminder, const Answers &answers) = 0;
    /// Takes the one of this item away, when it is still shown.
    virtual void withdraw(const QString &path) = 0;
};

class ReminderDelivery
{
public:
    /// Begins at once: first comes what waits, then each reminder at its moment. The presenter must outlive
    /// it.
    explicit ReminderDelivery(ReminderPresenter &presenter);
    ~ReminderDelivery();
    ReminderDelivery(const ReminderDelivery &) = delete;
    ReminderDelivery &operator=(const ReminderDelivery &) = delete;

private:
    void deliverDue();
    void deliver(const Reminder &reminder);
    void withdrawOutdated();
    void waitForNext();

    ReminderPresenter &m_presenter;
    NotificationCenter::Subscription m_rebuilt;
    QTimer m_timer;
    QHash<QString, QDateTime> m_shown;
    /// Not before this moment, after one could not be shown; shared with the answers, which may outlive us.
    std::shared_ptr<QDateTime> m_nextTry = std::make_shared<QDateTime>();
};

} // namespace tomelet
