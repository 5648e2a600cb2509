// SPDX-License-Identifier: GPL-3.0-or-later
// The tree and the list as item models under Qt's own model tester, while items come, go, move and are sorted; and
// what a person does to items, undone and done again. Both views look on, so that a wrong index would crash here.
#include "tests/support/Notebook.h"

#include "desktop/actions/DragData.h"
#include "desktop/actions/ItemActions.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/list/RowChanges.h"
#include "desktop/outline/OutlineBadges.h"
#include "desktop/outline/OutlineModel.h"
#include "desktop/outline/OutlinePane.h"
#include "foundation/FileOperations.h"
#include "foundation/Platform.h"
#include "library/ItemOperations.h"
#include "library/OutlineController.h"
#include "library/Properties.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QPointer>
#include <QTest>

#include <unistd.h>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

class Desktop : public tomelet::test::Notebook
{
protected:
    void SetUp() override
    {
        for (const char *book : {"/A/Inner/Deep", "/B", "/C"}) makeBook(QString::fromLatin1(book));
        for (const char *document : {"/A/one.md", "/A/two.md", "/A/three.txt", "/B/other.md"})
            write(QString::fromLatin1(document));
        outline = std::make_unique<OutlinePane>(actions);
        controller = std::make_unique<TMLTOutlineController>(*outline);
        tree = static_cast<OutlineModel *>(outline->model());
        list = std::make_unique<DocumentListModel>(actions, nullptr);
        view.setModel(list.get());
        list->show({at(QStringLiteral("/A")), 0, {}});
        const auto mode = QAbstractItemModelTester::FailureReportingMode::Fatal;
        m_treeTester = std::make_unique<QAbstractItemModelTester>(tree, mode);
        // The tester would load rows in the middle of a change, which no view does.
        m_treeTester->setUseFetchMore(false);
        m_listTester = std::make_unique<QAbstractItemModelTester>(list.get(), mode);
        controller->initFileCoordinationAndTaskLists();
        controller->settle();
        outline->show();
        view.show();
        outline->expandAll();
        QObject::connect(&actions, &ItemActions::failed,
                         [this](const QString &title, const QString &) { told = title; });
    }
    void TearDown() override
    {
        m_listTester.reset();
        m_treeTester.reset();
        view.setModel(nullptr);
        controller.reset();
        outline.reset();
        list.reset();
    }

    /// What happened on disk reaches tree and list.
    void settle()
    {
        controller->settle();
        drainPendingWork();
        list->reload();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QString documents() const
    {
        QStringList names;
        for (int row = 0; row < list->rowCount(); ++row)
            names.append(list->index(row).data(Qt::DisplayRole).toString());
        return names.join(u' ');
    }
    [[nodiscard]] static QString books(const QString &path)
    {
        TMLTOutlineItem *item = TMLTOutlineItem::childAtPath(path);
        return item ? item->titlesOfChildren().join(u' ') : QStringLiteral("(no such book)");
    }
    [[nodiscard]] QModelIndex rowOf(const QString &path) const
    {
        return tree->indexOf(TMLTOutlineItem::childAtPath(path));
    }
    void undo()
    {
        actions.undoStack().undo();
        settle();
    }
    void redo()
    {
        actions.undoStack().redo();
        settle();
    }
    bool dropOnTree(const QStringList &paths, int row, const QModelIndex &parent,
                    Qt::DropAction action = Qt::MoveAction)
    {
        const std::unique_ptr<QMimeData> data(dragDataFor(paths));
        const bool allowed = tree->canDropMimeData(data.get(), action, row, 0, parent);
        if (allowed) tree->dropMimeData(data.get(), action, row, 0, parent);
        settle();
        return allowed;
    }

    ItemActions actions;
    std::unique_ptr<OutlinePane> outline;
    std::unique_ptr<TMLTOutlineController> controller;
    OutlineModel *tree = nullptr;
    std::unique_ptr<DocumentListModel> list;
    QListView view;
    QString told;

private:
    std::unique_ptr<QAbstractItemModelTester> m_treeTester;
    std::unique_ptr<QAbstractItemModelTester> m_listTester;
};

} // namespace

