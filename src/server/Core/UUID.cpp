// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/UUID.h"

#include <cstdio>
#include <random>

#include <sys/random.h>

namespace tomelet::http {

namespace {

void fillRandom(unsigned char (&bytes)[16])
{
    // Up to 256 bytes come whole or not at all; a kernel without the call has /dev/urandom behind
    // random_device.
    if (getrandom(bytes, sizeof bytes, 0) == static_cast<ssize_t>(sizeof bytes)) return;
    std::random_device device;
    for (unsigned char &byte : bytes) byte = static_cast<unsigned char>(device());
}

} // namespace

std::string makeUUID()
{
    unsigned char b[16];
    fillRandom(b);
    b[6] = static_cast<unsigned char>((b[6] & 0x0F) | 0x40);
    b[8] = static_cast<unsigned char>((b[8] & 0x3F) | 0x80);
    char text[37];
    std::snprintf(text, sizeof text, "%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X", b[0], b[1],
                  b[2], b[3], b[4], b[5], b[6], b[7], b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
    return text;
}

} // namespace tomelet::http
