// SPDX-License-Identifier: GPL-3.0-or-later
// What a writer keeps while it walks the tree: one scratch pad per export, shared by all of its files.
#pragma once

#include "engine/Engine.h"
#include "engine/Metadata.h"
#include "engine/References.h"
#include "engine/StringTable.h"

#include <memory>
#include <string>
#include <vector>

namespace tomelet::engine {

/// The notes of one kind: those defined, and those used in the order of their first use.
struct note_list
{
    string_table<footnote> hash;
    std::vector<footnote *> used;                          ///< number n is at n - 1
    std::vector<std::unique_ptr<footnote>> inline_to_free; ///< made at their use
    int being_printed = 0;                                 ///< the note that is being written, 0 for none
};

struct scratch_pad
{
    mmd_engine *engine;
    uint32_t extensions;
    uint16_t output_format;

    int padded = 2; ///< how many newlines stand at the end of the output, as the writer left them
    bool list_is_tight = false;
    bool close_para = true;                ///< the paragraph's closing tag is due
    int skip_token = 0;                    ///< how many of the next siblings to leave out
    const token *open_para = nullptr;      ///< the paragraph that is being written
    const token *back_link_para = nullptr; ///< the last paragraph of the note that is being written

    string_table<link> link_hash;
    string_table<const meta> meta_hash;
    note_list footnotes;
    note_list citations;
    note_list glossary;
    note_list abbreviations;
    std::string bibtex_file;

    uint32_t random_seed_base = 0;        ///< for the numbers of footnotes, with EXT_RANDOM_FOOT
    uint32_t random_seed_base_labels = 0; ///< for the labels of headings, with EXT_RANDOM_LABELS

    uint16_t language;
    uint16_t quotes_lang;
    int base_header_level = 1;
    stack *header_stack; ///< all headings of the document, in order
    int recurse_depth = 0;

    bool in_table_header = false;
    size_t table_cell_count = 0;
    std::string table_alignment; ///< a letter for each column

    asset_table *asset_hash; ///< null until one is needed
    bool store_assets = false;
    bool remember_assets = false;

    [[nodiscard]] bool has(uint32_t extension) const { return (extensions & extension) != 0; }
    [[nodiscard]] bool is_compatible() const { return has(EXT_COMPATIBILITY); }
};

/// A pad filled with what the engine collected.
[[nodiscard]] scratch_pad scratch_pad_for(mmd_engine *engine, uint16_t format);
/// Carries out what metadata say of the output: heading levels, language, quotes, format, a complete
/// document.
void apply_metadata_settings(scratch_pad &scratch);
/// The value of a metadata key in label form, null without; of equal keys the first.
[[nodiscard]] const char *extract_metadata(const scratch_pad &scratch, std::string_view key);

/// Appends newlines until `count` stand at the end.
void pad(d_string *out, int count, scratch_pad &scratch);

/// The link that a bracket, or an image's bracket, stands for.
struct link_use
{
    const link *target = nullptr;    ///< null: an ordinary bracket
    std::unique_ptr<link> temporary; ///< holds an inline link
    int skip = 0;                    ///< 1: the next token belongs to it
};

[[nodiscard]] link_use mmd_parse_brackets(const char *source, const scratch_pad &scratch, const token *bracket);
[[nodiscard]] const link *extract_link_from_stack(const scratch_pad &scratch, std::string_view text);

/// What the use of a note comes to.
struct note_use
{
    footnote *note = nullptr; ///< null: there is none
    int number = 0;
    bool first = false; ///< its first use
};

/// The notes that the brackets stand for: found by their text, or made of it where the syntax allows.
[[nodiscard]] note_use footnote_from_bracket(const char *source, scratch_pad &scratch, token *bracket);
[[nodiscard]] note_use citation_from_bracket(const char *source, scratch_pad &scratch, token *bracket);
[[nodiscard]] note_use glossary_from_bracket(const char *source, scratch_pad &scratch, token *bracket);
[[nodiscard]] note_use abbreviation_from_bracket(const char *source, scratch_pad &scratch, token *bracket);

/// The label of a heading of the document.
[[nodiscard]] std::string header_label(const char *source, token *header, const scratch_pad &scratch);
/// The number in a footnote's anchors: its own, or a random one with EXT_RANDOM_FOOT.
[[nodiscard]] int footnote_anchor(const scratch_pad &scratch, int number);

/// Makes tokens of the abbreviations and glossary terms in the document's text.
void search_terms(mmd_engine *engine, const scratch_pad &scratch);

/// Reads a letter for each column from a table's separator line.
void read_table_column_alignments(const char *source, const token *table, scratch_pad &scratch);

/// True when a filter "{=format}" lets its text through to the format.
[[nodiscard]] bool raw_filter_text_matches(std::string_view filter, uint16_t format);

/// The words behind an opening fence, blanks cut; and whether a fence closes the block.
[[nodiscard]] std::string_view fence_info(const char *source, const token *block);
[[nodiscard]] bool fence_is_closed(const token *block);
/// The bytes between the fence lines.
[[nodiscard]] std::string_view fenced_text(const char *source, const token *block);

} // namespace tomelet::engine
