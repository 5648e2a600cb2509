// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: from looking to saving, on real files.
#include "tests/editor/DocumentFixture.h"

#include "editor/NewDocument.h"
#include "foundation/SafeWriter.h"

using namespace tomelet;

using tomelet::test::DocumentController;

TEST_F(DocumentController, lookingAtDocumentsChangesNothing)
{
    const QList<std::pair<QString, QByteArray>> kinds{
        {QStringLiteral("/lf.md"), "# a\n\ntext\n"},
        {QStringLiteral("/crlf.txt"), "a\r\nb\nc\r"},
        {QStringLiteral("/bom.txt"), "\xef\xbb\xbf"
                                     "a\n"},
        {QStringLiteral("/utf16.txt"), QByteArray("\xff\xfe"
                                                  "a\0\n\0",
                                                  6)},
        {QStringLiteral("/roman.txt"), "caf\x8e\n"},
        {QStringLiteral("/windows.txt"), "caf\xe9\r\n"},
        {QStringLiteral("/nul.txt"), QByteArray("a\0b", 3)},
        {QStringLiteral("/surrogate.txt"), QByteArray("\xff\xfe\x00\xd8"
                                                      "a\0",
                                                      6)},
        {QStringLiteral("/empty.md"), ""},
        {QStringLiteral("/own.html"), "<head><!-- Generator: Tomelet for Mac 0 --></head><body><ul></ul>x</body>"},
        {QStringLiteral("/foreign.html"), "<p>x"},
        {QStringLiteral("/picture.png"), "png"},
        {QStringLiteral("/letter.eml"), "Subject: x\n\ny\n"},
        {QStringLiteral("/other.zip"), "zip"},
    };
    for (const auto &[name, bytes] : kinds) document(name, bytes);
    for (const auto &[name, bytes] : kinds) {
        const QDateTime date = fileDates(at(name)).modified;
        ASSERT_TRUE(controller.openDocument(at(name)));
        view.body = QStringLiteral("<ul></ul>x");
        (void)controller.textShouldBeginEditing();
        (void)controller.shouldBeginEditingInDOMRange(false);
        controller.tm_togglePlainTextAndFormattedView();
        (void)controller.textShouldBeginEditing();
        controller.textDidChange(); // a key and its undoing
        controller.writeTextToFile();
        pause();
        ASSERT_TRUE(controller.closeDocument()) << name.toStdString();
        EXPECT_EQ(read(name), bytes) << name.toStdString();
        EXPECT_EQ(fileDates(at(name)).modified, date) << name.toStdString();
    }
    EXPECT_EQ(names(QStringLiteral("/")).size(), kinds.size());
}

TEST_F(DocumentController, typingIsSavedWhenItPauses)
{
    const QString path = document(QStringLiteral("/Note.txt"), "other title\r\nb\nc\r\n");
    controller.openDocument(path);
    EXPECT_EQ(view.shown, QStringLiteral("text"));
    EXPECT_TRUE(controller.md5hash().isEmpty());
    controller.writeTextToFile();
    type(QStringLiteral("other title\nb!\nc\n"));
    EXPECT_TRUE(view.edited);
    EXPECT_EQ(read(QStringLiteral("/Note.txt")), QByteArray("other title\r\nb\nc\r\n"));
    pause();
    EXPECT_FALSE(view.edited);
    EXPECT_EQ(read(QStringLiteral("/Note.txt")), QByteArray("other title\r\nb!\nc\r\n"));

    settings().setObject(QStringLiteral("noAutosaveText"), true);
    type(QStringLiteral("later\n"));
    EXPECT_TRUE(platform().delayedCalls.isEmpty());
    controller.closeDocument();
    EXPECT_EQ(read(QStringLiteral("/Note.txt")), QByteArray("later\r\n"));
}

TEST_F(DocumentController, typingWithoutAPauseIsSavedUnderTheOldName)
{
    controller.openDocument(document(QStringLiteral("/Note.md"), "Note\n"));
    QList<QByteArray> saved;
    const auto watching =
        notifications().observe(QStringLiteral("TMLTFileModifiedOnDiskNotification"),
                                [&](const QVariantMap &) { saved.append(read(QStringLiteral("/Note.md"))); });
    type(QStringLiteral("Not\n"));
    type(QStringLiteral("Notes\nmore\n")); // so the first save of the two does not wait for a pause
    pause();
    EXPECT_EQ(saved.value(0), QByteArray("Notes\nmore\n"));
    EXPECT_FALSE(exists(QStringLiteral("/Note.md")));
    EXPECT_EQ(read(QStringLiteral("/Notes.md")), QByteArray("Notes\nmore\n"));
    EXPECT_TRUE(platform().delayedCalls.isEmpty());
}

TEST_F(DocumentController, encodingsAreKeptWhileTheyCan)
{
    controller.openDocument(document(QStringLiteral("/a.txt"), "caf\x8e"));
    EXPECT_EQ(controller.stringEncoding(), TextEncoding::MacRoman);
    type(QStringLiteral("café ü"));
    pause();
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("caf\x8e \x9f"));
    type(QStringLiteral("café 中"));
    pause();
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("café 中"));
    EXPECT_EQ(controller.stringEncoding(), TextEncoding::Utf8);
    controller.openDocument(document(QStringLiteral("/b.txt"), "\xef\xbb\xbf"
                                                               "b"));
    type(QStringLiteral("b\nc"));
    pause();
    EXPECT_EQ(read(QStringLiteral("/b.txt")), QByteArray("\xef\xbb\xbf"
                                                         "b\nc"));
}