TEST_F(Desktop, theListShowsBooksWhileTheOutlineIsHidden)
{
    OutlineBadges badges;
    list->setBadges(&badges);
    settings().setObject(QStringLiteral("outlineIsCollapsed"), true);
    list->reload();
    EXPECT_EQ(documents(), QStringLiteral("Inner one three two"));
    EXPECT_EQ(list->sourceAt(list->index(0))->book, at(QStringLiteral("/A/Inner")));
    EXPECT_FALSE(list->sourceAt(list->index(1)));
    EXPECT_TRUE(list->flags(list->index(0)) & Qt::ItemIsDropEnabled);
    // Into the book, and to a place between the documents.
    std::unique_ptr<QMimeData> data(dragDataFor({at(QStringLiteral("/A/one.md"))}));
    list->dropMimeData(data.get(), Qt::MoveAction, -1, 0, list->index(0));
    settle();
    EXPECT_EQ(documents(), QStringLiteral("Inner three two"));
    EXPECT_TRUE(exists(QStringLiteral("/A/Inner/one.md")));
    data.reset(dragDataFor({at(QStringLiteral("/A/two.md"))}));
    list->dropMimeData(data.get(), Qt::MoveAction, 1, 0, {});
    EXPECT_EQ(documents(), QStringLiteral("Inner two three"));
    // By the keys: one place, and no further than the ends.
    const QString two = at(QStringLiteral("/A/two.md"));
    for (const int step : {1, 1}) list->moveByOne({two}, step);
    EXPECT_EQ(documents(), QStringLiteral("Inner three two"));
    for (const int step : {-1, -1}) list->moveByOne({two, at(QStringLiteral("/A/Inner"))}, step);
    EXPECT_EQ(documents(), QStringLiteral("Inner two three"));

    list->show({root, OrdinaryBook, {}});
    EXPECT_EQ(documents(), QStringLiteral("Recent Items Recently Modified A B C"));
    EXPECT_EQ(list->sourceAt(list->index(0))->smartType, RecentItemsBook);
    EXPECT_EQ(list->pathAt(list->index(0)), QString());
    EXPECT_FALSE(list->flags(list->index(0)) & Qt::ItemIsDragEnabled);
    settings().remove(QStringLiteral("outlineIsCollapsed"));
    list->reload();
    EXPECT_EQ(list->rowCount(), 0);
}

TEST_F(Desktop, booksComeGoMoveAndAreSorted)
{
    makeBook(QStringLiteral("/A/New/Below"));
    makeBook(QStringLiteral("/D"));
    settle();
    EXPECT_EQ(books({}), QStringLiteral("A B C D"));
    outline->expandAll();
    const QPersistentModelIndex deep = rowOf(QStringLiteral("/A/Inner/Deep"));
    outline->setCurrentIndex(deep);
    ASSERT_TRUE(QDir().rename(at(QStringLiteral("/A")), at(QStringLiteral("/Z"))));
    settle();
    EXPECT_EQ(books({}), QStringLiteral("B C D Z"));
    EXPECT_TRUE(deep.isValid()) << "a renamed book keeps what is known of the rows below it";
    ASSERT_TRUE(QDir().rename(at(QStringLiteral("/Z/Inner")), at(QStringLiteral("/B/Inner"))));
    settle();
    EXPECT_EQ(books(QStringLiteral("/B")), QStringLiteral("Inner"));
    actions.setBookOrder(root, {QStringLiteral("D"), QStringLiteral("Z"), QStringLiteral("B"), QStringLiteral("C")});
    settle();
    EXPECT_EQ(books({}), QStringLiteral("D Z B C"));
    for (const char *book : {"/B", "/D", "/Z"}) ASSERT_TRUE(removeItem(at(QString::fromLatin1(book))));
    settle();
    EXPECT_EQ(books({}), QStringLiteral("C"));
    EXPECT_FALSE(deep.isValid());
}

