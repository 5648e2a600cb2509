// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/dates/ReminderDBus.h"

#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "organising/dates/DueDateCalendar.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tomelet {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString objectPath = QStringLiteral("/org/freedesktop/Notifications");
const QString openAction = QStringLiteral("open");
// The action that a click on the notification itself stands for.
const QString defaultAction = QStringLiteral("default");

QDBusMessage call(const QString &method)
{
    return QDBusMessage::createMethodCall(service, objectPath, service, method);
}

QVariantMap hintsFor(const Reminder &reminder)
{
    QVariantMap hints{{QStringLiteral("category"), QStringLiteral("x-tomelet.task")},
                      {QStringLiteral("desktop-entry"), QStringLiteral("org.tomelet.app")},
                      {QStringLiteral("resident"), false}};
    // A day without an alert is told silently.
    if (tm_dueDateHasAlertTime(reminder.fireDate))
        hints.insert(QStringLiteral("sound-name"), QStringLiteral("alarm-clock-elapsed"));
    else hints.insert(QStringLiteral("suppress-sound"), true);
    return hints;
}

} // namespace

DesktopReminders::DesktopReminders()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(service, objectPath, service, QStringLiteral("ActionInvoked"), this,
                SLOT(actionInvoked(uint, QString)));
    bus.connect(service, objectPath, service, QStringLiteral("NotificationClosed"), this,
                SLOT(notificationClosed(uint, uint)));
}

uint DesktopReminders::idOf(const QString &path) const
{
    for (auto it = m_shown.begin(); it != m_shown.end(); ++it)
        if (it->path == path) return it.key();
    return 0;
}

void DesktopReminders::present(const Reminder &reminder, const Answers &answers)
{
    static constexpr int untilClosed = 0;
    QDBusMessage message = call(QStringLiteral("Notify"));
    // The body may be read as markup.
    message.setArguments(
        {QStringLiteral("Tomelet"), idOf(reminder.path), QStringLiteral("org.tomelet.app"), reminderTitle(),
         reminderText(reminder.path).toHtmlEscaped(),
         QStringList{defaultAction, localized(TOMELET_TEXT("Open")), openAction, localized(TOMELET_TEXT("Open"))},
         hintsFor(reminder), untilClosed});
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, reminder, answers](QDBusPendingCallWatcher *done) {
                done->deleteLater();
                const QDBusPendingReply<uint> reply = *done;
                if (!reply.isError()) {
                    m_shown.insert(reply.value(), {reminder.path, answers});
                    return;
                }
                logWarning(QStringLiteral("the reminder of %1 could not be shown: %2")
                               .arg(reminder.path, reply.error().message()));
                answers.failed();
            });
}

void DesktopReminders::withdraw(const QString &path)
{
    const uint id = idOf(path);
    if (id == 0) return;
    QDBusMessage message = call(QStringLiteral("CloseNotification"));
    message.setArguments({id});
    QDBusConnection::sessionBus().send(message);
    m_shown.remove(id);
}

void DesktopReminders::actionInvoked(uint id, const QString &action)
{
    const auto shown = m_shown.constFind(id);
    if (shown == m_shown.cend() || (action != openAction && action != defaultAction)) return;
    const Shown chosen = *shown;
    // Some services leave it standing.
    withdraw(chosen.path);
    chosen.answers.opened();
}

void DesktopReminders::notificationClosed(uint id, uint)
{
    m_shown.remove(id);
}

} // namespace tomelet
