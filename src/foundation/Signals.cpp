// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace tomelet {

static sigset_t endingSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

void QuitOnSignals::hold()
{
    const sigset_t set = endingSignals();
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

QuitOnSignals::QuitOnSignals()
{
    hold();
    const sigset_t set = endingSignals();
    m_descriptor = ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] {
        signalfd_siginfo info{};
        if (::read(m_descriptor, &info, sizeof info) == sizeof info) QCoreApplication::quit();
    });
}

QuitOnSignals::~QuitOnSignals()
{
    m_notifier.reset();
    ::close(m_descriptor);
    const sigset_t set = endingSignals();
    ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

} // namespace tomelet