TEST_F(Desktop, theTreeIsResetUnderExpandedRows)
{
    outline->setCurrentIndex(rowOf(QStringLiteral("/A/Inner/Deep")));
    for (int i = 0; i < 3; ++i) {
        (void)controller->newRootSelected();
        QCoreApplication::processEvents();
        EXPECT_EQ(books({}), QStringLiteral("A B C"));
        outline->expandAll();
    }
    QDir().rename(root, root + QStringLiteral("-away"));
    (void)controller->newRootSelected();
    QCoreApplication::processEvents();
    EXPECT_EQ(tree->rowCount({}), 0) << "a root that is no folder shows no row at all";
    QDir().rename(root + QStringLiteral("-away"), root);
    (void)controller->newRootSelected();
    EXPECT_EQ(books({}), QStringLiteral("A B C"));
}

TEST_F(Desktop, documentsComeGoAndKeepTheSelection)
{
    EXPECT_EQ(documents(), QStringLiteral("one three two"));
    const QPersistentModelIndex two = list->indexOfPath(at(QStringLiteral("/A/two.md")));
    view.setCurrentIndex(two);
    write(QStringLiteral("/A/five.md"));
    ASSERT_TRUE(removeItem(at(QStringLiteral("/A/three.txt"))));
    ASSERT_TRUE(removeItem(at(QStringLiteral("/A/one.md"))));
    settle();
    EXPECT_EQ(documents(), QStringLiteral("five two"));
    EXPECT_EQ(two.row(), 1);
    EXPECT_EQ(view.currentIndex(), QModelIndex(two));
    list->selectSortOrder(4);
    EXPECT_EQ(documents(), QStringLiteral("two five"));
    EXPECT_EQ(two.row(), 0);
    list->setFilter(QStringLiteral("FIV"));
    EXPECT_EQ(documents(), QStringLiteral("five"));
    EXPECT_FALSE(two.isValid());
    list->setFilter({});
    ASSERT_TRUE(removeItem(at(QStringLiteral("/A"))));
    settle();
    EXPECT_EQ(list->rowCount(), 0);
}

TEST_F(Desktop, aBookReadInTheBackgroundKeepsWhatIsInHand)
{
    int reloads = 0;
    QObject::connect(list.get(), &DocumentListModel::reloaded, [&] { ++reloads; });
    const auto awaitReloads = [&](int count) { return QTest::qWaitFor([&] { return reloads >= count; }); };
    const QPersistentModelIndex two = list->indexOfPath(at(QStringLiteral("/A/two.md")));
    view.setCurrentIndex(two);
    view.edit(two);
    QPointer<QLineEdit> editor = view.findChild<QLineEdit *>();
    ASSERT_TRUE(editor);
    editor->setText(QStringLiteral("half a na"));
    write(QStringLiteral("/A/five.md"));
    write(QStringLiteral("/A/zoo.md"));
    ASSERT_TRUE(removeItem(at(QStringLiteral("/A/three.txt"))));
    list->reloadInBackground();
    EXPECT_EQ(documents(), QStringLiteral("one three two")) << "until the rows are there";
    ASSERT_TRUE(awaitReloads(1));
    EXPECT_EQ(documents(), QStringLiteral("five one two zoo"));
    EXPECT_EQ(two.row(), 2);
    EXPECT_EQ(view.currentIndex(), QModelIndex(two));
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->text(), QStringLiteral("half a na"));

    // What is wanted while one reading is under way is one more; what was read for another book is dropped.
    for (int i = 0; i < 5; ++i) list->reloadInBackground();
    ASSERT_TRUE(awaitReloads(3));
    list->reloadInBackground();
    list->show({at(QStringLiteral("/B")), 0, {}});
    EXPECT_EQ(documents(), QStringLiteral("other"));
    list->reloadInBackground();
    list->setFilter(QStringLiteral("nothing"));
    ASSERT_TRUE(awaitReloads(4));
    EXPECT_EQ(documents(), QString());
    EXPECT_EQ(reloads, 4);
    list->reloadInBackground();
    TearDown(); // with a reading under way
}

