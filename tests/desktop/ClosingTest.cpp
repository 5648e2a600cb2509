// SPDX-License-Identifier: GPL-3.0-or-later
// Windows whose text cannot be saved: nothing goes without an answer.
#include "tests/support/Notebook.h"

#include "desktop/actions/ItemActions.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/text/TMLTTextView.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"

#include <QDir>
#include <QMainWindow>
#include <QTest>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

class Closing : public tomelet::test::Notebook
{
protected:
    Closing()
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
    ~Closing() override { delete pane; }
    void moveBook(const char *from, const char *to) const
    {
        EXPECT_TRUE(QDir().rename(at(QString::fromLatin1(from)), at(QString::fromLatin1(to))));
    }
    [[nodiscard]] static QStringList rescued() { return namesInFolder(joinPath(dataDirectory(), QStringLiteral("Unsaved"))); }

    enum { TryAgain, SaveElsewhere, Discard, Cancel };
    ItemActions actions;
    QMainWindow window;
    DocumentPane *pane = new DocumentPane(actions);
    QStringList questions;
    int answer = Cancel;
    std::function<void()> whileAsked = [] {};
};

} // namespace

TEST_F(Closing, theTextStaysUntilItIsSaved)
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

TEST_F(Closing, whatIsGivenUpIsGone)
{
    moveBook("/Book", "/Gone");
    answer = Discard;
    EXPECT_TRUE(window.close());
    EXPECT_EQ(rescued(), QStringList());
    EXPECT_FALSE(exists(QStringLiteral("/Book")));
    EXPECT_EQ(read(QStringLiteral("/Gone/Note.md")), QByteArray("Note\n"));
}

TEST_F(Closing, aPaneThatGoesWithoutAQuestionLeavesACopy)
{
    moveBook("/Book", "/Gone");
    delete std::exchange(pane, nullptr);
    EXPECT_EQ(questions, QStringList());
    ASSERT_EQ(rescued(), QStringList(QStringLiteral("Note.md")));
    EXPECT_EQ(readFile(joinPath(dataDirectory(), QStringLiteral("Unsaved/Note.md"))), QByteArray("typed Note\n"));
}
