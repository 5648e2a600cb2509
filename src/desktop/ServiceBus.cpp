// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/ServiceBus.h"

#include "foundation/Log.h"
#include "library/urls/ServiceProvider.h"

#include <QDBusConnection>
#include <QDBusError>

namespace tomelet::desktop {

static const QString busName = QStringLiteral("org.tomelet.app");
static const QString objectPath = QStringLiteral("/org/tomelet/app/Services");

ServiceBus::ServiceBus(TMLTServiceProvider &services)
    : m_services(services)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.registerObject(objectPath, this, QDBusConnection::ExportAllSlots);
    if (!bus.registerService(busName))
        logLine(QStringLiteral("no services on the bus: %1").arg(bus.lastError().message()));
}

ServiceBus::~ServiceBus()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterService(busName);
    bus.unregisterObject(objectPath);
}

void ServiceBus::AddQuickNote()
{
    m_services.addQuickNote();
}

QString ServiceBus::AddSelection(const QString &plain, const QString &html)
{
    return m_services.addSelection({plain, html});
}

QString ServiceBus::AddSelectionPlain(const QString &plain)
{
    return m_services.addSelectionPlain({plain, {}});
}

bool ServiceBus::InsertIntoCurrentDocument(const QString &plain)
{
    return m_services.insertIntoCurrentDocument({plain, {}});
}

} // namespace tomelet::desktop
