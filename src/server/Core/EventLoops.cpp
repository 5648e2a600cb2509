// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/EventLoops.h"

#include <csignal>

namespace tomelet::http {

namespace {

// A file that is sent to a client that has gone ends in this signal; the call's error says it as well.
void blockPipeSignal()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

} // namespace

EventLoops::EventLoops(unsigned count)
{
    for (unsigned i = 0; i < count; ++i) m_loops.push_back(std::make_unique<Loop>());
}

EventLoops::~EventLoops()
{
    stop();
}

void EventLoops::start()
{
    for (const auto &loop : m_loops)
        loop->thread = std::thread([&context = loop->context] {
            blockPipeSignal();
            context.run();
        });
}

void EventLoops::stop()
{
    for (const auto &loop : m_loops) loop->context.stop();
    for (const auto &loop : m_loops)
        if (loop->thread.joinable()) loop->thread.join();
}

asio::any_io_executor EventLoops::next()
{
    return m_loops[m_turn++ % m_loops.size()]->context.get_executor();
}

} // namespace tomelet::http
