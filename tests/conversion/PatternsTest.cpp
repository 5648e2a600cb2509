// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/Patterns.h"

#include "conversion/PatternCache_p.h"

#include <gtest/gtest.h>

#include <thread>

using namespace tomelet;
using namespace Qt::StringLiterals;

static std::string rangesOf(const QString &text, const QString &pattern, int options = 0, Range range = wholeRange)
{
    QString result;
    const PatternMatches matches = matchesOfPattern(text, pattern, options, range);
    for (size_t i = 0; i < matches.size(); ++i) {
        for (size_t group = 0; group <= matches[i].groupCount(); ++group)
            result += matches[i].group(group).isFound() ? textOfRange(matches[i].group(group)) : u"-"_s;
        result += u';';
    }
    return result.toStdString();
}

TEST(Patterns, rangesFlagsAndBorders)
{
    const struct
    {
        const char *name;
        QString text, pattern;
        int options;
        Range range;
        const char *wanted;
    } rows[] = {
        {"groups", u"a1 b c3"_s, u"([a-z])(\\d)?"_s, 0, wholeRange,
         "{0, 2}{0, 1}{1, 1};{3, 1}{3, 1}-;{5, 2}{5, 1}{6, 1};"},
        {"UTF-16 units", u"😀ä😀b"_s, u"[a-zä]"_s, 0, wholeRange, "{2, 1};{5, 1};"},
        {"empty matches", u"a😀"_s, u"x*"_s, 0, wholeRange, "{0, 0};{1, 0};{3, 0};"},
        {"exact case", u"aB"_s, u"[A-Z]"_s, 0, wholeRange, "{1, 1};"},
        {"case-insensitive", u"aB"_s, u"[A-Z]"_s, 1, wholeRange, "{0, 1};{1, 1};"},
        {"line end stops the dot", u"a\nb"_s, u".+"_s, 0, wholeRange, "{0, 1};{2, 1};"},
        {"dot-all", u"a\nb"_s, u".+"_s, 8, wholeRange, "{0, 3};"},
        {"line-anchored", u"a\nb"_s, u"^b$"_s, 16, wholeRange, "{2, 1};"},
        {"one text", u"a\nb"_s, u"^b$"_s, 0, wholeRange, ""},
        {"all flags", u"A\nB\nc"_s, u"^b.c$"_s, 25, wholeRange, "{2, 3};"},
        {"unknown escape is a letter", u"xy"_s, u"[\\A\\y]"_s, 0, wholeRange, "{1, 1};"},
        {"part", u"aaaa"_s, u"^a|(?<=a)b"_s, 0, {1, 2}, "{1, 1};"},
        {"part to the end", u"aab"_s, u"b$"_s, 0, {1, Range::notFound}, "{2, 1};"},
        {"outside", u"aa"_s, u"a"_s, 0, {1, 2}, ""},
        {"behind the end", u"aa"_s, u"a"_s, 0, {3, 0}, ""},
        {"empty text", u""_s, u"^$|x*"_s, 0, wholeRange, ""},
        {"no pattern", u"a("_s, u"("_s, 0, wholeRange, ""},
        {"empty pattern", u"a"_s, u""_s, 0, wholeRange, ""},
        {"too much for the stack of ICU", u"ab"_s.repeated(500000), u"(a|b)*c"_s, 0, wholeRange, ""},
    };
    for (const auto &row : rows)
        EXPECT_EQ(rangesOf(row.text, row.pattern, row.options, row.range), row.wanted) << row.name;
    EXPECT_EQ(rangeOfPattern(u"k=v"_s, u"(\\w)=(\\w)"_s, 0, wholeRange, 2), (Range{2, 1}));
    EXPECT_FALSE(rangeOfPattern(u"k=v"_s, u"(\\w)=(\\w)"_s, 0, wholeRange, 3).isFound());
    EXPECT_TRUE(isPatternValid(u"(?<n>a)"_s));
    EXPECT_FALSE(isPatternValid(u"a)"_s));
}

TEST(Patterns, rewritesFromTheLastMatchToTheFirst)
{
    QString text = u"[a](1) and [bb](22)"_s, order;
    const size_t count =
        rewriteEachMatch(text, u"\\[(\\w+)\\]\\((\\d+)\\)"_s, 0, [&](const PatternMatch &match, QString &working) {
            order += substring(working, match.group(1));
            replaceGroups(working, match,
                          {{1, u"<"_s + substring(working, match.group(1)) + u">"_s}, {2, u"longer"_s}, {9, u"no"_s}});
            working += u'+';
        });
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(order, u"bba"_s);
    EXPECT_EQ(text, u"[<a>](longer) and [<bb>](longer)++"_s);
    EXPECT_EQ(rewriteEachMatch(text, u"("_s, 0, [](const PatternMatch &, QString &working) { working.clear(); }), 0u);

    // A callback may use the same pattern on another text.
    QString outer = u"1 2"_s;
    rewriteEachMatch(outer, u"\\d"_s, 0, [](const PatternMatch &match, QString &working) {
        QString inner = u"3 4"_s;
        rewriteEachMatch(inner, u"\\d"_s, 0,
                         [](const PatternMatch &at, QString &deep) { replaceRange(deep, at.range(), u"x"); });
        replaceRange(working, match.range(), inner);
    });
    EXPECT_EQ(outer, u"x x x x"_s);
}

TEST(Patterns, sweepsByTemplate)
{
    const struct
    {
        const char *name;
        QString text, pattern, replacement, wanted;
    } rows[] = {
        {"groups", u"a-b c-d"_s, u"(\\w)-(\\w)"_s, u"$2-$1$0"_s, u"b-aa-b d-cc-d"_s},
        {"named group", u"ab"_s, u"(?<x>b)"_s, u"[${x}]"_s, u"a[b]"_s},
        {"escapes", u"a"_s, u"a"_s, u"\\$1\\\\\\n"_s, u"$1\\n"_s},
        {"group that took no part", u"ab"_s, u"a(x)?b"_s, u"<$1>"_s, u"<>"_s},
        {"no such group", u"ab"_s, u"a"_s, u"$1"_s, u"ab"_s},
        {"empty replacement", u"aab"_s, u"a"_s, {}, u"b"_s},
        {"no match", u"aab"_s, u"x"_s, u"y"_s, u"aab"_s},
        {"much longer", u"ab"_s.repeated(300), u"b"_s, u"-"_s.repeated(100),
         QString(u"a"_s + u"-"_s.repeated(100)).repeated(300)},
        {"empty text", u""_s, u"^"_s, u"x"_s, u""_s},
        {"no pattern", u"a"_s, u"["_s, u"x"_s, u"a"_s},
    };
    for (const auto &row : rows) EXPECT_EQ(regexSweep(row.text, row.pattern, row.replacement), row.wanted) << row.name;
}

TEST(Patterns, compiledOnceForAllThreads)
{
    const quint64 before = patternCache().compileCount();
    std::vector<std::thread> threads;
    std::atomic<size_t> found = 0;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round)
                for (int options : {0, 1})
                    found += matchesOfPattern(u"once Twice"_s, u"\\bt?\\w+ce\\b"_s, options).size();
        });
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(found, 8u * 200u * 4u);
    EXPECT_EQ(patternCache().compileCount(), before + 2);
}
