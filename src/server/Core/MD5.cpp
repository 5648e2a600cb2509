// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/MD5.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace tomelet::http {

namespace {

using State = std::array<std::uint32_t, 4>;

constexpr std::size_t blockSize = 64;

// RFC 1321, 3.4: the whole part of 2^32 * |sin(i + 1)|.
constexpr std::uint32_t sines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};
constexpr int shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

template <int Round>
std::uint32_t mixed(std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    if constexpr (Round == 0)
        return (b & c) | (~b & d);
    else if constexpr (Round == 1)
        return (b & d) | (c & ~d);
    else if constexpr (Round == 2)
        return b ^ c ^ d;
    else
        return c ^ (b | ~d);
}

template <int Round>
constexpr int wordIndex(int step)
{
    constexpr int factors[] = {1, 5, 3, 7};
    constexpr int starts[] = {0, 1, 5, 0};
    return (factors[Round] * step + starts[Round]) % 16;
}

template <int Round>
void addRound(State &state, const std::uint32_t (&words)[16])
{
    auto [a, b, c, d] = state;
    for (int i = 0; i < 16; ++i) {
        const std::uint32_t sum =
            a + mixed<Round>(b, c, d) + sines[16 * Round + i] + words[wordIndex<Round>(i)];
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, shifts[Round][i % 4]);
    }
    state = {a, b, c, d};
}

void addBlock(State &state, const unsigned char *block)
{
    std::uint32_t words[16];
    for (int i = 0; i < 16; ++i)
        words[i] = static_cast<std::uint32_t>(block[4 * i]) |
                   static_cast<std::uint32_t>(block[4 * i + 1]) << 8 |
                   static_cast<std::uint32_t>(block[4 * i + 2]) << 16 |
                   static_cast<std::uint32_t>(block[4 * i + 3]) << 24;
    State mixedState = state;
    addRound<0>(mixedState, words);
    addRound<1>(mixedState, words);
    addRound<2>(mixedState, words);
    addRound<3>(mixedState, words);
    for (std::size_t i = 0; i < state.size(); ++i)
        state[i] += mixedState[i];
}

std::string hexOfState(const State &state)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string hex;
    for (const std::uint32_t word : state)
        for (int byte = 0; byte < 4; ++byte) {
            hex += digits[word >> (8 * byte + 4) & 15];
            hex += digits[word >> (8 * byte) & 15];
        }
    return hex;
}

} // namespace

std::string md5Hex(std::string_view bytes)
{
    State state = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    const std::uint64_t bitCount = static_cast<std::uint64_t>(bytes.size()) * 8;
    const auto *data = reinterpret_cast<const unsigned char *>(bytes.data());
    std::size_t rest = bytes.size();
    for (; rest >= blockSize; rest -= blockSize, data += blockSize)
        addBlock(state, data);

    // The end: what is left, a one bit, zeros, and the length in bits in the last eight bytes of a block.
    unsigned char tail[2 * blockSize] = {};
    if (rest > 0) std::memcpy(tail, data, rest);
    tail[rest] = 0x80;
    const std::size_t size = rest + 9 > blockSize ? 2 * blockSize : blockSize;
    for (std::size_t i = 0; i < 8; ++i)
        tail[size - 8 + i] = static_cast<unsigned char>(bitCount >> (8 * i));
    for (std::size_t at = 0; at < size; at += blockSize)
        addBlock(state, tail + at);
    return hexOfState(state);
}

} // namespace tomelet::http
