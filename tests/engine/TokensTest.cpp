// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Pairs.h"
#include "engine/Token.h"

#include <gtest/gtest.h>

#include <string>

using namespace tomelet::engine;

namespace {

// Tokens of one byte each: "[" "]" "(" ")" and text, under one parent.
class Tokens : public testing::Test
{
protected:
    ~Tokens() override
    {
        token_pair_engine_free(m_pairs);
        stack_free(m_stack);
        token_arena_free(m_arena);
    }

    token *parentOf(const std::string &text)
    {
        token *parent = token_new(m_arena, BLOCK_PARA, 0, 0);
        for (size_t i = 0; i < text.size(); ++i) token_append_child(parent, token_new(m_arena, typeOf(text[i]), i, 1));
        return parent;
    }
    static uint16_t typeOf(char c)
    {
        switch (c) {
        case '[': return BRACKET_LEFT;
        case ']': return BRACKET_RIGHT;
        case '(': return PAREN_LEFT;
        case ')': return PAREN_RIGHT;
        case '*': return STAR;
        default: return TEXT_PLAIN;
        }
    }
    // Pairs in braces, the rest by start.
    static std::string outline(const token *t)
    {
        std::string text;
        for (; t; t = t->next) text += t->child ? '{' + outline(t->child) + '}' : std::to_string(t->start);
        return text;
    }
    std::string matched(const std::string &text)
    {
        token *parent = parentOf(text);
        token_pairs_match_pairs_inside_token(parent, m_pairs, m_stack, 0);
        EXPECT_EQ(m_stack->size, 0U);
        EXPECT_TRUE(linksHold(parent));
        return outline(parent->child);
    }
    static bool linksHold(const token *parent)
    {
        const token *last = nullptr;
        for (const token *t = parent->child; t; last = t, t = t->next)
            if (t->prev != last || (t->child && !linksHold(t))) return false;
        return !parent->child || parent->child->tail == last;
    }

    token_arena *m_arena = token_arena_new();
    token_pair_engine *m_pairs = token_pair_engine_new();
    stack *m_stack = stack_new(0);
};

} // namespace

TEST_F(Tokens, GraftKeepsTheFirstTokensPlace)
{
    token *parent = parentOf("abcd");
    token *second = parent->child->next;
    token_prune_graft(second, parent->child->tail, PAIR_PAREN);
    EXPECT_EQ(parent->child->next, second);
    EXPECT_EQ(second->type, PAIR_PAREN);
    EXPECT_EQ(second->len, 3U);
    EXPECT_EQ(second->child->start, 1U);
    EXPECT_EQ(outline(parent->child), "0{123}");
    EXPECT_TRUE(linksHold(parent));
    token_prune_graft(parent->child, parent->child, PAIR_PAREN);
    EXPECT_EQ(outline(parent->child), "{0}{123}");
}

TEST_F(Tokens, SplitCutsInTwoOrThree)
{
    token *t = token_new(m_arena, TEXT_PLAIN, 10, 10);
    token_split(t, 5, 3, STAR);
    token_split(t, 18, 5, STAR);
    EXPECT_EQ(t->next, nullptr);
    token_split(t, 13, 2, STAR);
    EXPECT_EQ(t->len, 3U);
    EXPECT_EQ(t->next->type, STAR);
    EXPECT_EQ(t->next->next->start, 15U);
    EXPECT_EQ(t->next->next->len, 5U);
    token_split(t, 10, 1, UL);
    EXPECT_EQ(t->type, UL);
    EXPECT_EQ(t->next->len, 2U);
}

TEST_F(Tokens, PiecesOnACharacterCountFromTheFirstStart)
{
    token *t = token_new(m_arena, TEXT_PLAIN, 0, 8);
    token_split_on_char(t, "ab;cd;ef", ';');
    EXPECT_EQ(t->len, 2U);
    EXPECT_EQ(t->next->start, 3U);
    EXPECT_EQ(t->next->len, 5U); // too long, by its own start
    EXPECT_EQ(t->next->next->start, 6U);
    EXPECT_EQ(t->next->next->len, 2U);
}

TEST_F(Tokens, RemovingAndAcceptingMoveAlongTheChain)
{
    token *parent = parentOf("a[b]");
    token_remove_first_child(parent);
    token_remove_last_child(parent);
    EXPECT_EQ(outline(parent->child), "12");
    EXPECT_TRUE(linksHold(parent));
    token *cursor = parent->child;
    EXPECT_EQ(token_chain_accept(&cursor, TEXT_PLAIN), nullptr);
    EXPECT_EQ(token_chain_accept_multiple(&cursor, 2, TEXT_PLAIN, BRACKET_LEFT), parent->child);
    token_skip_until_type(&cursor, BRACKET_RIGHT);
    EXPECT_EQ(cursor, nullptr);
}

TEST_F(Tokens, FreedRecordsAreUsedAgain)
{
    token *parent = parentOf("a(b)");
    token_prune_graft(parent->child->next, parent->child->tail, PAIR_PAREN);
    token_tree_free(parent);
    token *again = token_new(m_arena, STAR, 1, 2);
    EXPECT_EQ(again->child, nullptr);
    EXPECT_EQ(again->tail, again);
    EXPECT_EQ(again->unmatched, 1);
}

TEST_F(Tokens, ClosersDiscardWhatStandsAboveTheirOpener)
{
    const int fold = PAIRING_ALLOW_EMPTY | PAIRING_PRUNE_MATCH;
    token_pair_engine_add_pairing(m_pairs, BRACKET_LEFT, BRACKET_RIGHT, PAIR_BRACKET, fold);
    token_pair_engine_add_pairing(m_pairs, PAREN_LEFT, PAREN_RIGHT, PAIR_PAREN, fold);
    EXPECT_EQ(matched("[]"), "{01}");
    EXPECT_EQ(matched("[a(b]c)"), "{01234}56");
    EXPECT_EQ(matched("[[a]"), "0{123}");
    EXPECT_EQ(matched("([)](]"), "{012}345");
}

TEST_F(Tokens, APairThatMayNotBeEmptyGivesUp)
{
    token_pair_engine_add_pairing(m_pairs, STAR, STAR, PAIR_STAR, 0);
    token *parent = parentOf("*a**");
    token_pairs_match_pairs_inside_token(parent, m_pairs, m_stack, 0);
    const token *first = parent->child;
    EXPECT_EQ(first->mate, first->next->next);
    EXPECT_EQ(parent->child->tail->mate, nullptr);
    parent = parentOf("*a[**");
    token_pairs_match_pairs_inside_token(parent, m_pairs, m_stack, 0);
    EXPECT_EQ(parent->child->mate, parent->child->tail->prev);
}

TEST_F(Tokens, LengthsMustAgreeWhereToldSo)
{
    token_pair_engine_add_pairing(m_pairs, STAR, STAR, PAIR_STAR, PAIRING_MATCH_LENGTH);
    token *parent = parentOf("*a*bb*");
    parent->child->next->next->len = 2;
    token_pairs_match_pairs_inside_token(parent, m_pairs, m_stack, 0);
    EXPECT_EQ(parent->child->mate, parent->child->tail);
}
