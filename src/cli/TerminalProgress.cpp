// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/TerminalProgress.h"

#include <chrono>
#include <cstdio>
#include <unistd.h>

namespace tomelet::cli {

static void draw(const QString &title, qsizetype done, qsizetype all)
{
    constexpr qsizetype width = 30;
    const qsizetype filled = all > 0 ? width * done / all : 0;
    const QString bar = QString(filled, u'#') + QString(width - filled, u'.');
    const QByteArray line = QStringLiteral("\r%1 [%2] %3/%4").arg(title, bar).arg(done).arg(all).toUtf8();
    std::fputs(line.constData(), stderr);
    if (done == all) std::fputc('\n', stderr);
    std::fflush(stderr);
}

Progress terminalProgress(const Invocation &call, const QString &title)
{
    if (call.quiet || ::isatty(STDERR_FILENO) == 0) return {};
    using Steady = std::chrono::steady_clock;
    return [title, next = Steady::time_point()](qsizetype done, qsizetype all) mutable {
        if (done != all && Steady::now() < next) return true;
        next = Steady::now() + std::chrono::milliseconds(100);
        draw(title, done, all);
        return true;
    };
}

} // namespace tomelet::cli
