// SPDX-License-Identifier: GPL-3.0-or-later
// Highlighting: which rows find what, in which order, and that no text can make it slow.
#include "editor/Highlighting.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <set>

using namespace tomelet;

namespace {

HighlightOptions markdown(const QString &extension = QStringLiteral("md"))
{
    HighlightOptions options;
    options.extension = extension;
    options.autoIndentLists = true;
    return options;
}

// "8:# Title|25:[[Link]]" for what the rows find, in the order in which they are laid.
QString found(const QString &text, const HighlightOptions &options)
{
    QStringList list;
    for (const Highlight &highlight : tm_highlightStringinRange(text, {0, text.size()}, options))
        list += QString(QString::number(highlight.row) + u':' + substring(text, highlight.range));
    return list.join(u'|');
}

struct HighlightCase
{
    const char16_t *text, *wanted;
};

void check(const std::vector<HighlightCase> &cases, const HighlightOptions &options = markdown())
{
    for (const HighlightCase &wanted : cases)
        EXPECT_EQ(found(QString::fromUtf16(wanted.text), options).toStdString(),
                  QString::fromUtf16(wanted.wanted).toStdString());
}

} // namespace

TEST(Highlighting, everyRowCompilesAndHasAName)
{
    std::set<int> numbers;
    for (const HighlightRow &row : highlightRows()) {
        numbers.insert(row.number);
        QString pattern = row.pattern;
        EXPECT_TRUE(isPatternValid(pattern.replace(QLatin1StringView("%1"), QStringLiteral("\\@")), row.options))
            << row.number;
    }
    ASSERT_EQ(numbers.size(), 45u);
    EXPECT_EQ(highlightName(1), QStringLiteral("html tag"));
    EXPECT_EQ(highlightName(45), QStringLiteral("highlight"));
    EXPECT_EQ(highlightName(46), QString());
}

TEST(Highlighting, blocks)
{
    check({
        {u"# Title #\ntext", u"8:# Title #"},
        {u"Title\n=====", u"9:====="},
        {u"---", u"9:---"},
        {u"% T\n% A\n% D\n", u"10:% T\n% A\n% D\n"},
        {u"title: T\nx", u"11:title: T\n"},
        {u"x\nTitle: T\n", u""},
        {u"- a @done\n- b", u"12:- a @done"},
        {u"-> mid\ndle <-", u"16:-> mid\ndle <-"},
        {u"> %said%", u"18:> %said%"},
        {u"a\n```\nb\n```\n", u"34:`\nb\n`|35:```|35:```|39:\n```\nb\n```"},
        {u"- [x] a\n2. b\n- c", u"21:[x]|40:- [x] |40:\n2. "},
        {u"> - [ ] a", u"21:[ ]|40:> - [ ] "},
        {u"[a]: http://b", u"21:[a]|28:[a]: "},
        {u"[^n]: note", u"21:[^n]|23:[^n]|28:[^n]: "},
    });
}

TEST(Highlighting, spans)
{
    check({
        {u"a *b* **c** ***d***", u"13:*b*|13:**c**|13:***d***"},
        {u"\\*not* _yes_ __so__", u"14:_yes_|14:__so__"},
        {u"snake_case_name", u""},
        {u"~~gone~~", u"15:~~gone~~"},
        {u"{{file.md}}", u"17:{{file.md}}"},
        {u"[[Other]]", u"25:[[Other]]"},
        {u"[a](b)", u"26:[a](|27:](b)"},
        {u"[a][b] [c][]", u"19:[a][|19:[c][|20:][b]|20:][]|22:[c][]"},
        {u"`code` text", u"34:`code`"},
        {u"`no\n\ncode`", u""},
        {u" ==mark== ", u"38: ==mark== "},
        {u"<b>x</b>", u"1:<b>|1:</b>"},
        {u"a\n<!-- b\n\nc --> <!--", u"2:<!-- b\n\nc -->"},
        {u"{--a--}{++b++}{~~c~>d~~}", u"41:{--a--}|42:{++b++}|43:{~~c~>d~~}"},
        {u"{>>a<<}{==b==}", u"38:{==b==}|44:{>>a<<}|45:{==b==}"},
    });
}

