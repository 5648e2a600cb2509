// SPDX-License-Identifier: GPL-3.0-or-later
// Whole pages with either engine, and what is done to the engines' output.
#include "conversion/Page.h"
#include "conversion/Discount.h"
#include "conversion/MarkdownToHtml.h"
#include "conversion/PageReferences.h"
#include "conversion/TextUtilities.h"
#include "foundation/Platform.h"
#include "library/Properties.h"

#include "tests/support/Notebook.h"
#include "tests/support/TextCase.h"

#include <gtest/gtest.h>

using namespace tomelet;
using tomelet::test::Case;
using namespace Qt::StringLiterals;

namespace {

class Page : public test::Notebook
{
protected:
    Page() { set(u"useMarkdownStrictly"_s, true); }
    static void set(const QString &key, const QVariant &value) { settings().setObject(key, value); }
    static QString bodyOf(const QString &pathOrText) { return tm_getInnerHTML(tm_markdownToHTML(pathOrText)); }
    static void check(std::initializer_list<Case> cases) { test::check(bodyOf, cases); }
};

} // namespace

TEST_F(Page, frame)
{
    set(u"MarkdownConverter"_s, 1);
    const QString path = write(u"/B/n.md"_s, "# A *b*\n\ntext");
    const QString page = tm_markdownToHTML(path);
    const QString head = u"<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" >\n<head>\n"
                         "  <!-- Generator: Tomelet for Mac "_s;
    EXPECT_TRUE(page.startsWith(head)) << page.left(200).toStdString();
    EXPECT_TRUE(
        page.contains(u" -->\n  <title>A <em>b</em></title>\n  <meta http-equiv=\"Content-Type\" content=\"text/html; "
                      "charset=utf-8\">\n<style type=\"text/css\">"_s));
    EXPECT_TRUE(page.endsWith(
        u"</style>\n</head>\n<body>\n<h1 id=\"ab\">A <em>b</em></h1>\n\n<p>text</p>\n\n</body>\n</html>"_s))
        << page.right(200).toStdString();
    EXPECT_TRUE(tm_markdownToHTML(write(u"/B/other.md"_s, "text")).contains(u"<title>other</title>"_s));
    EXPECT_EQ(bodyOf(at(u"/B/missing\n"_s)), u"<p>"_s + at(u"/B/missing"_s) + u"</p>"_s);
}

TEST_F(Page, plainRepresentation)
{
    set(u"MarkdownConverter"_s, 1);
    set(u"createCombinedMarkdown"_s, true);
    const QString source = u"a <!-- b --> c"_s;
    const QString page = tm_markdownToHTML(source);
    EXPECT_TRUE(page.startsWith(u"<!-- Plain Text Representation:\na <!-- b \\-\\-\\> c \n-->\n\n<!DOCTYPE html>"_s));
    EXPECT_EQ(tm_htmlToPlainText(page), source);
    set(u"createCombinedMarkdown"_s, false);
    const QString again = tm_markdownToHTML(write(u"/n.html"_s, page.toUtf8()));
    EXPECT_EQ(again.left(80), page.left(80));
}

TEST_F(Page, titles)
{
    set(u"MarkdownConverter"_s, 1);
    const std::pair<const char *, const char *> rows[] = {
        {"Plan\nmore", "<h1 id=\"plan\">Plan</h1>"},          {"Plan", "<p>Plan</p>"}, {"\nPlan\nx", "<p>Plan"},
        {"# Plan\nx", "<h1 id=\"plan\">Plan</h1>"},           {"plan\nx", "<p>plan"},  {"%Plan\nx", "<p>%Plan"},
        {"_Plan_\nx", "<h1 id=\"_plan_\"><em>Plan</em></h1>"}};
    for (const auto &[text, wanted] : rows) {
        const QString body = bodyOf(write(u"/Plan.md"_s, text));
        EXPECT_TRUE(body.startsWith(QString::fromUtf8(wanted))) << text << ": " << body.toStdString();
    }
    EXPECT_FALSE(bodyOf(write(u"/Plan.md"_s, "Title: Plan\nx: y\n\nz")).contains(u"<h1"_s));
    settings().remove(u"useMarkdownStrictly"_s);
    EXPECT_EQ(bodyOf(write(u"/Plan.md"_s, "Plan")), u"<h1 id=\"plan\">Plan</h1>"_s);
}

