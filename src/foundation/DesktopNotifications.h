// SPDX-License-Identifier: GPL-3.0-or-later
// Messages through the desktop's notification service: org.freedesktop.Notifications of the Desktop
// Notifications Specification, on the session bus.
#pragma once

#include <QHash>
#include <QObject>
#include <QVariantMap>

#include <functional>

namespace tomelet {

struct DesktopNotification
{
    QString key; ///< of several with one key the last one stays
    QString title;
    QString text;
    QVariantMap hints;              ///< see the standard
    int milliseconds = 0;           ///< until it goes by itself; 0 for never
    std::function<void()> opened;   ///< the person chose it
    std::function<void()> failed{}; ///< it could not be shown
};

class DesktopNotifications final : public QObject
{
    Q_OBJECT

public:
    DesktopNotifications();

    void present(const DesktopNotification &notification);
    void withdraw(const QString &key);

private Q_SLOTS:
    void actionInvoked(uint id, const QString &action);
    void notificationClosed(uint id, uint reason);

private:
    [[nodiscard]] uint idOf(const QString &key) const;

    QHash<uint, DesktopNotification> m_shown; ///< by the number that the service gave it
};

} // namespace tomelet