TEST_F(Desktop, theWalkForWhatWasModifiedKeepsNobodyWaiting)
{
    const auto comesToHave = [this](const char *names) {
        return QTest::qWaitFor([&] { return documents() == QString::fromLatin1(names); });
    };
    list->show({{}, RecentlyModifiedBook, {}});
    list->show({at(QStringLiteral("/B")), 0, {}});
    EXPECT_FALSE(list->isReading()) << "what is on display is there";
    list->show({{}, RecentlyModifiedBook, {}});
    EXPECT_TRUE(list->isReading());
    EXPECT_EQ(documents(), QString());
    EXPECT_TRUE(QTest::qWaitFor([this] { return list->rowCount() == 4; })) << documents().toStdString();
    list->setFilter(QStringLiteral("oth"));
    EXPECT_TRUE(comesToHave("other"));
    write(QStringLiteral("/A/mother.md"));
    list->reload();
    EXPECT_TRUE(comesToHave("mother other")) << "the latest first";
    list->show({at(QStringLiteral("/A")), 0, {}});
    EXPECT_EQ(documents(), QStringLiteral("mother"));
}

TEST(RowChanges, SayWhatGoesComesMovesAndIsOther)
{
    const auto rows = [](const char *names) {
        QList<QVariantMap> all;
        for (const QString &name : QString::fromLatin1(names).split(u' ', Qt::SkipEmptyParts))
            all.append({{QStringLiteral("path"), name.left(1)}, {QStringLiteral("title"), name}});
        return all;
    };
    const auto text = [&](const char *before, const char *after) {
        const RowChanges changes = rowChanges(rows(before), rows(after));
        QString out;
        for (const auto &[first, last] : changes.removed) out += QStringLiteral("-%1..%2 ").arg(first).arg(last);
        for (const QVariantMap &row : changes.added) out += u'+' + pathOfRow(row) + u' ';
        for (const int place : changes.places) out += QString::number(place) + u' ';
        for (const int row : changes.changed) out += QStringLiteral("*%1 ").arg(row);
        return out.trimmed();
    };
    EXPECT_EQ(text("a b c", "a b c"), QString());
    EXPECT_EQ(text("a b c", "a b2 c"), QStringLiteral("*1"));
    EXPECT_EQ(text("a b c d e", "c"), QStringLiteral("-3..4 -0..1"));
    EXPECT_EQ(text("a c", "a b c d"), QStringLiteral("+b +d 0 2 1 3"));
    EXPECT_EQ(text("a b c", "c2 x a"), QStringLiteral("-1..1 +x 2 0 1 *0"));
    EXPECT_EQ(text("", "a b"), QStringLiteral("+a +b"));
    EXPECT_EQ(text("a b", ""), QStringLiteral("-0..1"));
}

