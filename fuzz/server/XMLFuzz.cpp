// SPDX-License-Identifier: GPL-3.0-or-later
//
// The XML bodies that WebDAV clients send.
#include "server/Core/Log.h"
#include "server/WebDAV/XMLBody.h"

#include <cstdlib>

using namespace tomelet::http;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool quiet = (setLogSink([](const std::string &) {}), true);
    const std::string_view body(reinterpret_cast<const char *>(data), size);
    const unsigned selected = selectedProperties(body);
    if (!quiet || selected == 0 || selected > AllProperties) std::abort();
    (void)parseLockInfo(body);
    return 0;
}
