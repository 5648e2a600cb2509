// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/TextUtilities.h"
#include "conversion/CriticMarkup.h"
#include "foundation/Platform.h"

#include "tests/support/Notebook.h"
#include "tests/support/TextCase.h"

#include <gtest/gtest.h>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

using TextUtilities = test::Notebook;

} // namespace

TEST_F(TextUtilities, plainTextOfPages)
{
    test::check(
        tm_htmlToPlainText,
        {{"formatted document", u"<!-- Plain Text Representation:\n a \\-\\-\\> b \n-->\n<p>x</p>"_s, u"a --> b"_s},
         {"never closed", u"<!-- Plain Text Representation:\na"_s, u"a"_s},
         {"page",
          u"<html><head><title>t</title></head><body>\n<p>a &amp; b</p>\n<script>\nx</script><p>c</p></body></html>"_s,
          u"a & bc"_s},
         {"words on two lines join", u"<p>one\ntwo</p>"_s, u"onetwo"_s},
         {"broken", u"<p><b>a</p><i"_s, u"a"_s},
         {"nothing", u""_s, u""_s}});
    test::check(tm_htmlToPlainQuick,
                {{"lists", u"<body><ul>\n   <li>a</li><li>b</li>\n</ul></body>"_s, u"- a\n- b"_s},
                 {"blocks", u"<h1>T</h1><p>a<br>b</p><hr><div>c</div>"_s, u"T\na\nb\n\n----\n\nc"_s},
                 {"cells", u"<table><tr><th>a</th><td>b</td></tr></table>"_s, u"a b"_s},
                 {"entities behind the trim", u"<p>a&nbsp;</p>"_s, u"a "_s},
                 {"styles and scripts", u"<style x>\ny</style><script>\nz</script>a"_s, u"a"_s}});
    test::check(tm_stripMarkdownFromHTML,
                {{"first and only", u"<!-- Plain Text Representation:\na\n-->\n\n<p>b</p>"_s, u"<p>b</p>"_s}});
    test::check(tm_getInnerHTML, {{"body", u"<body x>\n a\n</body>"_s, u"a"_s},
                                  {"head", u"<head></head> a"_s, u"a"_s},
                                  {"text", u" a "_s, u"a"_s}});
    test::check(tm_getTitleFromHTML,
                {{"title", u"<title x>\n a\n  b &lt; </title>"_s, u"a b <"_s}, {"none", u"a"_s, u""_s}});
    test::check(tm_getArticleFromHTML, {{"article", u"<body x>nav<article>a</article>foot</body>"_s,
                                         u"<body x><article>a</article></body>"_s}});
}

TEST_F(TextUtilities, entities)
{
    test::check(tm_stringByReplacingHTMLEntities,
                {{"ampersands last", u"&amp;lt; &lt;&amp;&gt;"_s, u"&lt; <&>"_s},
                 {"ellipsis", u"… &hellip; &#8230;"_s, u"... ... …"_s},
                 {"quotes", u"&lsquo;&rsquo;&ldquo;&rdquo;&quot;&#8217;"_s, u"''\"\"\"'"_s},
                 {"dashes", u"&ndash;&#8211;&mdash;&#8212;&#8249;&#8250;"_s, u"––——‹›"_s},
                 {"other numbers go", u"a&#x41;b&#65;c&copy;"_s, u"abc&copy;"_s}});
}

TEST_F(TextUtilities, plainTextOfMarkdown)
{
    test::check(tm_convertMarkdownToPlainText, {{"inline", u"a **b** *c* _d_ ~~e~~ `f` ![g](h)"_s, u"a b c d e f"_s},
                                                {"link", u"[link](url)"_s, u"link (url)"_s},
                                                {"blocks", u"# T\n> %note%\n> q\n: d\n---\nx"_s, u"T\n\nq\nd\n\nx"_s},
                                                {"tags", u"a <b>c</b> \\<d>"_s, u"a c <d>"_s},
                                                {"empty lines", u"a\n\n\n\nb"_s, u"a\n\nb"_s}});
}

TEST_F(TextUtilities, comments)
{
    test::check(tm_stringByRemovingComments,
                {{"whole lines", u"a\n// b\n  //c\nd"_s, u"a\nd"_s},
                 {"with empty lines in front", u"a\n\n\n// b\nc"_s, u"a\nc"_s},
                 {"inside a line", u"see https://x // y"_s, u"see https://x // y"_s},
                 {"in a fence", u"\n```\n// a\n```\n// b"_s, u"\n```\n// a\n```\n"_s},
                 {"a comment opens a fence", u"// a\n// ```\nb\n// c\n~~~\n"_s, u"b\n~~~\n"_s},
                 {"line ends of other systems", u"a\r\n// b\r\nc"_s, u"a\r\nc"_s},
                 {"only comments", u"// a"_s, u""_s}});
}

TEST_F(TextUtilities, criticMarkup)
{
    test::check(acceptCriticMarkup, {{"all forms", u"a{++b++}{--c--}{~~d~>e~~}{>>f<<}{==g==}"_s, u"abeg"_s},
                                     {"half", u"{++a {--b++} ++} --} ~>"_s, u"a {--b ++} --} ~>"_s},
                                     {"nested", u"{++a{--b--}c++}"_s, u"ac"_s},
                                     {"over paragraphs", u"{++a\n\nb++}"_s, u"a\n\nb"_s}});
}

TEST_F(TextUtilities, words)
{
    EXPECT_EQ(tm_wordCount(u"It's 3.5 naïve words—or (more)? 北京"_s), 7);
    EXPECT_EQ(tm_wordCount(u" \n… "_s), 0);
    EXPECT_EQ(tm_formattedWordCount(u"a "_s.repeated(1234)), u"1,234"_s);
}

TEST_F(TextUtilities, titles)
{
    const auto line = [](int length, int blank = -1) {
        QString text(length, u'x');
        if (blank >= 0) text[blank] = u' ';
        return text;
    };
    test::check(tm_firstLineOfText, {{"first line", u"\n  Plan \nmore"_s, u"Plan"_s},
                                     {"title block", u"---\nTitle: Plan\n"_s, u"Plan"_s},
                                     {"percent and title", u"%title: Plan"_s, u"Plan"_s},
                                     {"marks", u"## _Plan_ & #"_s, u"Plan"_s},
                                     {"slashes", u"a/b"_s, u"a-b"_s},
                                     {"nothing but marks", u"###"_s, u"###"_s},
                                     {"120 stay", line(120), line(120)},
                                     {"cut at a blank", line(130, 125), line(125)},
                                     {"the blank put behind is found", line(130), line(130)},
                                     {"145", line(145), line(145)},
                                     {"146 without a blank", line(146), line(119)},
                                     {"a blank beyond the window", line(200, 144), line(119)},
                                     {"the last of the window", line(200, 143), line(143)},
                                     {"a blank in front", line(200, 118), line(118)}});
    EXPECT_TRUE(tm_stringMatchesFirstLineOfText(u"a-b"_s, u"# a/b\nc"_s));
    EXPECT_TRUE(tm_stringMatchesFirstLineOfText(u"a- b"_s, u"a: b"_s));
    EXPECT_FALSE(tm_stringMatchesFirstLineOfText(u"plan"_s, u"Plan"_s));
}
