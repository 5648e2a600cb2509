// SPDX-License-Identifier: GPL-3.0-or-later
// What is dropped on a plain text becomes a text that leads to it.
#include "editor/DroppedText.h"
#include "foundation/SafeWriter.h"
#include "tests/support/Notebook.h"

#include <QFile>

using namespace tomelet;

namespace {

class DroppedText : public tomelet::test::Notebook
{
protected:
    DroppedText()
        : outside(world.path() + QStringLiteral("/elsewhere [1] (2).png"))
        , markdown(dropTargetFor(at(QStringLiteral("/Work/Note.md")), {}))
        , page(dropTargetFor(at(QStringLiteral("/Work/Page.html")), {}))
    {
        write(QStringLiteral("/Work/Note.md"));
        EXPECT_TRUE(writeFile(outside, "picture"));
    }
    QString dropped(const DropTarget &target, const QStringList &files)
    {
        return textForDroppedFiles(target, files, failed);
    }

    QString outside;
    DropTarget markdown;
    DropTarget page;
    QStringList failed;
};

} // namespace

TEST_F(DroppedText, picturesAreCopiedAndShown)
{
    const QString reference = QStringLiteral("TMImages/elsewhere%20%5B1%5D%20%282%29.png");
    EXPECT_EQ(dropped(markdown, {outside}), QString(QStringLiteral("![elsewhere \\[1\\] (2)](") + reference + u')'));
    EXPECT_EQ(read(QStringLiteral("/Work/TMImages/elsewhere [1] (2).png")), QByteArray("picture"));
    (void)dropped(markdown, {outside}); // the same picture is not copied twice
    EXPECT_EQ(names(QStringLiteral("/Work/TMImages")).size(), 1);
    EXPECT_TRUE(dropped(page, {outside}).startsWith(QStringLiteral("<img src=\"TMImages/elsewhere%20")));
    EXPECT_TRUE(textForPastedImage(markdown, "png").startsWith(QStringLiteral("![Image 20")));
    EXPECT_EQ(names(QStringLiteral("/Work/TMImages")).size(), 2);
    EXPECT_TRUE(failed.isEmpty());
}

TEST_F(DroppedText, filesAreLinkedByTheShortestPath)
{
    const QString other = write(QStringLiteral("/Home/Other (1).md"));
    EXPECT_EQ(dropped(markdown, {other, at(QStringLiteral("/Work/Note.md"))}),
              QStringLiteral("[Other (1)](../Home/Other%20%281%29.md)\n[Note](Note.md)"));
    EXPECT_EQ(dropped(page, {at(QStringLiteral("/Work/Note.md"))}), QStringLiteral("<a href=\"Note.md\">Note</a>"));
    const QString report = world.path() + QStringLiteral("/report.pdf");
    EXPECT_EQ(dropped(markdown, {report}), QString(QStringLiteral("[report](file://") + report + u')'));
}

TEST_F(DroppedText, whatCannotBeStoredIsNamed)
{
    write(QStringLiteral("/Work/TMImages"), "a file in the way");
    EXPECT_EQ(dropped(markdown, {outside, at(QStringLiteral("/Work/Note.md"))}), QStringLiteral("[Note](Note.md)"));
    EXPECT_EQ(failed, QStringList(QStringLiteral("elsewhere [1] (2).png")));
}

TEST_F(DroppedText, linksBearTheirTitles)
{
    const QString address = QStringLiteral("https://example.org/a?b=1&c=2");
    EXPECT_EQ(textForLink(markdown, address, QStringLiteral("A\n[title]")),
              QString(QStringLiteral("[A \\[title\\]](") + address + u')'));
    EXPECT_EQ(textForLink(markdown, address, {}), QString(u'<' + address + u'>'));
    EXPECT_EQ(textForLink(page, address, QStringLiteral("T")),
              QStringLiteral("<a href=\"https://example.org/a?b=1&amp;c=2\">T</a>"));
}
