// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/MD5.h"

#include <md5.h>

namespace tomelet::http {

std::string md5Hex(std::string_view bytes)
{
    char digest[MD5_DIGEST_STRING_LENGTH];
    MD5Data(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size(), digest);
    return digest;
}

} // namespace tomelet::http
