// SPDX-License-Identifier: GPL-3.0-or-later
// What stands on which page.
#include "screenplay/FNPaginator.h"
#include "tests/screenplay/Scripts.h"

using namespace tomelet;
using namespace tomelet::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int linesOfPage = 53; // (792 - 145) / 12

QList<FNPaginator::Page> pagesOf(const QString &text)
{
    FNPaginator pages = FNPaginator::initWithScript(FNScript::initWithString(text));
    pages.paginate();
    QList<FNPaginator::Page> all;
    for (qsizetype i = 0; i < pages.numberOfPages(); ++i) all << pages.pageAtIndex(i);
    return all;
}

QString lineOfAction(int number)
{
    return QStringLiteral("Line %1.\n\n").arg(number);
}

// So many lines of a page, which end in front of an element with an empty line above.
QString filling(int lines)
{
    QString text = lines % 2 ? QString() : u"a\nb\n\n"_s;
    for (int used = lines % 2 ? 0 : 2; used < lines; used += used ? 2 : 1) text += lineOfAction(used);
    return text;
}

int linesOn(const FNPaginator::Page &page)
{
    int lines = 0;
    for (const FNElement &element : page) {
        if (element.isHidden() || element.is(FNType::PageBreak)) continue;
        const int width = element.is(FNType::Lyrics) ? 250 : FNPaginator::widthForElement(element);
        if (lines > 0) lines += FNPaginator::spaceBeforeForElement(element);
        lines += FNPaginator::heightForString(element.elementText, {}, width, 1);
    }
    return lines;
}

// All that is written, in order, without what dividing a speech adds.
QString textOf(const QList<FNElement> &elements)
{
    QString text;
    for (const FNElement &element : elements)
        if (element.elementText != u"(MORE)" && !element.elementText.endsWith(u" (CONT'D)"))
            text += element.elementText;
    return text;
}

QString textOf(const QList<FNPaginator::Page> &pages)
{
    QString text;
    for (const FNPaginator::Page &page : pages) text += textOf(page);
    return text;
}

QString sentences(int count)
{
    QString text;
    for (int i = 0; i < count; ++i) text += QStringLiteral("Sentence %1 has six words altogether. ").arg(100 + i);
    return text.trimmed();
}

} // namespace

TEST(Paginator, Measures)
{
    const auto lines = [](const QString &text, int columns) {
        return FNPaginator::heightForString(text, {}, columns * 36 / 5 + 1, 12) / 12;
    };
    EXPECT_EQ(lines({}, 10), 0);
    EXPECT_EQ(lines(u"   "_s, 10), 1);
    EXPECT_EQ(lines(u"ten signs."_s, 10), 1);
    EXPECT_EQ(lines(u"eleven sign"_s, 10), 2);
    EXPECT_EQ(lines(u"ten signs.      \n\n x  \n "_s, 10), 3);
    EXPECT_EQ(lines(QString(31, u'x'), 10), 4);
    EXPECT_EQ(lines(u"a bb ccc dddd eeeee"_s, 5), 4);
    EXPECT_EQ(lines(u"e\u0301e\u0301e\u0301\U0001F6A2\U0001F6A2"_s, 5), 1);
    EXPECT_EQ(FNPaginator::heightForString(QString(59, u'x'), {}, 430, 12), 12);
    EXPECT_EQ(FNPaginator::heightForString(QString(60, u'x'), {}, 430, 12), 24);
}

TEST(Paginator, PlainPages)
{
    EXPECT_TRUE(pagesOf({}).isEmpty());
    QString text;
    for (int i = 0; i < 100; ++i) text += lineOfAction(i);
    const auto pages = pagesOf(text); // one line, and 26 with an empty one above
    ASSERT_EQ(pages.size(), 4);
    EXPECT_EQ(pages[0].size(), 27);
    EXPECT_EQ(pages[3].size(), 19);
    EXPECT_TRUE(FNPaginator().pageAtIndex(3).isEmpty());
}

// A page of a screenplay is a minute of a film: 120 scenes of 24 lines are 2,880 lines.
TEST(Paginator, LengthOfAWholeScript)
{
    QString text;
    for (int i = 0; i < 120; ++i)
        text += u"INT. ROOM - DAY\n\n"_s + sentences(9) + u"\n\nJANE\n" + sentences(4) + u"\n\nBOB\n(low)\n" +
                sentences(3) + u"\n\nHe goes.\n\n";
    EXPECT_NEAR(double(pagesOf(text).size()), 120 * 28.0 / linesOfPage, 6);
}

