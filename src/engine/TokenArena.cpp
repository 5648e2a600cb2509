// SPDX-License-Identifier: GPL-3.0-or-later
// The memory of tokens: chunks that are cut into records. A chunk lies at a multiple of its size, so the
// arena of a token is found from its address, and tokens can be freed and copied without naming the arena.
#include "engine/Token.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace tomelet::engine {

namespace {

/// A chunk lies at a multiple of this and begins with its head.
constexpr size_t chunk_size = 16384;
constexpr size_t head_size = 64;
/// Chunks are allocated in slabs. The first holds one, and each twice as many as the one before it up to
/// this.
constexpr size_t largest_slab = 256;

struct chunk
{
    token_arena *arena;
};

} // namespace

struct slab
{
    char *memory;
    size_t chunks;
    slab *older;
};

static void start_on_chunk(token_arena *arena, char *memory)
{
    reinterpret_cast<chunk *>(memory)->arena = arena;
    arena->unused = memory + head_size;
    arena->chunk_end = memory + chunk_size;
}

static void start_on_slab(token_arena *arena, slab *s)
{
    arena->newest = s;
    arena->slab_end = s->memory + s->chunks * chunk_size;
    start_on_chunk(arena, s->memory);
}

static void add_slab(token_arena *arena)
{
    const size_t chunks = arena->newest ? std::min(arena->newest->chunks * 2, largest_slab) : 1;
    void *memory = nullptr;
    if (posix_memalign(&memory, chunk_size, chunks * chunk_size) != 0) {
        std::fputs("Error allocating memory for tokens.\n", stderr);
        std::exit(1);
    }
    start_on_slab(arena, new slab{static_cast<char *>(memory), chunks, arena->newest});
}

void token_arena_grow(token_arena *arena)
{
    if (arena->newest && arena->chunk_end < arena->slab_end) start_on_chunk(arena, arena->chunk_end);
    else add_slab(arena);
}

static token_arena *arena_of(const token *t)
{
    const auto address = reinterpret_cast<uintptr_t>(t);
    return reinterpret_cast<const chunk *>(address & ~(chunk_size - 1))->arena;
}

static_assert((chunk_size - head_size) % sizeof(token) == 0);

token_arena *token_arena_new()
{
    return new token_arena{};
}

static void free_slabs(slab *s)
{
    while (s) {
        slab *older = s->older;
        std::free(s->memory);
        delete s;
        s = older;
    }
}

void token_arena_free(token_arena *arena)
{
    if (!arena) return;
    free_slabs(arena->newest);
    delete arena;
}

void token_arena_reset(token_arena *arena)
{
    slab *kept = arena->newest;
    if (!kept) return;
    free_slabs(kept->older);
    kept->older = nullptr;
    arena->given_back = nullptr;
    start_on_slab(arena, kept);
}

token *token_copy(const token *original)
{
    token *copy = token_take_record(arena_of(original));
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
