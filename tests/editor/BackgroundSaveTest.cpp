// SPDX-License-Identifier: GPL-3.0-or-later
// Saves that run beside the typing: what happens meanwhile is neither lost nor written over.
#include "tests/editor/DocumentFixture.h"

#include "foundation/FileOperations.h"
#include "library/ItemOperations.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QThread>

using namespace tomelet;
using tomelet::test::DocumentController;

namespace {

class BackgroundSave : public DocumentController
{
protected:
    BackgroundSave()
    {
        path = document(QStringLiteral("/a.txt"), "one\r\ntwo\r\n");
        controller.openDocument(path);
    }
    // Typed, and the save has begun.
    void begin(const QString &text)
    {
        type(text);
        controller.autosave();
    }
    QString path;
};

} // namespace

TEST_F(BackgroundSave, typingGoesOnMeanwhile)
{
    QStringList told;
    const auto heard =
        notifications().observe(QStringLiteral("TMLTFileModifiedOnDiskNotification"), [&](const QVariantMap &) {
            told += QString::fromUtf8(read(QStringLiteral("/a.txt")));
        });
    begin(QStringLiteral("one\n2\n"));
    EXPECT_TRUE(controller.isEdited());
    type(QStringLiteral("one\n2\n3\n"));
    controller.waitForSave();
    EXPECT_EQ(told, QStringList(QStringLiteral("one\r\n2\r\n"))); // told when it stands on the disk
    EXPECT_TRUE(controller.isEdited());
    EXPECT_TRUE(view.edited);
    pause();
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("one\r\n2\r\n3\r\n"));
    EXPECT_FALSE(controller.isEdited());
    EXPECT_EQ(view.loads, 1);
}

TEST_F(BackgroundSave, whoNeedsTheFileWaits)
{
    begin(QStringLiteral("one\n2\n"));
    type(QStringLiteral("last\n"));
    EXPECT_TRUE(controller.closeDocument());
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("last\r\n"));

    controller.openDocument(path);
    begin(QStringLiteral("undone\n"));
    type(QStringLiteral("last\n")); // as the file was when the save began
    EXPECT_TRUE(controller.closeDocument());
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("last\r\n"));
}

TEST_F(BackgroundSave, theEventLoopEndsIt)
{
    begin(QStringLiteral("one\n2\n"));
    for (int turn = 0; turn < 5000 && controller.isEdited(); ++turn) {
        QCoreApplication::processEvents();
        QThread::msleep(1);
    }
    EXPECT_FALSE(controller.isEdited());
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("one\r\n2\r\n"));
}

TEST_F(BackgroundSave, pagesAndTheirSourcesToo)
{
    const QString page = document(QStringLiteral("/p.html"), "<html lang=\"en\"><body><p>old</p></body></html>");
    controller.openDocument(page);
    typeIntoPage(QStringLiteral("<p>new #fresh</p>"), QStringLiteral("new"));
    controller.autosave();
    EXPECT_TRUE(read(QStringLiteral("/p.html")).contains("old"));
    typeIntoPage(QStringLiteral("<p>newer</p>"), QStringLiteral("newer"));
    controller.waitForSave();
    EXPECT_EQ(read(QStringLiteral("/p.html")),
              QByteArray("<html lang=\"en\"><body><p>new #fresh</p></body>\n</html>\n"));
    EXPECT_TRUE(controller.isEdited());
    pause();
    EXPECT_TRUE(read(QStringLiteral("/p.html")).contains("<p>newer</p>"));
    EXPECT_EQ(view.loads, 2);

    controller.tm_togglePlainTextAndFormattedView();
    begin(QStringLiteral("<p>newest</p>"));
    controller.waitForSave();
    EXPECT_TRUE(read(QStringLiteral("/p.html")).contains("<!-- Generator: Tomelet "));
    EXPECT_TRUE(read(QStringLiteral("/p.html")).contains("<p>newest</p>"));

    const QString combined = document(QStringLiteral("/c.html"), "");
    tm_setProperty(combined, QStringLiteral("OK"), QStringLiteral("Markdown"));
    controller.openDocument(combined);
    controller.tm_togglePlainTextAndFormattedView();
    begin(QStringLiteral("*source*"));
    controller.waitForSave();
    EXPECT_TRUE(read(QStringLiteral("/c.html")).startsWith("<!-- Plain Text Representation:\n*source*"));
    EXPECT_TRUE(read(QStringLiteral("/c.html")).contains("<em>source</em>"));
}

