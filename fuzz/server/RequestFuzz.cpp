// SPDX-License-Identifier: GPL-3.0-or-later
//
// The request parser and everything that reads a header's value. The first byte tells where the rest is cut
// in two: a message must not depend on how its bytes arrive, and no target may lead out of the root.
#include "server/Core/ByteRange.h"
#include "server/Core/HTTPAuthenticationRequest.h"
#include "server/Core/HTTPConnection.h"
#include "server/Core/HTTPMessage.h"
#include "server/Core/RequestPath.h"
#include "server/Core/Text.h"

#include <cstdlib>

using namespace tomelet::http;

namespace {

void require(bool condition)
{
    if (!condition) std::abort();
}

void checkPath(const std::string &target)
{
    const RequestPath place = pathForTarget(target, "/the/root");
    if (place.fault != PathFault::None) return;
    require(isInsideRoot(place.path, "/the/root") && isValidUTF8(place.path));
    require(place.path.find('\0') == place.path.npos && (place.path + "/").find("/../") == std::string::npos);
    require(percentDecoded(percentEscaped(place.path)) == place.path);
}

void checkRanges(const std::string &header)
{
    constexpr std::uint64_t length = 1000;
    std::uint64_t end = 0;
    for (const ByteRange &range : parseRangeRequest(header, length)) {
        require(range.location >= end || range.length == 0);
        require(range.location + range.length <= length);
        end = range.location + range.length;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0) return 0;
    const std::string_view text(reinterpret_cast<const char *>(data) + 1, size - 1);
    const std::size_t cut = data[0] % (text.size() + 1);
    HTTPMessage whole;
    HTTPMessage halves;
    const bool good = whole.appendData(text);
    require((halves.appendData(text.substr(0, cut)) && halves.appendData(text.substr(cut))) == good);
    if (!good || !whole.isHeaderComplete()) return 0;
    require(halves.messageData() == whole.messageData());

    checkPath(whole.url());
    checkPath(whole.headerField("Destination"));
    checkRanges(whole.headerField("Range"));
    (void)parseAuthorization(whole.headerField("Authorization"));
    (void)base64Decoded(whole.headerField("Authorization"));
    (void)HTTPConnection::parseParams(whole.url());
    return 0;
}
