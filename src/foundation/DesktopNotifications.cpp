// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/DesktopNotifications.h"

#include "foundation/Localization.h"
#include "foundation/Log.h"

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

} // namespace

DesktopNotifications::DesktopNotifications()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(service, objectPath, service, QStringLiteral("ActionInvoked"), this,
                SLOT(actionInvoked(uint, QString)));
    bus.connect(service, objectPath, service, QStringLiteral("NotificationClosed"), this,
                SLOT(notificationClosed(uint, uint)));
}

uint DesktopNotifications::idOf(const QString &key) const
{
    for (auto it = m_shown.begin(); it != m_shown.end(); ++it)
        if (it->key == key) return it.key();
    return 0;
}

void DesktopNotifications::present(const DesktopNotification &notification)
{
    QVariantMap hints = notification.hints;
    hints.insert(QStringLiteral("desktop-entry"), QStringLiteral("org.tomelet.app"));
    QDBusMessage message = call(QStringLiteral("Notify"));
    // The body may be read as markup.
    message.setArguments(
        {QStringLiteral("Tomelet"), idOf(notification.key), QStringLiteral("org.tomelet.app"), notification.title,
         notification.text.toHtmlEscaped(),
         QStringList{defaultAction, localized(TOMELET_TEXT("Open")), openAction, localized(TOMELET_TEXT("Open"))},
         hints, notification.milliseconds});
    auto *watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, notification](QDBusPendingCallWatcher *done) {
        done->deleteLater();
        const QDBusPendingReply<uint> reply = *done;
        if (!reply.isError()) {
            m_shown.insert(reply.value(), notification);
            return;
        }
        logWarning(QStringLiteral("the notification on %1 could not be shown: %2")
                       .arg(notification.key, reply.error().message()));
        if (notification.failed) notification.failed();
    });
}

void DesktopNotifications::withdraw(const QString &key)
{
    const uint id = idOf(key);
    if (id == 0) return;
    QDBusMessage message = call(QStringLiteral("CloseNotification"));
    message.setArguments({id});
    QDBusConnection::sessionBus().send(message);
    m_shown.remove(id);
}

void DesktopNotifications::actionInvoked(uint id, const QString &action)
{
    const auto shown = m_shown.constFind(id);
    if (shown == m_shown.cend() || (action != openAction && action != defaultAction)) return;
    const DesktopNotification chosen = *shown;
    // Some services leave it standing.
    withdraw(chosen.key);
    chosen.opened();
}

void DesktopNotifications::notificationClosed(uint id, uint)
{
    m_shown.remove(id);
}

} // namespace tomelet
