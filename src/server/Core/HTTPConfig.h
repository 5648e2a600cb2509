// SPDX-License-Identifier: GPL-3.0-or-later
// What a server hands to each of its connections.
#pragma once

#include "server/Core/NonceList.h"

#include <asio/any_io_executor.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace tomelet::http {

class HTTPConnection;
class WebSocket;

struct HTTPConfig
{
    std::string documentRoot;        ///< absolute, symbolic links resolved, without a "/" at its end
    asio::any_io_executor fileQueue; ///< where reading ahead in large files may wait for the disk
    asio::any_io_executor workQueue; ///< where requests are answered that may take long
    std::function<NonceList::Time()> now = std::chrono::steady_clock::now; ///< the clock that nonces expire by
    std::chrono::milliseconds timeout{30000}; ///< for header lines, response headers and chunk framing
    std::function<void(HTTPConnection *)> connectionDidDie;
    std::function<void(std::shared_ptr<WebSocket>)> webSocketDidStart;
};

} // namespace tomelet::http
