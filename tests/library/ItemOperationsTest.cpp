// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Notebook.h"

#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Deletion.h"
#include "library/EmbeddedPhotos.h"
#include "library/ItemOperations.h"
#include "library/LocationSettings.h"
#include "library/Organiser.h"
#include "library/Properties.h"

#include <QFile>

#include <unistd.h>

using namespace tomelet;
using Operations = tomelet::test::Notebook;

namespace {

// Notes in which order what travels along is told.
class Recorder final : public Organiser
{
public:
    explicit Recorder(QStringList &log)
        : m_log(log)
    {}
    bool bookIsTasklist(const QString &) override { return true; }
    void contextsFollow(const QString &, const QString &) override { m_log.append(QStringLiteral("contexts")); }
    void taskFollows(const QString &from, const QString &) override
    {
        m_log.append(itemExists(from + QStringLiteral(".plist")) ? QStringLiteral("too early")
                                                                 : QStringLiteral("task"));
    }
    void linksFollow(const QString &, const QString &) override { m_log.append(QStringLiteral("links")); }

private:
    QStringList &m_log;
};

} // namespace

TEST_F(Operations, whatTravelsAlongAndInWhichOrder)
{
    QStringList log;
    setOrganiser(std::make_unique<Recorder>(log));
    settings().setObject(QStringLiteral("manageLinks"), true);
    const QString from = write(QStringLiteral("/A/n.md"));
    const QString to = makeBook(QStringLiteral("/B")) + QStringLiteral("/n.md");
    tm_setProperty(from, QStringLiteral("x"), QStringLiteral("Description"));
    ASSERT_TRUE(tm_moveItemToPath(from, to));
    EXPECT_EQ(log.join(u' '), QStringLiteral("contexts task links"));
    EXPECT_EQ(plist(QStringLiteral("/B/n.md.plist")).value(QStringLiteral("Description")), QStringLiteral("x"));
    EXPECT_EQ(names(QStringLiteral("/A")), QStringList());
}

TEST_F(Operations, nothingIsOverwritten)
{
    const QString a = write(QStringLiteral("/a.md"), "a");
    const QString b = write(QStringLiteral("/b.md"), "b");
    tm_setProperty(a, QStringLiteral("x"), QStringLiteral("URL"));
    EXPECT_FALSE(tm_moveItemToPath(a, b));
    EXPECT_FALSE(tm_copyItemToPath(a, b));
    EXPECT_FALSE(tm_moveItemToPath(root, at(QStringLiteral("/x"))));
    EXPECT_FALSE(tm_copyItemToPath(root, at(QStringLiteral("/inside"))));
    EXPECT_EQ(read(QStringLiteral("/b.md")), "b");
    EXPECT_EQ(names(QString()).join(u' '), QStringLiteral("a.md a.md.plist b.md"));
    EXPECT_TRUE(tm_moveItemToPath(a, at(QStringLiteral("/A.md"))));
}

TEST_F(Operations, unreadablePropertyFileMovesAsItIs)
{
    const QString from = write(QStringLiteral("/a.md"));
    write(QStringLiteral("/a.md.plist"), "garbage");
    ASSERT_TRUE(tm_moveItemToPath(from, at(QStringLiteral("/b.md"))));
    EXPECT_EQ(read(QStringLiteral("/b.md.plist")), "garbage");
}

TEST_F(Operations, duplicates)
{
    const QString path = write(QStringLiteral("/Note.md"));
    tm_setProperty(path, QDateTime(QDate(2020, 1, 1), QTime(0, 0), Qt::UTC), QStringLiteral("CreationDate"));
    for (const char *key : {"Markdown", "URL", "PrivateProperties"})
        tm_setProperty(path, QStringLiteral("OK"), QString::fromLatin1(key));
    tm_setProperty(path, QVariantList{QStringLiteral("/x.md")}, QStringLiteral("Backlinks"));
    ASSERT_TRUE(tm_duplicateItemAtPath(path));
    ASSERT_TRUE(tm_duplicateItemAtPath(path));
    EXPECT_TRUE(exists(QStringLiteral("/Note copy 1.md")));
    const QVariantMap copy = plist(QStringLiteral("/Note copy.md.plist"));
    EXPECT_EQ(copy.keys().join(u' '), QStringLiteral("CreationDate Markdown URL"));
    EXPECT_EQ(copy.value(QStringLiteral("CreationDate")).toDateTime(),
              QDateTime(QDate(2020, 1, 1), QTime(0, 0, 1), Qt::UTC));
    write(QStringLiteral("/Other.html"));
    tm_finishDuplicateTo(path, at(QStringLiteral("/Other.html")));
    EXPECT_EQ(plist(QStringLiteral("/Other.html.plist")).keys().join(u' '), QStringLiteral("CreationDate URL"));
    makeBook(QStringLiteral("/Book.x"));
    EXPECT_EQ(lastPathComponent(pathForDuplicate(at(QStringLiteral("/Book.x")))), QStringLiteral("Book.x copy"));
}

