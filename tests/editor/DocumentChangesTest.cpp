// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: changes elsewhere, faults of the disk, pages, and what is noted about documents.
#include "tests/editor/DocumentFixture.h"

#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "library/ItemOperations.h"
#include "organising/contexts/Contexts.h"

#include <csignal>
#include <sys/resource.h>

using namespace tomelet;
using tomelet::test::DocumentController;

TEST_F(DocumentController, changesFromOutsideAreShown)
{
    const QString path = document(QStringLiteral("/a.txt"), "one\n");
    controller.openDocument(path);
    view.offset = 2;
    overwrite(path, "two\nlines\n");
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), path);
    EXPECT_EQ(view.plainText, QStringLiteral("two\nlines\n"));
    EXPECT_EQ(view.offset, 2);

    const int loads = view.loads;
    setDate(path, platform().clock.now().addSecs(-10)); // touched, not changed
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), path);
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), at(QStringLiteral("/b.txt")));
    EXPECT_EQ(view.loads, loads);

    QFile(path).remove();
    notifications().postPath(QStringLiteral("TMLTFileDeletedFromDiskNotification"), path);
    EXPECT_EQ(view.shown, QStringLiteral("nothing"));
}

TEST_F(DocumentController, twoVersionsAreBothKept)
{
    const QString path = document(QStringLiteral("/a.txt"), "one\n");
    controller.openDocument(path);
    type(QStringLiteral("typed here\n"));
    overwrite(path, "written there\n");
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), path);
    EXPECT_EQ(view.plainText, QStringLiteral("typed here\n"));
    pause();
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("typed here\n"));
    EXPECT_EQ(read(QStringLiteral("/a (changed elsewhere).txt")), QByteArray("written there\n"));
    EXPECT_EQ(view.alerts, QStringList(QStringLiteral("The document was changed elsewhere")));
    type(QStringLiteral("typed on\n"));
    pause();
    EXPECT_EQ(names(QStringLiteral("/")).size(), 2);

    type(QStringLiteral("kept\n"));
    QFile(path).remove(); // a file that went comes back with what was typed
    notifications().postPath(QStringLiteral("TMLTFileDeletedFromDiskNotification"), path);
    pause();
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("kept\n"));
}

TEST_F(DocumentController, faultsAreToldAndNothingIsLost)
{
    const QString path = document(QStringLiteral("/a.txt"), "one\n");
    controller.openDocument(path);
    type(QStringLiteral("typed\n"));
    QFile(path).remove();
    makeFolder(path); // it turns into a folder
    pause();
    EXPECT_EQ(view.alerts, QStringList(QStringLiteral("Saving Error")));
    EXPECT_TRUE(view.edited);
    type(QStringLiteral("typed on\n"));
    pause();
    EXPECT_EQ(view.alerts.size(), 1); // told once
    EXPECT_FALSE(controller.closeDocument());
    EXPECT_EQ(view.plainText, QStringLiteral("typed on\n"));
    ASSERT_TRUE(removeItem(path));
    EXPECT_TRUE(controller.closeDocument());
    EXPECT_EQ(read(QStringLiteral("/a.txt")), QByteArray("typed on\n"));

    // No room for what was typed; the old text stays.
    const QString full = document(QStringLiteral("/full.txt"), "small\n");
    controller.openDocument(full);
    type(QString(100000, u'x'));
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit tight{1000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &tight);
    controller.writeTextToFile();
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(view.alerts.size(), 2);
    EXPECT_EQ(read(QStringLiteral("/full.txt")), QByteArray("small\n"));
    EXPECT_TRUE(controller.closeDocument());
    EXPECT_EQ(read(QStringLiteral("/full.txt")).size(), 100000);
}

TEST_F(DocumentController, someDocumentsTakeNoTyping)
{
    const QString locked = document(QStringLiteral("/locked.txt"), "one\n");
    QFile::setPermissions(locked, QFileDevice::ReadOwner);
    const QString marked = document(QStringLiteral("/marked.txt"), "one\n");
    tm_setProperty(marked, QStringLiteral("1"), QStringLiteral("R/O"));
    const QString binary = document(QStringLiteral("/binary.md"), QByteArray("a\0\xff", 3));
    const QString missing = at(QStringLiteral("/missing.txt"));
    for (const QString &path : {locked, marked, binary, missing}) {
        controller.openDocument(path);
        view.unlockAlerts = 0;
        type(QStringLiteral("typed\n"));
        EXPECT_EQ(view.unlockAlerts, 1) << path.toStdString();
        EXPECT_FALSE(view.editable) << path.toStdString();
        controller.forceSave();
        pause();
        EXPECT_FALSE(read(path.mid(root.size())).startsWith("typed")) << path.toStdString();
    }
    EXPECT_EQ(view.alerts.size(), 2); // the binary and the missing one say why
    EXPECT_TRUE(controller.shouldChangeText(true));

    // Protected while it was typed on.
    const QString late = document(QStringLiteral("/late.txt"), "one\n");
    controller.openDocument(late);
    type(QStringLiteral("typed\n"));
    tm_setProperty(late, QStringLiteral("1"), QStringLiteral("R/O"));
    pause();
    EXPECT_EQ(view.alerts.last(), QStringLiteral("Saving Error"));
    EXPECT_EQ(read(QStringLiteral("/late.txt")), QByteArray("one\n"));
}

