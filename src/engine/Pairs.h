// SPDX-License-Identifier: GPL-3.0-or-later
// Finding the mates of openers and closers. One engine is one pass: a set of pairings that is applied over
// the tree.
#pragma once

#include "engine/Stack.h"
#include "engine/Token.h"

#include <cstdint>

namespace tomelet::engine {

enum pairing_options : int {
    PAIRING_ALLOW_EMPTY = 1,  ///< the pair may enclose nothing
    PAIRING_MATCH_LENGTH = 2, ///< opener and closer must have the same length
    PAIRING_PRUNE_MATCH = 4   ///< the matched range is folded into one token
};

/// No pass has more different openers or closers than this.
inline constexpr int kMaxPairSlots = 24;

/// The tables of one pass, by token type. `can_open_pair` and `can_close_pair` hold the type's slot, counted
/// from 1, which is its row or column in `pair_type`: 0 means no.
struct token_pair_engine
{
    uint16_t can_open_pair[kMaxTokenTypes];
    uint16_t can_close_pair[kMaxTokenTypes];
    uint16_t pair_type[kMaxPairSlots + 1][kMaxPairSlots + 1]; ///< the resulting pair's type, 0 for none
    uint16_t empty_allowed[kMaxTokenTypes];
    uint16_t match_len[kMaxTokenTypes];
    uint16_t should_prune[kMaxTokenTypes];
    uint32_t openers_of[kMaxPairSlots + 1]; ///< by closer's slot: a bit for each opener's slot that pairs with it
    uint16_t opener_count, closer_count;
    bool involved[kMaxTokenTypes]; ///< the type opens or closes
};

[[nodiscard]] token_pair_engine *token_pair_engine_new();
void token_pair_engine_free(token_pair_engine *engine);
/// Registers a pairing. options: a sum of pairing_options.
void token_pair_engine_add_pairing(token_pair_engine *engine, uint16_t open_type, uint16_t close_type,
                                   uint16_t pair_type, int options);
/// Matches the children of parent, and theirs, innermost first. A match never crosses a level: what one level
/// leaves open is lost for the others. The stack is given back as it came. depth is 0 for the outermost call.
void token_pairs_match_pairs_inside_token(token *parent, const token_pair_engine *engine, stack *s, int depth);

} // namespace tomelet::engine
