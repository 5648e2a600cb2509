// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/DString.h"
#include "engine/Labels.h"
#include "engine/Stack.h"
#include "engine/Trie.h"

#include <gtest/gtest.h>

#include <string>

using namespace tomelet::engine;

namespace {

struct Text
{
    explicit Text(const char *text)
        : s(d_string_new(text))
    {}
    ~Text() { d_string_free(s, true); }
    Text(const Text &) = delete;
    Text &operator=(const Text &) = delete;
    [[nodiscard]] std::string value() const { return {s->str, s->currentStringLength}; }
    d_string *s;
};

std::string hits(const trie *t, const std::string &text, bool longest)
{
    match *list = longest ? ac_trie_leftmost_longest(t, text.c_str(), 0, text.size())
                          : ac_trie_search(t, text.c_str(), 0, text.size());
    std::string found;
    for (const match *m = list->next; m; m = m->next)
        found += std::to_string(m->start) + text.substr(m->start, m->len) + std::to_string(m->match_type) + ' ';
    match_free(list);
    return found;
}

} // namespace

TEST(DString, CapacityDoublesFrom1024)
{
    EXPECT_EQ(Text(std::string(1023, 'x').c_str()).s->currentStringBufferSize, 1024U);
    EXPECT_EQ(Text(std::string(1024, 'x').c_str()).s->currentStringBufferSize, 2048U);
    Text grown(nullptr);
    for (int i = 0; i < 5000; ++i) d_string_append_c(grown.s, 'y');
    EXPECT_EQ(grown.s->currentStringBufferSize, 8192U);
    EXPECT_EQ(grown.value(), std::string(5000, 'y'));
}

TEST(DString, AppendsInsertsErases)
{
    Text t("ab");
    d_string_append(t.s, nullptr);
    d_string_append_c(t.s, '\0');
    d_string_append_c_array(t.s, "cde", 1);
    d_string_append_c_array(t.s, "d", to_the_end);
    d_string_append_printf(t.s, "%d-%s", 5, "e");
    d_string_insert(t.s, 0, "<");
    d_string_insert(t.s, 1000, ">");
    EXPECT_EQ(t.value(), "<abcd5-e>");
    d_string_erase(t.s, 1, 2);
    d_string_erase(t.s, 9, 1);
    d_string_erase(t.s, 7, 0);
    EXPECT_EQ(t.value(), "<cd5-e>");
    d_string_erase(t.s, 3, to_the_end);
    EXPECT_EQ(t.value(), "<cd");
}

TEST(DString, ReplacesWhatStartsInTheRange)
{
    Text t("aXbXcX");
    EXPECT_EQ(d_string_replace_text_in_range(t.s, 0, 4, "X", "XX"), 2);
    EXPECT_EQ(t.value(), "aXXbXXcX");
    EXPECT_EQ(d_string_replace_text_in_range(t.s, 1, to_the_end, "XX", ""), -4);
    EXPECT_EQ(t.value(), "abcX");
    EXPECT_EQ(d_string_replace_text_in_range(t.s, 0, to_the_end, "none", "y"), 0);
}

TEST(Stack, GivesNullWhenEmpty)
{
    stack *s = stack_new(0);
    EXPECT_EQ(s->capacity, 64U);
    EXPECT_EQ(stack_pop(s), nullptr);
    EXPECT_EQ(stack_peek(s), nullptr);
    int values[100];
    for (int &value : values) stack_push(s, &value);
    EXPECT_EQ(stack_peek_index(s, 99), &values[99]);
    EXPECT_EQ(stack_peek_index(s, 100), nullptr);
    EXPECT_EQ(stack_pop(s), &values[99]);
    EXPECT_EQ(stack_peek(s), &values[98]);
    stack_free(s);
}

TEST(Trie, FindsOverlapsAndTheLeftmostLongest)
{
    trie *t = trie_new(0);
    for (const char *key : {"he", "she", "hers", "", "abcd", "bc", "c"}) trie_insert(t, key, 1);
    trie_insert(t, "bc", 2);
    ac_trie_prepare(t);
    EXPECT_EQ(hits(t, "ushers", false), "1she1 2he1 2hers1 ");
    EXPECT_EQ(hits(t, "ushers", true), "1she1 ");
    EXPECT_EQ(hits(t, "hers he", true), "0hers1 5he1 ");
    EXPECT_EQ(hits(t, "abcx bc abcd", true), "1bc2 5bc2 8abcd1 ");
    EXPECT_EQ(hits(t, "none", true), "");
    trie_free(t);
}

TEST(Labels, KeepWhatIsTold)
{
    EXPECT_EQ(label_from_string("Über uns: A-b_c.1 (x)"), "Überuns:a-b_c.1x");
    EXPECT_EQ(label_from_string(""), "");
    EXPECT_EQ(clean_string("  a \t\r\n B  ", false), "a B");
    EXPECT_EQ(clean_string("  a \t\r\n B  ", true), "a b");
    EXPECT_EQ(clean_string("a\\\n  b \\c", false), "a\nb \\c");
    EXPECT_EQ(clean_string(" \n", false), "");
}