TEST_F(DocumentController, pagesAreTakenBack)
{
    write(QStringLiteral("/Other.md"));
    const QString own = document(QStringLiteral("/own.html"),
                                 "<head><!-- Generator: Tomelet for Mac 0 --></head><body><p>x</p></body>");
    controller.openDocument(own);
    EXPECT_FALSE(controller.shouldBeginEditingInDOMRange(true)); // over a link
    view.body = QStringLiteral("<p>x</p>");
    typeIntoPage(QStringLiteral("<p>y <a href=\"tomelet://show/Other.md\">o</a></p><ul></ul>"), QStringLiteral("y o"));
    pause();
    EXPECT_TRUE(read(QStringLiteral("/own.html")).contains("<body>\n<p>y <a href=\"Other.md\">o</a></p>\n</body>"));
    EXPECT_TRUE(read(QStringLiteral("/own.html")).startsWith("<!DOCTYPE html>"));

    const QByteArray saved = read(QStringLiteral("/own.html"));
    view.body = QStringLiteral("<p>another page</p>");
    view.frame = QStringLiteral("https://example.org/");
    controller.textDidChange();
    pause();
    EXPECT_EQ(read(QStringLiteral("/own.html")), saved);
    EXPECT_TRUE(view.barHidden);

    const QString foreign = document(QStringLiteral("/foreign.html"), "<html class=\"a\"><body><p>x</p></body></html>");
    controller.openDocument(foreign);
    typeIntoPage(QStringLiteral("<p>z</p>"), QStringLiteral("z"));
    pause();
    EXPECT_EQ(read(QStringLiteral("/foreign.html")), QByteArray("<html class=\"a\"><body><p>z</p></body>\n</html>\n"));

    // As source: the body alone, put back into its frame.
    controller.openDocument(own);
    controller.tm_togglePlainTextAndFormattedView();
    EXPECT_EQ(view.plainText, QStringLiteral("<p>y <a href=\"Other.md\">o</a></p>"));
    type(QStringLiteral("<p>source</p>"));
    pause();
    EXPECT_TRUE(read(QStringLiteral("/own.html")).contains("<body>\n<p>source</p>\n</body>"));
}

TEST_F(DocumentController, combinedMarkdownIsEditedAsItsSource)
{
    for (const bool whole : {false, true}) {
        settings().setObject(QStringLiteral("createCombinedMarkdown"), whole);
        const QString name = whole ? QStringLiteral("/w.html") : QStringLiteral("/c.html");
        const QString path = document(name, "<!-- Plain Text Representation:\nsome *text*\n-->\n\n<p>old</p>");
        tm_setProperty(path, QStringLiteral("OK"), QStringLiteral("Markdown"));
        controller.openDocument(path);
        EXPECT_FALSE(controller.shouldBeginEditingInDOMRange(false));
        controller.tm_togglePlainTextAndFormattedView();
        EXPECT_EQ(view.plainText, QStringLiteral("some *text*"));
        type(QStringLiteral("arrow --> *b*\n"));
        pause();
        const QByteArray stored = read(name);
        EXPECT_TRUE(stored.startsWith("<!-- Plain Text Representation:\narrow \\-\\-\\> *b* \n-->\n\n<!DOCTYPE html>"));
        EXPECT_EQ(stored.count("Plain Text Representation"), 1);
        controller.openDocument(path);
        EXPECT_EQ(read(name), stored);
    }
}

