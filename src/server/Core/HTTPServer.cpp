// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/HTTPServer.h"

#include "server/Core/AcceptSocket.h"
#include "server/Core/BonjourService.h"
#include "server/Core/EventLoops.h"
#include "server/Core/Log.h"
#include "server/Core/TemporaryItem.h"

#include <asio/post.hpp>
#include <asio/thread_pool.hpp>

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <future>
#include <mutex>
#include <thread>

namespace tomelet::http {

namespace {

unsigned numberOfLoops()
{
    return std::clamp(std::thread::hardware_concurrency(), 2U, 4U);
}

constexpr unsigned longWorkers = 2;

constexpr std::chrono::seconds longestFarewell{5};

std::string resolvedRoot(const std::string &path)
{
    std::error_code error;
    const auto resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved.string();
}

} // namespace

// What exists between start and stop: threads, sockets, connections. The serial queues are event loops: each connection
// stays on one, and what may take long is done elsewhere, so that it holds up nobody.
class HTTPServer::Running
{
public:
    Running(const Settings &settings, std::string username, std::string password);
    Running(const Running &) = delete;
    Running &operator=(const Running &) = delete;
    ~Running();

    bool listen(SocketError &error);
    void stopListening();
    void closeConnections();
    void setAccount(const std::string &username, const std::string &password);
    void publish(const Settings &settings);

    [[nodiscard]] bool isListening() const { return m_listening; }
    [[nodiscard]] std::uint16_t port() const { return m_port; }
    [[nodiscard]] std::string publishedName() const { return m_bonjour ? m_bonjour->publishedName() : std::string(); }
    [[nodiscard]] std::size_t numberOfConnections();
    [[nodiscard]] std::size_t numberOfWebSockets();

private:
    void didAccept(asio::ip::tcp::socket socket);
    void connectionDidDie(HTTPConnection *connection);

    EventLoops m_loops{numberOfLoops()};
    asio::any_io_executor m_serverQueue = m_loops.first();
    asio::thread_pool m_fileReaders{1};
    asio::thread_pool m_workers{longWorkers};
    const std::string m_interface;
    const std::uint16_t m_wantedPort;
    const ConnectionClass m_connectionClass;
    std::shared_ptr<HTTPConfig> m_config;
    std::shared_ptr<AcceptSocket> m_asyncSocket;
    std::uint16_t m_port = 0;
    bool m_listening = false;
    std::unique_ptr<BonjourService> m_bonjour;

