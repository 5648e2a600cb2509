// SPDX-License-Identifier: GPL-3.0-or-later
// Small readings of protocol text. All of them work on bytes; "case" means ASCII case, as HTTP has it (RFC
// 9110, 5.1).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tomelet::http {

[[nodiscard]] bool equalsIgnoringCase(std::string_view a, std::string_view b);
/// Takes blanks and tabs off both ends; the result points into the argument.
[[nodiscard]] std::string_view trimmed(std::string_view text);
/// A number of nothing but decimal digits, at most 2^63 - 1; anything else, an empty text included, gives
/// nothing.
[[nodiscard]] std::optional<std::uint64_t> parseDecimal(std::string_view text);
/// As parseDecimal, of hexadecimal digits in either case.
[[nodiscard]] std::optional<std::uint64_t> parseHexadecimal(std::string_view text);
/// True for well-formed UTF-8 (RFC 3629): no overlong forms, no surrogates, nothing past U+10FFFF.
[[nodiscard]] bool isValidUTF8(std::string_view bytes);
/// The bytes with every %XX replaced; nothing when a "%" is not followed by two hexadecimal digits.
[[nodiscard]] std::optional<std::string> percentDecoded(std::string_view text);
/// Escapes what may not stand in the path of a URL as it is, and "<&>?+" as well; "/" stays.
[[nodiscard]] std::string percentEscaped(std::string_view path);
/// Replaces & < > and the quotes by entities, and characters that XML knows no form for by "?".
[[nodiscard]] std::string escapedForXML(std::string_view text);
/// Base64 of RFC 4648 with or without padding; nothing for any other character.
[[nodiscard]] std::optional<std::string> base64Decoded(std::string_view text);
/// Compares in a time that depends on the lengths alone, so that a secret cannot be guessed byte by byte.
[[nodiscard]] bool equalsInConstantTime(std::string_view a, std::string_view b);
/// The text with control characters shown as "?", cut to 500 bytes: what a client sent goes into a log line
/// so.
[[nodiscard]] std::string printable(std::string_view text);

} // namespace tomelet::http
