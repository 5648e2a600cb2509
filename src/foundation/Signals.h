// SPDX-License-Identifier: GPL-3.0-or-later
// Ending in order: SIGINT and SIGTERM end the event loop.
#pragma once

#include <memory>

class QSocketNotifier;

namespace tomelet {

/// While it lives, the two signals call QCoreApplication::quit on the main thread. One at a time.
class QuitOnSignals
{
public:
    /// Keeps the signals waiting until there is somebody to take them; to be called before any thread starts.
    static void hold();

    QuitOnSignals();
    ~QuitOnSignals();
    QuitOnSignals(const QuitOnSignals &) = delete;
    QuitOnSignals &operator=(const QuitOnSignals &) = delete;

private:
    int m_descriptor;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tomelet
