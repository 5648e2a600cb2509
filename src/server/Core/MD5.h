// SPDX-License-Identifier: GPL-3.0-or-later
// The MD5 message digest (RFC 1321): what digest authentication is made of. No other use.
#pragma once

#include <string>
#include <string_view>

namespace tomelet::http {

/// The digest of the bytes as 32 lower-case hexadecimal digits.
[[nodiscard]] std::string md5Hex(std::string_view bytes);

} // namespace tomelet::http
