// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/ByteRange.h"

#include "server/Core/Text.h"

#include <algorithm>
#include <optional>

namespace tomelet::http {

namespace {

using OptionalRange = std::optional<ByteRange>;

OptionalRange singleByte(std::string_view offset, std::uint64_t contentLength)
{
    const auto at = parseDecimal(offset);
    if (!at || *at >= contentLength) return std::nullopt;
    return ByteRange{*at, 1};
}

OptionalRange lastBytes(std::string_view count, std::uint64_t contentLength)
{
    const auto length = parseDecimal(count);
    if (!length || *length > contentLength) return std::nullopt;
    return ByteRange{contentLength - *length, *length};
}

OptionalRange fromTo(std::string_view from, std::string_view to, std::uint64_t contentLength)
{
    const auto first = parseDecimal(from);
    if (!first || *first >= contentLength) return std::nullopt;
    if (to.empty()) return ByteRange{*first, contentLength - *first};
    const auto last = parseDecimal(to);
    if (!last || *first > *last || *last >= contentLength) return std::nullopt;
    return ByteRange{*first, *last - *first + 1};
}

OptionalRange parsePart(std::string_view part, std::uint64_t contentLength)
{
    const auto dash = part.find('-');
    if (dash == part.npos) return singleByte(part, contentLength);
    const auto to = part.substr(dash + 1);
    return dash == 0 ? lastBytes(to, contentLength) : fromTo(part.substr(0, dash), to, contentLength);
}

// Sorted ranges overlap if and only if one begins before the furthest end so far.
bool anyOverlap(const std::vector<ByteRange> &sorted)
{
    std::uint64_t end = 0;
    for (const ByteRange &range : sorted) {
        if (range.length > 0 && range.location < end) return true;
        end = std::max(end, range.location + range.length);
    }
    return false;
}

} // namespace

std::vector<ByteRange> parseRangeRequest(std::string_view header, std::uint64_t contentLength)
{
    const auto equals = header.find('=');
    if (equals == header.npos || !equalsIgnoringCase(trimmed(header.substr(0, equals)), "bytes")) return {};
    std::string_view rest = trimmed(header.substr(equals + 1));
    std::vector<ByteRange> ranges;
    while (true) {
        const auto comma = rest.find(',');
        const auto range = parsePart(rest.substr(0, comma), contentLength);
        if (!range) return {};
        ranges.push_back(*range);
        if (comma == rest.npos) break;
        rest.remove_prefix(comma + 1);
    }
    std::sort(ranges.begin(), ranges.end(), [](const ByteRange &a, const ByteRange &b) {
        return a.location != b.location ? a.location < b.location : a.length < b.length;
    });
    if (anyOverlap(ranges)) return {};
    return ranges;
}

std::string contentRange(const ByteRange &range, std::uint64_t contentLength)
{
    return "bytes " + std::to_string(range.location) + "-" + std::to_string(range.location + range.length - 1) + "/" +
           std::to_string(contentLength);
}

} // namespace tomelet::http
