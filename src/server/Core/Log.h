// SPDX-License-Identifier: GPL-3.0-or-later
// The server's log lines: no levels, one line each, to wherever the program wants them.
#pragma once

#include <functional>
#include <string>

namespace tomelet::http {

/// Writes one line. Text from a client has been through printable(). May be called from any thread.
void logLine(const std::string &line);
/// Sends all further lines to the function, which is called from several threads, one call at a time; an
/// empty function brings back the standard error stream.
void setLogSink(std::function<void(const std::string &line)> sink);
/// "name[0x...]: ", what lines about one object begin with.
[[nodiscard]] std::string logPrefix(const char *name, const void *object);

} // namespace tomelet::http