    std::mutex m_mutex; ///< over what follows
    std::condition_variable m_connectionEnded;
    std::vector<std::shared_ptr<HTTPConnection>> m_connections;
    std::vector<std::shared_ptr<WebSocket>> m_webSockets;
    std::string m_username;
    std::string m_password;
};

HTTPServer::Running::Running(const Settings &settings, std::string username, std::string password)
    : m_interface(settings.interface)
    , m_wantedPort(settings.port)
    , m_connectionClass(settings.connectionClass)
    , m_config(std::make_shared<HTTPConfig>())
    , m_username(std::move(username))
    , m_password(std::move(password))
{
    m_config->documentRoot = resolvedRoot(settings.documentRoot);
    m_config->fileQueue = m_fileReaders.get_executor();
    m_config->workQueue = m_workers.get_executor();
    m_config->now = settings.now;
    m_config->timeout = settings.timeout;
    m_config->connectionDidDie = [this](HTTPConnection *connection) { connectionDidDie(connection); };
    m_config->webSocketDidStart = [this](std::shared_ptr<WebSocket> webSocket) {
        const std::lock_guard lock(m_mutex);
        m_webSockets.push_back(std::move(webSocket));
    };
    m_asyncSocket = std::make_shared<AcceptSocket>(
        m_serverQueue, [this] { return m_loops.next(); },
        [this](asio::ip::tcp::socket socket) { didAccept(std::move(socket)); });
}

// Connections are told to close and get a moment for it, then the threads end.
HTTPServer::Running::~Running()
{
    m_bonjour.reset();
    stopListening();
    closeConnections();
    m_workers.join();
    m_fileReaders.join();
    m_loops.stop();
}

bool HTTPServer::Running::listen(SocketError &error)
{
    removeAbandonedItems(m_config->documentRoot);
    if (!m_asyncSocket->acceptOnInterface(m_interface, m_wantedPort, error)) return false;
    m_port = m_asyncSocket->localPort();
    m_listening = true;
    m_loops.start();
    return true;
}

void HTTPServer::Running::stopListening()
{
    if (!m_listening) return;
    m_listening = false;
    std::promise<void> closed;
    asio::post(m_serverQueue, [this, &closed] {
        m_asyncSocket->close();
        closed.set_value();
    });
    closed.get_future().wait();
}

void HTTPServer::Running::closeConnections()
{
    std::unique_lock lock(m_mutex);
    for (const auto &connection : m_connections) connection->stop();
    m_connectionEnded.wait_for(lock, longestFarewell, [this] { return m_connections.empty(); });
}

void HTTPServer::Running::setAccount(const std::string &username, const std::string &password)
{
    const std::lock_guard lock(m_mutex);
    m_username = username;
    m_password = password;
}

void HTTPServer::Running::publish(const Settings &settings)
{
    m_bonjour.reset();
    if (settings.type.empty()) return;
    m_bonjour = std::make_unique<BonjourService>(
        BonjourRecord{settings.name, settings.type, settings.domain, m_port, settings.txtRecord});
}

std::size_t HTTPServer::Running::numberOfConnections()
{
    const std::lock_guard lock(m_mutex);
    return m_connections.size();
}

std::size_t HTTPServer::Running::numberOfWebSockets()
{
    const std::lock_guard lock(m_mutex);
    return m_webSockets.size();
}

void HTTPServer::Running::didAccept(asio::ip::tcp::socket socket)
{
    const auto connection = m_connectionClass(std::make_shared<AsyncSocket>(std::move(socket)), m_config);
    {
        const std::lock_guard lock(m_mutex);
        if (!m_username.empty() || !m_password.empty()) connection->setAccount(m_username, m_password);
        m_connections.push_back(connection);
    }
    connection->start();
}

void HTTPServer::Running::connectionDidDie(HTTPConnection *connection)
{
    std::shared_ptr<HTTPConnection> last; // its end, if this is one, comes behind the lock
    const std::lock_guard lock(m_mutex);
    const auto found = std::find_if(m_connections.begin(), m_connections.end(),
                                    [connection](const auto &one) { return one.get() == connection; });
    if (found == m_connections.end()) return;
    std::swap(*found, m_connections.back());
    last = std::move(m_connections.back());
    m_connections.pop_back();
    if (m_connections.empty()) m_connectionEnded.notify_all();
}

// ---- HTTPServer

HTTPServer::HTTPServer()
{
    m_settings.connectionClass = [](auto socket, auto config) {
        return std::make_shared<HTTPConnection>(std::move(socket), std::move(config));
    };
}

HTTPServer::~HTTPServer() = default;

void HTTPServer::setDocumentRoot(const std::string &path)
{
    m_settings.documentRoot = path;
}

void HTTPServer::setConnectionClass(ConnectionClass connectionClass)
{
    m_settings.connectionClass = std::move(connectionClass);
}

void HTTPServer::setInterface(const std::string &interface)
{
    m_settings.interface = interface;
}

void HTTPServer::setPort(std::uint16_t port)
{
    m_settings.port = port;
}

void HTTPServer::setDomain(const std::string &domain)
{
    m_settings.domain = domain;
}

void HTTPServer::setType(const std::string &type)
{
    m_settings.type = type;
}

void HTTPServer::setName(const std::string &name)
{
    m_settings.name = name;
}

void HTTPServer::setTXTRecordDictionary(const TXTRecord &dictionary)
{
    m_settings.txtRecord = dictionary;
}

void HTTPServer::setClock(std::function<NonceList::Time()> now)
{
    m_settings.now = std::move(now);
}

void HTTPServer::setTimeout(std::chrono::milliseconds timeout)
{
    m_settings.timeout = timeout;
}

void HTTPServer::setUsername(const std::string &username)
{
    m_username = username;
    if (m_running) m_running->setAccount(m_username, m_password);
}

void HTTPServer::setPassword(const std::string &password)
{
    m_password = password;
    if (m_running) m_running->setAccount(m_username, m_password);
}

bool HTTPServer::start(SocketError &error)
{
    if (isRunning()) return true;
    m_running = std::make_unique<Running>(m_settings, m_username, m_password);
    if (!m_running->listen(error)) {
        m_running.reset();
        logLine("HTTPServer: Failed to start HTTP Server: " + error.message);
        return false;
    }
    logLine("HTTPServer: Started HTTP server on port " + std::to_string(m_running->port()));
    m_running->publish(m_settings);
    return true;
}

void HTTPServer::stop(bool keepExistingConnections)
{
    if (!m_running) return;
    if (!keepExistingConnections) return m_running.reset();
    m_running->publish({});
    m_running->stopListening();
}

bool HTTPServer::isRunning() const
{
    return m_running && m_running->isListening();
}

std::uint16_t HTTPServer::listeningPort() const
{
    return isRunning() ? m_running->port() : 0;
}

std::string HTTPServer::publishedName() const
{
    return m_running ? m_running->publishedName() : std::string();
}

std::size_t HTTPServer::numberOfHTTPConnections() const
{
    return m_running ? m_running->numberOfConnections() : 0;
}

std::size_t HTTPServer::numberOfWebSocketConnections() const
{
    return m_running ? m_running->numberOfWebSockets() : 0;
}

void HTTPServer::republishBonjour()
{
    if (isRunning()) m_running->publish(m_settings);
}

} // namespace tomelet::http
