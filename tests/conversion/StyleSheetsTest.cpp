// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/StyleSheets.h"
#include "foundation/Platform.h"
#include "library/Properties.h"

#include "tests/support/Notebook.h"
#include "tests/support/TextCase.h"

#include <gtest/gtest.h>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

class StyleSheets : public test::Notebook
{
protected:
    static void set(const QString &key, const QVariant &value) { settings().setObject(key, value); }
    /// The sheet text as an item of a book with that sheet gets it.
    QString styled(const QByteArray &sheet)
    {
        (void)write(u"/TMResources/CSS/x.css"_s, sheet);
        const QString book = makeBook(u"/B"_s);
        tm_setProperty(book, u"TMResources/CSS/x.css"_s, u"CSS"_s);
        return tm_inheritedStyleSheet(write(u"/B/n.md"_s));
    }
};

QString styleOf(const QString &css)
{
    return u"<style type=\"text/css\"> "_s + css + u"</style>"_s;
}

} // namespace

TEST_F(StyleSheets, whichOneApplies)
{
    const QString note = write(u"/B/n.md"_s);
    EXPECT_EQ(tm_applicableStyleSheet(note), u"CSS/Default Theme.css"_s);
    set(u"defaultStyleSheet"_s, u"CSS/Handbook.css"_s);
    EXPECT_EQ(tm_applicableStyleSheet(note), u"CSS/Handbook.css"_s);
    tm_setProperty(at(u"/B"_s), u"TMResources/CSS/x.css"_s, u"CSS"_s);
    EXPECT_EQ(tm_applicableStyleSheet(note), u"CSS/Default Theme.css"_s)
        << "a missing one does not fall to the setting";
    (void)write(u"/TMResources/CSS/x.css"_s);
    EXPECT_EQ(tm_applicableStyleSheet(note), u"TMResources/CSS/x.css"_s);
    EXPECT_TRUE(availableStyleSheets().contains(u"TMResources/CSS/x.css"_s));
    EXPECT_TRUE(availableStyleSheets().contains(u"CSS/Default Theme.css"_s));
}

TEST_F(StyleSheets, layout)
{
    EXPECT_EQ(styled("a {\n\tb: c;\n}\n"), styleOf(u"a { b: c; } "_s));
    EXPECT_EQ(styled("<style>\na\n</style>\n<script>\nb\n</script>"), u"<style> a </style>\n<script>\nb\n</script>"_s);
    EXPECT_EQ(styled("a\n/*-- gone\n */\nb /* stays */"), styleOf(u"a b /* stays */"_s));
    EXPECT_EQ(styled("a\n x: url(**TomeletBGImage**);\nb"), styleOf(u"a b"_s));
    EXPECT_EQ(styled(""), styleOf(u""_s));
    EXPECT_EQ(styled("content: \"FOOTNOTES\";"), styleOf(u"content: \"FOOTNOTES\";"_s));
}

TEST_F(StyleSheets, placeholders)
{
    const QString book = makeBook(u"/B"_s);
    tm_setProperty(book, u"Right Aligned"_s, u"TextAlignment"_s);
    tm_setProperty(book, u"1"_s, u"HyphenateText"_s);
    set(u"printFontSize"_s, 11);
    set(u"useDimmedTextColorDarkTheme"_s, true);
    EXPECT_EQ(
        styled("**TomeletTextAlign** **TomeletHyphens** **TomeletPrintFontSize** **TomeletFontColorDarkAppearance** "
               "**TomeletFontColorBlackAppearance** **TomeletListIndentVarPrintFont**"),
        styleOf(u"right auto 11px #aaa #aaa 9.130000"_s));
    const QString values =
        styled("**TomeletFont**|**TomeletFontColor**|**TomeletBGColor**|**TomeletFontSize**|**TomeletLinespacing**");
    EXPECT_FALSE(values.contains(u"**"_s)) << values.toStdString();
    EXPECT_TRUE(values.contains(u"px|1."_s) && values.contains(u"em</style>"_s)) << values.toStdString();
}

TEST_F(StyleSheets, includes)
{
    (void)write(u"/TMResources/CSS/Base.css"_s, "base\n@tm_include: \"more\";\n");
    (void)write(u"/TMResources/CSS/more.css"_s, "<script>s</script><style>more</style><link rel>");
    (void)write(u"/TMResources/CSS/self.css"_s, "self\n@tm_include: \"self\";\n");
    test::check(tm_styleSheetWithResolvedIncludes,
                {
                    {"an include in it", u"@TM_INCLUDE: \"base\";\nx"_s,
                     u"base\nmore\n\nx\n<script>s</script>\n\n<link rel>\n"_s},
                    {"once only", u"@tm_include: \"base\";\n@tm_include:\"TMResources/CSS/base.css\";"_s,
                     u"base\nmore\n\n<script>s</script>\n\n<link rel>\n"_s},
                    {"itself", u" @tm_include:  \"self\";"_s, u"self\n\n"_s},
                    {"in a line", u"a @tm_include: \"more\";"_s, u"a @tm_include: \"more\";"_s},
                    {"lost", u"@tm_include: \"nowhere\";a"_s, u"a"_s},
                });
}

TEST_F(StyleSheets, customClasses)
{
    EXPECT_EQ(tm_customClassesInStylesheet(u"x"_s), QStringList{u"code"_s});
    EXPECT_EQ(tm_customClassesInStylesheet(u"@tm_classes: a,\n b ,a;\n/* @tm_classes: c; */"_s),
              (QStringList{u"code"_s, u"a"_s, u"b"_s, u"a"_s, u"c"_s}));
    EXPECT_EQ(tm_customClassesInStylesheet(u"@tm_classes: a, tm_reset, b;"_s), QStringList{u"b"_s});
}

TEST_F(StyleSheets, themes)
{
    const QString page =
        u"<head><style>@media (prefers-color-scheme: dark) {} @media (prefers-color-scheme: tm_black) {} "
        "--theme-color:  #000000;</style></head>"_s;
    EXPECT_EQ(tm_formattedDocAdjustedToColorTheme(page), page);
    set(u"darkTheme"_s, true);
    EXPECT_EQ(tm_formattedDocAdjustedToColorTheme(page), page);
    set(u"useBlackForDarkTheme"_s, true);
    EXPECT_EQ(tm_formattedDocAdjustedToColorTheme(page),
              QString(page).replace(u": dark"_s, u": Xdark"_s).replace(u"tm_black"_s, u"dark"_s));
    set(u"avoidDarkThemeForDocuments"_s, true);
    EXPECT_EQ(tm_formattedDocAdjustedToColorTheme(page), QString(page).replace(u": dark"_s, u": Xdark"_s));
    EXPECT_EQ(tm_formattedDocAdjustedToDarkTheme(u"<style>--checkbox-color:#000000;</style></head>"_s),
              u"<style>--checkbox-color: #aaa;</style><style> body {color: #fff; background-color: #000;} @media print "
              u"{ body { "
              "background: white; color:black; }  </style>\n</head>"_s);
    EXPECT_EQ(tm_formattedDocAdjustedToDarkTheme(page), QString(page).replace(u"color:  #000000"_s, u"color: #aaa"_s));
    set(u"useSolarizedTheme"_s, true);
    const QString solarized = tm_formattedDocAdjustedToColorTheme(page + u"<style></style>"_s);
    EXPECT_EQ(solarized.count(u"#002b36"_s), 2);
    EXPECT_TRUE(solarized.contains(u"--theme-color: #839496;:root {  color-scheme: light dark; }"_s));
}