TEST_F(DocumentController, togglingFindsTheParagraphAgain)
{
    controller.openDocument(document(QStringLiteral("/a.md"), "# Title\n\nSome *marked* text.\n\nEnd\n"));
    view.selected = {12, 0};
    view.isKey = false;
    controller.tm_togglePlainTextAndFormattedView();
    EXPECT_EQ(view.shown, QStringLiteral("text"));
    view.isKey = true;
    type(QStringLiteral("# Title\n\nSome *marked* text!\n\nEnd\n"));
    controller.tm_togglePlainTextAndFormattedView();
    EXPECT_EQ(view.shown, QStringLiteral("page"));
    EXPECT_TRUE(view.page.contains(u"<em>marked</em> text!"));
    EXPECT_EQ(view.scrolledTo, QStringLiteral("Some marked text!"));
    view.visibleText = QStringLiteral("End");
    controller.tm_togglePlainTextAndFormattedView();
    EXPECT_EQ(view.shown, QStringLiteral("text"));
    EXPECT_EQ(view.selected, (Range{30, 0}));
}

TEST_F(DocumentController, readingPositionsComeBack)
{
    const QString path = document(QStringLiteral("/a.txt"), "some text\n");
    controller.openDocument(path);
    view.offset = 7;
    controller.openDocument(document(QStringLiteral("/b.txt"), "other\n"));
    EXPECT_EQ(tm_propertyForKey(path, QStringLiteral("CharacterOffset")), QStringLiteral("7"));
    view.offset = 0;
    controller.openDocument(path);
    EXPECT_EQ(view.offset, 7);
    EXPECT_FALSE(exists(QStringLiteral("/b.txt.plist")));
}

// Two pages, with a word on each.
static QByteArray pdfOfTwoPages()
{
    QByteArray pdf = "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                     "2 0 obj<</Type/Pages/Count 2/Kids[3 0 R 4 0 R]>>endobj\n"
                     "7 0 obj<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>endobj\n";
    const char *words[] = {"Front", "Behind"};
    for (int page = 0; page < 2; ++page) {
        const QByteArray content = QByteArray("BT /F1 12 Tf 20 100 Td (") + words[page] + ") Tj ET";
        pdf += QByteArray::number(3 + page) + " 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 200]/Contents " +
               QByteArray::number(5 + page) + " 0 R/Resources<</Font<</F1 7 0 R>>>>>>endobj\n";
        pdf += QByteArray::number(5 + page) + " 0 obj<</Length " + QByteArray::number(content.size()) + ">>stream\n" +
               content + "\nendstream endobj\n";
    }
    return pdf + "trailer<</Root 1 0 R/Size 8>>\n%%EOF\n";
}

TEST_F(DocumentController, whatIsLookedForComesBeforeTheReadingPosition)
{
    const QString text = document(QStringLiteral("/a.md"), "Title\n\n## Getting started!\n\nmore\n");
    tm_setProperty(text, QStringLiteral("3"), QStringLiteral("CharacterOffset"));
    controller.openDocument(text, true, {QStringLiteral("more"), {}});
    EXPECT_EQ(view.scrolledTo, QStringLiteral("more"));
    controller.openDocument(text, true, {{}, QStringLiteral("getting-started")});
    EXPECT_EQ(view.scrolledTo, QStringLiteral("getting-started"));
    controller.openDocument(text, false, {{}, QStringLiteral("getting-started")});
    EXPECT_EQ(view.selected, (Range{7, 0}));

    const QString pdf = document(QStringLiteral("/a.pdf"), pdfOfTwoPages());
    const auto pageFor = [&](const char *term, const char *anchor) {
        controller.openDocument({});
        tm_setProperty(pdf, QStringLiteral("5"), QStringLiteral("CurrentPDFPage"));
        controller.openDocument(pdf, false, {QString::fromLatin1(term), QString::fromLatin1(anchor)});
        return view.offset;
    };
    EXPECT_EQ(pageFor("behind", "page=1"), 1);
    EXPECT_EQ(pageFor("nowhere", "page=1"), 0);
    EXPECT_EQ(pageFor("", "page=2"), 1);
    EXPECT_EQ(pageFor("", ""), 5);
}

TEST_F(DocumentController, movedDocumentsAreFollowed)
{
    const QString path = document(QStringLiteral("/Book/a.txt"), "one\n");
    controller.openDocument(path);
    type(QStringLiteral("two\n"));
    ASSERT_TRUE(tm_moveItemToPath(at(QStringLiteral("/Book")), at(QStringLiteral("/Moved"))));
    controller.documentMoved(at(QStringLiteral("/Book")), at(QStringLiteral("/Moved")), false);
    EXPECT_EQ(controller.path(), at(QStringLiteral("/Moved/a.txt")));
    pause();
    EXPECT_EQ(read(QStringLiteral("/Moved/a.txt")), QByteArray("two\n"));
    controller.documentMoved(at(QStringLiteral("/Mov")), at(QStringLiteral("/Else")), false);
    EXPECT_EQ(controller.path(), at(QStringLiteral("/Moved/a.txt")));
}

