// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Log.h"

#include <QDateTime>
#include <QFile>

#include <cstdio>
#include <fcntl.h>
#include <mutex>
#include <unistd.h>

namespace tomelet {

namespace {

std::mutex logMutex;
int logDescriptor = -1;
std::function<void(const QString &)> warningTaker;

void writeLine(int descriptor, const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    // A log that cannot be written has nowhere to say so.
    if (::write(descriptor, bytes.constData(), static_cast<size_t>(bytes.size())) < 0) return;
}

QString stamped(const QString &line)
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz ")) + line;
}

} // namespace

void openDiagnosticLog(const QString &path)
{
    const std::lock_guard lock(logMutex);
    if (logDescriptor >= 0) ::close(logDescriptor);
    logDescriptor = path.isEmpty() ? -1 : ::open(QFile::encodeName(path).constData(), O_WRONLY | O_APPEND | O_CLOEXEC);
}

bool diagnosticLogIsOpen()
{
    const std::lock_guard lock(logMutex);
    return logDescriptor >= 0;
}

void logLine(const QString &line)
{
    const std::lock_guard lock(logMutex);
    if (logDescriptor >= 0) writeLine(logDescriptor, stamped(line));
}

void logWarning(const QString &line)
{
    const std::lock_guard lock(logMutex);
    if (logDescriptor >= 0) writeLine(logDescriptor, stamped(line));
    else if (warningTaker) warningTaker(line);
    else writeLine(STDERR_FILENO, QStringLiteral("tomelet: ") + line);
}

void setWarningTaker(std::function<void(const QString &)> taker)
{
    const std::lock_guard lock(logMutex);
    warningTaker = std::move(taker);
}

} // namespace tomelet