TEST_F(Desktop, renamingKeepsTheExtensionUnlessAnotherIsTyped)
{
    const auto rename = [this](const char *from, const char *name) {
        list->setData(list->indexOfPath(at(QString::fromUtf8(from))), QString::fromUtf8(name), Qt::EditRole);
        settle();
        return names(QStringLiteral("/A")).join(u' ');
    };
    EXPECT_EQ(rename("/A/one.md", "first"), QStringLiteral("Inner first.md three.txt two.md"));
    EXPECT_EQ(rename("/A/first.md", "first.txt"), QStringLiteral("Inner first.txt three.txt two.md"));
    EXPECT_EQ(rename("/A/first.txt", "Version 1.2"), QStringLiteral("Inner Version 1.2.txt three.txt two.md"));
    EXPECT_EQ(rename("/A/Version 1.2.txt", "a/b"), QStringLiteral("Inner a-b.txt three.txt two.md"));
    EXPECT_EQ(rename("/A/two.md", "Two"), QStringLiteral("Inner Two.md a-b.txt three.txt"));
    EXPECT_EQ(actions.undoStack().count(), 5);
    EXPECT_EQ(rename("/A/Two.md", "three.txt"), QStringLiteral("Inner Two.md a-b.txt three.txt"));
    EXPECT_EQ(told, QStringLiteral("An item with name \"three.txt\" already exists."));
    EXPECT_EQ(rename("/A/Two.md", "  "), QStringLiteral("Inner Two.md a-b.txt three.txt"));
    EXPECT_EQ(actions.undoStack().count(), 5) << "what failed is no step";
    for (int i = 0; i < 5; ++i) undo();
    EXPECT_EQ(documents(), QStringLiteral("one three two"));
    redo();
    EXPECT_EQ(documents(), QStringLiteral("first three two"));
}

TEST_F(Desktop, booksAreRenamedInTheTree)
{
    write(QStringLiteral("/B/n v1.md"));
    EXPECT_TRUE(tree->setData(rowOf(QStringLiteral("/B")), QStringLiteral("Book 1.5"), Qt::EditRole));
    settle();
    EXPECT_EQ(books({}), QStringLiteral("A Book 1.5 C"));
    EXPECT_FALSE(tree->setData(rowOf(QStringLiteral("/C")), QStringLiteral("A"), Qt::EditRole));
    undo();
    EXPECT_EQ(books({}), QStringLiteral("A B C"));
}

TEST_F(Desktop, dropsMoveAndUndoBringsBack)
{
    tm_setProperty(at(QStringLiteral("/A/one.md")), QStringLiteral("u"), QStringLiteral("URL"));
    EXPECT_TRUE(
        dropOnTree({at(QStringLiteral("/A/one.md")), at(QStringLiteral("/A/Inner"))}, -1, rowOf(QStringLiteral("/B"))));
    EXPECT_EQ(names(QStringLiteral("/B")).join(u' '), QStringLiteral("Inner one.md one.md.plist other.md"));
    EXPECT_EQ(documents(), QStringLiteral("three two"));
    EXPECT_EQ(books(QStringLiteral("/B/Inner")), QStringLiteral("Deep"));
    undo();
    EXPECT_EQ(documents(), QStringLiteral("one three two"));
    EXPECT_EQ(books(QStringLiteral("/A")), QStringLiteral("Inner"));
    EXPECT_EQ(tm_propertyForKey(at(QStringLiteral("/A/one.md")), QStringLiteral("URL")), QStringLiteral("u"));
    redo();
    EXPECT_EQ(names(QStringLiteral("/B")).join(u' '), QStringLiteral("Inner one.md one.md.plist other.md"));
    undo();

    EXPECT_TRUE(dropOnTree({at(QStringLiteral("/A/one.md"))}, -1, rowOf(QStringLiteral("/B")), Qt::CopyAction));
    EXPECT_TRUE(exists(QStringLiteral("/A/one.md")) && exists(QStringLiteral("/B/one.md")));
    undo();
    EXPECT_FALSE(exists(QStringLiteral("/B/one.md")));

    const int steps = actions.undoStack().count();
    dropOnTree({at(QStringLiteral("/B/other.md"))}, -1, rowOf(QStringLiteral("/B")));
    EXPECT_EQ(actions.undoStack().index(), steps - 1) << "a drop that changes nothing is no step";
    EXPECT_FALSE(dropOnTree({at(QStringLiteral("/A"))}, -1, rowOf(QStringLiteral("/A/Inner/Deep")))) << "into itself";
    EXPECT_FALSE(dropOnTree({at(QStringLiteral("/B"))}, -1, tree->index(0, 0, {}))) << "onto the smart books";
}