TEST_F(DocumentController, aNameOfOnesOwnStays)
{
    const QString path = document(QStringLiteral("/Title.txt"), "Title\n");
    controller.openDocument(path);
    type(QStringLiteral("Title\nmore\n"));
    ASSERT_TRUE(tm_moveItemToPath(path, at(QStringLiteral("/Mine.txt"))));
    controller.documentMoved(path, at(QStringLiteral("/Mine.txt")), false);
    pause();
    EXPECT_EQ(read(QStringLiteral("/Mine.txt")), QByteArray("Title\nmore\n"));
}

TEST_F(DocumentController, styleComesWithoutAReload)
{
    const QString path = document(QStringLiteral("/Book/a.md"), "text\n");
    controller.openDocument(path);
    const int loads = view.loads;
    tm_setProperty(at(QStringLiteral("/Book")), QStringLiteral("CSS/Serif Book.css"), QStringLiteral("CSS"));
    const QString properties = bookPropertiesPath(at(QStringLiteral("/Book")));
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), properties);
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), properties);
    EXPECT_EQ(view.restyles, 1);
    EXPECT_EQ(view.loads, loads);
    EXPECT_EQ(controller.relevantInheritedProperties().value(QStringLiteral("CSS")),
              QStringLiteral("CSS/Serif Book.css"));
}

TEST_F(DocumentController, contextsLinksAndPicturesAreNoted)
{
    for (const char *key : {"contextsEnabled", "extractContextsAutomatically", "manageLinks"})
        settings().setObject(QString::fromLatin1(key), true);
    const QString target = write(QStringLiteral("/Target.md"));
    const QString other = write(QStringLiteral("/Other.md"));
    const QString path = document(QStringLiteral("/a.md"), "go @home\n[t](Target.md)\n");
    const auto backlinksOf = [](const QString &item) {
        return tm_propertyForKey(item, QStringLiteral("Backlinks")).toStringList();
    };
    tm_collectTagsFromText(path, QStringLiteral("@home"));
    controller.openDocument(path);
    EXPECT_EQ(backlinksOf(target), QStringList(QStringLiteral("/a.md")));
    EXPECT_EQ(controller.embeddedContexts(), QStringList(QStringLiteral("@home")));
    type(QStringLiteral("go @shop ![x](TMImages/x.png)\n[o](Other.md)\n"));
    pause();
    EXPECT_EQ(tm_verifiedTagList(path), QStringList(QStringLiteral("@shop")));
    EXPECT_TRUE(backlinksOf(target).isEmpty());
    EXPECT_EQ(backlinksOf(other), QStringList(QStringLiteral("/a.md")));
    EXPECT_EQ(tm_propertyForKey(path, QStringLiteral("Embedded Photos")).toStringList(),
              QStringList(QStringLiteral("TMImages/x.png")));
}

TEST_F(DocumentController, anotherViewTakesInWhatThisOneSaved)
{
    const QString path = document(QStringLiteral("/Title.md"), "Title\n\ntext\n");
    FakeDocumentView otherView;
    TMLTDocumentViewController other(otherView);
    ASSERT_TRUE(controller.openDocument(path));
    ASSERT_TRUE(other.openDocument(path));
    type(QStringLiteral("Title\n\ntext and more\n"));
    pause();
    EXPECT_EQ(otherView.plainText, QStringLiteral("Title\n\ntext and more\n"));
    type(QStringLiteral("New\n\ntext and more\n"));
    pause();
    EXPECT_EQ(other.path(), at(QStringLiteral("/New.md")));
    EXPECT_EQ(otherView.plainText, QStringLiteral("New\n\ntext and more\n"));
    EXPECT_TRUE(otherView.backList.contains(at(QStringLiteral("/New.md"))));
    ASSERT_TRUE(other.shouldChangeText(false));
    otherView.plainText = QStringLiteral("New\n\nby the other\n");
    other.textDidChange();
    settings().setObject(QStringLiteral("noAutosaveText"), true);
    other.saveTyping();
    EXPECT_TRUE(other.isEdited()); // such texts are saved on command only
    settings().remove(QStringLiteral("noAutosaveText"));
    other.saveTyping();
    EXPECT_EQ(view.plainText, QStringLiteral("New\n\nby the other\n"));
    EXPECT_EQ(names({}).filter(QStringLiteral(".md")), QStringList{QStringLiteral("New.md")});
}
