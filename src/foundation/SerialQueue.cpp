// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/SerialQueue.h"

namespace tomelet {

SerialQueue::~SerialQueue()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

void SerialQueue::add(std::function<void()> job)
{
    {
        const std::lock_guard lock(m_mutex);
        m_jobs.push_back(std::move(job));
        if (!m_thread.joinable()) m_thread = std::thread([this] { work(); });
    }
    m_changed.notify_all();
}

void SerialQueue::drain()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_jobs.empty() && !m_running; });
}

bool SerialQueue::isEmpty()
{
    const std::lock_guard lock(m_mutex);
    return m_jobs.empty() && !m_running;
}

void SerialQueue::work()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_ending || !m_jobs.empty(); });
        if (m_jobs.empty()) return;
        const auto job = std::move(m_jobs.front());
        m_jobs.pop_front();
        m_running = true;
        lock.unlock();
        job();
        lock.lock();
        m_running = false;
        m_changed.notify_all();
    }
}

} // namespace tomelet
