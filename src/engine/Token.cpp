// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Token.h"

#include "engine/Chars.h"
#include "engine/Limits.h"

#include <cstdarg>
#include <cstdio>

namespace tomelet::engine {

token *token_new_parent(token_arena *arena, token *child_chain, uint16_t type)
{
    if (!child_chain) return token_new(arena, type, 0, 0);
    const size_t start = child_chain->start;
    token *parent = token_new(arena, type, start, token_end(child_chain->tail) - start);
    parent->child = child_chain;
    child_chain->prev = nullptr;
    return parent;
}

void token_remove_first_child(token *parent)
{
    if (!parent || !parent->child) return;
    token *gone = parent->child;
    parent->child = gone->next;
    if (parent->child) {
        parent->child->prev = nullptr;
        parent->child->tail = gone->tail;
    }
    gone->next = nullptr;
    token_tree_free(gone);
}

void token_remove_last_child(token *parent)
{
    if (!parent || !parent->child) return;
    token *gone = parent->child->tail;
    if (gone->prev) {
        gone->prev->next = nullptr;
        parent->child->tail = gone->prev;
    } else parent->child = nullptr;
    token_tree_free(gone);
}

void token_pop_link_from_chain(token *t)
{
    if (t->prev) t->prev->next = t->next;
    if (t->next) t->next->prev = t->prev;
    t->next = nullptr;
    t->prev = nullptr;
    t->tail = t;
}

static token *chain_head(token *t)
{
    while (t->prev) t = t->prev;
    return t;
}

void tokens_prune(token *first, token *last)
{
    if (!first || !last) return;
    token *before = first->prev;
    token *behind = last->next;
    if (before) before->next = behind;
    if (behind) behind->prev = before;
    else if (before) chain_head(before)->tail = before;
    last->next = nullptr;
    token_tree_free(first);
}

void token_prune_graft(token *first, token *last, uint16_t container_type)
{
    token *behind = last->next;
    token *copy = token_copy(first);
    copy->prev = nullptr;
    if (first == last) last = copy;
    copy->tail = last;
    if (copy != last) copy->next->prev = copy;
    last->next = nullptr;

    first->child = copy;
    first->type = container_type;
    first->len = token_end(last) - first->start;
    first->next = behind;
    first->can_open = 0;
    first->can_close = 0;
    if (first->mate) {
        first->mate = nullptr;
        copy->mate->mate = copy;
    }
    if (behind) behind->prev = first;
    else {
        first->tail = first;
        chain_head(first)->tail = first;
    }
}

static token *link_behind(token *t, token *added)
{
    added->prev = t;
    added->next = t->next;
    if (t->next) t->next->prev = added;
    t->next = added;
    return added;
}

// A token of the same arena, linked behind t.
static token *insert_behind(token *t, uint16_t type, size_t start, size_t end)
{
    token *added = token_copy(t);
    *added = {type, 1, 1, 1, start, end - start, nullptr, nullptr, nullptr, added, nullptr};
    return link_behind(t, added);
}

void token_split(token *t, size_t start, size_t len, uint16_t new_type)
{
    const size_t stop = start + len;
    const size_t end = token_end(t);
    if (start < t->start || stop > end || stop < start) return;
    token *cut = t;
    if (start > t->start) {
        cut = insert_behind(t, new_type, start, stop);
        t->len = start - t->start;
    }
    if (stop < end) insert_behind(cut, t->type, stop, end);
    if (cut == t) {
        t->type = new_type;
        t->len = len;
    }
}

void token_split_on_char(token *t, const char *source, char byte)
{
    if (!t || t->len < 2) return;
    const size_t start = t->start;
    const size_t stop = token_end(t);
    token *current = t;
    for (size_t i = 0; start + i + 1 < stop; ++i) {
        if (source[start + i] != byte) continue;
        token *piece = insert_behind(current, t->type, start + i + 1, stop);
        piece->prev = nullptr;
        current->len = i;
        current = piece;
    }
}

void token_trim_leading_whitespace(token *t, const char *source)
{
    while (t->len > 0 && char_is_whitespace(source[t->start])) {
        ++t->start;
        --t->len;
    }
}

token *token_chain_accept(token **cursor, uint16_t type)
{
    token *found = *cursor;
    if (!found || found->type != type) return nullptr;
    *cursor = found->next;
    return found;
}

static bool type_is_listed(const token *t, int count, va_list types)
{
    for (int i = 0; i < count; ++i)
        if (t->type == va_arg(types, int)) return true;
    return false;
}

token *token_chain_accept_multiple(token **cursor, int count, ...)
{
    token *found = *cursor;
    if (!found) return nullptr;
    va_list types;
    va_start(types, count);
    const bool listed = type_is_listed(found, count, types);
    va_end(types);
    if (!listed) return nullptr;
    *cursor = found->next;
    return found;
}

void token_skip_until_type(token **cursor, uint16_t type)
{
    while (*cursor && (*cursor)->type != type) *cursor = (*cursor)->next;
}

void token_skip_until_type_multiple(token **cursor, int count, ...)
{
    for (; *cursor; *cursor = (*cursor)->next) {
        va_list types;
        va_start(types, count);
        const bool listed = type_is_listed(*cursor, count, types);
        va_end(types);
        if (listed) return;
    }
}

static void describe(const token *t, const char *source, int depth)
{
    if (depth >= kMaxDepth) return;
    for (; t; t = t->next) {
        const auto start = static_cast<unsigned long>(t->start);
        const auto len = static_cast<unsigned long>(t->len);
        for (int i = 0; i < depth; ++i) std::fputc('\t', stderr);
        if (source)
            std::fprintf(stderr, "* (%d) %lu:%lu\t'%.*s'\n", t->type, start, len, static_cast<int>(t->len),
                         source + t->start);
        else std::fprintf(stderr, "* (%d) %lu:%lu\n", t->type, start, len);
        describe(t->child, source, depth + 1);
    }
}

void token_tree_describe(const token *t, const char *source)
{
    describe(t, source, 0);
}

} // namespace tomelet::engine
