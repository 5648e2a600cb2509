// SPDX-License-Identifier: GPL-3.0-or-later
// Calls that run a little later on the main thread, so that a burst of events collapses into one action.
#pragma once

#include <QHash>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>

class QTimer;

namespace tomelet {

class DelayedCalls
{
public:
    DelayedCalls();
    ~DelayedCalls();

    /// Runs the call after the delay. A waiting call of the same name and argument is cancelled first.
    void schedule(const QString &name, const QString &argument, std::chrono::milliseconds delay,
                  std::function<void()> call);
    void cancel(const QString &name, const QString &argument);
    [[nodiscard]] bool isEmpty() const { return m_waiting.isEmpty(); }
    /// Runs all that waits now, the earliest due first, until nothing waits any more.
    void drain();

private:
    struct Waiting;
    using Key = QPair<QString, QString>;
    void run(const Key &key);

    QHash<Key, std::shared_ptr<Waiting>> m_waiting;
    quint64 m_count = 0;
};

} // namespace tomelet
