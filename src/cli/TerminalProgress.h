// SPDX-License-Identifier: GPL-3.0-or-later
// A progress bar for the person at the terminal.
#pragma once

#include "cli/Invocation.h"
#include "foundation/Progress.h"

namespace tomelet::cli {

/// Draws a bar on standard error, a few times a second; empty with --quiet and where standard error is no terminal.
/// Ctrl+C ends the program in the middle of the work, which every work must stand.
[[nodiscard]] Progress terminalProgress(const Invocation &call, const QString &title);

} // namespace tomelet::cli