TEST(Paginator, PageBreaks)
{
    const auto pages = pagesOf(u"===\n\na\n\n===\n\n===\n\n= plan\n\nb\n\n===\n\n[[note]]"_s);
    ASSERT_EQ(pages.size(), 2);
    EXPECT_EQ(described(pages[0]), u"Page Break: ===\nAction: a\nPage Break: ==="_s);
    EXPECT_EQ(described(pages[1]), u"Page Break: ===\nSynopsis:  plan\nAction: b\nPage Break: ===\nComment: note"_s);
}

TEST(Paginator, HeadingsStayWithWhatFollows)
{
    for (const QString &next : {u"He goes."_s, u"= plan\n\n[[note]]\n\nHe goes."_s, u"JANE\nHm."_s}) {
        const QString heading = u"INT. ROOM\n\n"_s;
        const auto fits = pagesOf(filling(linesOfPage - 6) + heading + next);
        EXPECT_EQ(fits.size(), 1) << next.toStdString();
        const auto pages = pagesOf(filling(linesOfPage - 3) + heading + next);
        ASSERT_EQ(pages.size(), 2) << next.toStdString();
        EXPECT_TRUE(pages[1].first().is(FNType::SceneHeading));
    }
    // Only one of them is held.
    const auto headings = pagesOf(filling(linesOfPage - 6) + u"INT. A\n\nINT. B\n\nHe goes."_s);
    ASSERT_EQ(headings.size(), 2);
    EXPECT_EQ(headings[1].first().elementText, u"INT. B"_s);
    // What fits of the action is enough.
    const auto divided = pagesOf(filling(linesOfPage - 6) + u"INT. A\n\n"_s + sentences(40));
    EXPECT_EQ(divided[0].last().elementText, QString(sentences(3) + u' '));
}

TEST(Paginator, ActionIsDividedAtSentences)
{
    const auto pages = pagesOf(filling(linesOfPage - 5) + sentences(40));
    ASSERT_EQ(pages.size(), 2);
    // Four lines of 59 signs.
    EXPECT_EQ(pages[0].last().elementText, QString(sentences(6) + u' '));
    EXPECT_TRUE(pages[1].first().elementText.startsWith(u"Sentence 106"));
    // Lines end sentences as well.
    EXPECT_EQ(pagesOf(filling(linesOfPage - 2) + u"one line\nanother line"_s)[0].last().elementText, u"one line\n"_s);
    // A sentence that does not fit stays whole, and no page begins with a mark that would be taken for another thing.
    const QString full = QString(55, u'x') + u"... ";
    EXPECT_EQ(pagesOf(filling(linesOfPage - 2) + full + u"Y. Z.")[1].first().elementText, u"Y. Z."_s);
    EXPECT_EQ(pagesOf(filling(linesOfPage - 2) + full + u"!Y. Z.")[1].first().elementText, QString(full + u"!Y. Z."));
    const auto whole = pagesOf(filling(linesOfPage - 2) + QString(40, u'x') + u' ' + QString(40, u'y') + u'.');
    EXPECT_EQ(whole[1].first().elementText.size(), 82);
    // Longer than a page without any end.
    const auto endless = pagesOf(QString(59 * linesOfPage * 2 + 1, u'x'));
    ASSERT_EQ(endless.size(), 3);
    EXPECT_EQ(endless[1].first().elementText.size(), 59 * linesOfPage);
}

