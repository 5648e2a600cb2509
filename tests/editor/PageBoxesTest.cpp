// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/PageBoxes.h"

#include "conversion/MarkdownToHtml.h"
#include "conversion/Patterns.h"
#include "editor/FormattedPage.h"
#include "foundation/Platform.h"
#include "library/Properties.h"
#include "tests/support/Notebook.h"

using namespace tomelet;

namespace {

class PageBoxes : public tomelet::test::Notebook
{
protected:
    // The boxes as the page itself shows them.
    static std::vector<PageBox> boxesOnPage(const QString &path)
    {
        const QString page = formattedPageFor(path).html;
        const PatternMatches found = matchesOfPattern(page, QStringLiteral("<li class=\"tm_checkbox(_done)?\">"));
        std::vector<PageBox> boxes;
        for (size_t i = 0; i < found.size(); ++i)
            boxes.push_back({qsizetype(i), qsizetype(found.size()), found[i].group(1).isFound()});
        return boxes;
    }
};

// Brackets of every kind; those that make boxes hold a number.
const QByteArray source = "Note\n"
                          "\n"
                          "- [ ] one\n"
                          "- [x] two [ ] with *more* [x]\n"
                          "    - [ ] nested\n"
                          "- [x](http://example.org) link\n"
                          "- plain\n"
                          "\n"
                          "```\n"
                          "- [ ] code\n"
                          "```\n"
                          "\n"
                          "[ ] no item\n"
                          "\n"
                          "> * [X] quoted\n"
                          "\n"
                          "1. [ ] numbered\n"
                          "\n"
                          "2. [ ] loose, `- [ ] code`\n";

} // namespace

TEST_F(PageBoxes, eachBoxOfThePageTogglesItsOwnLine)
{
    const QString path = write(QStringLiteral("/Note.md"), source);
    for (const int engine : {0, 1}) {
        settings().setObject(QStringLiteral("MarkdownConverter"), qlonglong(engine));
        const std::vector<PageBox> boxes = boxesOnPage(path);
        ASSERT_GE(boxes.size(), 4U) << engine;
        for (const PageBox &box : boxes) {
            SCOPED_TRACE(box.number);
            ASSERT_EQ(toggleBox(path, box), BoxResult::Toggled);
            std::vector<PageBox> after = boxesOnPage(path);
            ASSERT_EQ(after.size(), boxes.size());
            for (const PageBox &other : after)
                EXPECT_EQ(other.isDone != boxes[size_t(other.number)].isDone, other.number == box.number);
            ASSERT_EQ(toggleBox(path, after[size_t(box.number)]), BoxResult::Toggled);
            EXPECT_EQ(read(QStringLiteral("/Note.md")).toLower(), source.toLower());
            write(QStringLiteral("/Note.md"), source);
        }
    }
}

TEST_F(PageBoxes, boxesThatAreNotOfThisTextStay)
{
    settings().setObject(QStringLiteral("MarkdownConverter"), qlonglong(1));
    write(QStringLiteral("/Other.md"), "- [ ] from elsewhere\n");
    const QString path = write(QStringLiteral("/Note.md"), "- [ ] mine\n\n{{Other.md}}\n");
    const std::vector<PageBox> boxes = boxesOnPage(path);
    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(toggleBox(path, boxes[1]), BoxResult::NotFound);
    EXPECT_EQ(toggleBox(path, {0, 2, true}), BoxResult::NotFound); // the page says done, the text open
    EXPECT_EQ(toggleBox(path, {0, 1, false}), BoxResult::NotFound);
    EXPECT_EQ(toggleBox(path, {2, 2, false}), BoxResult::NotFound);
    EXPECT_EQ(read(QStringLiteral("/Note.md")), "- [ ] mine\n\n{{Other.md}}\n");
    EXPECT_EQ(toggleBox(path, boxes[0]), BoxResult::Toggled);
    EXPECT_EQ(read(QStringLiteral("/Note.md")), "- [x] mine\n\n{{Other.md}}\n");
}

TEST_F(PageBoxes, bytesAroundTheBoxStay)
{
    const QByteArray bytes = QByteArray::fromHex("efbbbf") + "- [ ] a\r\n- [x] b\n";
    const QString path = write(QStringLiteral("/Note.md"), bytes);
    EXPECT_EQ(toggleBox(path, {1, 2, true}), BoxResult::Toggled);
    EXPECT_EQ(read(QStringLiteral("/Note.md")), QByteArray(bytes).replace("[x]", "[ ]"));
    const QByteArray broken = "- [ ] a \xff\x81 \xed\xa0\x80\n";
    write(QStringLiteral("/Note.md"), broken);
    (void)toggleBox(path, {0, 1, false});
    EXPECT_EQ(read(QStringLiteral("/Note.md")).replace("[x]", "[ ]"), broken);
}

TEST_F(PageBoxes, markdownInsideOfAPage)
{
    const QString path = write(QStringLiteral("/Note.html"), {});
    tm_setProperty(path, QStringLiteral("OK"), QStringLiteral("Markdown"));
    write(QStringLiteral("/Note.html"),
          "<!-- Plain Text Representation:\nList\n\n- [ ] a \\-\\-\\> b\n- [x] c \n-->\n\n");
    const std::vector<PageBox> boxes = boxesOnPage(path);
    ASSERT_EQ(boxes.size(), 2U);
    ASSERT_EQ(toggleBox(path, boxes[0]), BoxResult::Toggled);
    const QByteArray after = read(QStringLiteral("/Note.html"));
    EXPECT_TRUE(after.startsWith("<!-- Plain Text Representation:\nList\n\n- [x] a \\-\\-\\> b\n- [x] c"))
        << after.toStdString();
    EXPECT_EQ(after.count("tm_checkbox_done\">"), 2);
}
