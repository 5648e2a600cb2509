// SPDX-License-Identifier: GPL-3.0-or-later
// Globally unique strings: nonces, boundaries, lock tokens, names of temporary files.
#pragma once

#include <string>

namespace tomelet::http {

/// A random UUID (RFC 4122, version 4), upper case, from the kernel's random numbers: it cannot be guessed.
[[nodiscard]] std::string makeUUID();

} // namespace tomelet::http
