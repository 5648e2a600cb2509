// SPDX-License-Identifier: GPL-3.0-or-later
// The plain text editor as a person uses it: keys, one undo step a command, highlighting that leaves the text alone.
#include "tests/desktop/TextViewFixture.h"

#include "desktop/text/TMLTTextView.h"
#include "desktop/text/TextCompleter.h"
#include "desktop/text/TextHighlighter.h"
#include "editor/SpelledWords.h"
#include "foundation/Platform.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QUrl>

#include <functional>

using namespace tomelet;
using namespace tomelet::desktop;
using tomelet::test::TextView;

TEST_F(TextView, everyCommandIsOneUndoStep)
{
    const QString text = QStringLiteral("1. one\n2. two");
    load(text);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_EQ(view.documentText(), QStringLiteral("1. one\n2. two\n3. "));
    QTest::keyClicks(&view, QStringLiteral("("));
    EXPECT_EQ(view.documentText(), QStringLiteral("1. one\n2. two\n3. ()"));
    QTest::keyClick(&view, Qt::Key_Backspace);
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_EQ(view.documentText(), QStringLiteral("1. one\n2. two\n\t1. "));
    QTest::keyClick(&view, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(view.documentText(), QStringLiteral("1. one\n2. two\n3. "));
    view.selectAll();
    view.apply(EditorCommand::ToggleList);
    EXPECT_EQ(view.documentText(), QStringLiteral("- [ ] one\n- [ ] two\n- [ ] "));
    for (int step = 0; step < 6; ++step) view.undo();
    EXPECT_EQ(view.documentText(), text);
    EXPECT_FALSE(view.document()->isUndoAvailable());
    for (int step = 0; step < 6; ++step) view.redo();
    EXPECT_EQ(view.documentText(), QStringLiteral("- [ ] one\n- [ ] two\n- [ ] "));
}

TEST_F(TextView, typingIsAStepOfItsOwn)
{
    const QStringList states{QStringLiteral("a"),
                             QStringLiteral("aone "),
                             QStringLiteral("aone two "),
                             QStringLiteral("aone two x"),
                             QStringLiteral("aone two xpasted"),
                             QStringLiteral("aone two xpastedy")};
    load(states[0]);
    view.apply(EditorCommand::Type, {QStringLiteral("one "), {}, 0});
    view.apply(EditorCommand::Type, {QStringLiteral("two "), {}, 0});
    QTest::keyClicks(&view, QStringLiteral("x"));
    QApplication::clipboard()->setText(QStringLiteral("pasted"));
    view.paste();
    QTest::keyClicks(&view, QStringLiteral("y"));
    for (qsizetype i = states.size() - 1; i > 0; --i, view.undo()) EXPECT_EQ(view.documentText(), states[i]);
    EXPECT_EQ(view.documentText(), states[0]);
    EXPECT_FALSE(view.document()->isUndoAvailable());
}

TEST_F(TextView, pairsGoTogetherInEitherDirection)
{
    load(QStringLiteral("a[]b("));
    view.select({1, 0});
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(view.documentText(), QStringLiteral("ab("));
    QTest::keyClick(&view, Qt::Key_Delete);
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_EQ(view.documentText(), QStringLiteral("a"));
    view.undo();
    view.undo();
    view.undo();
    EXPECT_EQ(view.documentText(), QStringLiteral("a[]b("));
}

TEST_F(TextView, whatMayNotChangeStays)
{
    load(QStringLiteral("text"));
    QSignalSpy edits(&view, &TMLTTextView::edited);
    int asked = 0;
    view.setChangeGuard([&] { return ++asked < 0; });
    QTest::keyClicks(&view, QStringLiteral("a("));
    QTest::keyClick(&view, Qt::Key_Return);
    view.apply(EditorCommand::ToggleList);
    EXPECT_EQ(view.documentText(), QStringLiteral("text"));
    EXPECT_EQ(edits.count(), 0);
    EXPECT_EQ(asked, 4);
    view.setChangeGuard({});
    QTest::keyClicks(&view, QStringLiteral("a"));
    EXPECT_EQ(edits.count(), 1);
    EXPECT_EQ(view.documentText(), QStringLiteral("texta"));
}

TEST_F(TextView, textComesBackAsItWas)
{
    const QString text = QStringLiteral("a\u00a0b\u2028c\n\tz \U0001F44D\n");
    load(text);
    EXPECT_EQ(view.documentText(), text);
    EXPECT_FALSE(view.document()->isUndoAvailable());
    view.select({2, 3});
    EXPECT_EQ(view.selection(), (Range{2, 3}));
    EXPECT_FALSE(view.isBlankUpToCaretLine());
    load(QStringLiteral("\n \n"));
    EXPECT_TRUE(view.isBlankUpToCaretLine());
}

TEST_F(TextView, highlightingFollowsTheText)
{
    load(QStringLiteral("# Title\nplain\n<!-- a\nb -->\n"));
    EXPECT_EQ(formatsOfLine(0).size(), 2);
    EXPECT_TRUE(formatsOfLine(1).isEmpty());
    ASSERT_EQ(formatsOfLine(3).size(), 1); // the second line of what began above
    EXPECT_EQ(formatsOfLine(3)[0].length, 5);
    view.select({13, 0});
    QTest::keyClicks(&view, QStringLiteral(" *so*"));
    EXPECT_EQ(formatsOfLine(1).size(), 3);
    EXPECT_EQ(formatsOfLine(0).size(), 2);
    view.undo();
    EXPECT_TRUE(formatsOfLine(1).isEmpty());
}

TEST_F(TextView, longTextsAreStyledInTheBackground)
{
    const QString line = QStringLiteral("Some *words* that go on, and [a link](b.md).\n");
    load(line.repeated(4000));
    QSignalSpy done(&view.highlighter(), &TextHighlighter::finished);
    EXPECT_TRUE(formatsOfLine(3999).isEmpty());   // it is on the screen before that
    QTest::keyClicks(&view, QStringLiteral("x")); // and typing outruns the background
    ASSERT_TRUE(done.wait(20000));
    EXPECT_EQ(formatsOfLine(3999).size(), formatsOfLine(0).size());
    EXPECT_FALSE(formatsOfLine(0).isEmpty());
}

TEST_F(TextView, findsAndReplaces)
{
    load(QStringLiteral("One one\nphone ONE"));
    const auto found = [&](bool backward) {
        return view.findText(QStringLiteral("one"), backward, false) ? view.selection().location : -1;
    };
    EXPECT_EQ(view.countOf(QStringLiteral("one")), 4);
    EXPECT_EQ(view.countOf(QStringLiteral("One")), 1); // a capital means a capital
    view.select({2, 0});
    for (const int place : {4, 10, 14, 0, 4}) EXPECT_EQ(found(false), place);
    for (const int place : {0, 14, 10}) EXPECT_EQ(found(true), place);
    view.replaceFound(QStringLiteral("one"), QStringLiteral("on"));
    EXPECT_EQ(view.documentText(), QStringLiteral("One one\nphon ONE"));
    view.replaceFound(QStringLiteral("one"), QStringLiteral("two")); // nothing is selected now
    view.replaceAll(QStringLiteral("one"), QStringLiteral("a one"));
    EXPECT_EQ(view.documentText(), QStringLiteral("a one a one\nphon a one"));
    view.undo();
    EXPECT_EQ(view.documentText(), QStringLiteral("One one\nphon ONE"));
    view.setReadOnly(true);
    view.replaceAll(QStringLiteral("one"), QStringLiteral("x"));
    EXPECT_EQ(view.documentText(), QStringLiteral("One one\nphon ONE"));
    EXPECT_FALSE(view.findText(QStringLiteral("absent"), false, true));
}

TEST_F(TextView, wordsAreWhatPeopleSpell)
{
    const auto words = [](const QString &line) {
        QStringList found;
        for (const Range word : spelledWords(line)) found.append(line.mid(word.location, word.length));
        return found.join(u'|');
    };
    EXPECT_EQ(words(QStringLiteral("It\u2019s 'quoted', **bold** — Größe.")),
              QStringLiteral("It\u2019s|quoted|bold|Größe"));
    EXPECT_EQ(words(QStringLiteral("at a@b.c see https://x.org/wrng v2x `cde fg` <b> so")),
              QStringLiteral("at|see|so"));
    EXPECT_EQ(words(QStringLiteral("[a link](Plan.txt), e.g. end. Next (www.exmpl.org)...So")),
              QStringLiteral("link|end|Next|So"));
    EXPECT_EQ(words(QStringLiteral("open `code to the end")), QStringLiteral("open"));
    EXPECT_EQ(words(QStringLiteral("a ' ''")), QString());
}

TEST_F(TextView, completesWhereTheKeysSay)
{
    for (const char *name : {"/Note.md", "/Notes.md", "/Work/In.md"}) write(QString::fromLatin1(name));
    view.completer().setDocument(root, at(QStringLiteral("/Note.md")));
    view.show();
    const auto focus = [this] { // which a list that closes takes away without a window manager
        QApplication::setActiveWindow(&view);
        view.setFocus();
    };
    const auto shows = [&] {
        focus();
        return QTest::qWaitFor([this] { return view.completer().isOpen(); }, 5000);
    };

    load(QString());
    QTest::keyClicks(&view, QStringLiteral("[[no"));
    ASSERT_TRUE(shows());
    EXPECT_EQ(view.completer().offered(), (QStringList{QStringLiteral("Note.md"), QStringLiteral("Notes.md")}));
    QTest::keyClicks(&view, QStringLiteral("tes"));
    EXPECT_EQ(view.completer().offered(), QStringList(QStringLiteral("Notes.md")));
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_EQ(view.documentText(), QStringLiteral("[[Notes.md]]"));
    view.undo(); // one step
    EXPECT_EQ(view.documentText(), QStringLiteral("[[notes]]"));

    // Documents of the whole notebook, also those that came meanwhile.
    for (const char *name : {"/Deep/er/Nowhere.md", "/Deep/er/No [x].md", "/Deep/nod.md"}) {
        write(QString::fromLatin1(name));
        notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), at(QString::fromLatin1(name)));
    }
    load(QString());
    QTest::keyClicks(&view, QStringLiteral("[[no"));
    ASSERT_TRUE(shows());
    const QStringList all{QStringLiteral("Note.md"), QStringLiteral("Notes.md"), QStringLiteral("Deep/nod.md"),
                          QStringLiteral("Deep/er/Nowhere.md")};
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.completer().offered() == all; }, 5000));
    view.completer().close();

    load(QString());
    QTest::keyClicks(&view, QStringLiteral("[[no"));
    ASSERT_TRUE(shows());
    QTest::keyClick(&view, Qt::Key_Return); // nothing was chosen: a new line as ever
    EXPECT_FALSE(view.completer().isOpen());
    EXPECT_TRUE(view.documentText().startsWith(QStringLiteral("[[no"))) << view.documentText().toStdString();
    EXPECT_TRUE(view.documentText().contains(u'\n'));

    load(QStringLiteral("[["));
    QTest::keyClick(&view, Qt::Key_Tab); // without typing
    ASSERT_TRUE(view.completer().isOpen());
    QTest::keyClick(view.focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(view.completer().isOpen());

    load(QStringLiteral("[[n"));
    QTest::keyClick(&view, Qt::Key_Tab); // as far as both go
    EXPECT_EQ(view.documentText(), QStringLiteral("[[Note"));
    view.completer().close();
    load(QStringLiteral("[[Wo"));
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_EQ(view.documentText(), QStringLiteral("[[Work/"));
    ASSERT_TRUE(shows());
    EXPECT_EQ(view.completer().offered(), QStringList(QStringLiteral("Work/In.md")));
    view.completer().close();
    load(QStringLiteral("plain"));
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_EQ(view.documentText(), QStringLiteral("plain\t"));
}

