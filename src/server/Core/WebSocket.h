// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

namespace tomelet::http {

class AsyncSocket;

/// What takes over a connection that asked for an upgrade (RFC 6455). The server offers none by itself.
class WebSocket
{
public:
    virtual ~WebSocket() = default;
    /// The socket is the receiver's from here on: it makes itself the delegate.
    virtual void start(std::shared_ptr<AsyncSocket> socket) = 0;
};

} // namespace tomelet::http
