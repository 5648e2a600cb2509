// SPDX-License-Identifier: GPL-3.0-or-later
// Log lines without levels. Diagnostic lines are written only while a log file is open; warnings always.
#pragma once

#include <QString>

#include <functional>

namespace tomelet {

/// Opens the file for diagnostic lines, appending; an empty path ends them. Warnings go there too from then on.
void openDiagnosticLog(const QString &path);
[[nodiscard]] bool diagnosticLogIsOpen();

/// One diagnostic line.
void logLine(const QString &line);
/// One line that is written whether or not a log is open: to the log, else to whoever takes warnings, else to standard
/// error.
void logWarning(const QString &line);
/// Hands warnings over instead of writing them to standard error; an empty function ends that.
void setWarningTaker(std::function<void(const QString &line)> taker);

} // namespace tomelet