TEST_F(Operations, picturesGoAlong)
{
    settings().setObject(QStringLiteral("cleanUpAttachments"), true);
    write(QStringLiteral("/A/TMImages/same.png"), "same");
    write(QStringLiteral("/A/TMImages/other.png"), "mine");
    write(QStringLiteral("/B/TMImages/same.png"), "same");
    write(QStringLiteral("/B/TMImages/other.png"), "theirs");
    const QString from =
        write(QStringLiteral("/A/n.md"), "![](TMImages/same.png) ![](TMImages/other.png) TMImages/other.pngx)");
    ASSERT_TRUE(tm_moveItemToPath(from, at(QStringLiteral("/B/n.md"))));
    EXPECT_EQ(read(QStringLiteral("/B/n.md")), "![](TMImages/same.png) ![](TMImages/other 1.png) TMImages/other.pngx)");
    EXPECT_EQ(read(QStringLiteral("/B/TMImages/other 1.png")), "mine");
    EXPECT_EQ(names(QStringLiteral("/B/TMImages")).size(), 3);
    EXPECT_FALSE(exists(QStringLiteral("/A/TMImages"))) << "nothing refers to the pictures there any more";
}

TEST_F(Operations, cleaningGivesUpAtAnyDoubt)
{
    const QString book = makeBook(QStringLiteral("/A"));
    const auto clean = [&] { tm_cleanupImagesFolder(book); };
    const QString image = QStringLiteral("/A/TMImages/a b&c.png");
    write(image);
    clean();
    EXPECT_TRUE(exists(image)) << "off by default";
    settings().setObject(QStringLiteral("cleanUpAttachments"), true);
    write(QStringLiteral("/A/TMImages/.x.png.icloud"));
    clean();
    EXPECT_TRUE(exists(image)) << "a picture is still downloading";
    QFile::remove(at(QStringLiteral("/A/TMImages/.x.png.icloud")));
    write(QStringLiteral("/A/d.html"), "<img src=\"TMImages/a%20b&amp;c.png\">");
    clean();
    EXPECT_TRUE(exists(image)) << "named in encoded form";
    EXPECT_EQ(plist(QStringLiteral("/A/d.html.plist")).value(QStringLiteral("Embedded Photos")).toStringList().size(),
              1);
    QFile::remove(at(QStringLiteral("/A/d.html")));
    write(QStringLiteral("/Elsewhere/x.md"));
    tm_setProperty(at(image), QVariantList{QStringLiteral("/Elsewhere/x.md")}, QStringLiteral("Backlinks"));
    clean();
    EXPECT_TRUE(exists(image)) << "another book links to it";
    QFile::remove(at(QStringLiteral("/Elsewhere/x.md")));
    if (::geteuid() != 0) {
        write(QStringLiteral("/A/secret.md"));
        QFile::setPermissions(at(QStringLiteral("/A/secret.md")), {});
        clean();
        EXPECT_TRUE(exists(image)) << "a document cannot be read";
        QFile::remove(at(QStringLiteral("/A/secret.md")));
    }
    clean();
    EXPECT_FALSE(exists(QStringLiteral("/A/TMImages")));
}

TEST_F(Operations, trashAndBack)
{
    const QString path = write(QStringLiteral("/n.md"));
    tm_setProperty(path, QStringLiteral("x"), QStringLiteral("URL"));
    const Deletion deletion = performDeleteSelectedItems({path}, false);
    EXPECT_EQ(deletion.records.size(), 2);
    EXPECT_EQ(names(QString()), QStringList());
    storeLastDeletion(deletion.records);
    EXPECT_TRUE(undoLastDelete(lastDeletion()).isEmpty());
    EXPECT_EQ(names(QString()).size(), 2);

    trashWorks = false;
    EXPECT_EQ(performDeleteSelectedItems({path}, false).failed, QStringList{path}) << "nobody said yes";
    EXPECT_TRUE(exists(QStringLiteral("/n.md")));
    platform().ask = [](const Question &) { return 0; };
    EXPECT_TRUE(performDeleteSelectedItems({path}, false).permanent);
    EXPECT_EQ(names(QString()), QStringList());
}

TEST_F(Operations, theInboxFollows)
{
    makeBook(QStringLiteral("/A/In"));
    settings().setObject(QStringLiteral("defaultInbox"), QStringLiteral("/A/In"));
    ASSERT_TRUE(tm_moveItemToPath(at(QStringLiteral("/A")), at(QStringLiteral("/B"))));
    EXPECT_EQ(settings().string(QStringLiteral("defaultInbox")), QStringLiteral("/B/In"));
    EXPECT_EQ(tm_locationSpecificSettingForKey(QStringLiteral("defaultInbox")), QVariant(QStringLiteral("/B/In")));
    EXPECT_FALSE(followInbox(at(QStringLiteral("/A")), at(QStringLiteral("/B")))) << "an event for a move that is done";
    performDeleteSelectedItems({at(QStringLiteral("/B"))}, false);
    EXPECT_FALSE(settings().contains(QStringLiteral("defaultInbox")));
}