TEST_F(Desktop, aDropWhereTheNameIsTakenOverwritesNothing)
{
    write(QStringLiteral("/B/one.md"), "theirs");
    EXPECT_TRUE(dropOnTree({at(QStringLiteral("/A/one.md"))}, -1, rowOf(QStringLiteral("/B"))));
    EXPECT_EQ(read(QStringLiteral("/B/one.md")), "theirs");
    EXPECT_EQ(read(QStringLiteral("/B/one 1.md")), "text\n");
    undo();
    EXPECT_TRUE(exists(QStringLiteral("/A/one.md")));
}

TEST_F(Desktop, reorderingByDropStoresTheCustomOrder)
{
    EXPECT_TRUE(dropOnTree({at(QStringLiteral("/C"))}, 0, tree->indexOf(TMLTOutlineItem::booksItem())));
    EXPECT_EQ(books({}), QStringLiteral("C A B"));
    const std::unique_ptr<QMimeData> data(dragDataFor({at(QStringLiteral("/A/two.md"))}));
    list->dropMimeData(data.get(), Qt::MoveAction, 0, 0, {});
    settle();
    EXPECT_EQ(documents(), QStringLiteral("two one three"));
    const QVariantMap stored = plist(QStringLiteral("/A/BookProperties.plist"));
    EXPECT_EQ(stored.value(QStringLiteral("Notes")).toStringList().join(u' '),
              QStringLiteral("two.md one.md three.txt"));
    EXPECT_EQ(stored.value(QStringLiteral("sortOrderForNotes")), QStringLiteral("custom"));
}

TEST_F(Desktop, deletingUndoneAndDoneAgain)
{
    actions.moveToTrash({at(QStringLiteral("/A/one.md")), at(QStringLiteral("/A/two.md"))});
    settle();
    EXPECT_EQ(documents(), QStringLiteral("three"));
    undo();
    EXPECT_EQ(documents(), QStringLiteral("one three two"));
    redo();
    EXPECT_EQ(documents(), QStringLiteral("three"));
    undo();
    actions.moveToTrash({at(QStringLiteral("/A/Inner"))});
    settle();
    EXPECT_EQ(books(QStringLiteral("/A")), QString());
    undo();
    EXPECT_EQ(books(QStringLiteral("/A/Inner")), QStringLiteral("Deep"));
    const QString made = actions.newBook(at(QStringLiteral("/B")));
    settle();
    EXPECT_EQ(books(QStringLiteral("/B")), QStringLiteral("Untitled"));
    undo();
    EXPECT_EQ(books(QStringLiteral("/B")), QString());
    actions.duplicate({at(QStringLiteral("/A/one.md"))});
    settle();
    EXPECT_EQ(documents(), QStringLiteral("one copy one three two"));
    undo();
    EXPECT_EQ(documents(), QStringLiteral("one three two"));
}

TEST_F(Desktop, nothingIsDeletedForGoodWithoutAYes)
{
    trashWorks = false;
    actions.moveToTrash({at(QStringLiteral("/A/one.md"))});
    actions.deletePermanently({at(QStringLiteral("/A/two.md"))});
    settle();
    EXPECT_EQ(documents(), QStringLiteral("one three two"));
    EXPECT_FALSE(actions.undoStack().canUndo());
    platform().ask = [](const Question &) { return 0; };
    actions.moveToTrash({at(QStringLiteral("/A/one.md"))});
    settle();
    EXPECT_EQ(documents(), QStringLiteral("three two"));
    EXPECT_FALSE(actions.undoStack().canUndo());
}

int main(int argc, char *argv[])
{
    qputenv("TZ", "Europe/Berlin");
    qputenv("LC_ALL", "en_US.UTF-8");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (::geteuid() == 0) qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); // as the program itself does
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
