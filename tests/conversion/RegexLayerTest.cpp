// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/RegexLayer.h"

#include "conversion/RegexCache_p.h"

#include <gtest/gtest.h>

#include <thread>

using namespace tomelet;
using namespace Qt::StringLiterals;

TEST(RegexLayer, findsMatchesAndGroups)
{
    const QString text = u"k1=v1, k2=, x"_s;
    const QString pair = u"(\\w+)=(\\w+)?"_s;
    EXPECT_TRUE(isMatchedByRegex(text, pair));
    EXPECT_FALSE(isMatchedByRegex(text, pair, {11, 2}));
    EXPECT_TRUE(isMatchedByRegex(text, u"K1"_s, RKLCaseless, wholeRange));
    EXPECT_EQ(rangeOfRegex(text, pair, 2), (Range{3, 2}));
    EXPECT_EQ(rangeOfRegex(text, pair, Range{5, 8}), (Range{7, 3}));
    EXPECT_FALSE(rangeOfRegex(text, pair, RKLNoOptions, {5, 8}, 2).isFound()) << "the group took no part";
    EXPECT_EQ(stringByMatching(text, pair, 1), u"k1"_s);
    EXPECT_TRUE(stringByMatching(text, pair, RKLNoOptions, {5, 8}, 2).isNull());
    EXPECT_TRUE(stringByMatching(text, u"y"_s).isNull());
    EXPECT_EQ(componentsMatchedByRegex(text, pair), (QStringList{u"k1=v1"_s, u"k2="_s}));
    EXPECT_EQ(componentsMatchedByRegex(text, pair, 2), (QStringList{u"v1"_s, u""_s}));
    EXPECT_EQ(captureComponentsMatchedByRegex(text, pair, {5, 8}), (QStringList{u"k2="_s, u"k2"_s, u""_s}));
    EXPECT_EQ(arrayOfCaptureComponentsMatchedByRegex(text, pair),
              (QList<QStringList>{{u"k1=v1"_s, u"k1"_s, u"v1"_s}, {u"k2="_s, u"k2"_s, u""_s}}));
    const RegexKeysAndCaptures keys{{u"key"_s, 1}, {u"value"_s, 2}};
    EXPECT_EQ(dictionaryByMatchingRegex(text, pair, keys), (QVariantMap{{u"key"_s, u"k1"_s}, {u"value"_s, u"v1"_s}}));
    EXPECT_EQ(arrayOfDictionariesByMatchingRegex(text, pair, RKLNoOptions, wholeRange, nullptr, keys).value(1),
              (QVariantMap{{u"key"_s, u"k2"_s}}));
}

