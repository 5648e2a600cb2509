// SPDX-License-Identifier: GPL-3.0-or-later
// The memory of tokens: chunks that are cut into records. A chunk lies at a multiple of its size, so the arena of a
// token is found from its address, and tokens can be freed and copied without naming the arena.
#include "engine/Token.h"

#include <cstdio>
#include <cstdlib>

namespace tomelet::engine {

namespace {

constexpr size_t chunk_align = 65536;
/// A little less than the alignment, so that the allocator can lay chunks side by side.
constexpr size_t chunk_size = chunk_align - 64;

struct chunk
{
    token_arena *arena;
    chunk *older;
};

constexpr size_t first_token = 64;

} // namespace

struct token_arena
{
    chunk *newest;
    char *unused;      ///< the next record never used before, in the newest chunk
    char *end;         ///< end of the newest chunk
    token *given_back; ///< freed records, linked by next
};

static void start_on_chunk(token_arena *arena, chunk *fresh)
{
    arena->newest = fresh;
    arena->unused = reinterpret_cast<char *>(fresh) + first_token;
    arena->end = reinterpret_cast<char *>(fresh) + chunk_size;
    arena->given_back = nullptr;
}

static void add_chunk(token_arena *arena)
{
    void *memory = nullptr;
    if (posix_memalign(&memory, chunk_align, chunk_size) != 0) {
        std::fputs("Error allocating memory for tokens.\n", stderr);
        std::exit(1);
    }
    auto *fresh = static_cast<chunk *>(memory);
    *fresh = {arena, arena->newest};
    start_on_chunk(arena, fresh);
}

static token_arena *arena_of(const token *t)
{
    const auto address = reinterpret_cast<uintptr_t>(t);
    return reinterpret_cast<const chunk *>(address & ~(chunk_align - 1))->arena;
}

static token *take_record(token_arena *arena)
{
    if (token *again = arena->given_back) {
        arena->given_back = again->next;
        return again;
    }
    if (arena->unused + sizeof(token) > arena->end) add_chunk(arena);
    auto *record = reinterpret_cast<token *>(arena->unused);
    arena->unused += sizeof(token);
    return record;
}

token_arena *token_arena_new()
{
    return new token_arena{};
}

static void free_chunks(chunk *c)
{
    while (c) {
        chunk *older = c->older;
        std::free(c);
        c = older;
    }
}

void token_arena_free(token_arena *arena)
{
    if (!arena) return;
    free_chunks(arena->newest);
    delete arena;
}

void token_arena_reset(token_arena *arena)
{
    chunk *kept = arena->newest;
    if (!kept) return;
    free_chunks(kept->older);
    kept->older = nullptr;
    start_on_chunk(arena, kept);
}

token *token_new(token_arena *arena, uint16_t type, size_t start, size_t len)
{
    token *t = take_record(arena);
    *t = {type, 1, 1, 1, start, len, nullptr, nullptr, nullptr, t, nullptr};
    return t;
}

token *token_copy(const token *original)
{
    token *copy = take_record(arena_of(original));
    *copy = *original;
    return copy;
}

void token_free(token *t)
{
    token_arena *arena = arena_of(t);
    t->next = arena->given_back;
    arena->given_back = t;
}

// In a loop, whatever the depth: child chains still to be freed are linked through their heads' `mate`.
void token_tree_free(token *t)
{
    if (!t) return;
    t->mate = nullptr;
    token *pending = t;
    while (pending) {
        token *current = pending;
        pending = current->mate;
        while (current) {
            token *next = current->next;
            if (current->child) {
                current->child->mate = pending;
                pending = current->child;
            }
            token_free(current);
            current = next;
        }
    }
}

} // namespace tomelet::engine
