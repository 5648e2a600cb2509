// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/EventLoops.h"

#include <chrono>
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

// A client with one connection answers within microseconds, while a processor that was let go to sleep takes many to
// wake.
constexpr std::chrono::microseconds alertFor{50};

void runUntilStopped(asio::io_context &context)
{
    using Clock = std::chrono::steady_clock;
    while (!context.stopped()) {
        context.run_one();
        for (auto last = Clock::now(); !context.stopped() && Clock::now() - last < alertFor;)
            if (context.poll() > 0) last = Clock::now();
    }
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
            runUntilStopped(context);
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
