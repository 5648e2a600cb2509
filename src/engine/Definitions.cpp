// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Chars.h"
#include "engine/Engine.h"
#include "engine/Labels.h"
#include "engine/Lines.h"
#include "engine/References.h"

namespace tomelet::engine {

namespace {

bool is_block(const token *t)
{
    return t->type >= BLOCK_BLOCKQUOTE && t->type <= BLOCK_TOC;
}

// The first token of text in a block, whatever blocks and lines stand between.
token *first_inline(token *block)
{
    token *t = block->child;
    while (t) {
        if (is_block(t) || t->type <= LINE_START_COMMENT) t = t->child;
        else if (t->type == MARKER_LIST_BULLET || t->type == MARKER_LIST_ENUMERATOR || token_is_indent(t)) t = t->next;
        else return t;
    }
    return nullptr;
}

// Takes label, colon and the blanks behind it out of the text. Gives where the rest begins.
size_t drop_label(const char *source, token *label)
{
    token *colon = label->next;
    const size_t behind = token_end(colon);
    label->type = TEXT_EMPTY;
    colon->type = TEXT_EMPTY;
    token *t = colon->next;
    for (; t && token_is_indent(t); t = t->next) t->type = TEXT_EMPTY;
    if (t && t->type == TEXT_PLAIN) token_trim_leading_whitespace(t, source);
    return behind;
}

// What a definition's label was not paired off in is no definition: its text stays.
void keep_as_text(token *block)
{
    const bool holds_blocks = block->child && is_block(block->child);
    block->type = holds_blocks ? DOC_START_TOKEN : BLOCK_PARA;
}

footnote *new_note(const char *source, token *block, const token *label, bool lowercase)
{
    auto *note = new footnote;
    note->label = label;
    note->label_text = label_from_string(text_inside_pair(source, label));
    note->clean_text = clean_inside_pair(source, label, lowercase);
    note->content = block->child;
    return note;
}

void remove_trailing_line_ends(token *block)
{
    while (block->child && (block->child->tail->type == TEXT_NL || block->child->tail->type == TEXT_LINEBREAK))
        token_remove_last_child(block);
}

void define_citation(mmd_engine *engine, token *block, token *label)
{
    footnote *note = new_note(engine->dstr->str, block, label, true);
    drop_label(engine->dstr->str, label);
    remove_trailing_line_ends(block);
    note->content = token_new_parent(engine->arena, block->child, BLOCK_PARA);
    note->free_para = true;
    block->child = nullptr;
    stack_push(engine->citation_stack, note);
}

void define_note(mmd_engine *engine, token *block, token *label, stack *notes, bool lowercase)
{
    stack_push(notes, new_note(engine->dstr->str, block, label, lowercase));
    drop_label(engine->dstr->str, label);
}

void define_abbreviation(mmd_engine *engine, token *block, token *label)
{
    const char *source = engine->dstr->str;
    footnote *note = new_note(source, block, label, true);
    note->label_text = clean_inside_pair(source, label, false);
    const size_t behind = drop_label(source, label);
    note->expansion = clean_string({source + behind, token_end(block) - behind}, false);
    stack_push(engine->abbreviation_stack, note);
}

// Takes out what stands before a place in the source; a token that reaches over it is cut.
void drop_text_before(token *block, size_t place)
{
    for (token *t = block->child; t && t->start < place; t = t->next) {
        if (t->type == TEXT_PLAIN && token_end(t) > place) {
            t->len = token_end(t) - place;
            t->start = place;
            return;
        }
        t->type = TEXT_EMPTY;
    }
}

// Text that goes on behind the link is a paragraph: no text is lost.
void define_link(mmd_engine *engine, token *block, token *label)
{
    const char *source = engine->dstr->str;
    auto *entry = new link;
    entry->label = label;
    entry->label_text = label_from_string(text_inside_pair(source, label));
    entry->clean_text = clean_inside_pair(source, label, true);
    entry->flags = LINK_REFERENCE;
    stack_push(engine->link_stack, entry);
    const size_t behind = drop_label(source, label);
    const size_t end = token_end(block);
    const size_t read = parse_link_target({source + behind, end - behind}, *entry);
    if (read >= end - behind) return;
    drop_text_before(block, behind + read);
    block->type = BLOCK_PARA;
}

bool is_label(const token *t)
{
    if (!t || !t->next || t->next->type != COLON || token_end(t) != t->next->start) return false;
    return t->type == PAIR_BRACKET || t->type == PAIR_BRACKET_ABBREVIATION || t->type == PAIR_BRACKET_CITATION ||
           t->type == PAIR_BRACKET_FOOTNOTE || t->type == PAIR_BRACKET_GLOSSARY;
}

void process_definition(mmd_engine *engine, token *block)
{
    token *label = first_inline(block);
    if (!is_label(label)) {
        keep_as_text(block);
        return;
    }
    const uint16_t kind = block->type;
    block->type = BLOCK_EMPTY;
    switch (kind) {
    case BLOCK_DEF_ABBREVIATION: define_abbreviation(engine, block, label); break;
    case BLOCK_DEF_CITATION: define_citation(engine, block, label); break;
    case BLOCK_DEF_FOOTNOTE: define_note(engine, block, label, engine->footnote_stack, true); break;
    case BLOCK_DEF_GLOSSARY: define_note(engine, block, label, engine->glossary_stack, false); break;
    default: define_link(engine, block, label);
    }
}

void store_label(mmd_engine *engine, const token *label, std::string_view text, const std::string &anchor)
{
    auto *entry = new link;
    entry->label = label;
    entry->label_text = anchor;
    entry->clean_text = clean_string(text, true);
    entry->url = "#" + anchor;
    entry->flags = LINK_HEADER;
    stack_push(engine->link_stack, entry);
}

} // namespace

void process_definitions(mmd_engine *engine)
{
    for (size_t i = 0; i < engine->definition_stack->size; ++i)
        process_definition(engine, static_cast<token *>(stack_peek_index(engine->definition_stack, i)));
}

void store_header_labels(mmd_engine *engine)
{
    const char *source = engine->dstr->str;
    for (size_t i = 0; i < engine->header_stack->size; ++i) {
        auto *header = static_cast<token *>(stack_peek_index(engine->header_stack, i));
        const std::string anchor =
            label_from_header(source, header, engine->extensions, engine->random_seed_base_labels, i);
        const token *manual = manual_label_from_header(header, source);
        std::string_view text = header_text(source, header);
        if (manual) text = text.substr(0, text.size() - manual->len);
        store_label(engine, header, text, anchor);
    }
}

void store_table_labels(mmd_engine *engine)
{
    const char *source = engine->dstr->str;
    for (size_t i = 0; i < engine->table_stack->size; ++i) {
        auto *table = static_cast<token *>(stack_peek_index(engine->table_stack, i));
        token *label = nullptr;
        const token *caption = table_caption(table, &label);
        if (!caption) continue;
        const std::string_view text = text_inside_pair(source, label);
        store_label(engine, label, text, label_from_string(text));
    }
}

token *table_caption(const token *table, token **label)
{
    const token *para = table->next;
    if (!para || para->type != BLOCK_PARA || !para->child || para->child->type != PAIR_BRACKET) return nullptr;
    token *caption = para->child;
    token *last = caption->next && caption->next->type == PAIR_BRACKET ? caption->next : caption;
    const token *behind = last->next;
    if (behind && (behind->next || (behind->type != TEXT_NL && behind->type != TEXT_LINEBREAK))) return nullptr;
    *label = last;
    return caption;
}

} // namespace tomelet::engine
