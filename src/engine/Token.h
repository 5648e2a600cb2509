// SPDX-License-Identifier: GPL-3.0-or-later
// token: a type and a range of bytes of the source. A token owns no text, so the source must outlive the tree
// and must not change while a tree stands over it. Tokens form chains (next, prev) and trees (child).
//
// Tokens come from an arena, which belongs to the engine. A token's address stays its own until it is freed;
// freeing a token or a tree gives the records back to their arena, and freeing the arena frees all that is
// left.
#pragma once

#include "engine/TokenTypes.h"

#include <cstddef>
#include <cstdint>

namespace tomelet::engine {

struct token
{
    uint16_t type;      ///< one of token_types
    uint16_t can_open;  ///< may open a pair; 1 on creation
    uint16_t can_close; ///< may close a pair; 1 on creation
    uint16_t unmatched; ///< not yet matched; 1 on creation
    size_t start;       ///< offset of the first byte in the source
    size_t len;         ///< length in bytes
    token *next;
    token *prev;
    token *child; ///< first token of the child chain
    token *tail;  ///< last token of the chain; only meaningful on a chain's first token
    token *mate;  ///< the other token of a matched pair
};

/// Where the tokens of one engine live. Not shared between threads. The memory is in TokenArena.cpp.
struct token_arena
{
    struct slab *newest;
    char *unused;      ///< the next record never used before
    char *chunk_end;   ///< end of the chunk that it lies in
    char *slab_end;    ///< end of the newest slab
    token *given_back; ///< freed records, linked by next
};

[[nodiscard]] token_arena *token_arena_new();
/// Frees the arena and every token in it.
void token_arena_free(token_arena *arena);
/// Takes back all tokens at once and keeps one chunk of memory for the next tree.
void token_arena_reset(token_arena *arena);

/// Makes room for further records.
void token_arena_grow(token_arena *arena);

/// A record of the arena, with nothing set.
[[nodiscard]] inline token *token_take_record(token_arena *arena)
{
    if (token *again = arena->given_back) {
        arena->given_back = again->next;
        return again;
    }
    if (arena->unused == arena->chunk_end) token_arena_grow(arena);
    auto *record = reinterpret_cast<token *>(arena->unused);
    arena->unused += sizeof(token);
    return record;
}

/// A fresh token, alone: its tail is itself.
[[nodiscard]] inline token *token_new(token_arena *arena, uint16_t type, size_t start, size_t len)
{
    token *t = token_take_record(arena);
    *t = {type, 1, 1, 1, start, len, nullptr, nullptr, nullptr, t, nullptr};
    return t;
}
/// A new token with all fields equal, the pointers too.
[[nodiscard]] token *token_copy(const token *original);
/// A new token over a chain, which becomes its children; a null chain gives the empty range at 0.
[[nodiscard]] token *token_new_parent(token_arena *arena, token *child_chain, uint16_t type);

/// Where the token's range ends.
[[nodiscard]] inline size_t token_end(const token *t)
{
    return t->start + t->len;
}

/// Appends a token or a whole chain.
inline void token_chain_append(token *chain, token *appended)
{
    if (!chain || !appended) return;
    chain->tail->next = appended;
    appended->prev = chain->tail;
    chain->tail = appended->tail;
}

/// Appends to the children, or starts them, and stretches the parent to the end of the new tail.
inline void token_append_child(token *parent, token *appended)
{
    if (!parent || !appended) return;
    if (parent->child) token_chain_append(parent->child, appended);
    else parent->child = appended;
    parent->len = token_end(appended->tail) - parent->start;
}

/// Detaches and frees the first child with its subtree.
void token_remove_first_child(token *parent);
/// The same at the end of the children.
void token_remove_last_child(token *parent);
/// Unlinks the token from its neighbours and leaves it alone.
void token_pop_link_from_chain(token *t);
/// Frees the range first to last, both of one chain, and joins the neighbours.
void tokens_prune(token *first, token *last);
/// Frees the token, everything behind it and all children.
void token_tree_free(token *t);
/// Frees the token alone.
void token_free(token *t);

/// Folds a range into one token. `first` keeps its place in the chain and becomes the container; a copy of it
/// becomes the container's first child and takes over its mate.
void token_prune_graft(token *first, token *last, uint16_t container_type);
/// Cuts a range out of a token as a token of its own; nothing happens unless the range lies inside the token.
/// The tail that the chain's first token knows is left to the caller, who may have many cuts to make.
void token_split(token *t, size_t start, size_t len, uint16_t new_type);
/// Cuts a token at each occurrence of a byte. The later pieces' lengths count from the first token's start.
void token_split_on_char(token *t, const char *source, char byte);
/// Moves the start over spaces and tabs.
void token_trim_leading_whitespace(token *t, const char *source);

/// The token at the cursor if it has the type (one of the types), and moves on; null otherwise.
token *token_chain_accept(token **cursor, uint16_t type);
token *token_chain_accept_multiple(token **cursor, int count, ...);
/// Moves the cursor to the next token of the type (one of the types), or to the end.
void token_skip_until_type(token **cursor, uint16_t type);
void token_skip_until_type_multiple(token **cursor, int count, ...);

/// Writes an indented outline to the error stream; the source may be null.
void token_tree_describe(const token *t, const char *source);

} // namespace tomelet::engine