TEST_F(DocumentController, theNameFollowsTheFirstLine)
{
    write(QStringLiteral("/Book/Taken.md"));
    const QString path = document(QStringLiteral("/Book/Old.md"), "Old\ntext\n");
    tm_setProperty(path, QStringLiteral("v"), QStringLiteral("Description"));
    controller.openDocument(path);
    EXPECT_TRUE(controller.titleIsFirstLineOfText());
    type(QStringLiteral("New\ntext\n"));
    pause();
    EXPECT_EQ(controller.path(), at(QStringLiteral("/Book/New.md")));
    EXPECT_EQ(read(QStringLiteral("/Book/New.md")), QByteArray("New\ntext\n"));
    EXPECT_FALSE(exists(QStringLiteral("/Book/Old.md")));
    EXPECT_EQ(tm_propertyForKey(controller.path(), QStringLiteral("Description")), QStringLiteral("v"));
    EXPECT_EQ(view.backList, QStringList(controller.path()));

    type(QStringLiteral("NEW\ntext\n"));
    pause();
    EXPECT_EQ(names(QStringLiteral("/Book")).filter(QStringLiteral(".md")).join(u' '),
              QStringLiteral("NEW.md NEW.md.plist Taken.md"));
    type(QStringLiteral("Taken\ntext\n"));
    pause();
    const QString second = controller.path();
    EXPECT_EQ(second, at(QStringLiteral("/Book/Taken 1.md")));
    type(QStringLiteral("Taken\nmore\n"));
    pause();
    EXPECT_EQ(controller.path(), second);
    EXPECT_EQ(read(QStringLiteral("/Book/Taken.md")), QByteArray("text\n"));

    type(QStringLiteral(" \n"));
    pause();
    EXPECT_FALSE(exists(QStringLiteral("/Book/Taken 1.md")));
    EXPECT_TRUE(controller.path().isEmpty());
    type(QStringLiteral("Again\n"));
    pause();
    EXPECT_EQ(controller.path(), at(QStringLiteral("/Book/Again.md")));

    controller.openDocument(document(QStringLiteral("/Book/Fixed.md"), "another line\n"));
    type({});
    pause();
    EXPECT_TRUE(exists(QStringLiteral("/Book/Fixed.md")));
    type(QStringLiteral("Taken\n"));
    EXPECT_FALSE(controller.tm_renameToFirstLineOfText());
    EXPECT_EQ(view.alerts, QStringList(QStringLiteral("Cannot Rename to First Line of Text")));
    type(QStringLiteral("Free\n"));
    EXPECT_TRUE(controller.tm_renameToFirstLineOfText());
    EXPECT_EQ(read(QStringLiteral("/Book/Free.md")), QByteArray("Free\n"));
}

TEST_F(DocumentController, newDocuments)
{
    const QString book = makeBook(QStringLiteral("/Book"));
    QStringList created;
    const auto subscription =
        notifications().observe(QStringLiteral("TMLTNewFileCreatedNotification"), [&](const QVariantMap &payload) {
            created += payload.value(QStringLiteral("path")).toString();
        });
    view.contexts = {QStringLiteral("@home")};
    controller.createNewDocument(QStringLiteral("md"), book);
    pause();
    EXPECT_EQ(view.begun, 1);
    type(QStringLiteral("  \n"));
    pause();
    EXPECT_TRUE(names(QStringLiteral("/Book")).isEmpty());
    type(QStringLiteral("First\ntext"));
    pause();
    EXPECT_EQ(controller.path(), at(QStringLiteral("/Book/First.md")));
    EXPECT_EQ(created, QStringList(controller.path()));
    EXPECT_TRUE(tm_propertyForKey(controller.path(), QStringLiteral("Tags")).toStringList().contains(u"@home"));
    type(QStringLiteral("Second\ntext"));
    pause();
    EXPECT_EQ(read(QStringLiteral("/Book/Second.md")), QByteArray("Second\ntext"));
    view.contexts.clear();

    // The same first save as that of a text from the command line.
    settings().setObject(QStringLiteral("createCombinedMarkdown"), true);
    controller.createNewDocument(QStringLiteral("md"), book);
    type(QStringLiteral("Combined *it*"));
    pause();
    EXPECT_EQ(controller.path(), at(QStringLiteral("/Book/Combined -it.html"))) << controller.path().toStdString();
    const QString other = saveNewDocument(
        {makeBook(QStringLiteral("/Other")), QStringLiteral("md"), {}, QStringLiteral("Combined *it*")});
    EXPECT_EQ(readFile(controller.path()), readFile(other));
    EXPECT_TRUE(isCombinedMarkdown(controller.path()));
    EXPECT_EQ(controller.viewThatIsVisible(), DocumentViewKind::PlainText);
    controller.showDocument();
    EXPECT_EQ(view.plainText, QStringLiteral("Combined *it*"));

    controller.createNewDocument(QStringLiteral("html"), book);
    EXPECT_EQ(controller.viewThatIsVisible(), DocumentViewKind::Formatted);
    typeIntoPage(QStringLiteral("<h1>Page</h1><p>x</p>"), QStringLiteral("Page\nx"));
    pause();
    EXPECT_EQ(controller.path(), at(QStringLiteral("/Book/Page.html")));
    EXPECT_TRUE(read(QStringLiteral("/Book/Page.html")).contains("<body>\n<h1>Page</h1><p>x</p>\n</body>"));
}
