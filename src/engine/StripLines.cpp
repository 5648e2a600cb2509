// SPDX-License-Identifier: GPL-3.0-or-later
// The second half of a block's making: its line tokens dissolve, and what they held moves up into the block.
#include "engine/Blocks.h"
#include "engine/Chars.h"
#include "engine/Engine.h"
#include "engine/Lines.h"
#include "engine/Metadata.h"

namespace tomelet::engine {

namespace {

bool is_line(const token *t)
{
    return t->type <= LINE_START_COMMENT;
}

bool is_indent(const token *t)
{
    return t->type == INDENT_TAB || t->type == INDENT_SPACE;
}

void remove_leading_non_indent(token *line)
{
    if (line->child && line->child->type == NON_INDENT_SPACE) token_remove_first_child(line);
}

void move_children_up(token *block, token *line)
{
    if (line->child) token_append_child(block, line->child);
    line->child = nullptr;
    token_free(line);
}

// Bytes that no later phase looks into: one plain token for all that lies side by side in the source.
void append_verbatim(mmd_engine *engine, token *block, size_t start, size_t end)
{
    token *last = block->child ? block->child->tail : nullptr;
    if (last && last->type == TEXT_PLAIN && token_end(last) == start) last->len = end - last->start;
    else if (end > start) token_append_child(block, token_new(engine->arena, TEXT_PLAIN, start, end - start));
}

void strip_code_or_html_line(mmd_engine *engine, token *block, token *line)
{
    if (block->type == BLOCK_CODE_INDENTED) {
        remove_leading_non_indent(line);
        if (line->child && is_indent(line->child)) token_remove_first_child(line);
    }
    token *first = line->child;
    const size_t end = token_end(line);
    if (first && first->type == CODE_FENCE)
        token_append_child(block, token_new(engine->arena, CODE_FENCE, first->start, end - first->start));
    else if (first) append_verbatim(engine, block, first->start, end);
    line->next = nullptr;
    token_tree_free(line);
}

// Folds what stands between the pipes of a row into cells.
void cut_into_cells(token *row)
{
    token *first = nullptr;
    token *last = nullptr;
    for (token *t = row->child; t; t = t->next) {
        if (t->type == PIPE) {
            t->type = TABLE_DIVIDER;
            if (first) token_prune_graft(first, last, TABLE_CELL);
            first = nullptr;
        } else if (t->type != TEXT_NL && t->type != TEXT_LINEBREAK) {
            if (!first) first = t;
            last = t;
        }
    }
    if (first) token_prune_graft(first, last, TABLE_CELL);
}

void strip_row(token *block, token *row)
{
    if (row->type == LINE_TABLE || block->type == BLOCK_TABLE_SECTION) row->type = TABLE_ROW;
    cut_into_cells(row);
    token_append_child(block, row);
}

// A definition that stands in a paragraph after all, since no term stood above it: text again, with its
// colon.
void dissolve_definition(mmd_engine *engine, token *block, token *definition)
{
    if (token *first_line = definition->child) {
        const token *last = first_line->child ? first_line->child->tail : nullptr;
        if (last && first_line->next) // the line end that the paragraph has lost
            token_append_child(first_line, token_new(engine->arena, TEXT_NL, token_end(last), 1));
        first_line->type = LINE_PLAIN;
    }
    strip_line_tokens_from_block(engine, definition);
    const char *source = engine->dstr->str;
    if (const token *first = definition->child) {
        size_t colon = first->start;
        while (colon > 0 && char_is_whitespace(source[colon - 1])) --colon; // blanks were cut with the colon
        if (colon > 0 && source[colon - 1] == ':')
            token_append_child(block, token_new(engine->arena, COLON, colon - 1, first->start - colon + 1));
    }
    move_children_up(block, definition);
}

void strip_text_line(token *block, token *line)
{
    while (line->child && is_indent(line->child)) token_remove_first_child(line);
    move_children_up(block, line);
}

// The colon before a definition, and the blanks behind it.
void remove_colon(const char *source, token *line)
{
    token_remove_first_child(line);
    if (line->child && line->child->type == TEXT_PLAIN) token_trim_leading_whitespace(line->child, source);
}

void strip_line(const char *source, token *block, token *line)
{
    const bool in_table = block->type == BLOCK_TABLE_HEADER || block->type == BLOCK_TABLE_SECTION;
    const bool is_underline = line->type == LINE_SETEXT_1 || line->type == LINE_SETEXT_2;
    remove_leading_non_indent(line);
    if (in_table && (line->type == LINE_TABLE || line->type == LINE_TABLE_SEPARATOR)) {
        strip_row(block, line);
    } else if (is_underline && (block->type == BLOCK_SETEXT_1 || block->type == BLOCK_SETEXT_2)) {
        token_tree_free(line);
    } else {
        if (block->type == BLOCK_DEFINITION && (is_underline || line->type == LINE_DEFINITION))
            remove_colon(source, line);
        strip_text_line(block, line);
    }
}

void strip_all(mmd_engine *engine, token *block)
{
    const bool verbatim =
        block->type == BLOCK_CODE_FENCED || block->type == BLOCK_CODE_INDENTED || block->type == BLOCK_HTML;
    token *line = block->child;
    const size_t len = block->len;
    block->child = nullptr;
    while (line) {
        token *next = line->next;
        token_pop_link_from_chain(line);
        if (verbatim) strip_code_or_html_line(engine, block, line);
        else if (line->type == BLOCK_DEFINITION) dissolve_definition(engine, block, line);
        else if (is_line(line)) strip_line(engine->dstr->str, block, line);
        else token_append_child(block, line);
        line = next;
    }
    if (!verbatim) drop_last_line_end(block);
    block->len = len;
}

void strip_definition_list(mmd_engine *engine, token *block)
{
    for (token *t = block->child; t; t = t->next) {
        if (t->type == LINE_EMPTY) t->type = TEXT_EMPTY;
        else if (t->type == BLOCK_DEFINITION) strip_line_tokens_from_block(engine, t);
    }
}

void strip_table(mmd_engine *engine, token *block)
{
    for (token *t = block->child; t; t = t->next) {
        if (t->type == LINE_EMPTY) t->type = TEXT_EMPTY;
        else strip_line_tokens_from_block(engine, t);
    }
}

void remove_trailing_empty_lines(token *block)
{
    while (block->child && block->child->tail->type == LINE_EMPTY) token_remove_last_child(block);
}

} // namespace

void drop_last_line_end(token *parent)
{
    if (parent->child && parent->child->tail->type == TEXT_NL) token_remove_last_child(parent);
}

void strip_line_tokens_from_block(mmd_engine *engine, token *block)
{
    switch (block->type) {
    case BLOCK_DEFLIST: strip_definition_list(engine, block); break;
    case BLOCK_META: strip_line_tokens_from_metadata(engine, block); break;
    case BLOCK_TABLE: strip_table(engine, block); break;
    case BLOCK_EMPTY: // nobody looks into these
    case BLOCK_HR:
        token_tree_free(block->child);
        block->child = nullptr;
        break;
    case BLOCK_CODE_INDENTED:
        remove_trailing_empty_lines(block);
        strip_all(engine, block);
        break;
    default: strip_all(engine, block);
    }
}

} // namespace tomelet::engine
