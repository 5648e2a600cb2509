// SPDX-License-Identifier: GPL-3.0-or-later
// The Range header of a request.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tomelet::http {

/// Bytes from location on; a length of 0 is possible.
struct ByteRange
{
    std::uint64_t location = 0;
    std::uint64_t length = 0;

    bool operator==(const ByteRange &) const = default;
};

/// Reads a header such as "bytes=0-99,200-,-50,7" against a body of that length; ranges come sorted. Empty
/// when any part is malformed, lies outside the body or overlaps another: such a header counts as none, and
/// the body is sent whole, never with status 416. "bytes=-0" is a valid range of no bytes; a lone number is
/// one byte.
[[nodiscard]] std::vector<ByteRange> parseRangeRequest(std::string_view header, std::uint64_t contentLength);

/// The value of Content-Range: "bytes 0-99/1000". A range of no bytes gives its end one before its start.
[[nodiscard]] std::string contentRange(const ByteRange &range, std::uint64_t contentLength);

} // namespace tomelet::http