TEST(Paginator, SpeechesAreDividedAtSentences)
{
    const QString speech = u"JANE\n(low)\n"_s + sentences(60) + u"\n(loud)\nGo!";
    const auto pages = pagesOf(filling(linesOfPage - 10) + speech + u"\n\nShe goes.");
    ASSERT_EQ(pages.size(), 3);
    const qsizetype end = pages[0].size();
    EXPECT_EQ(pages[0][end - 4].elementText, u"JANE"_s);
    // An empty line, the name, how she speaks, five lines of 34 signs, an empty line, "(MORE)".
    EXPECT_EQ(pages[0][end - 2].elementText, QString(sentences(4) + u' '));
    EXPECT_EQ(described(pages[0].last()), u"Character: (MORE)"_s);
    EXPECT_EQ(described(pages[1].first()), u"Character: JANE (CONT'D)"_s);
    EXPECT_TRUE(pages[1][1].elementText.startsWith(u"Sentence 104"));
    EXPECT_EQ(described(pages[1].last()), u"Character: (MORE)"_s);
    EXPECT_EQ(described(pages[2].first()), u"Character: JANE (CONT'D)"_s);
    EXPECT_EQ(described(pages[2].mid(2)), u"Parenthetical: (loud)\nDialogue: Go!\nAction: She goes."_s);

    const auto again = pagesOf(filling(linesOfPage - 10) + u"JANE (cont'd)\n"_s + sentences(60));
    EXPECT_EQ(described(again[1].first()), u"Character: JANE (cont'd)"_s);
    // A name without a whole sentence goes to the next page with all that is said.
    const auto moved = pagesOf(filling(linesOfPage - 5) + speech);
    EXPECT_FALSE(moved[0].last().is(FNType::Character));
    EXPECT_EQ(moved[1].first().elementText, u"JANE"_s);
    // How something is said does not end a page.
    const auto manner = pagesOf(filling(linesOfPage - 6) + u"JANE\nHm.\n(low)\n"_s + sentences(20));
    EXPECT_EQ(described(manner[0].mid(manner[0].size() - 2)), u"Dialogue: Hm.\nCharacter: (MORE)"_s);
    EXPECT_EQ(described(manner[1].mid(0, 2)), u"Character: JANE (CONT'D)\nParenthetical: (low)"_s);
}

TEST(Paginator, TwoWhoSpeakAtOnceStayTogether)
{
    const auto both = [](int count) -> QString {
        return u"JANE\n"_s + sentences(count) + u"\n\nBOB ^\n(low)\n" + sentences(count) + u"\n\nx";
    };
    // An empty line, the name, how he speaks, and the words in a column of 28 signs.
    const int lines = 3 + FNPaginator::heightForString(sentences(6), {}, 205, 1);
    EXPECT_TRUE(pagesOf(filling(linesOfPage - lines) + both(6))[0].last().is(FNType::Dialogue));
    EXPECT_EQ(pagesOf(filling(linesOfPage - lines + 1) + both(6))[1].size(), 6);
    // Too long for a page, they speak after each other.
    const auto apart = pagesOf(both(60));
    EXPECT_GT(apart.size(), 2);
    for (const FNPaginator::Page &page : apart)
        for (const FNElement &element : page) EXPECT_FALSE(element.isDualDialogue);
}

// Names that fill pages, elements that cannot be divided and are longer than a page, and nothing but such.
TEST(Paginator, WhatFitsOnNoPage)
{
    const QString name = QString(34 * 60, u'A'), small = QString(34 * 5, u'B');
    for (const QString &text :
         {QString(name + u'\n' + sentences(300)), QString(small + u'\n' + sentences(300)),
          QString(u"INT. "_s + QString(59 * 52, u'x') + u"\n\n" + sentences(90)),
          QString(u"INT. "_s + QString(59 * 60, u'x') + u"\n\nJANE\n" + sentences(90)),
          QString(u"JANE\n("_s + QString(29 * 60, u'x') + u")\n" + sentences(90)),
          QString(u"~"_s + QString(59 * 60, u'x') + u"\n\n>" + QString(59 * 60, u'y') + u"\n\nEnd.")}) {
        for (int above : {0, 1, 52, 53}) {
            const QString whole = filling(above) + text;
            EXPECT_EQ(textOf(pagesOf(whole)), textOf(FNScript::initWithString(whole).elements));
        }
    }
    FNPaginator tiny = FNPaginator::initWithScript(FNScript::initWithString(u"JANE\nOne. Two.\n\nINT. A\n\nx"_s));
    tiny.paginateForSize({612, 10});
    EXPECT_GE(tiny.numberOfPages(), 3);
}

TEST(Paginator, NothingIsLostOrDoubled)
{
    std::mt19937 random(20261122);
    for (int i = 0; i < 300; ++i) {
        const QString text = i % 3 ? randomScreenplay(random, 12) : randomLines(random, 400);
        const auto pages = pagesOf(text);
        ASSERT_EQ(textOf(pages), textOf(FNScript::initWithString(text).elements)) << i;
        for (qsizetype page = 0; page < pages.size(); ++page) {
            const auto isDual = [](const FNElement &element) { return element.isDualDialogue; };
            const bool hasColumns = std::ranges::any_of(pages[page], isDual);
            EXPECT_TRUE(hasColumns || linesOn(pages[page]) <= linesOfPage) << i << ' ' << page;
            EXPECT_FALSE(pages[page].isEmpty());
        }
    }
}
