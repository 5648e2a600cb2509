// SPDX-License-Identifier: GPL-3.0-or-later
// Screenplays as pages of HTML, and where documents are shown so.
#include "conversion/Page.h"
#include "conversion/RegexLayer.h"
#include "editor/FormattedPage.h"
#include "foundation/Platform.h"
#include "screenplay/FNHTMLScript.h"
#include "tests/screenplay/Scripts.h"
#include "tests/support/Notebook.h"
#include "tests/support/TextCase.h"

using namespace tomelet;
using namespace tomelet::test;
using namespace Qt::StringLiterals;

static QString bodyOf(const QString &text)
{
    return FNHTMLScript::initWithScript(FNScript::initWithString(text)).bodyForScript();
}

TEST(Html, Elements)
{
    check(
        bodyOf,
        {
            {"empty", {}, {}},
            {"kinds", u"INT. A\n\nx\ny\n\n@Jo\n(low)\nGo.\n\nCUT TO:\n\n> a <\n\n!B\n\n.C\n\n~d\n\n~e"_s,
             u"<p class='scene-heading'>INT. A</p>\n<p class='action'>x\ny</p>\n<p class='character'>Jo</p>\n"
             "<p class='parenthetical'>(low)</p>\n<p class='dialogue'>Go.</p>\n<p class='transition'>CUT TO:</p>\n"
             "<p class='action center'>a</p>\n<p class='action'>B</p>\n<p class='scene-heading'>C</p>\n"
             "<p class='lyrics'>d</p>\n<p class='lyrics'> </p>\n<p class='lyrics'>e</p>\n"_s},
            {"for the author alone", u"x [[a]] y [[b]\n]]c [[d]]]\n\n[[n]]\n\n/* b */\n\n= p\n\n# s\n\n!\n\n[[[[]]"_s,
             u"<p class='action'>x  y [[b]\n]]c ]</p>\n"_s},
            {"scene number", u"INT. A #4b#\n\nx"_s,
             u"<p class='scene-heading'><span class='scene-number-left'>4b</span>INT. A "
             "<span class='scene-number-right'>4b</span></p>\n<p class='action'>x</p>\n"_s},
            {"page break", u"x\n\n===\n\ny"_s,
             u"<p class='action'>x</p>\n</section>\n<section>\n<p class='page-break'>2.</p>\n<p class='action'>y</p>\n"_s},
            {"title page", u"Title: A\nTitle:\n\tB\n\tC\nSource: S\nNotes: no\n\nx"_s,
             u"<div id='script-title'><p class='title'>B<br>C<br></p><p class='credit'>written by<br></p>"
             "<p class='authors'>Anonymous<br></p><p class='source'>S<br></p></div><p class='action'>x</p>\n"_s},
        });
}

TEST(Html, Emphasis)
{
    const auto shown = [](const QString &text) { return bodyOf(text).mid(18).chopped(5); };
    check(shown, {
                     {"all", u"a _***b***_ c"_s, u"a <strong><em><u>b</strong></em></u> c"_s},
                     {"strong and emphasis", u"a ***b***"_s, u"a <strong><em>b</strong></em>"_s},
                     {"strong, underlined", u"a _**b**_"_s, u"a <strong><u>b</u></strong>"_s},
                     {"emphasis, underlined", u"a *_b_*"_s, u"a <em><u>b</em></u>"_s},
                     {"single ones", u"a **b** c"_s, u"a <strong>b</strong> c"_s},
                     {"", u"a *b* _c_ d_e"_s, u"a <em>b</em> <u>c</u> d_e"_s},
                     {"from the first to the last", u"a *b* c *d*"_s, u"a <em>b* c *d</em>"_s},
                     {"not over tags", u"a *b <i>c</i> d*"_s, u"a *b <i>c</i> d*"_s},
                     {"not behind a backslash", u"a \\*b*"_s, u"a \\*b*"_s},
                 });
}

TEST(Html, TwoWhoSpeakAtOnce)
{
    const QString left = u"<div class='dual-dialogue'>\n<div class='dual-dialogue-left'>\n"_s;
    const QString right = u"</div>\n<div class='dual-dialogue-right'>\n"_s, end = u"</div>\n</div>\n"_s;
    const auto speech = [](const QString &name) {
        return u"<p class='character'>%1</p>\n<p class='dialogue'>x</p>\n"_s.arg(name);
    };
    const QString both = left + speech(u"A"_s) + right + speech(u"B"_s) + end;
    EXPECT_EQ(bodyOf(u"A\nx\n\nB ^\nx"_s), both);
    EXPECT_EQ(bodyOf(u"A\nx\n\n[[n]]\n\nB ^\nx\n\ny\n\nA\nx\n\nB ^\nx\n\nC\nx"_s),
              QString(both + u"<p class='action'>y</p>\n" + both + speech(u"C"_s)));
    EXPECT_EQ(bodyOf(u"A\nx\n\nB ^\nx\n\nA\nx\n\nB ^\nx"_s), QString(both + both));
    EXPECT_EQ(bodyOf(u"A\nx\n\nB ^\nx\n\nC ^\nx"_s), QString(both + speech(u"C"_s)));
}

// By hand in the program, by its pattern here.
TEST(Html, NotesAreFoundAsByAPattern)
{
    std::mt19937 random(4);
    const QString signs = u"[[[]]]ab\n\u2028"_s;
    for (int i = 0; i < 5000; ++i) {
        QString text = u"x"_s;
        for (int j = int(random() % 14); j > 0; --j) text += signs[qsizetype(random() % size_t(signs.size()))];
        FNScript script;
        script.elements = {FNElement::elementOfType(FNType::Action, text)};
        const QString wanted = stringByReplacingOccurrencesOfRegex(text, u"\\[{2}(.*?)\\]{2}"_s, QString());
        ASSERT_EQ(FNHTMLScript::initWithScript(script).bodyForScript(),
                  QString(u"<p class='action'>"_s + wanted + u"</p>\n"));
    }
}

TEST(Html, WholePage)
{
    const QString page = FNHTMLScript::initWithScript(FNScript::initWithString(u"x"_s)).html();
    EXPECT_TRUE(page.startsWith(u"<!DOCTYPE html>\n<html>\n<head>\n<style type='text/css'>\n/* Screenplays"));
    EXPECT_TRUE(page.endsWith(u"</style>\n</head>\n<body>\n<article>\n<section>\n<p class='action'>x</p>\n</section>\n"
                              "</article>\n</body>\n</html>"));
}

class ScreenplayDocument : public Notebook
{};

TEST_F(ScreenplayDocument, IsShownInPagesByTheTheme)
{
    const QString path = write(u"/B/a.FOUNTAIN"_s, "INT. CAF\xC3\x89\n\nRain.\n");
    const FormattedPage page = formattedPageFor(path);
    EXPECT_TRUE(page.html.contains(u"<p class='scene-heading'>INT. CAFÉ</p>"));
    EXPECT_EQ(page.base, path);
    EXPECT_FALSE(page.isEditable || page.isForeign || page.isXml);
    EXPECT_EQ(pageForItem(path), page.html);
    settings().setObject(u"darkTheme"_s, true);
    settings().setObject(u"avoidDarkThemeForDocuments"_s, true);
    EXPECT_TRUE(formattedPageFor(path).html.contains(u"prefers-color-scheme: Xdark"));
}
