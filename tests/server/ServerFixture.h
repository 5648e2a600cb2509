// SPDX-License-Identifier: GPL-3.0-or-later
// A server on a port of its own over a root folder of its own, and the words that the tests are written in.
#pragma once

#include "server/Core/HTTPServer.h"
#include "server/WebDAV/DAVConnection.h"
#include "tests/server/RawClient.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <mutex>
#include <string>

namespace tomelet::test {

class ServerFixture : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts with the given connections; the header time-out is long enough for a slow machine.
    void startServer(http::HTTPServer::ConnectionClass connections,
                     std::chrono::milliseconds timeout = std::chrono::seconds(30));
    void startDAV(std::chrono::milliseconds timeout = std::chrono::seconds(30));
    [[nodiscard]] std::uint16_t port() const { return m_server.listeningPort(); }
    /// Nonces get older without anybody waiting.
    void passTime(std::chrono::seconds time) { m_passed += time.count(); }

    void put(const std::string &name, const std::string &content) const;
    [[nodiscard]] std::string get(const std::string &name) const;
    [[nodiscard]] bool exists(const std::string &name) const;
    /// The names of all that lies in the root, hidden files included.
    [[nodiscard]] std::size_t itemsInRoot() const;
    [[nodiscard]] std::string logged();

    std::filesystem::path m_folder; ///< the root's parent: what lies here must stay out of reach
    std::filesystem::path m_root;
    http::HTTPServer m_server;

private:
    std::atomic<long> m_passed{0};
    std::mutex m_logMutex;
    std::string m_log;
};

} // namespace tomelet::test
