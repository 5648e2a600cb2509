// SPDX-License-Identifier: GPL-3.0-or-later
// The media types that a browser needs in order to show a notebook's files.
#pragma once

#include <string_view>

namespace tomelet::http {

/// The media type for the path's extension in any case; "" for an unknown one, which a client then finds out
/// itself.
[[nodiscard]] std::string_view mimeTypeForPath(std::string_view path);

} // namespace tomelet::http
