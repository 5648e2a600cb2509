// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/StringTable.h"

namespace tomelet::engine {

static void mix(uint32_t &a, uint32_t &b, uint32_t &c)
{
    a = (a - b - c) ^ (c >> 13);
    b = (b - c - a) ^ (a << 8);
    c = (c - a - b) ^ (b >> 13);
    a = (a - b - c) ^ (c >> 12);
    b = (b - c - a) ^ (a << 16);
    c = (c - a - b) ^ (b >> 5);
    a = (a - b - c) ^ (c >> 3);
    b = (b - c - a) ^ (a << 10);
    c = (c - a - b) ^ (b >> 15);
}

// Up to four bytes as a number, the first the lowest.
static uint32_t word(std::string_view text, size_t at)
{
    uint32_t value = 0;
    for (size_t i = 0; i < 4 && at + i < text.size(); ++i)
        value |= static_cast<uint32_t>(static_cast<unsigned char>(text[at + i])) << (8 * i);
    return value;
}

size_t text_hash::operator()(std::string_view text) const
{
    constexpr uint32_t golden_ratio = 0x9E3779B9;
    uint32_t a = golden_ratio;
    uint32_t b = golden_ratio;
    uint32_t c = 0xFEEDBEEF;
    for (size_t at = 0; at < text.size(); at += 12) {
        a += word(text, at);
        b += word(text, at + 4);
        c += word(text, at + 8);
        mix(a, b, c);
    }
    c += static_cast<uint32_t>(text.size());
    mix(a, b, c);
    return c;
}

} // namespace tomelet::engine
