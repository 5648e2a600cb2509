// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/CodeRanges.h"
#include "conversion/MarkdownPreparation.h"
#include "conversion/Patterns.h"
#include "conversion/WikiLinks.h"
#include "foundation/Platform.h"
#include "library/PathForms.h"

#include "tests/support/Notebook.h"
#include "tests/support/TextCase.h"

#include <gtest/gtest.h>

#include <random>

using namespace tomelet;
using tomelet::test::Case;
using namespace Qt::StringLiterals;

namespace {

class Preparation : public test::Notebook
{
protected:
    Preparation() { settings().setObject(u"useMarkdownStrictly"_s, true); }

    void check(std::initializer_list<Case> cases, int converter)
    {
        test::check([converter](const QString &text) { return tm_stringPreparedForConversionWith(text, converter); },
                    cases);
    }
};

QString listed(const QString &text)
{
    QStringList ranges;
    for (const Range &range : tm_rangesOfFencedCodeBlocks(text)) ranges << substring(text, range);
    return ranges.join(u'#');
}

} // namespace

TEST(CodeRanges, whatCountsAsCode)
{
    test::check(listed, {{"fence", u"a\n```x\nb\n```\nc"_s, u"\n```x\nb\n```"_s},
                         {"a fence on the first line is none", u"```\nb\n```\n"_s, u""_s},
                         {"behind a capital A it is one", u"A```\nb\n```"_s, u"A```\nb\n```"_s},
                         {"tildes, indented", u"\n   ~~~~\nb\n  ~~~~\n"_s, u"\n   ~~~~\nb\n  ~~~~"_s},
                         {"bars", u"\n|||\nb\n|||"_s, u"\n|||\nb\n|||"_s},
                         {"four blanks are too many", u"\n    ~~~\nb\n    ~~~\n"_s, u""_s},
                         {"closed by another run", u"\n~~~~\nb\n~~~\n"_s, u""_s},
                         {"unclosed", u"\n~~~\nb\n"_s, u""_s},
                         {"inline with its neighbours", u"x `a` y"_s, u" `a` "_s},
                         {"inline at the start", u"`a` y"_s, u""_s},
                         {"inline at the end", u"x `a`"_s, u""_s},
                         {"neighbours are used up", u" `a` `b` `c` "_s, u" `a` #b` `c"_s},
                         {"inline over lines", u"x `a\n\nb` y"_s, u" `a\n\nb` "_s}});
    const QList<Range> ranges{{2, 5}, {4, 10}};
    EXPECT_TRUE(tm_textCheckingResultsIntersectResult(ranges, {2, 5}));
    EXPECT_TRUE(tm_textCheckingResultsIntersectResult(ranges, {6, 8}));
    EXPECT_FALSE(tm_textCheckingResultsIntersectResult(ranges, {3, 5}));
}

TEST(CodeRanges, inlineCodeIsWhatItsPatternFinds)
{
    const QStringList pieces{u"`"_s, u"`"_s, u"a"_s, u"\n"_s, u"😀"_s, u"😀"_s.left(1), u"😀"_s.right(1)};
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        QString text;
        for (auto left = random() % 16; left > 0; --left) text += pieces[qsizetype(random() % size_t(pieces.size()))];
        QStringList wanted;
        const PatternMatches matches = matchesOfPattern(text, u"[^`]`{1}?[^`]+?`{1}?[^`]"_s);
        for (size_t i = 0; i < matches.size(); ++i) wanted << substring(text, matches[i].range());
        ASSERT_EQ(listed(text), wanted.join(u'#')) << text.toStdString();
    }
}

