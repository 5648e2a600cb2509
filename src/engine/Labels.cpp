// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Labels.h"

#include "engine/Chars.h"
#include "engine/Engine.h"
#include "engine/Lines.h"

namespace tomelet::engine {

namespace {

bool is_continuation_byte(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

bool is_folded_space(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool is_heading_marker(const token *t)
{
    return t->type >= MARKER_H1 && t->type <= MARKER_H6;
}

// What may stand before or behind a heading's text and is not part of it.
bool is_around_heading(const token *t, const char *source)
{
    return is_heading_marker(t) || token_is_indent(t) || t->type == TEXT_EMPTY || t->type == TEXT_NL ||
           t->type == TEXT_LINEBREAK || t->type == MARKER_LIST_BULLET || t->type == MARKER_LIST_ENUMERATOR ||
           token_is_one_blank(t, source);
}

} // namespace

std::string label_from_string(std::string_view text)
{
    std::string label;
    label.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (i + 1 < text.size() && is_continuation_byte(text[i + 1])) {
            label += c;
            while (i + 1 < text.size() && is_continuation_byte(text[i + 1])) label += text[++i];
        } else if (char_is_alphanumeric(c)) {
            label += char_lower(c);
        } else if (c == '-' || c == '.' || c == ':' || c == '_') {
            label += c;
        }
    }
    return label;
}

std::string clean_string(std::string_view text, bool lowercase)
{
    std::string clean;
    clean.reserve(text.size());
    bool blank_due = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size() && (text[i + 1] == '\n' || text[i + 1] == '\r')) {
            clean += '\n';
            blank_due = false;
            while (i + 1 < text.size() && is_folded_space(text[i + 1])) ++i;
        } else if (is_folded_space(c)) {
            blank_due = !clean.empty();
        } else {
            if (blank_due) clean += ' ';
            blank_due = false;
            clean += lowercase ? char_lower(c) : c;
        }
    }
    return clean;
}

std::string_view token_text(const char *source, const token *t)
{
    return {source + t->start, t->len};
}

std::string_view text_inside_pair(const char *source, const token *pair)
{
    const token *opener = pair->child;
    if (!opener) return token_text(source, pair);
    const size_t closer_len = opener->mate ? opener->mate->len : 1;
    return {source + token_end(opener), pair->len - opener->len - closer_len};
}

std::string label_from_token(const char *source, const token *t)
{
    return label_from_string(token_text(source, t));
}

std::string clean_inside_pair(const char *source, const token *pair, bool lowercase)
{
    return clean_string(text_inside_pair(source, pair), lowercase);
}

std::string_view header_text(const char *source, const token *header)
{
    const token *first = header->child;
    while (first && is_around_heading(first, source)) first = first->next;
    if (!first) return {};
    const token *last = header->child->tail;
    while (last != first && is_around_heading(last, source)) last = last->prev;
    return {source + first->start, token_end(last) - first->start};
}

token *manual_label_from_header(token *header, const char *source)
{
    if (!header->child) return nullptr;
    token *t = header->child->tail;
    while (t && is_around_heading(t, source)) t = t->prev;
    if (!t) return nullptr;
    if (t->type == MANUAL_LABEL) return t;
    if (t->type != PAIR_BRACKET) return nullptr;
    // An odd number of brackets before it pairs them off as reference links, this one included; and a bracket
    // that is all of the heading is its text.
    size_t brackets = 0;
    for (const token *before = t->prev; before && before->type == PAIR_BRACKET; before = before->prev) ++brackets;
    if (brackets % 2 == 1 || header_text(source, header).data() == source + t->start) return nullptr;
    t->type = MANUAL_LABEL;
    return t;
}

std::string label_from_header(const char *source, token *header, uint32_t extensions, uint32_t seed, size_t index)
{
    if (const token *manual = manual_label_from_header(header, source))
        return label_from_string(text_inside_pair(source, manual));
    if (extensions & EXT_RANDOM_LABELS) return std::to_string(random_number_for_seed(seed + index));
    return label_from_string(header_text(source, header));
}

int header_level(const token *header)
{
    if (header->type >= BLOCK_H1 && header->type <= BLOCK_H6) return header->type - BLOCK_H1 + 1;
    return header->type == BLOCK_SETEXT_1 ? 1 : header->type == BLOCK_SETEXT_2 ? 2 : 0;
}

// The finalizer of SplitMix64 (Steele, Lea, Flood: Fast splittable pseudorandom number generators, 2014).
static uint64_t mix(uint64_t z)
{
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

int random_number_for_seed(uint64_t seed)
{
    return static_cast<int>(mix(seed + 0x9E3779B97F4A7C15ULL) % 32000) + 1;
}

uint64_t next_random(uint64_t &state)
{
    return mix(state += 0x9E3779B97F4A7C15ULL);
}

} // namespace tomelet::engine
