// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Inlines.h"
#include "engine/Limits.h"

namespace tomelet::engine {

namespace {

bool is_matched_mark(const token *t)
{
    return t && (t->type == STAR || t->type == UL) && t->mate;
}

// The second opener of a strong pair, null when the mark is plain emphasis: the next mark is of the same
// kind, and the two closers touch as the two openers do.
token *second_opener(const token *t)
{
    token *next = t->next;
    if (!is_matched_mark(next) || next->type != t->type || next == t->mate) return nullptr;
    if (next->mate != t->mate->prev) return nullptr;
    const bool touch = token_end(t) == next->start && token_end(next->mate) == t->mate->start;
    return touch ? next : nullptr;
}

void make_strong(token *opener, token *second)
{
    token *closer = opener->mate;
    token *before_closer = second->mate;
    opener->type = STRONG_START;
    opener->len = 2;
    closer->type = STRONG_STOP;
    --closer->start;
    closer->len = 2;
    tokens_prune(second, second);
    tokens_prune(before_closer, before_closer);
    token_prune_graft(opener, closer, PAIR_STRONG);
}

void make_emphasis(token *opener)
{
    token *closer = opener->mate;
    opener->type = EMPH_START;
    closer->type = EMPH_STOP;
    token_prune_graft(opener, closer, PAIR_EMPH);
}

void pair_chain(token *t, int depth)
{
    if (depth >= kMaxDepth) return;
    for (; t; t = t->next) {
        if (is_matched_mark(t)) {
            if (token *second = second_opener(t)) make_strong(t, second);
            else make_emphasis(t);
        }
        if (t->child && t->type != PAIR_BACKTICK && t->type != PAIR_MATH) pair_chain(t->child, depth + 1);
    }
}

} // namespace

void pair_emphasis_tokens(token *chain)
{
    pair_chain(chain, 0);
}

} // namespace tomelet::engine
