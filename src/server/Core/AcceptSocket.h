// SPDX-License-Identifier: GPL-3.0-or-later
// The listening socket.
#pragma once

#include "server/Core/SocketError.h"

#include <asio/any_io_executor.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tomelet::http {

/// Accepts connections on its queue until it is closed.
class AcceptSocket : public std::enable_shared_from_this<AcceptSocket>
{
public:
    using DidAccept = std::function<void(asio::ip::tcp::socket socket)>;

    using NextQueue = std::function<asio::any_io_executor()>;

    /// Each accepted socket works on the serial queue that nextQueue gives for it.
    AcceptSocket(asio::any_io_executor queue, NextQueue nextQueue, DidAccept didAccept);

    /// Listens on the interface: "" for all of them, IPv4 and IPv6; "localhost" and "loopback" for this
    /// machine alone; an IP address; or an interface's name such as "eth0". Port 0 lets the system choose.
    /// False, with the reason, when that fails.
    [[nodiscard]] bool acceptOnInterface(const std::string &interface, std::uint16_t port, SocketError &error);
    /// 0 when not listening.
    [[nodiscard]] std::uint16_t localPort() const;
    /// On the queue.
    void close();

private:
    void acceptNext();

    asio::ip::tcp::acceptor m_acceptor;
    asio::steady_timer m_pause;
    NextQueue m_nextQueue;
    DidAccept m_didAccept;
};

} // namespace tomelet::http