TEST_F(Preparation, commonSteps)
{
    check({{"inline note", u"a ^[note] b"_s, u"a [^ note] b"_s},
           {"inline note over lines", u"^[a\nb]"_s, u"[^ a\nb]"_s},
           {"no empty inline note", u"a ^[] b"_s, u"a ^[] b"_s},
           {"in code", u"x `^[a]` y"_s, u"x `^[a]` y"_s},
           {"only partly in code", u"x `^[a` b] y"_s, u"x `[^ a` b] y"_s},
           {"highlight", u"==a== "_s, u"<mark>a</mark> "_s},
           {"highlight at the very end", u"==a=="_s, u"==a=="_s},
           {"highlight behind a word", u"x==a== "_s, u"x==a== "_s},
           {"highlight behind a brace", u"{==a== "_s, u"{==a== "_s},
           {"highlight over lines", u"==a\nb== "_s, u"==a\nb== "_s},
           {"behind an unclosed fence", u"\n```\n==a== "_s, u"\n```\n<mark>a</mark> "_s},
           {"in a fence", u"\n```\n==a== \n```\n"_s, u"\n```\n==a== \n```\n"_s},
           {"legacy note", u"a<<fnote \"so\n[it] is\">>b"_s, u"a[^ so\n[it] is]b"_s},
           {"page break", u"a\n{{pagebreak}}\nb"_s, u"a\n>%pagebreak%\n\nb"_s},
           {"page break in any case, eats empty lines", u"{{PageBreak}}  \n\n\n\nb"_s, u">%pagebreak%\n\nb"_s},
           {"page break in a fence", u"\n~~~\n{{pagebreak}}\n~~~\n"_s, u"\n~~~\n{{pagebreak}}\n~~~\n"_s},
           {"no mathematics without the word", u"a $x_1$ b"_s, u"a $x_1$ b"_s},
           {"empty", u""_s, u""_s}},
          7);
}

TEST_F(Preparation, mathematics)
{
    const QString word = u"<!-- MathJax -->\n"_s;
    check({{"own", word + u"a $x_1^2$ b"_s, word + u"a $x _ 1 ^ 2$ b"_s},
           {"nothing in front", u"$a_b$ MATHJAX"_s, u"$a_b$ MATHJAX"_s},
           {"in code", word + u"a ` $x_1$ ` b"_s, word + u"a ` $x_1$ ` b"_s},
           {"the mark goes", u"a $x_1$ b\n\n<!-- TMLT: handling mathjax -->"_s, u"a $x _ 1$ b"_s}},
          OwnConverter);
    check({{"discount", word + u"a $x_1$ b $y$"_s, word + u"a \\(x _ 1\\) b \\(y\\)"_s}}, DiscountConverter);
}

TEST_F(Preparation, notesForTheDiscountEngine)
{
    check({{"a note with a definition", u"a[^1] b\n\n[^1]: note"_s, u"a[^1] b\n\n[^1]: note"_s},
           {"an inline note becomes its own label", u"a^[see this] b"_s, u"a[^ see this] b\n[^ see this]:  see this"_s},
           {"brackets inside", u"a [^ see [a] here] b."_s, u"a [^ see -a- here] b.\n[^ see -a- here]:  see [a] here"_s},
           {"two inner brackets end at the second", u"[^ x [y [z]] w] t."_s,
            u"[^ x -y -z-] w] t.\n[^ x -y -z-]:  x [y [z"_s},
           {"unbalanced to the end but one", u"[^ x [y] z"_s, u"[^ x -y- z\n[^ x -y- :  x [y] "_s},
           {"last first", u"^[a] ^[b] ."_s, u"[^ a] [^ b] .\n[^ b]:  b\n[^ a]:  a"_s},
           {"any overlap with code protects", u"x `^[a` b] y"_s, u"x `[^ a` b] y"_s}},
          DiscountConverter);
}

TEST_F(Preparation, anchorsAndTasksForTheDiscountEngine)
{
    check({{"heading anchor", u"# Title [anchor] #\n\nt"_s, u"# [Title ](id:anchor)\nt"_s},
           {"anchor in code too", u"\n~~~\n# T [a]\n~~~\n"_s, u"\n~~~\n# [T ](id:a)\n~~~\n"_s},
           {"tasks", u"- [ ]\ta\n- [x]\nb\n- [y]   c"_s, u"- [ ] a\n- [x] b\n- [y]   c"_s},
           {"own forms stay", u"[w](class:red)\n{{TOC:2-}}"_s, u"[w](class:red)\n{{TOC:2-}}"_s}},
          DiscountConverter);
    settings().setObject(u"useMMDCompatibleAnchors"_s, true);
    check({{"compatible", u"# Title [anchor] #\n- [ ]\ta"_s, u"# Title [anchor] #\n- [ ] a"_s}}, DiscountConverter);
}

