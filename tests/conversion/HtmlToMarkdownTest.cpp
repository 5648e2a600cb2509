// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/HtmlToMarkdown.h"
#include "foundation/Platform.h"

#include "tests/support/Notebook.h"
#include "tests/support/TextCase.h"

#include <gtest/gtest.h>

using namespace tomelet;
using tomelet::test::Case;
using namespace Qt::StringLiterals;

namespace {

class HtmlToMarkdown : public test::Notebook
{
protected:
    static void check(std::initializer_list<Case> cases) { test::check(tm_markdownifyHTML, cases); }
};

} // namespace

TEST_F(HtmlToMarkdown, bodyAndWhatGoes)
{
    check({{"body alone", u"<html><head><title>t</title></head>\n<body class=\"x\">\n<p>a</p></body></html>"_s, u"a"_s},
           {"a fragment", u"<p>a</p>"_s, u"a"_s},
           {"upper case stays", u"<P>a</P>"_s, u"<P>a</P>"_s},
           {"spans and fonts", u"<span style=\"x\n\">a\nb</span> <font x>c</font>"_s, u"a\nb c"_s},
           {"comments on one line", u"a<!-- c -->b<!-- d\n -->"_s, u"ab<!-- d\n -->"_s},
           {"scripts", u"a<script>x</script>\nb<style x>y</style>c<iframe z></iframe>d"_s, u"abcd"_s},
           {"bare style stays", u"<style>x</style>a"_s, u"<style>x</style>a"_s},
           {"anchors", u"<a name=\"x\"></a>\na<o:p>b</o:p>"_s, u"ab"_s},
           {"doctype of one line", u"<!DOCTYPE html>  <p>a</p>"_s, u"a"_s},
           {"entities, ampersands last", u"<p>a&nbsp;&amp;lt; &#8230;&#160;&lt;b&gt;</p>"_s, u"a &lt; …<b>"_s},
           {"empty lines", u"a<div>\n  \n\t</div>\n\n\nb"_s, u"a\n\nb"_s},
           {"nothing", u""_s, u""_s}});
}

TEST_F(HtmlToMarkdown, inlineForms)
{
    check({{"strong and light", u"<b>  bold  </b><strong x>s</strong> <i>\ni </i><em>e</em>"_s,
            u"**bold****s** *i**e*"_s},
           {"over two lines it stays", u"<b>a\nb</b>"_s, u"<b>a\nb</b>"_s},
           {"empties and seams", u"<p>a<strong></strong><b><br></b></p><b>a</b><b>b</b>"_s, u"a\n**ab**"_s},
           {"strike", u"<strike>\na \n</strike><del x>b</del>"_s, u"~~a~~~~b~~"_s},
           {"highlights take one blank", u"a <mark>b</mark> c<mark style=\"x\">d</mark>"_s, u"a ==b== c ==d=="_s},
           {"breaks", u"a<br/>b<br>\nc<br clear=\"all\">d"_s, u"a\nb\nc\nd"_s},
           {"rule", u"a<hr />\n\nb"_s, u"a\n----\n\nb"_s},
           {"links", u"<a class=\"x\" href=\"%1/B/n.md\">n</a>, <a href=\"https://x/?a\"><b>y</b></a>"_s.arg(root),
            u"[n](/B/n.md), [**y**](https://x/?a)"_s},
           {"no link", u"<a href=\"x-apple-data:1\">today</a> <a name>z</a>"_s, u"today <a name>z</a>"_s},
           {"images", u"<img alt=\"gone\" src=\"%1/a(1).png\" width=\"3\">"_s.arg(root), u"![](/a(1%29.png)"_s},
           {"code", u"<p><code>a</code></p><PRE><CODE>b\n</CODE></PRE>x <code class=\"y\">c</code>"_s,
            u"`a`\n~~~~\nb\n~~~~\nx `c`"_s},
           {"form boxes", u"<input type=\"checkbox\" checked>a <input x type=\"checkbox\">b"_s, u"- [x] a - [ ] b"_s}});
    settings().setObject(u"useMarkdownStrictly"_s, true);
    settings().setObject(u"useUnderscoreToEmphasizeMD"_s, true);
    check({{"settings", u"<b>a</b><br><i>c</i>"_s, u"__a__  \n_c_"_s}});
}

TEST_F(HtmlToMarkdown, lists)
{
    check({{"nested", u"<ul><li>a<ul><li>b</li></ul></li></ul>"_s, u"- a\n    - b"_s},
           {"numbered by place", u"<ol start=\"7\">\n<li value=\"3\">a</li>\n<li></li>\n<li>c</li>\n</ol>"_s,
            u"1. a\n3. c"_s},
           {"three deep", u"<ul><li>a<ol><li>b<ul><li>c</li></ul></li><li>d</li></ol></li><li>e</li></ul>"_s,
            u"- a\n    1. b\n        - c\n    2. d\n- e"_s},
           {"a list beside its item", u"<ul><li>a</li><ol><li>b</li></ol><li>c</li></ul>"_s, u"- a\n    1. b\n- c"_s},
           {"only a nested list behind the last item", u"<ul><li>a</li><ul><li>b</li></ul></ul>"_s, u"- a\n    - b"_s},
           {"check boxes", u"<ul><li class=\"tm_checkbox\">a</li><li class=\"tm_checkbox_done\">b</li></ul>"_s,
            u"- [ ]\ta\n- [x]\tb"_s},
           {"paragraphs in items", u"<ul><li><p>a</p><p>b</p></li></ul>"_s, u"- a\nb"_s},
           {"never closed", u"<ul><li>a</li><li>b"_s, u"<ul>- a\n- b"_s}});
}

