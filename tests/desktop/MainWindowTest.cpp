// SPDX-License-Identifier: GPL-3.0-or-later
// The notebook's window as a whole: outline, list and document stay together.
#include "tests/support/Notebook.h"

#include "desktop/MainWindow.h"
#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/list/DocumentListView.h"
#include "desktop/outline/OutlinePane.h"
#include "desktop/text/TMLTTextView.h"
#include "foundation/Platform.h"
#include "foundation/PropertyList.h"
#include "library/Properties.h"
#include "organising/NotebookOrganiser.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QLineEdit>
#include <QMenuBar>
#include <QTest>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

class WholeWindow : public tomelet::test::Notebook
{
protected:
    WholeWindow()
    {
        installNotebookOrganiser();
        settings().setObject(QStringLiteral("showMarkdownAsPlainText"), true);
        settings().setObject(QStringLiteral("contextsEnabled"), true);
        for (const char *name : {"/Book/a.md", "/Book/b.md", "/Book/Inner/c.md"})
            write(QString::fromLatin1(name), "first line\n\nthe needle\n");
        window.emplace();
        window->outlineController().initFileCoordinationAndTaskLists();
        window->show();
        QApplication::setActiveWindow(&*window);
    }
    [[nodiscard]] DocumentPane &pane() { return *window->desk().current(); }
    [[nodiscard]] TMLTTextView &text() { return *pane().textView(); }
    [[nodiscard]] DocumentListView *list() { return window->findChild<DocumentListView *>(); }
    [[nodiscard]] QString selected() const
    {
        const auto *view = window->findChild<DocumentListView *>();
        const QModelIndexList rows = view->selectionModel()->selectedRows();
        const auto *model = qobject_cast<const DocumentListModel *>(view->model());
        return rows.size() == 1 ? model->pathAt(rows.first()).mid(root.size()) : QString();
    }
    void show(const char *item) { window->showItem(at(QString::fromLatin1(item))); }
    void choose(const char *command)
    {
        for (QMenu *menu : window->menuBar()->findChildren<QMenu *>())
            for (QAction *action : menu->actions())
                if (action->text() == QString::fromLatin1(command)) return action->trigger();
        ADD_FAILURE() << command;
    }

    std::optional<MainWindow> window;
};

} // namespace

TEST_F(WholeWindow, theListFollowsBackAndForward)
{
    show("/Book/a.md");
    show("/Book/b.md");
    choose("&Back");
    EXPECT_EQ(pane().path(), at(QStringLiteral("/Book/a.md")));
    EXPECT_EQ(selected(), QStringLiteral("/Book/a.md"));
    choose("F&orward");
    EXPECT_EQ(selected(), QStringLiteral("/Book/b.md"));
    choose("F&orward");
    EXPECT_EQ(pane().path(), at(QStringLiteral("/Book/b.md")));
}

TEST_F(WholeWindow, aBookThatVanishesLeavesTheNearestOneAbove)
{
    show("/Book/Inner/c.md");
    ASSERT_TRUE(QDir(at(QStringLiteral("/Book/Inner"))).removeRecursively());
    notifications().postPath(QStringLiteral("TMLTFileDeletedFromDiskNotification"), at(QStringLiteral("/Book/Inner")));
    const auto *model = qobject_cast<const DocumentListModel *>(list()->model());
    EXPECT_GE(model->rowCount(), 2);
    EXPECT_TRUE(model->indexOfPath(at(QStringLiteral("/Book/a.md"))).isValid());
    EXPECT_EQ(pane().path(), QString());
}

TEST_F(WholeWindow, aFilterIsForTheListThatItWasTypedAt)
{
    const auto fields = window->findChildren<QLineEdit *>();
    QLineEdit *field = nullptr;
    for (QLineEdit *candidate : fields)
        if (candidate->accessibleName() == u"Search") field = candidate;
    ASSERT_TRUE(field);
    show("/Book");
    QTest::keyClicks(field, QStringLiteral("b"));
    EXPECT_EQ(list()->model()->rowCount(), 1);
    show("/Book/Inner");
    EXPECT_EQ(field->text(), QString());
    EXPECT_EQ(list()->model()->rowCount(), 1);
    show("/Book");
    EXPECT_EQ(list()->model()->rowCount(), 2);
}

TEST_F(WholeWindow, filesOfOtherProgramsBecomeDocuments)
{
    const QVariantMap page{{QStringLiteral("WebResourceData"), QByteArray("<p>saved</p>")}};
    write(QStringLiteral("/Book/p.webarchive"),
          xmlPropertyList(QVariantMap{{QStringLiteral("WebMainResource"), page}}));
    show("/Book/p.webarchive");
    choose("Save as For&matted Document");
    EXPECT_EQ(selected(), QStringLiteral("/Book/p.html"));
    EXPECT_EQ(pane().path(), at(QStringLiteral("/Book/p.html")));
    list()->setFocus();
    choose("&Undo");
    EXPECT_FALSE(exists(QStringLiteral("/Book/p.html")));

    const QString notes = write(QStringLiteral("/Book/n.enex"),
                                "<en-export><note><title>Note</title><content>text</content></note></en-export>");
    const auto offer = [&notes] { notifications().postPath(QStringLiteral("TMLTImportExportedNotes"), notes); };
    offer(); // nobody answers
    EXPECT_FALSE(exists(QStringLiteral("/Book/Note.html")));
    platform().ask = [](const Question &) { return 0; };
    offer();
    EXPECT_TRUE(exists(QStringLiteral("/Book/Note.html")));
    const auto *model = qobject_cast<const DocumentListModel *>(list()->model());
    EXPECT_TRUE(model->indexOfPath(at(QStringLiteral("/Book/Note.html"))).isValid());
}

TEST_F(WholeWindow, undoGoesToWhatHasTheKeys)
{
    show("/Book/a.md");
    text().setFocus();
    QTest::keyClicks(&text(), QStringLiteral("typed "));
    list()->setFocus();
    choose("&Undo"); // nothing was done to items
    EXPECT_EQ(text().documentText(), QStringLiteral("typed first line\n\nthe needle\n"));
    text().setFocus();
    choose("&Undo");
    EXPECT_EQ(text().documentText(), QStringLiteral("first line\n\nthe needle\n"));
    choose("Select &All");
    choose("&Copy");
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("first line\n\nthe needle\n"));
    choose("Cu&t");
    choose("&Paste");
    EXPECT_EQ(text().documentText(), QStringLiteral("first line\n\nthe needle\n"));
}

TEST_F(WholeWindow, newDocumentsTakeTheContextOfTheList)
{
    const QString context = QStringLiteral("@home");
    tm_setProperty(at(QStringLiteral("/Book/a.md")), QVariantList{context}, QStringLiteral("Tags"));
    Q_EMIT window->findChild<OutlinePane *>()->sourceSelected({{}, ContextBook, {context}});
    choose("New &Text");
    QTest::keyClicks(&text(), QStringLiteral("Named so"));
    ASSERT_TRUE(pane().closeDocument());
    EXPECT_EQ(tm_propertyForKey(at(QStringLiteral("/Named so.md")), QStringLiteral("Tags")).toStringList(),
              QStringList(context));
}
