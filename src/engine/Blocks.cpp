// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Blocks.h"

#include "engine/Engine.h"
#include "engine/Inlines.h"
#include "engine/Limits.h"
#include "engine/Lines.h"
#include "engine/Scanners.h"

namespace tomelet::engine {

namespace {

void remove_leading_blank(token *line, const char *source)
{
    const token *first = line->child;
    if (first && (first->type == NON_INDENT_SPACE || token_is_one_blank(first, source))) token_remove_first_child(line);
}

void deindent_block(mmd_engine *engine, token *block)
{
    for (token *line = block->child; line; line = line->next) {
        if (line->child && (line->child->type == INDENT_TAB || line->child->type == INDENT_SPACE))
            token_remove_first_child(line);
        mmd_assign_line_type(engine, line);
    }
}

void trim_first_child(token *line, const char *source)
{
    token *first = line->child;
    if (!first || first->type != TEXT_PLAIN) return;
    token_trim_leading_whitespace(first, source);
    if (first->len == 0) token_remove_first_child(line);
}

void recurse_blockquote(mmd_engine *engine, token *quote)
{
    const char *source = engine->dstr->str;
    for (token *line = quote->child; line; line = line->next) {
        remove_leading_blank(line, source);
        if (line->child && line->child->type == MARKER_BLOCKQUOTE) token_remove_first_child(line);
        trim_first_child(line, source);
        mmd_assign_line_type(engine, line);
    }
    mmd_parse_token_chain(engine, quote);
}

// Parses the lines of a note or a definition as a document of their own. The first line is text whatever it
// looks like.
void recurse_indented(mmd_engine *engine, token *block)
{
    deindent_block(engine, block);
    token *first_line = block->child;
    first_line->type = LINE_PLAIN;
    if (block->type == BLOCK_DEFINITION) {
        remove_leading_blank(first_line, engine->dstr->str);
        token_remove_first_child(first_line);
        trim_first_child(first_line, engine->dstr->str);
    }
    mmd_parse_token_chain(engine, block);
}

// Parses the item's lines without its marker, which then stands before the text of the first block.
void recurse_list_item(mmd_engine *engine, token *item)
{
    token *first_line = item->child;
    remove_leading_blank(first_line, engine->dstr->str);
    token *marker = token_copy(first_line->child);
    marker->next = nullptr;
    marker->tail = marker;
    token_remove_first_child(first_line);
    deindent_block(engine, item);
    mmd_parse_token_chain(engine, item);
    token *first_block = item->child;
    token *children = first_block->child;
    first_block->child = marker;
    if (children) token_chain_append(marker, children);
}

bool is_loose(const token *list)
{
    bool loose = false;
    for (token *item = list->child; item->next; item = item->next) {
        if (item->type != BLOCK_LIST_ITEM) continue;
        if (item->child->type == BLOCK_PARA) loose = true;
        else item->type = BLOCK_LIST_ITEM_TIGHT;
    }
    return loose;
}

bool begins_like_html(const mmd_engine *engine, const token *block)
{
    const token *line = block->child;
    if (line->type != LINE_PLAIN || !line->child) return false;
    const token *first = line->child;
    if (first->next && token_is_indent(first)) first = first->next;
    if (first->type != HTML_COMMENT_START && first->type != ANGLE_LEFT) return false;
    const char *text = engine->dstr->str + first->start;
    const size_t len = token_end(block) - first->start;
    return scan_html_block(text, len) || scan_html_line(text, len);
}

} // namespace

// Detaches the next line from the chain that the cursor stands in.
static token *take_from_chain(void *cursor)
{
    auto *next = static_cast<token **>(cursor);
    token *line = *next;
    if (!line) return nullptr;
    *next = line->next;
    token_pop_link_from_chain(line);
    return line;
}

void mmd_parse_token_chain(mmd_engine *engine, token *chain)
{
    if (engine->recurse_depth >= kMaxDepth) return;
    ++engine->recurse_depth;
    token *next = chain->child;
    chain->child = nullptr;
    chain->child = parse_lines(engine, take_from_chain, &next);
    --engine->recurse_depth;
}

static token *take_from_reader(void *reader)
{
    return read_line(*static_cast<line_reader *>(reader));
}

token *parse_document(mmd_engine *engine, size_t start, size_t len)
{
    token *document = token_new(engine->arena, DOC_START_TOKEN, start, len);
    line_reader reader = line_reader_over(engine, start, len);
    ++engine->recurse_depth;
    document->child = parse_lines(engine, take_from_reader, &reader);
    --engine->recurse_depth;
    engine->allow_meta = false;
    return document;
}

token *chain(token *first, token *second)
{
    token_chain_append(first, second);
    return first;
}

void finish_block(mmd_engine *engine, token *block)
{
    strip_line_tokens_from_block(engine, block);
    if (engine->recurse_depth == 1) parse_inlines(engine, block); // nested blocks go with the one they stand in
}

token *new_block(mmd_engine *engine, token *lines, uint16_t type)
{
    return token_new_parent(engine->arena, lines, type);
}

token *heading_block(mmd_engine *engine, token *lines, uint16_t type)
{
    token *block = new_block(engine, lines, type);
    stack_push(engine->header_stack, block);
    return block;
}

token *blockquote_block(mmd_engine *engine, token *lines)
{
    token *block = new_block(engine, lines, BLOCK_BLOCKQUOTE);
    recurse_blockquote(engine, block);
    return block;
}

token *definition_block(mmd_engine *engine, token *lines, uint16_t type)
{
    token *block = new_block(engine, lines, type);
    stack_push(engine->definition_stack, block);
    return block;
}

token *note_block(mmd_engine *engine, token *lines, uint16_t type)
{
    token *block = definition_block(engine, lines, type);
    recurse_indented(engine, block);
    return block;
}

token *long_definition(mmd_engine *engine, token *first_line, token *tail)
{
    token *block = new_block(engine, chain(first_line, tail), BLOCK_DEFINITION);
    recurse_indented(engine, block);
    return block;
}

token *terms_and_definitions(token *terms, token *definitions)
{
    for (token *line = terms; line; line = line->next) line->type = BLOCK_TERM;
    return chain(terms, definitions);
}

token *fenced_code_block(mmd_engine *engine, token *lines)
{
    if (lines->child) lines->child->type = CODE_FENCE;
    return new_block(engine, lines, BLOCK_CODE_FENCED);
}

token *closed_fence(token *lines, token *closing_line)
{
    if (closing_line->child) closing_line->child->type = CODE_FENCE;
    return chain(lines, closing_line);
}

token *list_block(mmd_engine *engine, token *items, uint16_t type)
{
    token *list = new_block(engine, items, type);
    if (is_loose(list)) ++list->type;
    return list;
}

token *short_list_item(mmd_engine *engine, token *line)
{
    drop_last_line_end(line);
    return new_block(engine, line, BLOCK_LIST_ITEM_TIGHT);
}

token *list_item(mmd_engine *engine, token *first_line, token *more_lines, uint16_t type)
{
    token *item = new_block(engine, chain(first_line, more_lines), type);
    recurse_list_item(engine, item);
    return item;
}

token *paragraph_block(mmd_engine *engine, token *lines)
{
    token *block = new_block(engine, lines, BLOCK_PARA);
    if (begins_like_html(engine, block)) block->type = BLOCK_HTML;
    return block;
}

token *table_block(mmd_engine *engine, token *parts)
{
    token *table = new_block(engine, parts, BLOCK_TABLE);
    stack_push(engine->table_stack, table);
    return table;
}

const char *line_type_name(int type)
{
    static constexpr const char *names[] = {"LINE_HR",
                                            "LINE_SETEXT_1",
                                            "LINE_SETEXT_2",
                                            "LINE_YAML",
                                            "LINE_CONTINUATION",
                                            "LINE_PLAIN",
                                            "LINE_INDENTED_TAB",
                                            "LINE_INDENTED_SPACE",
                                            "LINE_TABLE",
                                            "LINE_TABLE_SEPARATOR",
                                            "LINE_FALLBACK",
                                            "LINE_HTML",
                                            "LINE_ATX_1",
                                            "LINE_ATX_2",
                                            "LINE_ATX_3",
                                            "LINE_ATX_4",
                                            "LINE_ATX_5",
                                            "LINE_ATX_6",
                                            "LINE_BLOCKQUOTE",
                                            "LINE_LIST_BULLETED",
                                            "LINE_LIST_ENUMERATED",
                                            "LINE_DEF_ABBREVIATION",
                                            "LINE_DEF_CITATION",
                                            "LINE_DEF_FOOTNOTE",
                                            "LINE_DEF_GLOSSARY",
                                            "LINE_DEF_LINK",
                                            "LINE_TOC",
                                            "LINE_DEFINITION",
                                            "LINE_META",
                                            "LINE_BACKTICK",
                                            "LINE_FENCE_BACKTICK_3",
                                            "LINE_FENCE_BACKTICK_4",
                                            "LINE_FENCE_BACKTICK_5",
                                            "LINE_FENCE_BACKTICK_START_3",
                                            "LINE_FENCE_BACKTICK_START_4",
                                            "LINE_FENCE_BACKTICK_START_5",
                                            "LINE_STOP_COMMENT",
                                            "LINE_EMPTY",
                                            "LINE_START_COMMENT"};
    return type >= LINE_HR && type <= LINE_START_COMMENT ? names[type - 1] : "?";
}

} // namespace tomelet::engine
