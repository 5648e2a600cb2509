// SPDX-License-Identifier: GPL-3.0-or-later
// From line tokens to blocks: what the rules of the grammar do. Nested text (items, quotes, notes,
// definitions) loses its markers or one indent, its lines are classified anew, and the same line tokens are
// parsed again.
#pragma once

#include "engine/Token.h"

namespace tomelet::engine {

struct mmd_engine;

/// Parses the line tokens among the children of `chain`: the blocks take their place. Beyond the nesting
/// limit the lines stay as they are.
void mmd_parse_token_chain(mmd_engine *engine, token *chain);

/// Parses a range of the source, line by line. The result is a DOC_START_TOKEN over the blocks.
[[nodiscard]] token *parse_document(mmd_engine *engine, size_t start, size_t len);

/// Turns a block of line tokens into a block of inline tokens; metadata is stored instead, table lines become
/// rows, and the lines of code and HTML one plain token for each run of bytes that the source holds together.
void strip_line_tokens_from_block(mmd_engine *engine, token *block);

/// Frees the line end at the end of the children: no writer writes it.
void drop_last_line_end(token *parent);

// The actions of the grammar. Lines come as chains and go into the block that is returned.

/// Joins two chains.
token *chain(token *first, token *second);
/// A block is whole: its lines dissolve, and the document's own blocks go through the inline phases.
void finish_block(mmd_engine *engine, token *block);
/// A block over lines.
token *new_block(mmd_engine *engine, token *lines, uint16_t type);
/// A heading; it is remembered for labels and the contents list.
token *heading_block(mmd_engine *engine, token *lines, uint16_t type);
token *blockquote_block(mmd_engine *engine, token *lines);
/// A definition of a link, citation or abbreviation; it is remembered.
token *definition_block(mmd_engine *engine, token *lines, uint16_t type);
/// The same for footnotes and glossary entries, whose text is parsed into blocks.
token *note_block(mmd_engine *engine, token *lines, uint16_t type);
/// A term's definition of more than one line.
token *long_definition(mmd_engine *engine, token *first_line, token *tail);
token *terms_and_definitions(token *terms, token *definitions);
token *fenced_code_block(mmd_engine *engine, token *lines);
token *closed_fence(token *lines, token *closing_line);
/// A list of items, loose when a paragraph of an item but the last asks for it.
token *list_block(mmd_engine *engine, token *items, uint16_t type);
/// An item of one line, which stays as it is.
token *short_list_item(mmd_engine *engine, token *line);
token *list_item(mmd_engine *engine, token *first_line, token *more_lines, uint16_t type);
/// A paragraph, or HTML when it begins like it.
token *paragraph_block(mmd_engine *engine, token *lines);
token *table_block(mmd_engine *engine, token *parts);

/// The name of a terminal of the grammar, for error messages.
[[nodiscard]] const char *line_type_name(int type);

/// Runs the generated parser (Grammar.y) over the lines that next_line gives, each alone, until it gives
/// null. Returns the chain of blocks, null without lines.
[[nodiscard]] token *parse_lines(mmd_engine *engine, token *(*next_line)(void *from), void *from);

} // namespace tomelet::engine