TEST(Highlighting, rowsRunWhereTheyAreMeantTo)
{
    const char16_t *tag = u"<a href=\"b\">c</a> *d*";
    check({{tag, u"1:<a href=\"b\">|1:</a>|13:*d*"}});
    HighlightOptions html = markdown(QStringLiteral("html"));
    check({{tag, u"1:<a href=\"b\">|1:</a>|4:<a href=\"b\">|5:</a>|13:*d*"}}, html);
    html.highlightMarkdown = false;
    check({{tag, u"1:<a href=\"b\">|1:</a>|4:<a href=\"b\">|5:</a>"}}, html);
    html.isCombinedMarkdown = true;
    check({{tag, u""}}, html);
    html.extension = QStringLiteral("htm");
    check({{tag, u"1:<a href=\"b\">|1:</a>|4:<a href=\"b\">|5:</a>"}}, html);

    check({{u"<x text=\"a\"/>", u"1:<x text=\"a\"/>|6:text=\"a\""}}, markdown(QStringLiteral("opml")));

    HighlightOptions switched = markdown();
    switched.contexts = true;
    switched.contextMarkers = QStringLiteral("@^");
    switched.excludedContexts = QStringList{QStringLiteral("@never"), QStringLiteral("not")};
    switched.ignoreCommentsForWordCount = true;
    switched.markTaskWithCharacter = QStringLiteral("(!)");
    check(
        {{u"a @home, @never ^x b@c @not", u"7:@home|7:^x"}, {u"// x\ny", u"36:// x"}, {u"(!) call", u"37:(!) call|40:(!) "}},
        switched);
    switched.autoIndentLists = false;
    switched.highlightMarkdown = false;
    check({{u"(!) @home # x", u"7:@home"}}, switched);
}

TEST(Highlighting, oneLineAlone)
{
    const QString text = QStringLiteral("# a\n*b* @x\nTitle: c\n");
    const auto line = tm_highlightStringinRange(text, tm_highlightCurrentLine(text, {6, 0}), markdown());
    EXPECT_EQ(line, (std::vector<Highlight>{{{4, 3}, 13}}));
    EXPECT_TRUE(tm_highlightStringinRange(text, {11, 9}, markdown()).empty());
    EXPECT_TRUE(tm_highlightStringinRange(text, {15, 9}, markdown()).empty()); // reaches outside
    EXPECT_TRUE(tm_highlightStringinRange(text, {Range::notFound, 1}, markdown()).empty());
}

TEST(Highlighting, styles)
{
    const auto styles = stylesInRange(QStringLiteral("**b**"), {0, 5}, markdown());
    ASSERT_EQ(styles.size(), 3u);
    EXPECT_EQ(styles[0].range, (Range{0, 5}));
    EXPECT_TRUE(styles[0].style.bold && !styles[0].style.italic);
    EXPECT_EQ(styles[2].range, (Range{3, 2}));
    EXPECT_EQ(styles[2].style.color, HighlightColor::Faded);

    const auto change = stylesInRange(QStringLiteral("{~~old~>new~~}"), {0, 14}, markdown());
    EXPECT_EQ(change.back().range, (Range{3, 3}));
    EXPECT_TRUE(change.back().style.strikethrough);
}

// Each of these would keep a pattern busy for hours that looks for an end which is not there.
TEST(Highlighting, endsOnHostileTexts)
{
    const QStringList pieces{
        QStringLiteral("["),    QStringLiteral("[["),     QStringLiteral("*a"),     QStringLiteral("**"),
        QStringLiteral("`"),    QStringLiteral("\n```a"), QStringLiteral("<"),      QStringLiteral("<!--"),
        QStringLiteral("->"),   QStringLiteral("{{"),     QStringLiteral("~~a"),    QStringLiteral("{~~"),
        QStringLiteral("== a"), QStringLiteral("[?(a)"),  QStringLiteral("_"),      QStringLiteral("<img src=\""),
        QStringLiteral("[^a"),  QStringLiteral("\n[a\n"), QStringLiteral(" \t"),    QStringLiteral("- "),
        QStringLiteral("\n\n"), QStringLiteral("#"),      QStringLiteral("{~~a~>"), QStringLiteral("[a](b"),
        QStringLiteral("[#"),   QStringLiteral("[]"),     QStringLiteral("-"),      QStringLiteral("text=\""),
    };
    for (const QString &piece : pieces) {
        QString text = piece.repeated(60000 / piece.size());
        text += QStringLiteral("\n]>-->~~}\"");
        for (const char16_t *extension : {u"md", u"html", u"opml"})
            (void)stylesInRange(text, {0, text.size()}, markdown(QString::fromUtf16(extension)));
    }
}
