// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Notebook.h"

#include "foundation/FileOperations.h"
#include "foundation/Platform.h"
#include "library/ItemOperations.h"
#include "library/OutlineController.h"
#include "library/Properties.h"

#include <QDir>
#include <QFile>

using namespace tomelet;

// A real folder under a real presenter; other programs are played by plain file calls.
class Routing : public tomelet::test::Notebook
{
protected:
    Routing()
    {
        for (const char *name : {"TMLTFileModifiedOnDiskNotification", "TMLTFileDeletedFromDiskNotification",
                                 "TMLTFileMovedNotification", "TMLTUpdateDefaultInbox"})
            m_subscriptions.push_back(
                notifications().observe(QString::fromLatin1(name), [this, name](const QVariantMap &payload) {
                    const QString path =
                        payload.value(QStringLiteral("newPath"), payload.value(QStringLiteral("path"))).toString();
                    posted.append(QString::fromLatin1(name).mid(4, 12) + u' ' + path.mid(root.size()));
                }));
    }

    void start()
    {
        controller.initFileCoordinationAndTaskLists();
        controller.settle();
        TMLTOutlineItem::booksItem()->children();
        posted.clear();
    }
    void settle()
    {
        controller.settle();
        drainPendingWork();
    }
    static QString books() { return TMLTOutlineItem::booksItem()->titlesOfChildren().join(u' '); }

    OutlineView view;
    TMLTOutlineController controller{view};
    QStringList posted;

private:
    std::vector<NotificationCenter::Subscription> m_subscriptions;
};

TEST_F(Routing, booksComeGoAndMove)
{
    makeBook(QStringLiteral("/B"));
    makeBook(QStringLiteral("/C/Inner"));
    start();
    makeBook(QStringLiteral("/A"));
    settle();
    EXPECT_EQ(books(), QStringLiteral("A B C"));
    QDir().rename(at(QStringLiteral("/A")), at(QStringLiteral("/Z")));
    settle();
    EXPECT_EQ(books(), QStringLiteral("B C Z"));
    TMLTOutlineItem::childAtPath(QStringLiteral("/C"))->children();
    QDir().rename(at(QStringLiteral("/Z")), at(QStringLiteral("/C/Z")));
    settle();
    EXPECT_EQ(books(), QStringLiteral("B C"));
    EXPECT_TRUE(TMLTOutlineItem::childAtPath(QStringLiteral("/C/Z")));
    EXPECT_TRUE(removeItem(at(QStringLiteral("/C"))));
    settle();
    EXPECT_EQ(books(), QStringLiteral("B"));
}

TEST_F(Routing, documentsAreToldAndHiddenOnesAreNot)
{
    start();
    write(QStringLiteral("/n.md"));
    write(QStringLiteral("/.secret"));
    write(QStringLiteral("/TMResources/Misc/RecentItems.txt"));
    settle();
    EXPECT_TRUE(posted.contains(QStringLiteral("FileModified /n.md")));
    EXPECT_EQ(posted.filter(QStringLiteral(".secret")).size(), 0);
    EXPECT_EQ(posted.filter(QStringLiteral("RecentItems")).size(), 0);
    posted.clear();
    QFile::remove(at(QStringLiteral("/n.md")));
    settle();
    EXPECT_TRUE(posted.contains(QStringLiteral("FileDeletedF /n.md")));
}

TEST_F(Routing, propertyFileAndOrderFollowAForeignMove)
{
    write(QStringLiteral("/B/n.md"));
    tm_setProperty(at(QStringLiteral("/B/n.md")), QStringLiteral("x"), QStringLiteral("URL"));
    saveCustomSortOrder(at(QStringLiteral("/B")), {}, {QStringLiteral("n.md")});
    start();
    QFile::rename(at(QStringLiteral("/B/n.md")), at(QStringLiteral("/B/m.md")));
    settle();
    EXPECT_EQ(plist(QStringLiteral("/B/m.md.plist")).value(QStringLiteral("URL")), QStringLiteral("x"));
    EXPECT_FALSE(exists(QStringLiteral("/B/n.md.plist")));
    EXPECT_EQ(plist(QStringLiteral("/B/BookProperties.plist")).value(QStringLiteral("Notes")).toStringList(),
              QStringList{QStringLiteral("m.md")});
}

TEST_F(Routing, theProgramsOwnMoveChangesNothingTwice)
{
    const QString from = write(QStringLiteral("/A/n.md"));
    makeBook(QStringLiteral("/B"));
    tm_setProperty(from, QStringLiteral("x"), QStringLiteral("URL"));
    start();
    ASSERT_TRUE(tm_moveItemToPath(from, at(QStringLiteral("/B/n.md"))));
    settle();
    EXPECT_EQ(plist(QStringLiteral("/B/n.md.plist")).value(QStringLiteral("URL")), QStringLiteral("x"));
    EXPECT_EQ(names(QStringLiteral("/A")), QStringList());
    EXPECT_EQ(books(), QStringLiteral("A B"));
}

TEST_F(Routing, changedOrderSortsTheTree)
{
    for (const char *name : {"a", "b", "c"}) makeBook(u'/' + QString::fromLatin1(name));
    start();
    saveCustomSortOrder(root, {QStringLiteral("c"), QStringLiteral("a"), QStringLiteral("b")}, {});
    tm_setProperty(root, QStringLiteral("custom"), QStringLiteral("sortOrderForNotes"));
    settle();
    EXPECT_EQ(books(), QStringLiteral("c a b"));
}

TEST_F(Routing, settingsOfTheLibraryAreReadWhenTheyChange)
{
    start();
    settings().setObject(QStringLiteral("manageLinks"), true);
    write(QStringLiteral("/TMResources/Misc/Settings.txt"),
          "<plist><dict><key>manageLinks</key><integer>0</integer></dict></plist>");
    settle();
    EXPECT_FALSE(settings().boolean(QStringLiteral("manageLinks")));
}

TEST_F(Routing, aVanishedRootDeletesNothing)
{
    write(QStringLiteral("/n.md"));
    start();
    QDir().rename(root, root + QStringLiteral("-gone"));
    settle();
    EXPECT_EQ(posted.filter(QStringLiteral("Deleted")).size(), 0);
    controller.presentedSubitemDidChangeAtURL(at(QStringLiteral("/n.md")));
    EXPECT_EQ(posted.filter(QStringLiteral("Deleted")).size(), 0);
}
