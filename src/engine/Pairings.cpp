// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Engine.h"
#include "engine/Inlines.h"
#include "engine/Limits.h"
#include "engine/Pairs.h"

#include <initializer_list>

namespace tomelet::engine {

namespace {

constexpr int A = PAIRING_ALLOW_EMPTY;
constexpr int L = PAIRING_MATCH_LENGTH;
constexpr int P = PAIRING_PRUNE_MATCH;

struct pairing
{
    uint16_t opener, closer, pair;
    int options;
};

constexpr pairing critic[] = {
    {CRITIC_ADD_OPEN, CRITIC_ADD_CLOSE, PAIR_CRITIC_ADD, A | P},
    {CRITIC_DEL_OPEN, CRITIC_DEL_CLOSE, PAIR_CRITIC_DEL, A | P},
    {CRITIC_COM_OPEN, CRITIC_COM_CLOSE, PAIR_CRITIC_COM, A | P},
    {CRITIC_SUB_OPEN, CRITIC_SUB_DIV_A, PAIR_CRITIC_SUB_DEL, A | P},
    {CRITIC_SUB_DIV_B, CRITIC_SUB_CLOSE, PAIR_CRITIC_SUB_ADD, A | P},
    {CRITIC_HI_OPEN, CRITIC_HI_CLOSE, PAIR_CRITIC_HI, A | P},
};

constexpr pairing comments[] = {{HTML_COMMENT_START, HTML_COMMENT_STOP, PAIR_HTML_COMMENT, A | P}};

constexpr pairing brackets[] = {
    {BRACKET_LEFT, BRACKET_RIGHT, PAIR_BRACKET, A | P},
    {BRACKET_VARIABLE_LEFT, BRACKET_RIGHT, PAIR_BRACKET_VARIABLE, A | P},
    {BRACKET_IMAGE_LEFT, BRACKET_RIGHT, PAIR_BRACKET_IMAGE, A | P},
    {PAREN_LEFT, PAREN_RIGHT, PAIR_PAREN, A | P},
    {ANGLE_LEFT, ANGLE_RIGHT, PAIR_ANGLE, A | P},
    {BRACE_DOUBLE_LEFT, BRACE_DOUBLE_RIGHT, PAIR_BRACES, A | P},
    {BACKTICK, BACKTICK, PAIR_BACKTICK, L | P},
};

constexpr pairing note_brackets[] = {
    {BRACKET_CITATION_LEFT, BRACKET_RIGHT, PAIR_BRACKET_CITATION, A | P},
    {BRACKET_FOOTNOTE_LEFT, BRACKET_RIGHT, PAIR_BRACKET_FOOTNOTE, A | P},
    {BRACKET_GLOSSARY_LEFT, BRACKET_RIGHT, PAIR_BRACKET_GLOSSARY, A | P},
    {BRACKET_ABBREVIATION_LEFT, BRACKET_RIGHT, PAIR_BRACKET_ABBREVIATION, A | P},
};

constexpr pairing math[] = {
    {MATH_PAREN_OPEN, MATH_PAREN_CLOSE, PAIR_MATH, A | P},
    {MATH_BRACKET_OPEN, MATH_BRACKET_CLOSE, PAIR_MATH, A | P},
    {MATH_DOLLAR_SINGLE, MATH_DOLLAR_SINGLE, PAIR_MATH, A | P},
    {MATH_DOLLAR_DOUBLE, MATH_DOLLAR_DOUBLE, PAIR_MATH, A | P},
};

constexpr pairing emphasis[] = {
    {STAR, STAR, PAIR_STAR, 0},
    {UL, UL, PAIR_UL, 0},
    {BACKTICK, QUOTE_RIGHT_ALT, PAIR_QUOTE_ALT, A | L},
    {QUOTE_SINGLE, QUOTE_SINGLE, PAIR_QUOTE_SINGLE, A | P},
    {QUOTE_DOUBLE, QUOTE_DOUBLE, PAIR_QUOTE_DOUBLE, A | P},
};

constexpr pairing scripts_and_braces[] = {
    {SUPERSCRIPT, SUPERSCRIPT, PAIR_SUPERSCRIPT, P},
    {SUBSCRIPT, SUBSCRIPT, PAIR_SUBSCRIPT, P},
    {TEXT_BRACE_LEFT, TEXT_BRACE_RIGHT, PAIR_BRACE, P},
    {RAW_FILTER_LEFT, TEXT_BRACE_RIGHT, PAIR_RAW_FILTER, P},
};

template <size_t N>
void add(token_pair_engine *engine, const pairing (&pairings)[N])
{
    for (const pairing &p : pairings) token_pair_engine_add_pairing(engine, p.opener, p.closer, p.pair, p.options);
}

void note_passes(mmd_engine *engine)
{
    uint8_t bit = 1;
    for (const token_pair_engine *pass : {engine->pairings1, engine->pairings2, engine->pairings3, engine->pairings4}) {
        for (int type = 0; type < kMaxTokenTypes; ++type)
            if (pass->involved[type]) engine->passes_of[type] |= bit;
        bit = static_cast<uint8_t>(bit << 1);
    }
}

void add_pairings(mmd_engine *engine)
{
    if (engine->extensions & EXT_CRITIC) add(engine->pairings1, critic);
    add(engine->pairings2, comments);
    add(engine->pairings3, brackets);
    for (pairing p : note_brackets) {
        if (!(engine->extensions & EXT_NOTES)) p.pair = PAIR_BRACKET;
        token_pair_engine_add_pairing(engine->pairings3, p.opener, p.closer, p.pair, p.options);
    }
    add(engine->pairings4, emphasis);
    if (engine->extensions & EXT_COMPATIBILITY) return;
    add(engine->pairings3, math);
    add(engine->pairings4, scripts_and_braces);
}

} // namespace

void register_pairings(mmd_engine *engine)
{
    add_pairings(engine);
    note_passes(engine);
}

static void pair_tokens(token *block, const token_pair_engine *engine, stack *s, int depth)
{
    if (depth >= kMaxDepth) return;
    bool matches = false;
    bool enters = false;
    switch (block->type) {
    case BLOCK_BLOCKQUOTE:
    case BLOCK_DEFLIST:
    case BLOCK_DEFINITION:
    case BLOCK_DEF_ABBREVIATION:
    case BLOCK_DEF_CITATION:
    case BLOCK_DEF_FOOTNOTE:
    case BLOCK_DEF_GLOSSARY:
    case BLOCK_DEF_LINK:
    case BLOCK_H1:
    case BLOCK_H2:
    case BLOCK_H3:
    case BLOCK_H4:
    case BLOCK_H5:
    case BLOCK_H6:
    case BLOCK_PARA:
    case BLOCK_SETEXT_1:
    case BLOCK_SETEXT_2:
    case BLOCK_TERM: matches = true; break;
    case BLOCK_LIST_ITEM:
    case BLOCK_LIST_ITEM_TIGHT:
    case BLOCK_TABLE:
    case LINE_TABLE:
        matches = true; // which enters the children too: nothing is left for a walk over them
        break;
    case DOC_START_TOKEN:
    case BLOCK_LIST_BULLETED:
    case BLOCK_LIST_BULLETED_LOOSE:
    case BLOCK_LIST_ENUMERATED:
    case BLOCK_LIST_ENUMERATED_LOOSE: enters = true; break;
    default: break;
    }
    if (matches) token_pairs_match_pairs_inside_token(block, engine, s, 0);
    for (token *child = enters ? block->child : nullptr; child; child = child->next)
        pair_tokens(child, engine, s, depth + 1);
}

void mmd_pair_tokens_in_block(token *block, const token_pair_engine *engine, stack *s)
{
    pair_tokens(block, engine, s, 0);
}

void parse_inlines(mmd_engine *engine, token *block)
{
    mmd_assign_ambidextrous_tokens_in_block(engine, block, 0);
    uint8_t passes = engine->passes;
    for (const token_pair_engine *pass : {engine->pairings1, engine->pairings2, engine->pairings3, engine->pairings4}) {
        if (passes & 1) mmd_pair_tokens_in_block(block, pass, engine->openers);
        passes >>= 1;
    }
    pair_emphasis_tokens(block->child);
}

} // namespace tomelet::engine
