// SPDX-License-Identifier: GPL-3.0-or-later
// d_string: a growing byte string that always ends in a NUL which its length does not count. Bytes may be
// any, NUL included. Lengths and positions are in bytes.
#pragma once

#include <cstddef>
#include <cstring>

namespace tomelet::engine {

/// A length that means "up to the end": of the string, or for plain arrays up to the first NUL.
inline constexpr size_t to_the_end = static_cast<size_t>(-1);

struct d_string
{
    char *str;                      ///< the buffer, owned
    size_t currentStringBufferSize; ///< capacity in bytes
    size_t currentStringLength;     ///< length in bytes, without the terminator
};

/// A new string with the text up to its NUL; null counts as the empty text.
[[nodiscard]] d_string *d_string_new(const char *text);
/// Frees the record. With free_buffer the buffer goes too and the answer is null; otherwise the caller owns
/// it now and frees it with std::free.
char *d_string_free(d_string *string, bool free_buffer);

/// Appends a text; null on either side is ignored.
void d_string_append(d_string *string, const char *text);
/// Appends one byte; NUL is ignored.
void d_string_append_c(d_string *string, char byte);
/// Makes room for a total length of n bytes and the terminator.
void d_string_ensure(d_string *string, size_t n);
/// Appends bytes as they are, NUL included. A length of to_the_end, or one less, means up to the first NUL.
inline void d_string_append_c_array(d_string *string, const char *bytes, size_t length)
{
    if (!string || !bytes) return;
    if (length >= to_the_end - 1) length = std::strlen(bytes);
    const size_t new_length = string->currentStringLength + length;
    if (new_length >= string->currentStringBufferSize) d_string_ensure(string, new_length);
    std::memcpy(string->str + string->currentStringLength, bytes, length);
    string->currentStringLength = new_length;
    string->str[new_length] = '\0';
}
/// Appends what printf would print.
[[gnu::format(printf, 2, 3)]] void d_string_append_printf(d_string *string, const char *format, ...);
/// Inserts a text; a position past the end is the end.
void d_string_insert(d_string *string, size_t position, const char *text);
/// The same with a length, for bytes that may hold NUL.
void d_string_insert_c_array(d_string *string, size_t position, const char *bytes, size_t length);
/// Cuts a range out; a length that reaches past the end cuts the string at the position.
void d_string_erase(d_string *string, size_t position, size_t length);
/// Replaces each occurrence of search that starts inside the range and goes on behind what was inserted.
/// Returns by how many bytes the string grew (negative: shrank), 0 when nothing was found.
long d_string_replace_text_in_range(d_string *string, size_t position, size_t length, const char *search,
                                    const char *replacement);

} // namespace tomelet::engine