TEST(RegexLayer, splitsAndReplaces)
{
    EXPECT_EQ(componentsSeparatedByRegex(u"a, b,c"_s, u",(\\s)*"_s), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
    EXPECT_EQ(componentsSeparatedByRegex(u",a,"_s, u","_s), (QStringList{u""_s, u"a"_s, u""_s}));
    EXPECT_EQ(componentsSeparatedByRegex(u"a,b,c,d"_s, u","_s, {2, 3}), (QStringList{u"b"_s, u"c"_s}));
    EXPECT_EQ(componentsSeparatedByRegex(u"abc"_s, u","_s), QStringList{u"abc"_s});

    QString text = u"a1 b2 c3"_s;
    EXPECT_EQ(replaceOccurrencesOfRegex(text, u"(\\w)(\\d)"_s, u"$2$1\\$"_s, {3, 5}), 2);
    EXPECT_EQ(text, u"a1 2b$ 3c$"_s);
    EXPECT_EQ(stringByReplacingOccurrencesOfRegex(u"x"_s.repeated(2000), u"x"_s, u"yy"_s), u"y"_s.repeated(4000));
    RKLError error;
    EXPECT_EQ(stringByReplacingOccurrencesOfRegex(text, u"a"_s, u"$7"_s, RKLNoOptions, wholeRange, &error), text);
    EXPECT_EQ(error.description, u"The ICU library returned an unexpected error."_s);
    EXPECT_EQ(error.userInfo.value(RKLICURegexErrorName), u"U_INDEX_OUTOFBOUNDS_ERROR"_s);
    EXPECT_EQ(error.userInfo.value(RKLICURegexReplacementString), u"$7"_s);
}

TEST(RegexLayer, anEmptyTextHasNoMatches)
{
    QString text;
    EXPECT_FALSE(isMatchedByRegex(text, u"^$"_s));
    EXPECT_EQ(replaceOccurrencesOfRegex(text, u"^"_s, u"x"_s), 0);
    EXPECT_TRUE(componentsMatchedByRegex(text, u"a*"_s).isEmpty());
    EXPECT_EQ(componentsSeparatedByRegex(u""_s, u","_s), QStringList{u""_s});
    EXPECT_FALSE(isMatchedByRegex(text, u"("_s, RKLNoOptions, wholeRange));
}

TEST(RegexLayer, blocks)
{
    QStringList seen;
    enumerateStringsMatchedByRegex(u"a1 b c3 d4"_s, u"(\\w)(\\d)?"_s, [&](const RegexMatch &match, bool &stop) {
        seen.append(match.capturedStrings.join(u'|') + (match.capturedRanges[2].isFound() ? u""_s : u"?"_s));
        // The same pattern on another text must not move this walk.
        EXPECT_EQ(componentsMatchedByRegex(u"x1y"_s, u"(\\w)(\\d)?"_s).size(), 2);
        stop = seen.size() == 3;
    });
    EXPECT_EQ(seen, (QStringList{u"a1|a|1"_s, u"b|b|?"_s, u"c3|c|3"_s}));
    seen.clear();
    enumerateStringsSeparatedByRegex(u"a--b-c"_s, u"-+"_s, [&](const RegexMatch &match, bool &) {
        seen.append(match.capturedStrings.first() + textOfRange(match.capturedRanges.first()));
    });
    EXPECT_EQ(seen, (QStringList{u"a{0, 1}"_s, u"b{3, 1}"_s, u"c{5, 1}"_s}));

    QString text = u"1 2 3"_s;
    const qsizetype count = replaceOccurrencesOfRegex(text, u"\\d"_s, [](const RegexMatch &match, bool &stop) {
        stop = match.capturedStrings.first() == u"2";
        return QString(u"$0<"_s + match.capturedStrings.first() + u">"_s);
    });
    EXPECT_EQ(count, 2);
    EXPECT_EQ(text, u"$0<1> $0<2> 3"_s);
    RKLError error;
    EXPECT_FALSE(enumerateStringsMatchedByRegex(text, u"\\d"_s, 0, wholeRange, &error, 1,
                                                [](const RegexMatch &, bool &) { ADD_FAILURE(); }));
    EXPECT_EQ(error.description, u"The RKLRegexEnumerationOptions argument is not valid."_s);
}

TEST(RegexLayer, reportsFaultsEachTime)
{
    const QString bad = u"ab\n(c[d]"_s;
    for (int i = 0; i < 2; ++i) {
        const quint64 before = regexCache().compileCount();
        RKLError error;
        EXPECT_FALSE(isMatchedByRegex(u"abc"_s, bad, RKLCaseless, wholeRange, &error));
        EXPECT_EQ(regexCache().compileCount(), before + 1);
        EXPECT_EQ(error.domain, RKLICURegexErrorDomain);
        EXPECT_EQ(error.description, u"There was an error compiling the regular expression."_s);
        EXPECT_EQ(error.reason.toStdString(),
                  "The error U_REGEX_MISMATCHED_PAREN occurred at line 2, column 5: ab\n(c[d]<<HERE>>");
        EXPECT_EQ(error.userInfo.value(RKLICURegexRegex), bad);
        EXPECT_EQ(error.userInfo.value(RKLICURegexRegexOptions), 2);
        EXPECT_EQ(error.userInfo.value(RKLICURegexLine), 2);
    }
    EXPECT_FALSE(isRegexValid(bad));
    EXPECT_EQ(captureCount(bad), -1);
    EXPECT_EQ(captureCount(u"(a)(?:b)(?<n>c)"_s), 2);

    const auto described = [](auto call) {
        RKLError error;
        call(&error);
        return error.description.toStdString();
    };
    const QString text = u"abc"_s, good = u"(a)(b)?"_s;
    EXPECT_EQ(described([&](RKLError *error) { (void)isRegexValidWithOptions(good, 0, error); }), "");
    EXPECT_EQ(described([&](RKLError *error) { (void)isRegexValidWithOptions({}, 0, error); }),
              "The regular expression argument is NULL.");
    EXPECT_EQ(described([&](RKLError *error) {
                  (void)isMatchedByRegex(text, good, 0, {2, 2}, error);
              }),
              "Range or index out of bounds.");
    EXPECT_EQ(described([&](RKLError *error) { (void)rangeOfRegex(text, good, 0, wholeRange, 3, error); }),
              "The capture argument is not valid.");
    EXPECT_EQ(described([&](RKLError *error) {
                  (void)arrayOfDictionariesByMatchingRegex(text, good, 0, wholeRange, error, {{u"k"_s, 1}, {{}, 1}});
              }),
              "The capture key (key 2 of 2) is NULL.");
    EXPECT_EQ(described([&](RKLError *error) {
                  (void)arrayOfDictionariesByMatchingRegex(text, good, 0, wholeRange, error, {{u"k%1"_s, 5}});
              }),
              "The capture argument 5 (capture 1 of 1) for key 'k%1' is not valid.");
    EXPECT_EQ(described([&](RKLError *error) {
                  (void)isMatchedByRegex(u"ab"_s.repeated(500000), u"(a|b)*c"_s, 0, wholeRange, error);
              }),
              "ICU regular expression error #66321, U_REGEX_STACK_OVERFLOW.");
}

namespace {

// Patterns that fall into the same set as the first.
QStringList patternsOfOneSet(int count)
{
    QStringList patterns{u"p"_s};
    for (int i = 0; patterns.size() < count; ++i) {
        const QString pattern = u"p%1"_s.arg(i);
        if (RegexCache::setOf(pattern, 0) == RegexCache::setOf(patterns.first(), 0)) patterns.append(pattern);
    }
    return patterns;
}

} // namespace

TEST(RegexCache, aFifthPatternDisplacesTheLeastRecentlyUsed)
{
    clearStringCache();
    const QStringList patterns = patternsOfOneSet(6);
    for (int i = 0; i < 4; ++i) (void)isRegexValid(patterns[i]);
    // Used again, the first is no longer the one to go; equal text from another buffer counts.
    (void)isRegexValid(QString(patterns[0].constData(), patterns[0].size()));
    (void)isRegexValid(patterns[4]);
    const auto held = [&] {
        std::string marks;
        for (const QString &pattern : patterns) marks += regexCache().holds(pattern, 0) ? '1' : '0';
        return marks;
    };
    EXPECT_EQ(held(), "101110");
    (void)isRegexValid(patterns[3]);
    (void)isRegexValid(patterns[5]);
    EXPECT_EQ(held(), "100111");
    clearStringCache();
    EXPECT_EQ(held(), "000000");
    for (int i = 0; i < 2; ++i)
        for (const QString &pattern : patterns) EXPECT_TRUE(isMatchedByRegex(pattern, pattern));
}

TEST(RegexCache, optionsHaveEntriesOfTheirOwn)
{
    clearStringCache();
    const QString pattern = u"^B.$"_s;
    const quint64 before = regexCache().compileCount();
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(isMatchedByRegex(u"a\nbc"_s, pattern));
        EXPECT_FALSE(isMatchedByRegex(u"a\nbc"_s, pattern, RKLCaseless, wholeRange));
        EXPECT_TRUE(isMatchedByRegex(u"a\nbc"_s, pattern, RKLCaseless | RKLMultiline, wholeRange));
    }
    EXPECT_EQ(regexCache().compileCount(), before + 3);
}