TEST_F(Page, repairsOfTheOwnEngine)
{
    set(u"MarkdownConverter"_s, 1);
    check({{"tasks", u"- [ ] a\n- [x] b\n- [|] c\n- d"_s,
            u"<ul>\n<li class=\"tm_checkbox\">a</li>\n<li class=\"tm_checkbox_done\">b</li>\n"
            "<li class=\"tm_checkbox_done\">c</li>\n<li>d</li>\n</ul>"_s},
           {"nested ordered lists stand beside", u"- a\n    1. b\n- c"_s,
            u"<ul>\n<li>a\n\n</li><ol>\n<li>b</li>\n</ol></li>\n<li>c</li>\n</ul>"_s},
           {"same identifiers", u"# X\n\n# X\n\n# X"_s,
            u"<h1 id=\"x\">X</h1>\n\n<h1 id=\"x-1\">X</h1>\n\n<h1 id=\"x-2\">X</h1>"_s},
           {"index terms", u"a[>>term] `[>>b]`"_s, u"<p>a <code>[&gt;&gt;b]</code></p>"_s},
           {"class block", u">%note%\na"_s, u"<div class=\"note\">a</div>"_s},
           {"braces", u"\\\\left{ x \\\\right}"_s, u"<p>\\left\\{ x \\right\\}</p>"_s},
           {"changes accepted", u"a{++b++}{--c--}"_s, u"<p>ab</p>"_s},
           {"no entries, no contents", u"{{TOC}}\n\na"_s, u"<p>a</p>"_s}});
    EXPECT_TRUE(bodyOf(u"{{TOC}}\n\n# A\n\n## B"_s).startsWith(u"<div id=\"TOC\" class=\"TOC\">\n"_s));
    EXPECT_FALSE(bodyOf(u"{{TOC:2}}\n\n# A\n\n## B"_s).contains(u"href=\"#a\""_s));
    set(u"showCriticMarkup"_s, 1);
    EXPECT_EQ(bodyOf(u"a{++b++}"_s), u"<p>a<ins>b</ins></p>"_s);
    set(u"addLinksToHeadings"_s, true);
    check({{"heading links", u"# X *y*\n\n# [z](u)"_s,
            u"<h1 id=\"xy\"><a href=\"#xy\">X <em>y</em></a></h1>\n\n<h1 id=\"zu\"><a href=\"u\">z</a></h1>"_s}});
}

TEST_F(Page, diagrams)
{
    set(u"MarkdownConverter"_s, 1);
    const QString body = bodyOf(u"a\n\n```mermaid\ngraph\n```\n"_s);
    EXPECT_TRUE(
        body.contains(u"/npm/mermaid/dist/mermaid.min.js'></script>\n<script>mermaid.initialize({\tstartOnLoad:true,\t"
                      "theme:'default',   look: 'handDrawn',});</script>"_s))
        << body.toStdString();
    set(u"darkTheme"_s, true);
    EXPECT_TRUE(bodyOf(u"\n```mermaid\n```\n"_s).contains(u"theme:'dark'"_s));
}

TEST_F(Page, whatAFileBrings)
{
    set(u"MarkdownConverter"_s, 1);
    const QString path = write(u"/B/C/n.md"_s, "[..](..) [.](./) [[/B/o.md]] ![](/B/i.png)");
    (void)write(u"/B/o.md"_s);
    (void)write(u"/B/i.png"_s);
    EXPECT_EQ(bodyOf(path), u"<p><a href=\"..\">B</a> <a href=\"./\">C</a> <a href=\"../o.md\">o</a> "
                            "<img src=\"../i.png\" /></p>"_s);
    set(u"manageLinks"_s, true);
    set(u"appendBacklinksToText"_s, true);
    tm_setProperty(path, QStringList{u"/B/gone.md"_s}, u"Backlinks"_s);
    EXPECT_FALSE(bodyOf(path).contains(u"<hr"_s));
    tm_setProperty(path, QStringList{u"/B/o.md"_s, u"/B/gone.md"_s, u"/B/o.md"_s}, u"Backlinks"_s);
    EXPECT_TRUE(
        bodyOf(path).endsWith(u"<hr class=\"tm_backlinks\">\n<ul>\n<li><a href=\"../o.md\">o.md</a></li>\n</ul>"_s))
        << bodyOf(path).toStdString();
    // The converter of a book holds for its documents.
    tm_setProperty(at(u"/B"_s), u"0"_s, u"MarkdownConverter"_s);
    EXPECT_EQ(bodyOf(write(u"/B/d.md"_s, "# a b\n")), u"<h1 id=\"a-b\">a b</h1>"_s);
}