TEST_F(Preparation, formsForTheOwnEngine)
{
    check({{"linked image", u"a\n[![](x.png)](y)"_s, u"a\n\n[![](x.png)](y)"_s},
           {"class", u"[word](class:  red\t)"_s, u"<span class=\"red\">word</span>"_s},
           {"id and abbreviation", u"[w](id: x) [y](abbr: it's y )"_s,
            u"<span id=\"x\">w</span> <abbr title=\"it's y\">y</abbr>"_s},
           {"prefixes are exact", u"[w](Class:x)"_s, u"[w](Class:x)"_s},
           {"blanks", u"[w](my file.md)"_s, u"[w](my%20file.md)"_s},
           {"addresses stay", u"[w](https://a.b/c d)"_s, u"[w](https://a.b/c d)"_s},
           {"in code", u"a `[w](class:x)` b"_s, u"a `[w](class:x)` b"_s},
           {"contents", u"{{TOC:2-}} x\n\n{{TOC:2}}\n {{TOC:2-3}}"_s, u"{{TOC:2-9}} x\n\n{{TOC:2}}\n {{TOC:2-3}}"_s},
           {"class block", u"> %note% a\n> b\nc\n\nd"_s, u"<div class=\"note\">\n\n a\nb\nc\n\n</div>\n\nd"_s},
           {"class block at the end", u">%note%\na"_s, u"<div class=\"note\">\n\n\na\n\n</div>\n\n"_s},
           {"page break", u"a\n\n{{pagebreak}}\n\nb"_s, u"a\n\n<div class=\"pagebreak\">\n\n\n\n</div>\n\nb"_s}},
          OwnConverter);
}

TEST_F(Preparation, linesBreak)
{
    test::check(tm_makeEveryNewlineaLinebreak,
                {{"plain", u"a\nb"_s, u"a  \nb  \n"_s},
                 {"line ends", u"a\r\nb\rc\n"_s, u"a  \nb  \nc  \n\n"_s},
                 {"fence", u"```\nx\n```\ny"_s, u"```\nx\n```  \ny  \n"_s},
                 {"fences of both kinds flip one state", u"```\n~~~\nx"_s, u"```\n~~~  \nx  \n"_s},
                 {"class blocks", u">%a%\n> %b%\n> c"_s, u">%a%\n> %b%\n> c  \n"_s},
                 {"rules", u"---\n--\n- -"_s, u"---\n--  \n- -  \n"_s},
                 {"endings", u"a<-\nb#\nc=\nd  \ne"_s, u"a<-\nb#\nc=\nd  \ne  \n"_s},
                 {"nothing", u""_s, u"\n"_s}});
    settings().remove(u"useMarkdownStrictly"_s);
    settings().setObject(u"ignoreCommentsForWordCount"_s, true);
    check({{"comments, then breaks", u"a\n// c\nb"_s, u"a  \nb  \n"_s}}, 7);
}

TEST(WikiLinks, becomeMarkdownLinks)
{
    test::check(tm_makeWikiLinksMarkdownLinks,
                {{"name", u"[[Book/Other Note.md]]"_s, u"[Other Note](Book/Other%20Note.md)"_s},
                 {"title, not trimmed", u"[[Note.md | so]]"_s, u"[ so](Note.md)"_s},
                 {"anchor as title", u"[[Note.md|#Intro]]"_s, u"[Intro](Note.md)"_s},
                 {"item address", u"[[tomelet://show/B/n.md]]"_s, u"[n](/B/n.md)"_s},
                 {"in code", u"a `[[n]]` b\n\n```\n[[n]]\n```\n"_s, u"a `[[n]]` b\n\n```\n[[n]]\n```\n"_s},
                 {"escaped", u"\\[[n]] .[[n]] *[[n]] |[[n]]"_s, u"\\[[n]] .[[n]] *[[n]] |[[n]]"_s},
                 {"a back tick behind on the line", u"[[n]] `x"_s, u"[[n]] `x"_s}});
}

// -- the shortcut in finding code anew --------------------------------------------------------------------------------

namespace {

/// The steps with nothing clever: ranges are found anew whenever the text's length is another one.
class PlainSteps
{
public:
    explicit PlainSteps(QString source)
        : text(std::move(source))
    {}

