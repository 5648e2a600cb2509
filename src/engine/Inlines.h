// SPDX-License-Identifier: GPL-3.0-or-later
// The inline phases, in their order. Each takes the tree as the one before it left it.
#pragma once

#include "engine/Stack.h"
#include "engine/Token.h"

namespace tomelet::engine {

struct mmd_engine;
struct token_pair_engine;

/// Sets what tokens that could be either may be, opener or closer, by the bytes around them; makes
/// apostrophes, plain hyphens, and superscripts without a closing mark.
void mmd_assign_ambidextrous_tokens_in_block(mmd_engine *engine, token *block, size_t offset);

/// Pairs the tokens of one pass in all blocks of text.
void mmd_pair_tokens_in_block(token *block, const token_pair_engine *engine, stack *s);

/// Turns matched stars and underscores into emphasis and, where two stand together at both ends, strong.
void pair_emphasis_tokens(token *chain);

/// All of these phases on one block of the document. None looks beyond its block, so a block goes through
/// them as soon as it is whole and its tokens are at hand.
void parse_inlines(mmd_engine *engine, token *block);

/// Fills the tables of the four passes for the extensions.
void register_pairings(mmd_engine *engine);

} // namespace tomelet::engine
