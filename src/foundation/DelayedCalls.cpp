// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/DelayedCalls.h"

#include <QTimer>

#include <algorithm>

namespace tomelet {

struct DelayedCalls::Waiting
{
    std::function<void()> call;
    std::chrono::steady_clock::time_point due;
    quint64 number; // order among calls that are due at the same moment
    QTimer timer;
};

DelayedCalls::DelayedCalls() = default;
DelayedCalls::~DelayedCalls() = default;

void DelayedCalls::schedule(const QString &name, const QString &argument, std::chrono::milliseconds delay,
                            std::function<void()> call)
{
    const Key key{name, argument};
    auto waiting = std::make_shared<Waiting>();
    waiting->call = std::move(call);
    waiting->due = std::chrono::steady_clock::now() + delay;
    waiting->number = m_count++;
    waiting->timer.setSingleShot(true);
    QObject::connect(&waiting->timer, &QTimer::timeout, [this, key] { run(key); });
    m_waiting.insert(key, waiting);
    waiting->timer.start(delay);
}

void DelayedCalls::cancel(const QString &name, const QString &argument)
{
    m_waiting.remove({name, argument});
}

void DelayedCalls::run(const Key &key)
{
    // Taken out first: the call may schedule itself anew.
    if (const auto waiting = m_waiting.take(key)) waiting->call();
}

void DelayedCalls::drain()
{
    while (!m_waiting.isEmpty()) {
        const auto next = std::min_element(m_waiting.begin(), m_waiting.end(), [](const auto &a, const auto &b) {
            return std::pair(a->due, a->number) < std::pair(b->due, b->number);
        });
        run(next.key());
    }
}

} // namespace tomelet
