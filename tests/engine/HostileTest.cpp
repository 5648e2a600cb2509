// SPDX-License-Identifier: GPL-3.0-or-later
// Documents that are made to hurt. They are long enough to overflow a stack or to run for minutes where
// something is recursive or quadratic that should not be; ctest's time limit is the judge of the latter.
#include "engine/Engine.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <string>

using namespace tomelet::engine;

namespace {

// Frames are several times as large under the address sanitizer.
#ifdef __SANITIZE_ADDRESS__
constexpr size_t stackSize = size_t{8} << 20;
#else
constexpr size_t stackSize = size_t{1} << 20;
#endif

std::string repeated(const std::string &part, size_t count)
{
    std::string text;
    text.reserve(part.size() * count);
    for (size_t i = 0; i < count; ++i) text += part;
    return text;
}

struct Hostile
{
    const char *name;
    std::string text;
};

const Hostile documents[] = {
    {"open brackets", repeated("[", 100000)},
    {"nested brackets", repeated("[(", 50000) + repeated(")]", 50000)},
    {"nested references", repeated("[", 20000) + "a" + repeated("][]", 20000)},
    {"alternating marks", repeated("*a _b ", 50000)},
    {"a run of stars", repeated("*", 100000) + "a" + repeated("*", 100000)},
    {"mixed runs", repeated("*_", 50000) + "a" + repeated("_*", 50000)},
    {"openers under code", repeated("[", 50000) + repeated("` `` ` ", 50000)},
    {"nested quotes", repeated("> ", 10000) + "a"},
    {"lazy quotes", repeated(">", 1000) + "a\n" + repeated("b\n", 500)},
    {"nested items",
     [] {
         std::string text;
         for (size_t i = 0; i < 1200; ++i) text += repeated("\t", i) + "* a\n";
         return text;
     }()},
    {"open fence", "```\n" + repeated("a\n", 100000)},
    {"open comments", repeated("<!-- ", 100000)},
    {"open CriticMarkup", repeated("{++ ", 50000) + repeated("{~~a~>", 50000)},
    {"angles", repeated("<a ", 50000) + repeated(">", 50000)},
    {"declarations", repeated("<!A ", 50000) + repeated("<![CDATA[", 50000) + repeated("<?>", 50000)},
    {"NULs", repeated(std::string("a*\0*", 4), 50000)},
    {"invalid UTF-8", repeated("\xFF\xC2\x80\x80 *\xF0\x28* ", 50000)},
    {"a long line", repeated("word *x* ", 500000)},
    {"blanks", repeated(" ", 3000000) + "a" + repeated("\xC2\xA0", 1000000)},
    {"digits", repeated("1", 3000000)},
    {"scripts", repeated("x^y~", 100000) + repeated("a^b ", 100000)},
    {"terms", "[>A]: x\n[?b]: y\n\n" + repeated("A b", 200000)},
    {"notes in notes", repeated("[^", 20000) + repeated("]", 20000)},
    {"a note in itself", "[^1]\n\n[^1]: a[^1][#2]\n\n[#2]: b[^1]\n"},
    {"definitions", repeated("[a]: b (\n", 100000)},
    {"wide table", repeated("a|", 20000) + "\n" + repeated("-|", 20000) + "\n" + repeated("b|", 20000)},
    {"headings of all levels", repeated("{{TOC}}\n\n###### a\n\n# b\n\n", 300)},
};

void convert(const std::string &text, uint32_t extensions)
{
    d_string *source = d_string_new("");
    d_string_append_c_array(source, text.data(), text.size());
    d_string *html = mmd_d_string_convert(source, extensions, FORMAT_HTML, LANG_EN, "");
    EXPECT_GT(html->currentStringLength, 0U);
    d_string_free(html, true);
    d_string_free(source, true);
}

void *convertAll(void *)
{
    for (const Hostile &document : documents) {
        SCOPED_TRACE(document.name);
        convert(document.text, 8728);
        convert(document.text, EXT_COMPATIBILITY);
    }
    return nullptr;
}

} // namespace

TEST(Hostile, DocumentsAreConvertedSilentlyOnASmallStack)
{
    testing::internal::CaptureStderr();
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stackSize);
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, convertAll, nullptr), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
