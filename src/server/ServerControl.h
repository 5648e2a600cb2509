// SPDX-License-Identifier: GPL-3.0-or-later
// Starts and stops the notebook's server as the settings say.
#pragma once

#include "server/Core/HTTPServer.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace tomelet {

class Settings;

/// The settings that the server lives by.
namespace serverKeys {
inline const QString launch = QStringLiteral("launchLocalWebDAVServer"); ///< "yes" while the server is to run, or unset
inline const QString port = QStringLiteral("localWebDAVServerPort");     ///< 0 or unset is 8080; the one that worked
inline const QString password = QStringLiteral("localWebDAVServerString");
inline const QString root = QStringLiteral("TomeletFolder");
} // namespace serverKeys

/// The account's fixed name.
inline const QString serverUser = QStringLiteral("Tomelet");

/// What one run takes in place of the settings.
struct ServerOverrides
{
    QString root;                      ///< "" for the stored one
    std::optional<std::uint16_t> port; ///< such a port is not stored when it worked; 0 lets the system choose
    QString password;                  ///< "" for the stored one
    QString interface;                 ///< "" for all interfaces
};

/// Lives on the main thread; start and stop wait for the server's own threads.
class ServerControl
{
public:
    using Alert = std::function<void(const QString &title, const QString &text)>;

    /// The settings outlive the control. The alert shows why the server could not start.
    ServerControl(Settings &settings, Alert alert, ServerOverrides overrides = {});

    /// Starts the server; on a port that is taken the next ones are tried, unless it is 9000 or more. A
    /// failure is told by the alert and leaves a server that does not run.
    void launchTomeletServer();
    void terminateTomeletServer();

    /// Null when there is none.
    [[nodiscard]] http::HTTPServer *httpServer() const { return m_httpServer.get(); }
    void setHttpServer(std::unique_ptr<http::HTTPServer> server) { m_httpServer = std::move(server); }
    [[nodiscard]] bool isRunning() const { return m_httpServer && m_httpServer->isRunning(); }
    /// The port that the running server has, else 0.
    [[nodiscard]] std::uint16_t port() const { return m_httpServer ? m_httpServer->listeningPort() : 0; }

    /// The password that clients need: the run's own or the stored one.
    [[nodiscard]] QString password() const;
    /// Makes a password and stores it.
    void createNewPassword();
    [[nodiscard]] Settings &settings() const { return m_settings; }

private:
    [[nodiscard]] std::uint16_t firstPort() const;
    [[nodiscard]] std::unique_ptr<http::HTTPServer> makeServer() const;
    [[nodiscard]] http::SocketError startOnFreePort();

    Settings &m_settings;
    Alert m_alert;
    ServerOverrides m_overrides;
    std::unique_ptr<http::HTTPServer> m_httpServer;
};

} // namespace tomelet
