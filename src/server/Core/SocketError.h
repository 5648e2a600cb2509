// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace tomelet::http {

/// Why a server could not start: the system's error number (EADDRINUSE and so on) and its text.
struct SocketError
{
    int code = 0;
    std::string message;
};

} // namespace tomelet::http
