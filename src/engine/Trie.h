// SPDX-License-Identifier: GPL-3.0-or-later
// A byte trie with failure links (Aho and Corasick): finds many keys in one pass over a text.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tomelet::engine {

struct trie_node
{
    char c;              ///< the byte that leads here
    uint16_t match_type; ///< 0: no key ends here
    uint16_t len;        ///< length of the key that ends here
    uint32_t child[256]; ///< node indices, 0 for none
    uint32_t ac_fail;    ///< the node to fall back to
};

/// Nodes are addressed by index, so that growing invalidates none; node 0 is the root.
struct trie
{
    size_t node_count;
    size_t capacity;
    trie_node *node;
};

/// One hit. A search gives a doubly linked list that begins with an empty entry.
struct match
{
    size_t start; ///< offset in the source
    size_t len;
    uint16_t match_type;
    match *next;
    match *prev;
};

/// A new trie; a capacity below 2 gives 256 nodes.
[[nodiscard]] trie *trie_new(size_t capacity);
void trie_free(trie *t);
/// Adds a key (its bytes up to the NUL); a key added twice keeps the last match type. An empty key is
/// ignored.
void trie_insert(trie *t, const char *key, uint16_t match_type);
/// Computes the failure links; needed once between the last insertion and the first search.
void ac_trie_prepare(trie *t);
/// All hits in the range, those that overlap too, ordered by their ends; a NUL ends the search.
[[nodiscard]] match *ac_trie_search(const trie *t, const char *source, size_t start, size_t len);
/// Only hits that do not overlap: the leftmost first, and of two with one start the longer.
[[nodiscard]] match *ac_trie_leftmost_longest(const trie *t, const char *source, size_t start, size_t len);
void match_free(match *list);

} // namespace tomelet::engine
