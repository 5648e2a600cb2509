// SPDX-License-Identifier: GPL-3.0-or-later
// The forms of text under which definitions are found and headings are linked to. All are made from the
// source, never from the rendered text.
#pragma once

#include "engine/Token.h"

#include <string>
#include <string_view>

namespace tomelet::engine {

struct mmd_engine;
struct scratch_pad;

/// The label form: ASCII letters in lower case, digits, "-", ".", ":", "_" and whole multi-byte characters;
/// all else goes. label_from_string("Über uns: 1.") is "Überuns:1.".
[[nodiscard]] std::string label_from_string(std::string_view text);

/// Runs of white space become one blank, those at the ends go; a backslash before a line end becomes a
/// newline. With lowercase, ASCII letters are lowered.
[[nodiscard]] std::string clean_string(std::string_view text, bool lowercase);

/// The bytes of a token; they point into the source.
[[nodiscard]] std::string_view token_text(const char *source, const token *t);
/// The bytes inside a pair, without its delimiters; a token without children is all inside.
[[nodiscard]] std::string_view text_inside_pair(const char *source, const token *pair);

[[nodiscard]] std::string label_from_token(const char *source, const token *t);
[[nodiscard]] std::string clean_inside_pair(const char *source, const token *pair, bool lowercase);

/// The bytes of a heading's text: without markers, underline and what a list put before it.
[[nodiscard]] std::string_view header_text(const char *source, const token *header);
/// The bracket behind a heading's text that gives its label, null without. It becomes a MANUAL_LABEL, which
/// is not written.
token *manual_label_from_header(token *header, const char *source);
/// The label of heading number `index` of the document: the manual one, a random one (from the seed and the
/// index, with EXT_RANDOM_LABELS), or the label form of its text.
[[nodiscard]] std::string label_from_header(const char *source, token *header, uint32_t extensions, uint32_t seed,
                                            size_t index);
/// 1 to 6; 0 for what is no heading.
[[nodiscard]] int header_level(const token *header);

/// A number from 1 to 32000 that depends on the seed alone.
[[nodiscard]] int random_number_for_seed(uint64_t seed);
/// The next number of a generator.
[[nodiscard]] uint64_t next_random(uint64_t &state);

} // namespace tomelet::engine
