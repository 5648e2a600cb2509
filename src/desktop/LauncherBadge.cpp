// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/LauncherBadge.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

namespace tomelet::desktop {

void showLauncherBadge(qlonglong count)
{
    QDBusMessage update =
        QDBusMessage::createSignal(QStringLiteral("/org/tomelet/app"),
                                   QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
    update << QStringLiteral("application://org.tomelet.app.desktop")
           << QVariantMap{{QStringLiteral("count"), count}, {QStringLiteral("count-visible"), count > 0}};
    QDBusConnection::sessionBus().send(update);
}

} // namespace tomelet::desktop
