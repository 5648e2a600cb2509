// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Notebook.h"

#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/AppDelegate.h"
#include "library/RecentItems.h"
#include "library/SetUp.h"
#include "library/StorageLocations.h"

#include <QDir>
#include <QFile>

using namespace tomelet;
using FirstLaunch = tomelet::test::Notebook;

TEST_F(FirstLaunch, firstLaunch)
{
    initAppSettings(true);
    const Settings &values = settings();
    EXPECT_EQ(values.object(QStringLiteral("showPreviewForNotes")), QVariant(4LL));
    EXPECT_EQ(values.object(QStringLiteral("installedVersion")), QVariant(QStringLiteral("300")));
    for (const char *key : {"contextsEnabled", "cleanUpAttachments", "useNumericOrder", "openMostRecentDocOnLaunch"})
        EXPECT_EQ(values.object(QString::fromLatin1(key)), QVariant(true)) << key;
    EXPECT_FALSE(values.contains(QStringLiteral("manageLinks")));
    EXPECT_EQ(names(QStringLiteral("/TMResources")).join(u' '), QStringLiteral("BG CSS Misc"));
    EXPECT_EQ(names(QStringLiteral("/Quickstart")).size(), 2);
    EXPECT_EQ(storedRecentItems().size(), 1);
    EXPECT_TRUE(isFolder(rootStateFolder()));
}

TEST_F(FirstLaunch, whatWasSwitchedOffStaysOff)
{
    initAppSettings(true);
    settings().remove(QStringLiteral("useNumericOrder"));
    settings().remove(QStringLiteral("contextsEnabled"));
    initAppSettings(true);
    EXPECT_FALSE(settings().contains(QStringLiteral("useNumericOrder")));
    EXPECT_FALSE(settings().contains(QStringLiteral("contextsEnabled")));
    settings().setObject(QStringLiteral("installedVersion"), QStringLiteral("220"));
    tm_initPreferences();
    EXPECT_TRUE(settings().boolean(QStringLiteral("useNumericOrder")));
    EXPECT_FALSE(settings().contains(QStringLiteral("showDatesInListOfNotes")) &&
                 settings().object(QStringLiteral("showDatesInListOfNotes")) != QVariant(true));
}

TEST_F(FirstLaunch, defaultDocumentsOnlyInAnEmptyRoot)
{
    write(QStringLiteral("/.hidden"));
    initAppSettings(true);
    EXPECT_TRUE(exists(QStringLiteral("/Quickstart")));
    EXPECT_TRUE(removeItem(at(QStringLiteral("/Quickstart"))));
    write(QStringLiteral("/mine.md"));
    initAppSettings(true);
    EXPECT_FALSE(exists(QStringLiteral("/Quickstart")));
}

TEST_F(FirstLaunch, aRootWithoutItsDiskIsLeftAlone)
{
    initAppSettings(true);
    EXPECT_TRUE(removeItem(root));
    makeFolder(root);
    EXPECT_FALSE(initAppSettings(false).rootIsUsable);
    EXPECT_EQ(names(QString()), QStringList());
    EXPECT_TRUE(initAppSettings(true).rootIsUsable) << "the person chose it just now";
}

TEST_F(FirstLaunch, contextListsMerge)
{
    makeFolder(rootStateFolder());
    const QString old = joinPath(rootStateFolder(), QStringLiteral("AvailableTags.plist"));
    writeStore(old, QVariantList{QStringLiteral("@a"), QStringLiteral("@b")});
    makeBook(QStringLiteral("/TMResources/Misc"));
    writeStore(miscFile(QStringLiteral("AvailableTags.txt")), QVariantList{QStringLiteral("@b"), QStringLiteral("@c")});
    tm_initPreferences();
    EXPECT_EQ(readStringArray(miscFile(QStringLiteral("AvailableTags.txt"))).join(u' '), QStringLiteral("@b @c @a"));
    EXPECT_FALSE(itemExists(old));
}

TEST_F(FirstLaunch, rootsAreListedOnceNewestFirst)
{
    for (const char *path : {"/a", "/b", "/a"}) tm_addToPreviouslySelectedHomes(QString::fromLatin1(path));
    EXPECT_EQ(settings().stringList(QStringLiteral("previouslySelectedHomes")).join(u' '), QStringLiteral("/a /b"));
    settings().setObject(QStringLiteral("previouslySelectedHomes"), QVariantList{root, QStringLiteral("/gone")});
    const QList<StorageLocation> places = storageLocations();
    ASSERT_EQ(places.size(), 4);
    EXPECT_TRUE(places[0].isCurrent);
    EXPECT_EQ(places[1].kind, StorageLocation::SelectNew);
    EXPECT_EQ(places[3].kind, StorageLocation::ClearRecent);
}

TEST_F(FirstLaunch, launchShowsWhatTheLastSessionShowed)
{
    QStringList posted;
    const auto shown =
        notifications().observe(QStringLiteral("TMLTShowItemAtPathNotification"), [&](const auto &payload) {
            posted.append(QStringLiteral("item ") +
                          lastPathComponent(payload.value(QStringLiteral("path")).toString()));
        });
    const auto book = notifications().observe(QStringLiteral("TMLTNewBookSelectedNotification"),
                                              [&](const auto &) { posted.append(QStringLiteral("book")); });
    const QString document = write(QStringLiteral("/n.md"));
    AppShell shell;
    AppDelegate application(shell);
    settings().setObject(QStringLiteral("openMostRecentDocOnLaunch"), true);
    settings().setObject(QStringLiteral("LastSelectedMainWindowDocument"), document);
    application.applicationDidFinishLaunching({});
    settings().setObject(QStringLiteral("terminatedGracefully"), true);
    application.applicationDidFinishLaunching({false, true});
    EXPECT_TRUE(settings().boolean(QStringLiteral("terminatedGracefully")));
    application.applicationDidFinishLaunching({});
    EXPECT_FALSE(settings().boolean(QStringLiteral("terminatedGracefully")));
    EXPECT_EQ(posted.join(u','), QStringLiteral("book,book,item n.md"));
}

TEST_F(FirstLaunch, terminationSweepsTheCache)
{
    write(QStringLiteral("/a.pdf"));
    for (const char *name : {"/a.pdf.png", "/gone.pdf.png", "/a.pdf@2x.png", "/gone.html"}) {
        makeFolder(rootCacheFolder());
        QFile file(rootCacheFolder() + QString::fromLatin1(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    AppShell shell;
    AppDelegate(shell).applicationWillTerminate();
    EXPECT_EQ(namesInFolder(rootCacheFolder()).join(u' '), QStringLiteral("a.pdf.png a.pdf@2x.png"));
    EXPECT_TRUE(settings().boolean(QStringLiteral("terminatedGracefully")));
}

TEST_F(FirstLaunch, droppedFiles)
{
    AppShell shell;
    AppDelegate application(shell);
    const QString outside = world.filePath(QStringLiteral("drop.md"));
    QFile file(outside);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    settings().setObject(QStringLiteral("addDroppedItemsToInbox"), true);
    makeBook(QStringLiteral("/In"));
    settings().setObject(QStringLiteral("defaultInbox"), QStringLiteral("/In"));
    EXPECT_TRUE(application.applicationOpenFile(outside, false));
    EXPECT_TRUE(exists(QStringLiteral("/In/drop.md")));
    EXPECT_FALSE(application.applicationOpenFile(world.path(), false)) << "another root is asked about";
    EXPECT_TRUE(application.applicationOpenFile(root, false));
}
