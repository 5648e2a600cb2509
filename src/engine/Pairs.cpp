// SPDX-License-Identifier: GPL-3.0-or-later
// A closer takes the newest opener on the stack that pairs with it, and everything above that opener is
// popped and lost. So that text of many unmatched openers costs no more than any other, the openers of one
// type are linked among themselves: a closer looks only at those that pair with it. While an opener is on the
// stack its `mate`, of no other use then, is the next older opener of its type.
#include "engine/Pairs.h"

#include "engine/Limits.h"

#include <bit>
#include <cassert>

namespace tomelet::engine {

token_pair_engine *token_pair_engine_new()
{
    return new token_pair_engine{};
}

void token_pair_engine_free(token_pair_engine *engine)
{
    delete engine;
}

static uint16_t slot_for(uint16_t *slots, uint16_t type, uint16_t &count)
{
    if (slots[type] == 0) slots[type] = ++count;
    assert(count <= kMaxPairSlots);
    return slots[type];
}

void token_pair_engine_add_pairing(token_pair_engine *engine, uint16_t open_type, uint16_t close_type,
                                   uint16_t pair_type, int options)
{
    const uint16_t opener = slot_for(engine->can_open_pair, open_type, engine->opener_count);
    const uint16_t closer = slot_for(engine->can_close_pair, close_type, engine->closer_count);
    engine->pair_type[opener][closer] = pair_type;
    engine->openers_of[closer] |= 1U << opener;
    engine->involved[open_type] = engine->involved[close_type] = true;
    if (options & PAIRING_ALLOW_EMPTY) engine->empty_allowed[pair_type] = 1;
    if (options & PAIRING_MATCH_LENGTH) engine->match_len[pair_type] = 1;
    if (options & PAIRING_PRUNE_MATCH) engine->should_prune[pair_type] = 1;
}

namespace {

// The matching of one level.
struct level
{
    const token_pair_engine *engine;
    stack *openers;
    size_t base;                      ///< what lies below on the stack belongs to other levels
    uint32_t open = 0;                ///< a bit for each opener's slot that is on the stack
    token *newest[kMaxPairSlots + 1]; ///< by opener's slot: the newest on the stack, where its bit is set
};

void push(level &l, token *opener)
{
    const uint16_t slot = l.engine->can_open_pair[opener->type];
    opener->mate = l.open & (1U << slot) ? l.newest[slot] : nullptr;
    l.newest[slot] = opener;
    l.open |= 1U << slot;
    stack_push(l.openers, opener);
}

token *pop(level &l)
{
    auto *opener = static_cast<token *>(stack_pop(l.openers));
    const uint16_t slot = l.engine->can_open_pair[opener->type];
    l.newest[slot] = opener->mate;
    if (!opener->mate) l.open &= ~(1U << slot);
    opener->mate = nullptr;
    return opener;
}

// The slot, of those in `slots`, whose opener stands last in the text; 0 for none.
int newest_slot(token *const *openers, uint32_t slots)
{
    int best = 0;
    for (; slots; slots &= slots - 1) {
        const int slot = std::countr_zero(slots);
        if (openers[slot] && (best == 0 || openers[slot]->start > openers[best]->start)) best = slot;
    }
    return best;
}

token *find_opener(const level &l, const token *closer)
{
    const uint16_t closer_slot = l.engine->can_close_pair[closer->type];
    const uint32_t slots = l.engine->openers_of[closer_slot] & l.open;
    if (slots == 0) return nullptr;
    token *candidate[kMaxPairSlots + 1];
    for (uint32_t rest = slots; rest; rest &= rest - 1)
        candidate[std::countr_zero(rest)] = l.newest[std::countr_zero(rest)];
    while (const int slot = newest_slot(candidate, slots)) {
        token *opener = candidate[slot];
        const uint16_t pair = l.engine->pair_type[slot][closer_slot];
        if (!l.engine->empty_allowed[pair] && token_end(opener) == closer->start) return nullptr;
        if (!l.engine->match_len[pair] || opener->len == closer->len) return opener;
        candidate[slot] = opener->mate;
    }
    return nullptr;
}

// Makes the two mates and returns the token that stands in the closer's place: itself, or the container of
// the pair.
token *match(level &l, token *parent, token *opener, token *closer)
{
    const uint16_t pair =
        l.engine->pair_type[l.engine->can_open_pair[opener->type]][l.engine->can_close_pair[closer->type]];
    while (pop(l) != opener) {
    }
    opener->mate = closer;
    closer->mate = opener;
    opener->unmatched = 0;
    closer->unmatched = 0;
    if (!l.engine->should_prune[pair]) return closer;
    const bool was_first = opener->prev == nullptr;
    token_prune_graft(opener, closer, pair);
    if (was_first) parent->child = opener;
    return opener;
}

} // namespace

void token_pairs_match_pairs_inside_token(token *parent, const token_pair_engine *engine, stack *s, int depth)
{
    if (depth >= kMaxDepth) return;
    level l;
    l.engine = engine;
    l.openers = s;
    l.base = s->size;
    for (token *child = parent->child; child; child = child->next) {
        if (child->child) token_pairs_match_pairs_inside_token(child, engine, s, depth + 1);
        if (!engine->involved[child->type]) continue;
        if (child->can_close && child->unmatched && engine->can_close_pair[child->type])
            if (token *opener = find_opener(l, child)) child = match(l, parent, opener, child);
        if (child->can_open && child->unmatched && engine->can_open_pair[child->type]) push(l, child);
    }
    while (s->size > l.base) pop(l);
}

} // namespace tomelet::engine
