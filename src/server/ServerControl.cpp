// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/ServerControl.h"

#include "foundation/Localization.h"
#include "foundation/Settings.h"
#include "server/Core/Log.h"
#include "server/Core/UUID.h"
#include "server/WebDAV/DAVConnection.h"

#include <QFile>

#include <cerrno>

namespace tomelet {

namespace {

constexpr std::uint16_t defaultPort = 8080;
constexpr std::uint16_t firstPortWithoutRetry = 9000;
constexpr std::uint16_t lastPort = 65535;

std::string pathOf(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

} // namespace

ServerControl::ServerControl(Settings &settings, Alert alert, ServerOverrides overrides)
    : m_settings(settings)
    , m_alert(std::move(alert))
    , m_overrides(std::move(overrides))
{}

std::uint16_t ServerControl::firstPort() const
{
    if (m_overrides.port) return *m_overrides.port;
    const qlonglong stored = m_settings.integer(serverKeys::port);
    return stored > 0 && stored <= lastPort ? static_cast<std::uint16_t>(stored) : defaultPort;
}

QString ServerControl::password() const
{
    return m_overrides.password.isEmpty() ? m_settings.string(serverKeys::password) : m_overrides.password;
}

void ServerControl::createNewPassword()
{
    m_settings.setObject(serverKeys::password, QString::fromStdString(http::makeUUID().substr(9, 9)).toLower());
}

std::unique_ptr<http::HTTPServer> ServerControl::makeServer() const
{
    auto server = std::make_unique<http::HTTPServer>();
    server->setConnectionClass([](auto socket, auto config) {
        return std::make_shared<http::DAVConnection>(std::move(socket), std::move(config));
    });
    server->setType("_http._tcp.");
    server->setName("Tomelet");
    server->setInterface(m_overrides.interface.toStdString());
    server->setDocumentRoot(
        pathOf(m_overrides.root.isEmpty() ? m_settings.string(serverKeys::root) : m_overrides.root));
    return server;
}

// The first port decides about retrying, and not the one that is tried just now.
http::SocketError ServerControl::startOnFreePort()
{
    const std::uint16_t first = firstPort();
    std::uint16_t port = first;
    http::SocketError error;
    m_httpServer->setPort(port);
    while (!m_httpServer->start(error)) {
        if (error.code != EADDRINUSE || first >= firstPortWithoutRetry || port == lastPort) return error;
        http::logLine("Error starting HTTP Server: " + error.message);
        m_httpServer->setPort(++port);
    }
    return {};
}

void ServerControl::launchTomeletServer()
{
    m_httpServer = makeServer();
    const http::SocketError error = startOnFreePort();
    if (!m_httpServer->isRunning()) {
        m_alert(localized(TOMELET_TEXT("Could not Start Tomelet Server")), QString::fromStdString(error.message));
        return;
    }
    http::logLine("running HTTP Server on port: " + std::to_string(port()));
    if (!m_overrides.port) m_settings.setObject(serverKeys::port, static_cast<qlonglong>(port()));
    m_httpServer->setUsername(serverUser.toStdString());
    m_httpServer->setPassword(password().toStdString());
}

void ServerControl::terminateTomeletServer()
{
    if (m_httpServer) m_httpServer->stop();
    m_httpServer.reset();
}

} // namespace tomelet
