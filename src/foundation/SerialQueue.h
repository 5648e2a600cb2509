// SPDX-License-Identifier: GPL-3.0-or-later
// One worker thread that does its jobs in the order in which they came.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace tomelet {

class SerialQueue
{
public:
    SerialQueue() = default;
    /// Finishes all jobs.
    ~SerialQueue();
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    /// Appends a job; the thread starts with the first one.
    void add(std::function<void()> job);
    /// Waits until no job waits or runs. Not to be called by a job.
    void drain();
    [[nodiscard]] bool isEmpty();

private:
    void work();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_jobs;
    bool m_running = false;
    bool m_ending = false;
    std::thread m_thread;
};

} // namespace tomelet