TEST_F(TextView, handsOnWhatIsNoText)
{
    load(QStringLiteral("one\ntwo"));
    view.show();
    QSignalSpy files(&view, &TMLTTextView::filesDropped);
    QSignalSpy images(&view, &TMLTTextView::imageDropped);
    QSignalSpy links(&view, &TMLTTextView::linkDropped);
    const auto paste = [this](const std::function<void(QMimeData &)> &fill) {
        auto *data = new QMimeData;
        fill(*data);
        QApplication::clipboard()->setMimeData(data);
        view.paste();
    };
    paste([](QMimeData &data) { data.setImageData(QImage(2, 2, QImage::Format_RGB32)); });
    EXPECT_EQ(images.count(), 1);
    paste([](QMimeData &data) { data.setUrls({QUrl(QStringLiteral("https://example.org/a%20b"))}); });
    ASSERT_EQ(links.count(), 1);
    EXPECT_EQ(links[0][0].toString(), QStringLiteral("https://example.org/a%20b"));
    EXPECT_EQ(view.documentText(), QStringLiteral("one\ntwo"));
    paste([](QMimeData &data) { // a table's cells come with their picture
        data.setText(QStringLiteral("three"));
        data.setImageData(QImage(2, 2, QImage::Format_RGB32));
    });
    EXPECT_EQ(images.count(), 1);
    EXPECT_EQ(view.documentText(), QStringLiteral("one\ntwothree"));

    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(at(QStringLiteral("/a.md")))});
    const QPoint start = QPoint(21, 21); // in front of the first letter
    QDragEnterEvent enter(start, Qt::CopyAction | Qt::MoveAction, &dragged, Qt::LeftButton, {});
    QApplication::sendEvent(view.viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(start, Qt::CopyAction | Qt::MoveAction, &dragged, Qt::LeftButton, {});
    drop.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(view.viewport(), &drop);
    ASSERT_EQ(files.count(), 1);
    EXPECT_EQ(files[0][0].toStringList(), QStringList(at(QStringLiteral("/a.md"))));
    EXPECT_EQ(view.selection(), (Range{0, 0}));
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction); // the file itself stays where it is
}

