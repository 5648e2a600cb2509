// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/Text.h"

#include <algorithm>
#include <limits>

namespace tomelet::http {

namespace {

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

int digitValue(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    const char low = lowered(c);
    return low >= 'a' && low <= 'f' ? low - 'a' + 10 : 16;
}

std::optional<std::uint64_t> parseNumber(std::string_view text, int base)
{
    constexpr auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (text.empty()) return std::nullopt;
    std::uint64_t value = 0;
    for (const char c : text) {
        const int digit = digitValue(c);
        if (digit >= base) return std::nullopt;
        if (value > (limit - static_cast<std::uint64_t>(digit)) / static_cast<std::uint64_t>(base)) return std::nullopt;
        value = value * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(digit);
    }
    return value;
}

// The length of the well-formed sequence at the front of the bytes, 0 when there is none.
std::size_t sequenceLength(std::string_view bytes)
{
    const auto at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char first = at(0);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || bytes.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((at(i) & 0xC0) != 0x80) return 0;
    const bool tooLong = (first == 0xE0 && at(1) < 0xA0) || (first == 0xF0 && at(1) < 0x90);
    const bool surrogate = first == 0xED && at(1) >= 0xA0;
    const bool beyond = first == 0xF4 && at(1) >= 0x90;
    return tooLong || surrogate || beyond ? 0 : length;
}

bool standsInPath(char c)
{
    constexpr std::string_view marks = "-_.!~*'();/:@=$,";
    return (c >= '0' && c <= '9') || (lowered(c) >= 'a' && lowered(c) <= 'z') || marks.find(c) != marks.npos;
}

int base64Value(char c)
{
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto position = alphabet.find(c);
    return position == alphabet.npos ? -1 : static_cast<int>(position);
}

} // namespace

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lowered(x) == lowered(y); });
}

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::optional<std::uint64_t> parseDecimal(std::string_view text)
{
    return parseNumber(text, 10);
}

std::optional<std::uint64_t> parseHexadecimal(std::string_view text)
{
    return parseNumber(text, 16);
}

bool isValidUTF8(std::string_view bytes)
{
    while (!bytes.empty()) {
        const std::size_t length = sequenceLength(bytes);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        if (i + 2 >= text.size()) return std::nullopt;
        const int high = digitValue(text[i + 1]);
        const int low = digitValue(text[i + 2]);
        if (high > 15 || low > 15) return std::nullopt;
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return decoded;
}

std::string percentEscaped(std::string_view path)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string escaped;
    escaped.reserve(path.size() + path.size() / 4);
    for (const char c : path) {
        if (standsInPath(c)) {
            escaped += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        escaped += {'%', digits[byte >> 4], digits[byte & 15]};
    }
    return escaped;
}

std::string escapedForXML(std::string_view text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        if (c == '&') escaped += "&amp;";
        else if (c == '<') escaped += "&lt;";
        else if (c == '>') escaped += "&gt;";
        else if (c == '"') escaped += "&quot;";
        else if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n') escaped += '?';
        else escaped += c;
    }
    return escaped;
}

std::optional<std::string> base64Decoded(std::string_view text)
{
    while (!text.empty() && text.back() == '=') text.remove_suffix(1);
    std::string decoded;
    unsigned bits = 0;
    int count = 0;
    for (const char c : text) {
        const int value = base64Value(c);
        if (value < 0) return std::nullopt;
        bits = (bits << 6 | static_cast<unsigned>(value)) & 0xFFFFFF;
        count += 6;
        if (count < 8) continue;
        count -= 8;
        decoded += static_cast<char>(bits >> count & 0xFF);
    }
    return decoded;
}

bool equalsInConstantTime(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) return false;
    volatile unsigned char difference = 0;
    for (std::size_t i = 0; i < a.size(); ++i) difference = static_cast<unsigned char>(difference | (a[i] ^ b[i]));
    return difference == 0;
}

std::string printable(std::string_view text)
{
    std::string shown(text.substr(0, 500));
    std::replace_if(
        shown.begin(), shown.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, '?');
    return shown;
}

} // namespace tomelet::http
