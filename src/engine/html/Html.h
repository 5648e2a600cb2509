// SPDX-License-Identifier: GPL-3.0-or-later
// The HTML writer. Its text is exact: style sheets and what works on the result rely on it. `padded` of the
// scratch pad says how many newlines the writer last left at the end; a block asks for two before it and sets
// it to none behind it, so that blocks stand one blank line apart without doubling.
#pragma once

#include "engine/DString.h"
#include "engine/Token.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tomelet::engine {

struct scratch_pad;
struct link;

/// The whole document: its head if it is to be complete, the text, the lists of notes, the end.
void mmd_export_html(d_string *out, const char *source, token *tree, scratch_pad &scratch);

/// A chain of tokens, or one; `raw` as code, `math` as the inside of a formula.
void mmd_export_token_tree_html(d_string *out, const char *source, token *t, scratch_pad &scratch);
void mmd_export_token_html(d_string *out, const char *source, token *t, scratch_pad &scratch);
void mmd_export_token_tree_html_raw(d_string *out, const char *source, const token *t, scratch_pad &scratch);
void mmd_export_token_html_raw(d_string *out, const char *source, const token *t, scratch_pad &scratch);
void mmd_export_token_tree_html_math(d_string *out, const char *source, const token *t, scratch_pad &scratch);
void mmd_export_token_html_math(d_string *out, const char *source, const token *t, scratch_pad &scratch);

/// The tokens of blocks, and those within a text. False when the token is none of them.
bool export_block_html(d_string *out, const char *source, token *t, scratch_pad &scratch);
bool export_inline_html(d_string *out, const char *source, token *t, scratch_pad &scratch);

// Documents.
void mmd_start_complete_html(d_string *out, const char *source, scratch_pad &scratch);
void mmd_end_complete_html(d_string *out, const char *source, scratch_pad &scratch);

// Tables and contents.
void export_table_html(d_string *out, const char *source, token *table, scratch_pad &scratch);
void export_table_row_html(d_string *out, const char *source, token *row, scratch_pad &scratch);
void export_table_cell_html(d_string *out, const char *source, token *cell, scratch_pad &scratch);
void export_toc_html(d_string *out, const char *source, const token *block, scratch_pad &scratch);
/// A list of the headings from number `counter` on that lie between min and max, as long as they are not
/// above `level`.
void mmd_export_toc_entry_html(d_string *out, const char *source, scratch_pad &scratch, size_t &counter, int level,
                               int min, int max);

// Links and images. `bracket` is the token of the bracket.
void export_bracket_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch);
void export_image_bracket_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch);
void export_angle_html(d_string *out, const char *source, token *angle, scratch_pad &scratch);
void mmd_export_link_html(d_string *out, const char *source, token *bracket, const link &target, scratch_pad &scratch);
void mmd_export_image_html(d_string *out, const char *source, token *bracket, const link &target, scratch_pad &scratch,
                           bool is_figure);
/// The bracket's delimiters become empty, so that its children are what it says.
void empty_delimiters(token *pair);

// Notes: where they are used, the link back from their last paragraph, their lists.
void export_footnote_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch);
/// With a locator when there is one: "[p. 3][#key]".
void export_citation_html(d_string *out, const char *source, token *bracket, token *locator, scratch_pad &scratch);
void export_glossary_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch);
void export_abbreviation_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch);
void export_back_link_html(d_string *out, const scratch_pad &scratch);
void mmd_export_footnote_list_html(d_string *out, const char *source, scratch_pad &scratch);
void mmd_export_glossary_list_html(d_string *out, const char *source, scratch_pad &scratch);
void mmd_export_citation_list_html(d_string *out, const char *source, scratch_pad &scratch);

// CriticMarkup.
bool export_critic_html(d_string *out, const char *source, token *t, scratch_pad &scratch);

// Text.
/// A byte, escaped; a line end as a break with line_breaks; ASCII as a random reference when `random` is a
/// generator.
void mmd_print_char_html(d_string *out, char byte, uint64_t *obfuscate, bool line_breaks);
void mmd_print_string_html(d_string *out, std::string_view text, uint64_t *obfuscate, bool line_breaks);
/// A dash, an ellipsis, an apostrophe or a quote in the style of the language.
void mmd_print_localized_char_html(d_string *out, uint16_t type, const scratch_pad &scratch);
/// The text without markup, escaped.
void print_plain_text_html(d_string *out, const char *source, const token *t, scratch_pad &scratch);

inline void print(d_string *out, std::string_view text)
{
    d_string_append_c_array(out, text.data(), text.size());
}

/// A number in decimal.
void print_number(d_string *out, int number);

} // namespace tomelet::engine