TEST_F(BackgroundSave, firstSavesAndNewNamesToo)
{
    const QString book = makeBook(QStringLiteral("/Book"));
    settings().setObject(QStringLiteral("manageLinks"), true);
    controller.createNewDocument(QStringLiteral("md"), book);
    begin(QStringLiteral("Name\nfirst"));
    EXPECT_TRUE(controller.path().isEmpty());
    type(QStringLiteral("Name\nfirst [self](Name.md) #ctx"));
    write(QStringLiteral("/Book/Name.md"), "by another program");
    controller.waitForSave();
    EXPECT_EQ(controller.path(), at(QStringLiteral("/Book/Name 1.md"))) << controller.path().toStdString();
    EXPECT_TRUE(read(QStringLiteral("/Book/Name 1.md")).startsWith("Name\nfirst"));
    EXPECT_EQ(read(QStringLiteral("/Book/Name.md")), QByteArray("by another program"));
    pause();
    EXPECT_FALSE(controller.isEdited());

    begin(QStringLiteral("Other\n[[/Book/Name 1.md]] and [the one](Name.md)"));
    EXPECT_EQ(controller.path(), at(QStringLiteral("/Book/Other.md")));
    controller.waitForSave();
    platform().serialQueue.drain();
    EXPECT_EQ(read(QStringLiteral("/Book/Other.md")), QByteArray("Other\n[[/Book/Other.md]] and [the one](Name.md)"));
    EXPECT_EQ(names(QStringLiteral("/Book")).filter(QRegularExpression(QStringLiteral("md$"))),
              (QStringList{QStringLiteral("Name.md"), QStringLiteral("Other.md")}));

    const QString page = document(QStringLiteral("/Page.html"),
                                  "<!-- Generator: Tomelet for Mac 1 --><head></head><body><p>Page</p></body>");
    controller.openDocument(page);
    view.visibleText = QStringLiteral("Page");
    typeIntoPage(QStringLiteral("<p>Leaf</p>"), QStringLiteral("Leaf"));
    controller.autosave();
    controller.waitForSave();
    EXPECT_TRUE(read(QStringLiteral("/Leaf.html")).contains("<title>Leaf</title>"));
    EXPECT_FALSE(exists(QStringLiteral("/Page.html")));
}

TEST_F(BackgroundSave, whatComesBetweenIsKept)
{
    begin(QStringLiteral("typed\n"));
    overwrite(path, "written there\n");
    controller.waitForSave();
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("typed\r\n"));
    EXPECT_EQ(read(QStringLiteral("/a (changed elsewhere).txt")), QByteArray("written there\n"));

    begin(QStringLiteral("typed on\n"));
    EXPECT_TRUE(tm_moveItemToPath(path, at(QStringLiteral("/b.txt"))));
    notifications().post(
        QStringLiteral("TMLTFileMovedNotification"),
        {{QStringLiteral("originalPath"), path}, {QStringLiteral("newPath"), at(QStringLiteral("/b.txt"))}});
    controller.waitForSave();
    EXPECT_EQ(read(QStringLiteral("/b.txt")), QByteArray("typed on\r\n"));
    EXPECT_FALSE(exists(QStringLiteral("/a.txt")));

    begin(QStringLiteral("protected\n"));
    tm_setProperty(at(QStringLiteral("/b.txt")), QStringLiteral("1"), QStringLiteral("R/O"));
    controller.waitForSave();
    EXPECT_EQ(read(QStringLiteral("/b.txt")), QByteArray("typed on\r\n"));
    EXPECT_TRUE(controller.isEdited());
    EXPECT_EQ(view.alerts.last(), QStringLiteral("Saving Error"));
    EXPECT_EQ(names(QStringLiteral("/")).filter(QStringLiteral(".tomelet")), QStringList());
}
