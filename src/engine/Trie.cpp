// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Trie.h"

#include <cstdlib>
#include <vector>

namespace tomelet::engine {

static void make_room(trie *t)
{
    if (t->node_count < t->capacity) return;
    t->capacity *= 2;
    t->node = static_cast<trie_node *>(std::realloc(t->node, t->capacity * sizeof(trie_node)));
}

static uint32_t add_node(trie *t, char c)
{
    make_room(t);
    t->node[t->node_count] = {};
    t->node[t->node_count].c = c;
    return static_cast<uint32_t>(t->node_count++);
}

trie *trie_new(size_t capacity)
{
    if (capacity < 2) capacity = 256;
    auto *t = new trie{0, capacity, static_cast<trie_node *>(std::malloc(capacity * sizeof(trie_node)))};
    add_node(t, '\0');
    return t;
}

void trie_free(trie *t)
{
    if (!t) return;
    std::free(t->node);
    delete t;
}

void trie_insert(trie *t, const char *key, uint16_t match_type)
{
    if (!t || !key || *key == '\0') return;
    uint32_t state = 0;
    uint16_t len = 0;
    for (; *key; ++key, ++len) {
        const auto byte = static_cast<unsigned char>(*key);
        if (t->node[state].child[byte] == 0) {
            const uint32_t added = add_node(t, *key); // may move the nodes
            t->node[state].child[byte] = added;
        }
        state = t->node[state].child[byte];
    }
    t->node[state].match_type = match_type;
    t->node[state].len = len;
}

// By breadth: a node's link is found from its parent's, which is nearer to the root and so is done. This
// gives for each node the longest proper suffix of its path that is a path too.
void ac_trie_prepare(trie *t)
{
    std::vector<uint32_t> queue{0};
    for (size_t done = 0; done < queue.size(); ++done) {
        const uint32_t state = queue[done];
        for (unsigned byte = 0; byte < 256; ++byte) {
            const uint32_t child = t->node[state].child[byte];
            if (child == 0) continue;
            queue.push_back(child);
            uint32_t fail = t->node[state].ac_fail;
            while (fail != 0 && t->node[fail].child[byte] == 0) fail = t->node[fail].ac_fail;
            t->node[child].ac_fail = state == 0 ? 0 : t->node[fail].child[byte];
        }
    }
}

static match *append_match(match *last, size_t start, size_t len, uint16_t match_type)
{
    auto *added = new match{start, len, match_type, nullptr, last};
    last->next = added;
    return added;
}

match *ac_trie_search(const trie *t, const char *source, size_t start, size_t len)
{
    auto *head = new match{};
    match *last = head;
    uint32_t state = 0;
    for (size_t i = start; i < start + len && source[i] != '\0'; ++i) {
        const auto byte = static_cast<unsigned char>(source[i]);
        while (state != 0 && t->node[state].child[byte] == 0) state = t->node[state].ac_fail;
        state = t->node[state].child[byte];
        for (uint32_t hit = state; hit != 0; hit = t->node[hit].ac_fail)
            if (t->node[hit].match_type)
                last = append_match(last, i + 1 - t->node[hit].len, t->node[hit].len, t->node[hit].match_type);
    }
    return head;
}

static match *drop(match *gone)
{
    match *before = gone->prev;
    before->next = gone->next;
    if (gone->next) gone->next->prev = before;
    delete gone;
    return before;
}

match *ac_trie_leftmost_longest(const trie *t, const char *source, size_t start, size_t len)
{
    match *head = ac_trie_search(t, source, start, len);
    match *kept = head;
    while (match *entry = kept->next) {
        // What was kept and starts at or behind the new entry is shorter or further right.
        while (kept->len > 0 && kept->start >= entry->start) kept = drop(kept);
        if (kept->len > 0 && entry->start < kept->start + kept->len) drop(entry);
        else kept = entry;
    }
    return head;
}

void match_free(match *list)
{
    while (list) {
        match *next = list->next;
        delete list;
        list = next;
    }
}

} // namespace tomelet::engine