TEST(RegexCache, theSameTextIsNotSetAgain)
{
    QString text = u"a b a"_s;
    EXPECT_EQ(componentsMatchedByRegex(text, u"a"_s).size(), 2);
    EXPECT_EQ(componentsMatchedByRegex(text, u"a"_s).size(), 2);
    EXPECT_EQ(componentsMatchedByRegex(text, u"a"_s, Range{1, 4}).size(), 1);
    text[2] = u'a';
    EXPECT_EQ(componentsMatchedByRegex(text, u"a"_s).size(), 3);
    flushCachedRegexData(u"another"_s);
    EXPECT_TRUE(regexCache().holdsSubject());
    flushCachedRegexData(text);
    EXPECT_FALSE(regexCache().holdsSubject());
    EXPECT_EQ(componentsMatchedByRegex(text, u"a"_s).size(), 3);
}

TEST(RegexCache, manyThreads)
{
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back([&wrong, thread] {
            for (int i = 0; i < 2000; ++i) {
                const QString number = QString::number((i * 7 + thread) % 90);
                QString text = u"<"_s + number + u">"_s;
                if (stringByMatching(text, u"<("_s + number + u")>"_s, 1) != number) ++wrong;
                if (replaceOccurrencesOfRegex(text, u"[<>]"_s, [](const RegexMatch &, bool &) { return u"|"_s; }) != 2)
                    ++wrong;
                if (i % 500 == 0) clearStringCache();
            }
        });
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}
