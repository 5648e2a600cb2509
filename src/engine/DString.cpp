// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/DString.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tomelet::engine {

namespace {

constexpr size_t first_capacity = 1024;
/// Above this the buffer no longer doubles but grows by this much.
constexpr size_t largest_step = 104857600;

// The one failure in the engine that nobody can be told of: without memory there is nothing to go on with.
[[noreturn]] void out_of_memory(size_t size)
{
    std::fprintf(stderr, "Error reallocating memory for d_string. Current buffer size %lu.\n",
                 static_cast<unsigned long>(size));
    std::exit(1);
}

void terminate(d_string *string, size_t length)
{
    string->currentStringLength = length;
    string->str[length] = '\0';
}

void replace_range(d_string *string, size_t position, size_t length, std::string_view text)
{
    const size_t old_length = string->currentStringLength;
    const size_t new_length = old_length - length + text.size();
    d_string_ensure(string, new_length);
    std::memmove(string->str + position + text.size(), string->str + position + length, old_length - position - length);
    if (!text.empty()) std::memcpy(string->str + position, text.data(), text.size());
    terminate(string, new_length);
}

} // namespace

d_string *d_string_new(const char *text)
{
    const size_t length = text ? std::strlen(text) : 0;
    size_t capacity = first_capacity;
    while (capacity < length + 1) capacity *= 2;
    auto *string = static_cast<d_string *>(std::malloc(sizeof(d_string)));
    char *buffer = static_cast<char *>(std::malloc(capacity));
    if (!string || !buffer) out_of_memory(capacity);
    *string = {buffer, capacity, 0};
    if (length > 0) std::memcpy(buffer, text, length);
    terminate(string, length);
    return string;
}

char *d_string_free(d_string *string, bool free_buffer)
{
    if (!string) return nullptr;
    char *buffer = string->str;
    std::free(string);
    if (!free_buffer) return buffer;
    std::free(buffer);
    return nullptr;
}

void d_string_ensure(d_string *string, size_t n)
{
    if (n + 1 <= string->currentStringBufferSize) return;
    size_t capacity = string->currentStringBufferSize;
    while (n + 1 > capacity) capacity += capacity > largest_step ? largest_step : capacity;
    char *buffer = static_cast<char *>(std::realloc(string->str, capacity));
    if (!buffer) out_of_memory(string->currentStringBufferSize);
    string->str = buffer;
    string->currentStringBufferSize = capacity;
}

void d_string_append(d_string *string, const char *text)
{
    if (string && text) d_string_append_c_array(string, text, std::strlen(text));
}

void d_string_append_c(d_string *string, char byte)
{
    if (!string || byte == '\0') return;
    const size_t length = string->currentStringLength;
    d_string_ensure(string, length + 1);
    string->str[length] = byte;
    terminate(string, length + 1);
}

void d_string_append_printf(d_string *string, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    va_list measured;
    va_copy(measured, args);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (string && length > 0) {
        const size_t old_length = string->currentStringLength;
        d_string_ensure(string, old_length + static_cast<size_t>(length));
        std::vsnprintf(string->str + old_length, static_cast<size_t>(length) + 1, format, args);
        string->currentStringLength = old_length + static_cast<size_t>(length);
    }
    va_end(args);
}

void d_string_insert(d_string *string, size_t position, const char *text)
{
    if (text) d_string_insert_c_array(string, position, text, std::strlen(text));
}

void d_string_insert_c_array(d_string *string, size_t position, const char *bytes, size_t length)
{
    if (!string || !bytes || length == 0) return;
    if (position > string->currentStringLength) position = string->currentStringLength;
    replace_range(string, position, 0, {bytes, length});
}

void d_string_erase(d_string *string, size_t position, size_t length)
{
    if (!string || position > string->currentStringLength || length == 0) return;
    const size_t behind = string->currentStringLength - position;
    replace_range(string, position, length < behind ? length : behind, {});
}

long d_string_replace_text_in_range(d_string *string, size_t position, size_t length, const char *search,
                                    const char *replacement)
{
    if (!string || !search || !replacement || *search == '\0') return 0;
    if (position > string->currentStringLength) return 0;
    const size_t behind = string->currentStringLength - position;
    size_t stop = position + (length < behind ? length : behind);
    const std::string_view needle(search);
    const std::string_view text(replacement);
    const long step = static_cast<long>(text.size()) - static_cast<long>(needle.size());
    long change = 0;
    for (;;) {
        const std::string_view all(string->str, string->currentStringLength);
        const size_t found = all.find(needle, position);
        if (found >= stop) return change; // also when nothing was found
        replace_range(string, found, needle.size(), text);
        position = found + text.size();
        stop = static_cast<size_t>(static_cast<long>(stop) + step);
        change += step;
    }
}

} // namespace tomelet::engine
