// SPDX-License-Identifier: GPL-3.0-or-later
// Character classes of single bytes. Bytes from 128 up are in no class, so that the bytes of a multi-byte
// character count neither as space nor as punctuation nor as letter.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tomelet::engine {

enum char_class : uint8_t {
    CHAR_WHITESPACE = 1,  ///< space and tab
    CHAR_PUNCTUATION = 2, ///< printable ASCII that is neither letter nor digit
    CHAR_ALPHA = 4,       ///< ASCII letters
    CHAR_DIGIT = 8,       ///< ASCII digits
    CHAR_LINE_ENDING = 16 ///< NUL, LF and CR
};

constexpr std::array<uint8_t, 256> make_char_classes()
{
    std::array<uint8_t, 256> table{};
    for (int c = '!'; c <= '~'; ++c) table[static_cast<size_t>(c)] = CHAR_PUNCTUATION;
    for (int c = '0'; c <= '9'; ++c) table[static_cast<size_t>(c)] = CHAR_DIGIT;
    for (int c = 'a'; c <= 'z'; ++c) table[static_cast<size_t>(c)] = CHAR_ALPHA;
    for (int c = 'A'; c <= 'Z'; ++c) table[static_cast<size_t>(c)] = CHAR_ALPHA;
    table[' '] = table['\t'] = CHAR_WHITESPACE;
    table['\0'] = table['\n'] = table['\r'] = CHAR_LINE_ENDING;
    return table;
}

inline constexpr std::array<uint8_t, 256> char_classes = make_char_classes();

[[nodiscard]] constexpr bool char_is(char c, int classes)
{
    return (char_classes[static_cast<unsigned char>(c)] & classes) != 0;
}
[[nodiscard]] constexpr bool char_is_whitespace(char c)
{
    return char_is(c, CHAR_WHITESPACE);
}
[[nodiscard]] constexpr bool char_is_punctuation(char c)
{
    return char_is(c, CHAR_PUNCTUATION);
}
[[nodiscard]] constexpr bool char_is_digit(char c)
{
    return char_is(c, CHAR_DIGIT);
}
[[nodiscard]] constexpr bool char_is_alphanumeric(char c)
{
    return char_is(c, CHAR_ALPHA | CHAR_DIGIT);
}
[[nodiscard]] constexpr bool char_is_line_ending(char c)
{
    return char_is(c, CHAR_LINE_ENDING);
}
[[nodiscard]] constexpr bool char_is_whitespace_or_line_ending(char c)
{
    return char_is(c, CHAR_WHITESPACE | CHAR_LINE_ENDING);
}
[[nodiscard]] constexpr bool char_is_whitespace_or_line_ending_or_punctuation(char c)
{
    return char_is(c, CHAR_WHITESPACE | CHAR_LINE_ENDING | CHAR_PUNCTUATION);
}
[[nodiscard]] constexpr char char_lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

} // namespace tomelet::engine
