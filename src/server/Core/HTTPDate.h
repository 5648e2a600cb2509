// SPDX-License-Identifier: GPL-3.0-or-later
// Dates as HTTP and WebDAV write them: always in GMT, always with English names, whatever the locale.
#pragma once

#include <ctime>
#include <string>

namespace tomelet::http {

/// "Sun, 06 Nov 1994 08:49:37 GMT": the header Date (RFC 9110, 5.6.7).
[[nodiscard]] std::string headerDate(std::time_t time);
/// "Sun, 6 Nov 1994 08:49:37 GMT": the property getlastmodified, its day without a leading zero.
[[nodiscard]] std::string modificationDate(std::time_t time);
/// "1994-11-06T08:49:37+00:00": the property creationdate (RFC 3339).
[[nodiscard]] std::string creationDate(std::time_t time);

} // namespace tomelet::http
