// SPDX-License-Identifier: GPL-3.0-or-later
// Listens, owns the connections and the few threads that they share.
#pragma once

#include "server/Core/HTTPConnection.h"
#include "server/Core/SocketError.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace tomelet::http {

/// Settings are made before start(), the account excepted; all operations may be called from any thread that
/// is none of the server's own.
class HTTPServer
{
public:
    using ConnectionClass = std::function<std::shared_ptr<HTTPConnection>(std::shared_ptr<AsyncSocket> socket,
                                                                          std::shared_ptr<const HTTPConfig> config)>;
    using TXTRecord = std::map<std::string, std::string>;

    HTTPServer();
    HTTPServer(const HTTPServer &) = delete;
    HTTPServer &operator=(const HTTPServer &) = delete;
    /// Stops the server.
    ~HTTPServer();

    /// The root folder: an absolute path. Symbolic links in it are resolved at the start, once.
    void setDocumentRoot(const std::string &path);
    /// Makes the connections; HTTPConnection when not set.
    void setConnectionClass(ConnectionClass connectionClass);
    /// As AcceptSocket::acceptOnInterface has it; "" for all.
    void setInterface(const std::string &interface);
    void setPort(std::uint16_t port);
    /// Where the service is published; nothing is while the type is empty.
    void setDomain(const std::string &domain);
    void setType(const std::string &type);
    void setName(const std::string &name);
    void setTXTRecordDictionary(const TXTRecord &dictionary);
    /// The account that connections from now on are given.
    void setUsername(const std::string &username);
    void setPassword(const std::string &password);
    /// For tests: the clock that nonces expire by, and another time-out than 30 seconds.
    void setClock(std::function<NonceList::Time()> now);
    void setTimeout(std::chrono::milliseconds timeout);

    /// False, with the reason, when the port cannot be had.
    [[nodiscard]] bool start(SocketError &error);
    /// Withdraws the publication, closes the listening socket and, unless told otherwise, every connection.
    void stop(bool keepExistingConnections = false);
    [[nodiscard]] bool isRunning() const;

    /// The port that the socket reports, 0 when not running.
    [[nodiscard]] std::uint16_t listeningPort() const;
    [[nodiscard]] std::string publishedName() const;
    [[nodiscard]] std::size_t numberOfHTTPConnections() const;
    [[nodiscard]] std::size_t numberOfWebSocketConnections() const;
    /// Publishes once more, with what the settings say now.
    void republishBonjour();

private:
    class Running;

    struct Settings
    {
        std::string documentRoot;
        ConnectionClass connectionClass;
        std::string interface;
        std::uint16_t port = 0;
        std::string domain = "local.";
        std::string type;
        std::string name;
        TXTRecord txtRecord;
        std::function<NonceList::Time()> now = std::chrono::steady_clock::now;
        std::chrono::milliseconds timeout{30000};
    };

    Settings m_settings;
    std::string m_username;
    std::string m_password;
    std::unique_ptr<Running> m_running;
};

} // namespace tomelet::http