TEST_F(TextView, itemsHangBelowTheirText)
{
    view.resize(300, 400);
    view.show();
    const QString words = QStringLiteral("some words that need more than one line ");
    load(QStringLiteral("1. ") + words.repeated(3) + QStringLiteral("\nplain ") + words.repeated(3));
    const auto lineAt = [&](int block, int line) {
        const QTextBlock found = view.document()->findBlockByNumber(block);
        (void)view.document()->documentLayout()->blockBoundingRect(found);
        return found.layout()->lineAt(line);
    };
    const double left = lineAt(1, 1).x();
    EXPECT_EQ(lineAt(1, 0).x(), left);
    EXPECT_EQ(lineAt(0, 0).x(), left);
    const double indent = lineAt(0, 1).x() - left;
    EXPECT_NEAR(indent, lineAt(0, 0).cursorToX(3) - left, 0.5);
    EXPECT_GT(indent, 5);
    EXPECT_NEAR(lineAt(0, 1).width(), lineAt(0, 0).width() - indent, 0.5);
    view.resize(200, 400); // after each layout
    EXPECT_NEAR(lineAt(0, 1).x() - left, indent, 0.5);
    view.select({0, 3});
    QTest::keyClick(&view, Qt::Key_Delete); // an item no more
    EXPECT_EQ(lineAt(0, 1).x(), left);
    view.undo();
    EXPECT_NEAR(lineAt(0, 1).x() - left, indent, 0.5);
}

TEST_F(TextView, paragraphsReadFromTheRightBeginThere)
{
    view.resize(400, 300);
    view.show();
    load(QStringLiteral("\u05e9\u05dc\u05d5\u05dd\nleft"));
    const auto rightOf = [&](int block) {
        const QTextBlock found = view.document()->findBlockByNumber(block);
        const QRectF all = view.document()->documentLayout()->blockBoundingRect(found);
        return all.width() - found.layout()->lineAt(0).naturalTextRect().right();
    };
    EXPECT_LT(rightOf(0), 40);
    EXPECT_GT(rightOf(1), 200);
    view.select({0, 4});
    QTest::keyClicks(&view, QStringLiteral("l"));
    EXPECT_GT(rightOf(0), 200);
    view.undo();
    EXPECT_LT(rightOf(0), 40);
}
