// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/TMServerPreferences.h"

#include "foundation/Localization.h"
#include "foundation/Settings.h"
#include "server/LocalAddresses.h"

namespace tomelet {

namespace {

QString connectionDetails(std::uint16_t port)
{
    QString text =
        localized(TOMELET_TEXT("Use the credentials above to connect to one of the given server addresses."));
    text += QStringLiteral("\n\nhttp://%1:%2").arg(localHostName()).arg(port);
    for (const QString &address : localIPv4Addresses()) text += QStringLiteral("\nhttp://%1:%2").arg(address).arg(port);
    return text;
}

} // namespace

TMServerPreferences::TMServerPreferences(ServerControl &control, Show show)
    : m_control(control)
    , m_show(std::move(show))
{}

QString TMServerPreferences::refreshPasswordToolTip()
{
    return localized(TOMELET_TEXT("Set new Password"));
}

void TMServerPreferences::toggleServer(bool on)
{
    Settings &settings = m_control.settings();
    if (on) {
        settings.setObject(serverKeys::launch, QStringLiteral("yes"));
        if (settings.string(serverKeys::password).isEmpty()) createNewPassword();
        m_control.launchTomeletServer();
    } else {
        settings.remove(serverKeys::launch);
        m_control.terminateTomeletServer();
    }
    updateConnectionDetails();
}

void TMServerPreferences::refreshPassword()
{
    m_control.terminateTomeletServer();
    createNewPassword();
    m_control.launchTomeletServer();
    updateConnectionDetails();
}

void TMServerPreferences::updateConnectionDetails()
{
    m_show(fields());
}

ServerPreferencesFields TMServerPreferences::fields() const
{
    ServerPreferencesFields fields;
    fields.startServerButton = localized(TOMELET_TEXT("Start Tomeelet Server"));
    if (!m_control.isRunning()) return fields;
    fields.startServerButton = localized(TOMELET_TEXT("Stop Tomelet Server"));
    fields.usernameTitle = localized(TOMELET_TEXT("User"));
    fields.usernameField = serverUser;
    fields.passwordTitle = localized(TOMELET_TEXT("Password"));
    fields.passwordField = m_control.password();
    fields.connectionDetailsField = connectionDetails(m_control.port());
    return fields;
}

} // namespace tomelet