TEST_F(HtmlToMarkdown, blocks)
{
    check(
        {{"headings", u"<h1 id=\"x\">A</h1>\n<p>t</p><h2>B</h2><h3>C</h3>"_s, u"# A\n\nt\n\n## B\n\n### C"_s},
         {"headings in a row", u"<h1><h2>a</h2>"_s, u"#\n\n## a"_s},
         {"quote, one marker", u"<blockquote><p>a</p><p>b</p></blockquote>"_s, u"> a\n\nb"_s},
         {"quotes deepen", u"<blockquote>a<blockquote x>\nb</blockquote></blockquote>"_s, u"> a\n> > b"_s},
         {"empty quote", u"a<blockquote></blockquote>b"_s, u"a\nb"_s},
         {"table",
          u"<table>\n<colgroup>\n<col>\n</colgroup>\n<thead>\n<tr>\n<th>A</th>\n<th "
          u"style=\"text-align:right;\">B</th>\n"
          "<th align=\"center\">C</th></tr>\n</thead>\n<tbody>\n<tr>\n<td>1</td>\n<td>2</td><td>3</td>\n</tr>\n</tbody>\n</table>"_s,
          u"A | B | C\n ----------- | ----------: | :---------: \n1 | 2 | 3"_s},
         {"definitions", u"<dl>\n<dt>T</dt><dd>D</dd></dl>"_s, u"T\n: D"_s},
         {"paragraphs", u"<p></p><p class=\"x\">a</p><p>b</p>"_s, u"a\n\nb"_s},
         {"a preformatted block is no paragraph", u"<pre>a</p></pre>"_s, u"<pre>a</p></pre>"_s}});
}

TEST_F(HtmlToMarkdown, classBlocks)
{
    const QString page =
        u"<html><head><style type=\"text/css\">@tm_classes: note, red;</style></head><body>%1</body></html>"_s;
    check({{"listed", page.arg(u"<div class=\"note\">\n<p>a</p></div>"_s), u"> %note%\n\na"_s},
           {"paragraph", page.arg(u"<p class=\"red\"> a\t</p>b"_s), u"> %red%\na\nb"_s},
           {"not listed", page.arg(u"<div class=\"blue\">a</div>"_s), u"a"_s},
           {"code is", page.arg(u"<div class=\"code\">a</div>"_s), u"> %code%\na"_s},
           {"in another one", page.arg(u"<div class=\"x\"><div class=\"note\">a</div></div>"_s), u"a"_s},
           {"without a sheet", u"<div class=\"code\">a</div>"_s, u"a"_s}});
}

TEST_F(HtmlToMarkdown, cleanedHtml)
{
    test::check(
        tm_htmlWithoutInlineStyles,
        {{"styles go", u"<p class=\"\" style=\"color: red;\">a</p>"_s, u"<p>a</p>"_s},
         {"backgrounds and preformatted spans stay",
          u"<span style=\"background-color: red\">a</span><b style=\"white-space:pre\">b</b>"_s,
          u"<span style=\"background-color: red\">a</span><b style=\"white-space:pre\">b</b>"_s},
         {"bare spans", u"<span>a</span><span style=\"color: inherit;\">b</span>"_s, u"ab"_s},
         {"layout", u"a<h2>b</h2><p>c</p><ul><li>d</li></ul>e<br>f<br></b>"_s,
          u"a\n\n<h2>b</h2>\n\n<p>c</p>\n\n<ul>\n<li>d</li>\n</ul>e<br>\nf<br></b>"_s},
         {"blanks", u"a<span class=\"Apple-converted-space\">&nbsp;</span>b&nbsp;c"_s, u"a b c"_s},
         {"nothing to see", u"a<img alt=\"\" src=\"\"><o:p></o:p><P></P>"_s, u"a"_s},
         {"double containers", u"<div class=\"x\"> <div>a</div> </div>"_s, u"<div class=\"x\"> a</div>"_s},
         {"with attributes on both", u"<div a><div b>x</div></div>"_s, u"<div a><div b>x</div></div>"_s},
         {"one paragraph in a class block", u"<div class=\"x\"><p>a</p></div>"_s, u"<div class=\"x\">a</div>"_s}});
    // The first opening and the last closing paragraph tag go; the seam between them stays.
    EXPECT_EQ(tm_removeParagraphsNestedInCustomClasses(u"<div class=\"x\">\n<p>a</p>\n<p>b</p>\n</div>"_s),
              u"<div class=\"x\">a</p>\n<p>b</div>"_s);
}