TEST_F(Page, discountEngine)
{
    check({{"tasks", u"- [ ] a\n- [x] b\n- c"_s,
            u"<ul>\n<li class=\"tm_checkbox\">a</li>\n<li class=\"tm_checkbox_done\">b</li>\n<li>c</li>\n</ul>"_s},
           {"tasks leave other blanks alone", u"- [ ] a\n\nb **c** d"_s,
            u"<ul>\n<li class=\"tm_checkbox\">a</li>\n</ul>\n\n\n<p>b <strong>c</strong> d</p>"_s},
           {"title block", u"% T\n% A\n% D\n\ntext\n"_s,
            u"<div id=\"header\"><h1 class=\"title\">T</h1>\n<h2 class=\"author\">A</h2>\n<h3 "
            u"class=\"date\">D</h3></div>\n"
            "<hr class=\"invisible-pagebreak\">\n<p>text</p>"_s},
           {"class block", u">%note%\n> a\n"_s, u"<div class=\"note\">a</div>"_s},
           {"anchor", u"# T [x]\n\na"_s, u"<h1 id=\"T-\"><span id=\"x\">T </span></h1>\n\n<p>a</p>"_s},
           {"not a range", u"{{TOC:3-2}}\n\n# A"_s, u"<p>{{TOC:3-2}}</p>\n\n<h1 id=\"A\">A</h1>"_s},
           {"nothing", u""_s, u""_s}});
    const QString contents = u"# A\n\n## B\n\n### C\n\n"_s;
    EXPECT_TRUE(bodyOf(contents + u"{{TOC}}\n"_s).contains(u"<!-- TOC -->\n<div id=\"TOC\" class=\"TOC\">\n<ul>"_s));
    const QString second = bodyOf(contents + u"{{TOC:2}}\n"_s);
    EXPECT_TRUE(second.contains(u">B</a>"_s)) << second.toStdString();
    EXPECT_FALSE(second.contains(u">A</a>"_s));
    EXPECT_FALSE(second.contains(u">C</a>"_s));
    EXPECT_TRUE(bodyOf(contents + u"{{TOC:2-}}\n"_s).contains(u">C</a>"_s));
}

TEST_F(Page, contentsAtTheMarkerOnly)
{
    const QString path = write(u"/n.md"_s, "# A\n\n<TOC>\n\ntext\n");
    tm_setProperty(path, u"1"_s, u"TOC"_s);
    EXPECT_EQ(bodyOf(path).count(u"id=\"TOC"_s), 1);
    EXPECT_TRUE(bodyOf(path).startsWith(u"<h1"_s)) << bodyOf(path).toStdString();
    (void)write(u"/n.md"_s, "# A\n\ntext\n");
    EXPECT_TRUE(bodyOf(path).startsWith(u"<!-- TOC -->\n"_s));
}

TEST_F(Page, compatibleAnchorsOfTheDiscountEngine)
{
    set(u"useMMDCompatibleAnchors"_s, true);
    const QString body = bodyOf(u"{{TOC}}\n\n# A b\n\n# Title [x y]\n"_s);
    EXPECT_TRUE(body.contains(u"<h1 id=\"a-b\">A b</h1>"_s)) << body.toStdString();
    EXPECT_TRUE(body.contains(u"id=\"x%20y\""_s)) << body.toStdString();
}

TEST_F(Page, references)
{
    (void)write(u"/B/o p.md"_s);
    const struct
    {
        QString value, relative, normalized;
    } rows[] = {
        {u"tomelet://show/B/o.md"_s, u"../B/o.md"_s, u"tomelet://show/B/o.md"_s},
        {root + u"/B/x.md"_s, u"../B/x.md"_s, u"/B/x.md"_s},
        {u"file://"_s + root + u"/B/x.md"_s, u"../B/x.md"_s, u"/B/x.md"_s},
        {u"/B/o%20p.md"_s, u"../B/o%20p.md"_s, u"/B/o%20p.md"_s},
        {u"/nowhere.md"_s, u"/nowhere.md"_s, u"/nowhere.md"_s},
        {u"#x"_s, u"#x"_s, u"#x"_s},
        {u"o.md"_s, u"o.md"_s, u"o.md"_s},
        {u"https://x/B/o.md"_s, u"https://x/B/o.md"_s, u"https://x/B/o.md"_s},
    };
    for (const auto &row : rows) {
        const QString html = u"<a class=\"x\" href=\"%1\">"_s;
        EXPECT_EQ(tm_makeTMLinksRelativeTo(html.arg(row.value), root + u"/C"_s), html.arg(row.relative));
        EXPECT_EQ(tm_makeReferencesAbsoluteToTMRoot(html.arg(row.value), root + u"/C/n.md"_s),
                  html.arg(row.normalized));
    }
}

TEST_F(Page, everyKindOfDocumentHasOne)
{
    EXPECT_TRUE(pageForItem(write(u"/a.txt"_s, "a < b")).contains(u"<pre class=\"tm_plain\">a &lt; b</pre>"_s));
    EXPECT_TRUE(pageForItem(write(u"/a #1.png"_s, "x")).contains(u"<img src=\"a%20%231.png\""_s));
    EXPECT_TRUE(pageForItem(write(u"/a.zip"_s, "x")).contains(u"a.zip"_s));
    EXPECT_TRUE(pageForItem(write(u"/a.html"_s, "<html>x</html>")).contains(u"<html>x</html>"_s));
    EXPECT_TRUE(pageForItem(at(u"/missing.md"_s)).endsWith(u"</html>"_s));
}
