// SPDX-License-Identifier: GPL-3.0-or-later
// What a document defines and refers to: links and notes.
#pragma once

#include "engine/Token.h"

#include <string>
#include <string_view>
#include <vector>

namespace tomelet::engine {

struct mmd_engine;

enum link_flags : int {
    LINK_INLINE = 1,    ///< stands where it is used
    LINK_REFERENCE = 4, ///< defined elsewhere
    LINK_HEADER = 8     ///< made for a heading or a table
};

struct link_attribute
{
    std::string key;
    std::string value;
};

struct link
{
    const token *label = nullptr; ///< where it is defined; null for inline links
    std::string label_text;       ///< label form
    std::string clean_text;       ///< cleaned and lowered
    std::string url;
    std::string title;
    std::vector<link_attribute> attributes;
    int flags = 0;
};

/// A footnote, citation, glossary entry or abbreviation.
struct footnote
{
    const token *label = nullptr; ///< null for notes made at their use
    std::string label_text;       ///< label form; of an abbreviation its spelling
    std::string clean_text;       ///< cleaned: lowered, but a glossary's term as it is spelt
    std::string expansion;        ///< of an abbreviation
    token *content = nullptr;     ///< blocks
    int count = -1;               ///< its number once it is used
    bool free_para = false;       ///< `content` is a paragraph made for this note
};

/// Reads "destination "title" key=value" into the link. `text` is what stands between the parentheses of a
/// link, or behind the colon of a definition. Returns how much of it was read, with the blanks behind it;
/// npos when this is no destination.
[[nodiscard]] size_t parse_link_target(std::string_view text, link &result);

/// Turns the collected definition blocks into records on the engine's stacks and takes them out of the
/// document.
void process_definitions(mmd_engine *engine);
/// Adds a link for each heading, and for each table with a caption.
void store_header_labels(mmd_engine *engine);
void store_table_labels(mmd_engine *engine);

/// The caption of a table: the bracket that is all of the paragraph behind it. Null without. `label` becomes
/// the second bracket, or the caption itself.
[[nodiscard]] token *table_caption(const token *table, token **label);

} // namespace tomelet::engine
