// SPDX-License-Identifier: GPL-3.0-or-later
// A document's pane in its window: what is dropped and pasted, and texts that cannot be saved.
#include "tests/support/Notebook.h"

#include "desktop/actions/ItemActions.h"
#include "desktop/document/DocumentHeader.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/text/TMLTTextView.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/ItemOperations.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDialog>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QMainWindow>
#include <QMimeData>
#include <QPushButton>
#include <QRandomGenerator>
#include <QTest>
#include <QUrl>

#include <functional>
#include <utility>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

class PaneInWindow : public tomelet::test::Notebook
{
protected:
    PaneInWindow()
    {
        settings().setObject(QStringLiteral("showMarkdownAsPlainText"), true);
        write(QStringLiteral("/Book/Note.md"), "Note\n");
        write(QStringLiteral("/Other.md"));
        window.setCentralWidget(pane);
        window.show();
        pane->showDocument(at(QStringLiteral("/Book/Note.md")));
        pane->textView()->setFocus();
        QTest::keyClicks(pane->textView(), QStringLiteral("typed "));
        platform().ask = [this](const Question &question) {
            questions.append(question.title);
            whileAsked();
            return answer;
        };
    }
    ~PaneInWindow() override { delete pane; }
    void moveBook(const char *from, const char *to) const
    {
        EXPECT_TRUE(QDir().rename(at(QString::fromLatin1(from)), at(QString::fromLatin1(to))));
    }
    [[nodiscard]] static QStringList rescued()
    {
        return namesInFolder(joinPath(dataDirectory(), QStringLiteral("Unsaved")));
    }

    enum { TryAgain, SaveElsewhere, Discard, Cancel };
    ItemActions actions;
    QMainWindow window;
    DocumentPane *pane = new DocumentPane(actions);
    QStringList questions;
    int answer = Cancel;
    std::function<void()> whileAsked = [] {};
};

} // namespace

// Another view wrote in the document: nothing that was typed here is out of undo's reach, and what is undone is saved.
TEST_F(PaneInWindow, undoOutlivesWhatAnotherViewSaved)
{
    pane->showDocument(at(QStringLiteral("/Other.md")));
    QTest::keyClicks(pane->textView(), QStringLiteral("one "));
    pane->saveTyping();
    DocumentPane other(actions);
    other.showDocument(pane->path());
    QTest::keyClicks(other.textView(), QStringLiteral("by the other "));
    other.saveTyping();
    EXPECT_EQ(pane->textView()->documentText(), QStringLiteral("by the other one text\n"));
    EXPECT_EQ(pane->textView()->selection(), (Range{17, 0}));

    pane->textView()->undo();
    EXPECT_EQ(pane->textView()->documentText(), QStringLiteral("one text\n"));
    pane->saveTyping();
    EXPECT_EQ(read(QStringLiteral("/Other.md")), QByteArray("one text\n"));
    EXPECT_EQ(other.textView()->documentText(), QStringLiteral("one text\n"));
    pane->textView()->undo();
    EXPECT_EQ(pane->textView()->documentText(), QStringLiteral("text\n"));
    pane->textView()->redo();
    pane->textView()->redo();
    EXPECT_EQ(pane->textView()->documentText(), QStringLiteral("by the other one text\n"));
}

