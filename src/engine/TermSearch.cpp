// SPDX-License-Identifier: GPL-3.0-or-later
// Abbreviations and glossary terms are found in the text wherever they stand, within words too.
#include "engine/Limits.h"
#include "engine/ScratchPad.h"
#include "engine/Trie.h"

namespace tomelet::engine {

namespace {

bool is_searched(const token *t)
{
    if (holds_running_text[t->type]) return true;
    switch (t->type) {
    case BLOCK_TABLE_HEADER:
    case PAIR_BRACKET:
    case PAIR_BRACKET_FOOTNOTE:
    case PAIR_BRACKET_GLOSSARY:
    case PAIR_BRACKET_IMAGE:
    case PAIR_QUOTE_SINGLE:
    case PAIR_QUOTE_DOUBLE:
    case PAIR_EMPH:
    case PAIR_STRONG: return true;
    default: return false;
    }
}

// Splits the hits out of a text token; gives the last token made of it.
token *search_text(const trie *terms, const char *source, token *t)
{
    match *hits = ac_trie_leftmost_longest(terms, source, t->start, t->len);
    for (const match *hit = hits->next; hit; hit = hit->next) {
        const size_t end = token_end(t);
        const bool at_start = hit->start == t->start;
        token_split(t, hit->start, hit->len, hit->match_type);
        if (!at_start) t = t->next;
        if (hit->start + hit->len < end) t = t->next;
    }
    match_free(hits);
    return t;
}

void search_chain(const trie *terms, const char *source, token *head, int depth)
{
    if (depth >= kMaxDepth) return;
    for (token *t = head; t; t = t->next) {
        if (t->type == TEXT_PLAIN) t = search_text(terms, source, t);
        else if (t->child && is_searched(t)) search_chain(terms, source, t->child, depth + 1);
        if (!t->next) head->tail = t;
    }
}

} // namespace

void search_terms(mmd_engine *engine, const scratch_pad &scratch)
{
    const stack *abbreviations = engine->abbreviation_stack;
    const stack *glossary = engine->glossary_stack;
    if (scratch.is_compatible() || !engine->root || abbreviations->size + glossary->size == 0) return;
    trie *terms = trie_new(0);
    for (size_t i = 0; i < abbreviations->size; ++i)
        trie_insert(terms, static_cast<const footnote *>(stack_peek_index(abbreviations, i))->label_text.c_str(),
                    PAIR_BRACKET_ABBREVIATION);
    for (size_t i = 0; i < glossary->size; ++i)
        trie_insert(terms, static_cast<const footnote *>(stack_peek_index(glossary, i))->clean_text.c_str(),
                    PAIR_BRACKET_GLOSSARY);
    ac_trie_prepare(terms);
    search_chain(terms, engine->dstr->str, engine->root, 0);
    trie_free(terms);
}

} // namespace tomelet::engine
