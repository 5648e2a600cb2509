// SPDX-License-Identifier: GPL-3.0-or-later
// What holds of every tree and every output, checked over all example documents and over cuts of them.
#include "engine/Engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

using namespace tomelet::engine;

namespace {

std::string examples()
{
    std::string all;
    for (const auto &entry : std::filesystem::directory_iterator(TOMELET_SOURCE_DIR "/tests/engine/cases")) {
        std::ifstream file(entry.path(), std::ios::binary);
        all.append(std::istreambuf_iterator<char>(file), {});
    }
    return all;
}

// Children lie within their parent, one behind the other, and the chain's links agree.
void checkTree(const token *parent, size_t end)
{
    size_t last_end = 0;
    const token *last = nullptr;
    for (const token *t = parent->child; t; last = t, t = t->next) {
        ASSERT_EQ(t->prev, last) << "at " << t->start;
        ASSERT_GE(t->start, last_end);
        ASSERT_LE(token_end(t), end);
        if (t->mate) {
            ASSERT_EQ(t->mate->mate, t);
        }
        last_end = token_end(t);
        if (t->child) checkTree(t, end);
        if (testing::Test::HasFatalFailure()) return;
    }
    if (last) {
        ASSERT_EQ(parent->child->tail, last);
    }
}

} // namespace

TEST(Tree, RangesFollowEachOther)
{
    const std::string text = examples();
    d_string *source = d_string_new("");
    d_string_append_c_array(source, text.data(), text.size());
    for (const uint32_t extensions : {8720U, 8728U, uint32_t{EXT_COMPATIBILITY}}) {
        mmd_engine *engine = mmd_engine_create(source, extensions);
        for (size_t start = 0; start < text.size(); start += 997) {
            const token *tree = mmd_engine_parse_substring(engine, start, 5000);
            checkTree(tree, std::min(start + 5000, text.size()));
        }
        mmd_engine_free(engine, false);
    }
    d_string_free(source, true);
}

TEST(Tree, ConvertingTwiceGivesTheSame)
{
    const std::string text = examples();
    d_string *source = d_string_new("");
    d_string_append_c_array(source, text.data(), text.size());
    mmd_engine *engine = mmd_engine_create(source, 8728);
    d_string *first = mmd_engine_convert(engine, FORMAT_HTML, "");
    d_string *second = mmd_engine_convert(engine, FORMAT_HTML, "");
    EXPECT_STREQ(first->str, second->str);
    d_string_free(first, true);
    d_string_free(second, true);
    mmd_engine_free(engine, true);
}

TEST(Tree, FormatsWithoutAWriterAreRefused)
{
    EXPECT_TRUE(mmd_format_is_available(FORMAT_HTML));
    EXPECT_TRUE(mmd_format_is_available(FORMAT_MMD));
    EXPECT_FALSE(mmd_format_is_available(FORMAT_FODT));
    d_string *source = d_string_new("a");
    EXPECT_EQ(mmd_d_string_convert(source, 0, FORMAT_FODT, LANG_EN, ""), nullptr);
    d_string_free(source, true);
}

TEST(Tree, RandomNumbersAgreeWhereTheyMeet)
{
    d_string *source = d_string_new("{{TOC}}\n\n# A\n\na[^1] [A]\n\n[^1]: b\n\n    # B\n\n# C\n");
    d_string *html =
        mmd_d_string_convert(source, EXT_NOTES | EXT_RANDOM_FOOT | EXT_RANDOM_LABELS, FORMAT_HTML, LANG_EN, "");
    const std::string text = html->str;
    d_string_free(html, true);
    d_string_free(source, true);
    const auto occurrences = [&text](const std::string &what) {
        size_t count = 0;
        for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
        return count;
    };
    const auto between = [&text](const std::string &before, char stop) {
        const size_t start = text.find(before) + before.size();
        return text.substr(start, text.find(stop, start) - start);
    };
    const std::string label = between("<h1 id=\"", '"');
    EXPECT_EQ(occurrences("#" + label + "\""), 2U); // in the contents and in the text
    const std::string note = between("href=\"#fn:", '"');
    EXPECT_EQ(occurrences("\"fn:" + note + "\""), 1U);
    EXPECT_EQ(occurrences("#fnref:" + note + "\""), 1U);
}

TEST(Tree, MailAddressesAreMasked)
{
    d_string *source = d_string_new("<a@b.c> [x](mailto:a@b.c)");
    for (const uint32_t extensions : {0U, uint32_t{EXT_OBFUSCATE}}) {
        d_string *html = mmd_d_string_convert(source, extensions, FORMAT_HTML, LANG_EN, "");
        const std::string text = html->str;
        EXPECT_EQ(text.find("a@b.c>"), std::string::npos);
        EXPECT_EQ(text.find("mailto:a@b.c") == std::string::npos, extensions != 0);
        d_string_free(html, true);
    }
    d_string_free(source, true);
}