// Whatever was done, and however often it was saved meanwhile: the first undo steps give the file as it was.
TEST_F(PaneInWindow, allIsUndoneToTheStart)
{
    for (const char *key : {"AutoIndentLists", "IndentWithTabs", "insertClosingCharacters"})
        settings().setObject(QString::fromLatin1(key), true);
    const QByteArray source = "Head\r\n\n1. one\r\n2. two\n- [ ] box\r\rb\n# a\r\n\xf0\x9f\x91\x8d e\xcc\x81\n\n";
    pane->showDocument(write(QStringLiteral("/Head.md"), source));
    TMLTTextView &view = *pane->textView();
    QImage picture(3, 3, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QRandomGenerator random(11);
    QStringList states{view.documentText()}; // in front of each command and behind it
    const auto carryOut = [&] {
        const QStringList commands = editorCommandNames();
        const int number = random.bounded(int(commands.size()) + 2);
        if (number < commands.size())
            view.apply(*editorCommandNamed(commands[number]), {QStringLiteral("**"), QStringLiteral("**"), 2});
        else if (number == commands.size()) QApplication::clipboard()->setImage(picture);
        else QApplication::clipboard()->setText(QStringLiteral("x\ny"));
        if (number >= commands.size()) view.paste();
    };
    for (int i = 0; i < 250; ++i) {
        const qsizetype place = random.bounded(view.documentText().size() + 1);
        view.select({place, i % 3 == 0 ? random.bounded(12) : 0});
        QTest::keyClicks(&view, QStringLiteral("w("));
        QTest::keyClick(&view, i % 2 == 0 ? Qt::Key_Return : Qt::Key_Delete);
        if (states.last() != view.documentText()) states.append(view.documentText());
        carryOut();
        if (states.last() != view.documentText()) states.append(view.documentText());
        if (i % 50 == 0) pane->saveTyping();
    }
    pane->saveTyping();
    const QByteArray saved = readFile(pane->path()).value_or(QByteArray());
    const QString last = view.documentText();
    ASSERT_NE(saved, source);
    while (view.document()->isUndoAvailable()) {
        if (view.documentText() == states.last()) states.removeLast();
        view.undo();
    }
    EXPECT_EQ(states, QStringList(view.documentText()));
    pane->saveTyping();
    EXPECT_EQ(readFile(pane->path()).value_or(QByteArray()).toStdString(), source.toStdString());
    while (view.document()->isRedoAvailable()) view.redo();
    EXPECT_EQ(view.documentText(), last);
    pane->saveTyping();
    EXPECT_EQ(readFile(pane->path()).value_or(QByteArray()), saved);
}

TEST_F(PaneInWindow, theTextStaysUntilItIsSaved)
{
    moveBook("/Book", "/Gone");
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(questions, QStringList(QStringLiteral("\"Note.md\" could not be saved")));
    EXPECT_EQ(rescued(), QStringList(QStringLiteral("Note.md")));
    pane->showDocument(at(QStringLiteral("/Other.md")));
    EXPECT_EQ(pane->path(), at(QStringLiteral("/Book/Note.md")));
    EXPECT_EQ(pane->textView()->documentText(), QStringLiteral("typed Note\n"));
    EXPECT_EQ(questions.size(), 2);

    answer = TryAgain;
    whileAsked = [this] { moveBook("/Gone", "/Book"); };
    EXPECT_TRUE(window.close());
    EXPECT_EQ(questions.size(), 3);
    EXPECT_EQ(read(QStringLiteral("/Book/typed Note.md")), QByteArray("typed Note\n"));
    EXPECT_EQ(rescued(), QStringList());
}

TEST_F(PaneInWindow, thoseThatWereNotAskedAboutYetLeaveACopyToo)
{
    DocumentPane second(actions);
    second.showDocument(write(QStringLiteral("/Book/Second.md"), "Second\n"));
    QTest::keyClicks(second.textView(), QStringLiteral("typed "));
    moveBook("/Book", "/Gone");
    EXPECT_FALSE(window.close());
    EXPECT_EQ(questions.size(), 1);
    EXPECT_EQ(rescued(), (QStringList{QStringLiteral("Note.md"), QStringLiteral("Second.md")}));
    moveBook("/Gone", "/Book");
    EXPECT_TRUE(window.close());
    EXPECT_TRUE(second.closeDocument());
    EXPECT_EQ(rescued(), QStringList());
}

TEST_F(PaneInWindow, whatIsGivenUpIsGone)
{
    moveBook("/Book", "/Gone");
    answer = Discard;
    EXPECT_TRUE(window.close());
    EXPECT_EQ(rescued(), QStringList());
    EXPECT_FALSE(exists(QStringLiteral("/Book")));
    EXPECT_EQ(read(QStringLiteral("/Gone/Note.md")), QByteArray("Note\n"));
}

TEST_F(PaneInWindow, aPaneThatGoesWithoutAQuestionLeavesACopy)
{
    moveBook("/Book", "/Gone");
    delete std::exchange(pane, nullptr);
    EXPECT_EQ(questions, QStringList());
    ASSERT_EQ(rescued(), QStringList(QStringLiteral("Note.md")));
    EXPECT_EQ(readFile(joinPath(dataDirectory(), QStringLiteral("Unsaved/Note.md"))), QByteArray("typed Note\n"));
}

TEST_F(PaneInWindow, whatIsPastedIsOneStep)
{
    TMLTTextView &view = *pane->textView();
    const QString before = view.documentText();
    QImage picture(3, 3, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QApplication::clipboard()->setImage(picture);
    view.paste();
    EXPECT_TRUE(view.documentText().contains(QStringLiteral("](TMImages/Image%20")))
        << view.documentText().toStdString();
    const QStringList stored = names(QStringLiteral("/Book/TMImages"));
    ASSERT_EQ(stored.size(), 1);
    EXPECT_EQ(QImage(at(QStringLiteral("/Book/TMImages/")) + stored[0]).size(), picture.size());
    view.undo();
    EXPECT_EQ(view.documentText(), before);

    auto *files = new QMimeData;
    files->setUrls({QUrl::fromLocalFile(at(QStringLiteral("/Other.md")))});
    QApplication::clipboard()->setMimeData(files);
    view.paste();
    EXPECT_TRUE(view.documentText().contains(QStringLiteral(" [Other](../Other.md) ")))
        << view.documentText().toStdString();
    view.undo();
    EXPECT_EQ(view.documentText(), before);
}

TEST_F(PaneInWindow, linksInATextAreFollowedWithCtrl)
{
    pane->showDocument(write(QStringLiteral("/Book/Links.md"), "[other one](../Other.md)"));
    QString shown;
    const auto observer =
        notifications().observe(QStringLiteral("TMLTShowItemAtPathNotification"), [&](const QVariantMap &payload) {
            shown = payload.value(QStringLiteral("path")).toString();
        });
    const QPoint onLink = pane->textView()->cursorRect().center() + QPoint(20, 0);
    QTest::mouseClick(pane->textView()->viewport(), Qt::LeftButton, {}, onLink);
    EXPECT_EQ(shown, QString());
    QTest::mouseClick(pane->textView()->viewport(), Qt::LeftButton, Qt::ControlModifier, onLink);
    EXPECT_EQ(shown, at(QStringLiteral("/Other.md")));
}

TEST_F(PaneInWindow, sortingAsksHow)
{
    pane->showDocument(write(QStringLiteral("/List.md"), "List\nb\na\nC"));
    TMLTTextView &view = *pane->textView();
    const auto answerWith = [&](const QString &button, bool isDescending) {
        view.select({5, 5});
        pane->applyToText(EditorCommand::SortLines);
        auto *dialog = view.findChild<QDialog *>();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Select sort options"));
        dialog->findChild<QCheckBox *>(QStringLiteral("SortLinesDescending"))->setChecked(isDescending);
        for (auto *each : dialog->findChildren<QPushButton *>())
            if (each->text() == button) each->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    answerWith(QStringLiteral("Cancel"), true);
    EXPECT_EQ(view.documentText(), QStringLiteral("List\nb\na\nC"));
    EXPECT_FALSE(settings().contains(QStringLiteral("SortLinesDescending")));
    answerWith(QStringLiteral("Sort"), true);
    EXPECT_EQ(view.documentText(), QStringLiteral("List\nC\nb\na"));
    EXPECT_TRUE(settings().boolean(QStringLiteral("SortLinesDescending")));
    answerWith(QStringLiteral("Sort"), false);
    EXPECT_EQ(view.documentText(), QStringLiteral("List\na\nb\nC"));
    EXPECT_FALSE(settings().contains(QStringLiteral("SortLinesDescending")));
}

TEST_F(PaneInWindow, theHeaderFollowsAMove)
{
    ASSERT_TRUE(tm_moveItemToPath(at(QStringLiteral("/Book/Note.md")), at(QStringLiteral("/Book/New.md"))));
    notifications().post(QStringLiteral("TMLTFileMovedNotification"),
                         {{QStringLiteral("originalPath"), at(QStringLiteral("/Book/Note.md"))},
                          {QStringLiteral("newPath"), at(QStringLiteral("/Book/New.md"))}});
    bool shown = false;
    for (const QLabel *label : pane->header()->findChildren<QLabel *>())
        shown = shown || label->text().startsWith(QStringLiteral("New.md"));
    EXPECT_TRUE(shown);
}
