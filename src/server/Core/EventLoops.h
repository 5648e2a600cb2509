// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>

#include <memory>
#include <thread>
#include <vector>

namespace tomelet::http {

/// A few threads with an event loop each. What runs on one loop is serial without a lock, and to wait for a socket
/// wakes no other thread, which would cost more than the sending itself.
class EventLoops
{
public:
    explicit EventLoops(unsigned count);
    EventLoops(const EventLoops &) = delete;
    EventLoops &operator=(const EventLoops &) = delete;
    /// Ends the threads. What still waits on the loops goes with them.
    ~EventLoops();

    void start();
    /// Comes back when the threads have ended, the event that each is at included.
    void stop();

    [[nodiscard]] asio::any_io_executor first() { return m_loops.front()->context.get_executor(); }
    /// Each in its turn. From one thread at a time.
    [[nodiscard]] asio::any_io_executor next();

private:
    struct Loop
    {
        asio::io_context context{1};
        asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
        std::thread thread;
    };

    std::vector<std::unique_ptr<Loop>> m_loops;
    std::size_t m_turn = 0;
};

} // namespace tomelet::http