    void step(const QString &pattern, int options, const std::function<void(const PatternMatch &)> &change)
    {
        const PatternMatches matches = matchesOfPattern(text, pattern, options);
        qsizetype length = -1;
        QList<Range> code;
        for (size_t i = matches.size(); i-- > 0;) {
            if (length != text.size()) code = tm_rangesOfFencedCodeBlocks(text);
            length = text.size();
            if (!tm_textCheckingResultsIntersectResult(code, matches[i].range())) change(matches[i]);
        }
    }
    void common()
    {
        step(u"(\\^\\[).+?\\]"_s, PatternDotAll,
             [&](const PatternMatch &match) { replaceRange(text, match.group(1), u"[^ "_s); });
        step(u"(?<![\\w{])(==([^\n=]+?)==)\\W"_s, PatternDotAll, [&](const PatternMatch &match) {
            replaceRange(text, match.group(1), QString(u"<mark>"_s + substring(text, match.group(2)) + u"</mark>"_s));
        });
    }
    void links()
    {
        step(u"\\[([^\\]]*)\\]\\((.*?)\\)"_s, 0, [&](const PatternMatch &match) {
            const QString label = substring(text, match.group(1));
            const QString target = substring(text, match.group(2));
            if (target.startsWith(u"id:"))
                replaceRange(text, match.range(), u"<span id=\"%1\">%2</span>"_s.arg(target.mid(3).trimmed(), label));
            else replaceRange(text, match.group(2), tm_pathEscapedForMarkdownLink(target));
        });
    }

    // Notes become references, with the ranges of code found anew each time.
    void notes()
    {
        const PatternMatches matches = matchesOfPattern(text, u"\\[\\^ ?[^\\]]+?\\](?!:)"_s, PatternDotAll);
        for (size_t i = matches.size(); i-- > 0;) {
            const QList<Range> code = tm_rangesOfFencedCodeBlocks(text);
            Range range = matches[i].range();
            if (tm_textCheckingResultsIntersectResult(code, range)) continue;
            int depth = substring(text, range).mid(1).contains(u'[') ? 1 : 0;
            for (; depth > 0 && range.end() + 1 < text.size(); ++range.length)
                depth += text[range.end()] == u'[' ? 1 : text[range.end()] == u']' ? -1 : 0;
            const QString note = substring(text, range);
            const auto overlaps = [&](Range r) { return r.location < range.end() && r.end() > range.location; };
            if (text.contains(note + u':') || std::any_of(code.begin(), code.end(), overlaps)) continue;
            QString label = note.mid(1, note.size() - 2).replace(u'[', u'-').replace(u']', u'-');
            label = note.left(1) + label + note.right(1);
            QString inside = note;
            while (!inside.isEmpty() && u"[]^"_s.contains(inside.front())) inside.remove(0, 1);
            while (!inside.isEmpty() && u"[]^"_s.contains(inside.back())) inside.chop(1);
            text += u'\n' + label + u": "_s + inside;
            replaceRange(text, range, label);
        }
    }

    QString text;
};

} // namespace

TEST_F(Preparation, theShortcutChangesNothing)
{
    const QStringList pieces{u"`"_s,           u"```"_s,       u"~~~"_s,       u"\n"_s,        u"\n```\n"_s,
                             u"^[a]"_s,        u"==b== "_s,    u"[c](id:x)"_s, u"[`](id:y)"_s, u"[](id:)"_s,
                             u"[A](id:|||)"_s, u"=="_s,        u"^["_s,        u"]"_s,         u" "_s,
                             u"A"_s,           u"x"_s,         u"\\"_s,        u"[d](id: )"_s, u"[e](`)"_s,
                             u"[f](a`b`c)"_s,  u"[g]( ``` )"_s};
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        QString text;
        for (auto left = random() % 30; left > 0; --left) text += pieces[qsizetype(random() % size_t(pieces.size()))];
        if (text.contains(u"[[")) continue; // wiki links are another step's
        PlainSteps plain(text);
        plain.common();
        ASSERT_EQ(tm_stringPreparedForConversionWith(text, 7), plain.text) << text.toStdString();
        PlainSteps discount = plain;
        discount.notes();
        settings().setObject(u"useMMDCompatibleAnchors"_s, true);
        ASSERT_EQ(tm_stringPreparedForConversionWith(text, DiscountConverter), discount.text) << text.toStdString();
        plain.links();
        ASSERT_EQ(tm_stringPreparedForConversionWith(text, OwnConverter), plain.text) << text.toStdString();
    }
}
