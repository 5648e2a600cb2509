// SPDX-License-Identifier: GPL-3.0-or-later
// What a bracket stands for: a link, an image, a note.
#include "engine/Labels.h"
#include "engine/ScratchPad.h"

namespace tomelet::engine {

namespace {

bool holds_bracket(const token *bracket)
{
    for (const token *t = bracket->child; t; t = t->next)
        if (t->type >= PAIR_BRACKET && t->type <= PAIR_BRACKET_VARIABLE && t->type != PAIR_BRACKET_IMAGE) return true;
    return false;
}

// The link whose target stands in the parentheses behind the bracket; null when what stands there is none.
std::unique_ptr<link> inline_link(const char *source, const scratch_pad &scratch, const token *paren)
{
    const std::string_view inside = text_inside_pair(source, paren);
    auto target = std::make_unique<link>();
    if (parse_link_target(inside, *target) != inside.size()) return nullptr;
    if (scratch.is_compatible() && !target->attributes.empty()) return nullptr;
    target->flags = LINK_INLINE;
    return target;
}

// The text's record: by the cleaned and lowered text, then by the label form.
template <typename Record>
Record *find_by_text(const string_table<Record> &table, std::string_view text)
{
    if (table.empty()) return nullptr;
    if (Record *found = find_record(table, clean_string(text, true))) return found;
    return find_record(table, label_from_string(text));
}

// Gives the note its number at its first use.
note_use use_note(note_list &notes, footnote *note)
{
    if (!note) return {};
    const bool first = note->count < 0;
    if (first) {
        notes.used.push_back(note);
        note->count = static_cast<int>(notes.used.size());
    }
    return {note, note->count, first};
}

footnote *add_inline_note(note_list &notes)
{
    notes.inline_to_free.push_back(std::make_unique<footnote>());
    return notes.inline_to_free.back().get();
}

// A paragraph over the tokens between a pair's delimiters, which leave the pair.
token *paragraph_of_inside(const scratch_pad &scratch, token *pair)
{
    token *first = pair->child->next;
    token *closer = pair->child->tail;
    if (!first || first == closer) return token_new(scratch.engine->arena, BLOCK_PARA, token_end(pair->child), 0);
    token *last = closer->prev;
    pair->child->next = closer;
    closer->prev = pair->child;
    last->next = nullptr;
    first->prev = nullptr;
    first->tail = last;
    return token_new_parent(scratch.engine->arena, first, BLOCK_PARA);
}

// The parenthesis of "[?term(definition)]", null without.
token *inner_parenthesis(const token *bracket)
{
    for (token *t = bracket->child; t; t = t->next)
        if (t->type == PAIR_PAREN) return t;
    return nullptr;
}

std::string_view text_before(const char *source, const token *bracket, const token *paren)
{
    const size_t start = token_end(bracket->child);
    return {source + start, paren->start - start};
}

// Uses of an inline note by its text find it again.
void add_to_hash(note_list &notes, footnote *note)
{
    notes.hash.emplace(note->clean_text, note);
    notes.hash.emplace(note->label_text, note);
}

} // namespace

const link *extract_link_from_stack(const scratch_pad &scratch, std::string_view text)
{
    return find_by_text(scratch.link_hash, text);
}

link_use mmd_parse_brackets(const char *source, const scratch_pad &scratch, const token *bracket)
{
    const token *next = bracket->next;
    if (next && next->type == PAIR_PAREN) {
        auto target = inline_link(source, scratch, next);
        if (target) {
            const link *found = target.get();
            return {found, std::move(target), 1};
        }
    }
    if (next && next->type == PAIR_BRACKET) {
        std::string_view label = text_inside_pair(source, next);
        if (label.empty()) label = text_inside_pair(source, bracket);
        return {extract_link_from_stack(scratch, label), nullptr, 1};
    }
    if (holds_bracket(bracket)) return {};
    return {extract_link_from_stack(scratch, text_inside_pair(source, bracket)), nullptr, 0};
}

note_use footnote_from_bracket(const char *source, scratch_pad &scratch, token *bracket)
{
    note_list &notes = scratch.footnotes;
    footnote *note = find_by_text(notes.hash, text_inside_pair(source, bracket));
    if (!note) {
        note = add_inline_note(notes);
        note->content = paragraph_of_inside(scratch, bracket);
        note->free_para = true;
    }
    return use_note(notes, note);
}

note_use citation_from_bracket(const char *source, scratch_pad &scratch, token *bracket)
{
    note_list &notes = scratch.citations;
    footnote *note = find_by_text(notes.hash, text_inside_pair(source, bracket));
    if (!note && scratch.bibtex_file.empty()) {
        note = add_inline_note(notes);
        note->clean_text = clean_inside_pair(source, bracket, true);
        note->label_text = label_from_string(text_inside_pair(source, bracket));
        note->content = paragraph_of_inside(scratch, bracket);
        note->free_para = true;
        add_to_hash(notes, note);
    }
    return use_note(notes, note);
}

note_use glossary_from_bracket(const char *source, scratch_pad &scratch, token *bracket)
{
    note_list &notes = scratch.glossary;
    footnote *note = find_by_text(notes.hash, text_inside_pair(source, bracket));
    token *paren = note ? nullptr : inner_parenthesis(bracket);
    if (paren) {
        const std::string_view term = text_before(source, bracket, paren);
        note = add_inline_note(notes);
        note->clean_text = clean_string(term, false);
        note->label_text = label_from_string(term);
        note->content = paragraph_of_inside(scratch, paren);
        note->free_para = true;
        add_to_hash(notes, note);
    }
    return use_note(notes, note);
}

note_use abbreviation_from_bracket(const char *source, scratch_pad &scratch, token *bracket)
{
    note_list &notes = scratch.abbreviations;
    footnote *note = find_by_text(notes.hash, text_inside_pair(source, bracket));
    const token *paren = note ? nullptr : inner_parenthesis(bracket);
    if (paren) {
        const std::string_view spelling = text_before(source, bracket, paren);
        note = add_inline_note(notes);
        note->clean_text = clean_string(spelling, true);
        note->label_text = clean_string(spelling, false);
        note->expansion = clean_inside_pair(source, paren, false);
        add_to_hash(notes, note);
    }
    return use_note(notes, note);
}

} // namespace tomelet::engine
