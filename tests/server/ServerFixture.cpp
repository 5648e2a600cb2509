// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/server/ServerFixture.h"

#include "server/Core/Log.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tomelet::test {

namespace fs = std::filesystem;

void ServerFixture::SetUp()
{
    std::string pattern = (fs::temp_directory_path() / "server-test-XXXXXX").string();
    m_folder = fs::canonical(mkdtemp(pattern.data()));
    m_root = m_folder / "root";
    fs::create_directories(m_root);
    fs::create_directories(m_folder / "root-evil");
    http::setLogSink([this](const std::string &line) {
        const std::lock_guard lock(m_logMutex);
        m_log += line + "\n";
    });
}

void ServerFixture::TearDown()
{
    m_server.stop();
    http::setLogSink({});
    fs::remove_all(m_folder);
}

void ServerFixture::startServer(http::HTTPServer::ConnectionClass connections, std::chrono::milliseconds timeout)
{
    m_server.setDocumentRoot(m_root.string());
    m_server.setConnectionClass(std::move(connections));
    m_server.setInterface("127.0.0.1");
    m_server.setTimeout(timeout);
    m_server.setClock([this] { return std::chrono::steady_clock::now() + std::chrono::seconds(m_passed.load()); });
    m_server.setUsername("Tomelet");
    m_server.setPassword("secret");
    http::SocketError error;
    ASSERT_TRUE(m_server.start(error)) << error.message;
}

void ServerFixture::startDAV(std::chrono::milliseconds timeout)
{
    startServer([](auto socket,
                   auto config) { return std::make_shared<http::DAVConnection>(std::move(socket), std::move(config)); },
                timeout);
}

void ServerFixture::put(const std::string &name, const std::string &content) const
{
    fs::create_directories((m_root / name).parent_path());
    std::ofstream(m_root / name, std::ios::binary) << content;
}

std::string ServerFixture::get(const std::string &name) const
{
    std::ifstream file(m_root / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool ServerFixture::exists(const std::string &name) const
{
    return fs::exists(fs::symlink_status(m_root / name));
}

std::size_t ServerFixture::itemsInRoot() const
{
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_root), {}));
}

std::string ServerFixture::logged()
{
    const std::lock_guard lock(m_logMutex);
    return m_log;
}

} // namespace tomelet::test
