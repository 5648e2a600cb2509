// SPDX-License-Identifier: GPL-3.0-or-later
// Tasks on the desktop: what rows tell, the keys and clicks that change them, each step undone and done
// again, and the counts of the outline against what the core counts.
#include "tests/organising/Tasklist.h"

#include "desktop/actions/ItemActions.h"
#include "desktop/actions/TaskActions.h"
#include "desktop/document/ContextsField.h"
#include "desktop/document/DocumentHeader.h"
#include "desktop/list/DocumentDelegate.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/list/DocumentListView.h"
#include "desktop/outline/OutlineBadges.h"
#include "library/OutlineController.h"
#include "library/Properties.h"
#include "organising/contexts/Contexts.h"
#include "organising/dates/DueDateCalendar.h"

#include <QApplication>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

class DesktopTasks : public tomelet::test::Tasklist
{
protected:
    DesktopTasks()
    {
        QObject::connect(&view, &DocumentListView::toggleWanted, &view,
                         [this](const QStringList &paths) { toggleTasks(actions, paths); });
        view.setModel(&model);
        view.resize(300, 400);
        view.show();
    }
    ~DesktopTasks() override { view.setModel(nullptr); }

    void showList(const ListSource &source)
    {
        model.show(source);
        QCoreApplication::processEvents();
    }
    void settle()
    {
        drainPendingWork();
        model.reload();
        QCoreApplication::processEvents();
    }
    /// "name icon text" of each row.
    [[nodiscard]] QStringList rows() const
    {
        QStringList all;
        for (int row = 0; row < model.rowCount(); ++row) {
            const QModelIndex index = model.index(row);
            all.append(QString(index.data().toString() + u' ' + index.data(DocumentListModel::TaskIconRole).toString() +
                               u' ' + index.data(DocumentListModel::TaskDateRole).toString())
                           .replace(QChar(0x202f), u' ') // what stands before AM and PM
                           .trimmed());
        }
        return all;
    }
    [[nodiscard]] QModelIndex rowOf(const QString &path) const { return model.indexOfPath(path); }
    void clickRing(const QString &path)
    {
        const QRect ring = DocumentDelegate::iconArea(view.visualRect(rowOf(path)), Qt::LeftToRight);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, ring.center());
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
    /// What one sees of the store: records without the moments of their change, and the counters.
    [[nodiscard]] QVariantMap lasting() const
    {
        QVariantMap values = store();
        for (QVariant &value : values) {
            if (value.typeId() != QMetaType::QVariantMap) continue;
            QVariantMap record = value.toMap();
            record.remove(taskField::changed);
            value = record;
        }
        return values;
    }

    ItemActions actions;
    DocumentListModel model{actions, nullptr};
    DocumentListView view;
};

const QString weekly = QStringLiteral("week");

} // namespace

TEST_F(DesktopTasks, rowsTellStateDateAndRepeat)
{
    TaskRecord late = record("started", utc(QStringLiteral("2026-11-18T08:30:00Z")));
    late.insert(taskField::repeatType, QStringLiteral("when due"));
    late.insert(taskField::repeatUnit, weekly);
    late.insert(taskField::repeatFactor, QStringLiteral("1"));
    TaskRecord done = record("done");
    done.insert(taskField::changed, now().addSecs(-600));
    for (const char *name : {"late.md", "tomorrow.md", "plain.md", "done.md", "text.md"})
        task(QString::fromLatin1(name));
    setStore({{QStringLiteral("late.md"), late},
              {QStringLiteral("tomorrow.md"), record("", utc(QStringLiteral("2026-11-21T23:01:00Z")))},
              {QStringLiteral("done.md"), done},
              {QStringLiteral("text.md"), record("no_task")}});
    showList({list, 0, {}});
    EXPECT_EQ(rows(), (QStringList{QStringLiteral("text"),
                                   QStringLiteral("late task-started-due Wed, Nov 18, 2026, 9:30 AM (3 days ago)"),
                                   QStringLiteral("tomorrow task-open Tomorrow"), QStringLiteral("plain task-open"),
                                   QStringLiteral("done task-done Done, 10 minutes ago")}));
    const QModelIndex overdue = rowOf(list + QStringLiteral("/late.md"));
    EXPECT_TRUE(overdue.data(DocumentListModel::OverdueRole).toBool());
    EXPECT_TRUE(overdue.data(DocumentListModel::RepeatsRole).toBool());
    const QString words = overdue.data(Qt::AccessibleDescriptionRole).toString();
    EXPECT_TRUE(words.startsWith(u"Started, overdue, due Wed")) << words.toStdString();
    EXPECT_TRUE(words.contains(u"repeats"));
}

TEST_F(DesktopTasks, doneTasksAreHiddenWhereTheSettingSaysSo)
{
    for (const char *name : {"a.md", "b.md"}) tm_setTag(task(QString::fromLatin1(name)), QStringLiteral("home"));
    setStore({{QStringLiteral("a.md"), record("done")}, {QStringLiteral("b.md"), record("canceled")}});
    settings().setObject(QStringLiteral("contextsEnabled"), true);
    settings().setObject(QStringLiteral("hideDoneTasks"), true);
    showList({list, 0, {}});
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_TRUE(model.controller().emptyText().startsWith(u" 2 Done Tasks\n\nTo view these tasks"));
    // What the filter leaves out is not counted as hidden.
    model.setFilter(QStringLiteral("a"));
    EXPECT_EQ(model.controller().emptyText(), QStringLiteral(" 1 Done Tasks"));
    model.setFilter({});
    showList({{}, ContextBook, {QStringLiteral("home")}});
    EXPECT_EQ(model.rowCount(), 0);
    settings().remove(QStringLiteral("hideDoneTasks"));
    model.reload();
    EXPECT_TRUE(QTest::qWaitFor([this] { return model.rowCount() == 2; }));
}

TEST_F(DesktopTasks, theManualOrderKeepsWhatIsHidden)
{
    const QStringList order{QStringLiteral("c.md"), QStringLiteral("done.md"), QStringLiteral("a.md"),
                            QStringLiteral("b.md")};
    for (const QString &name : order) task(name);
    saveCustomSortOrder(list, {}, order);
    tm_setProperty(list, QStringLiteral("custom"), QStringLiteral("sortOrderForNotes"));
    setStore({{QStringLiteral("done.md"), record("done")}});
    settings().setObject(QStringLiteral("hideDoneTasks"), true);
    showList({list, 0, {}});
    model.setFilter(QStringLiteral(".md"));
    const std::unique_ptr<QMimeData> dragged(model.mimeData({rowOf(list + QStringLiteral("/b.md"))}));
    model.dropMimeData(dragged.get(), Qt::MoveAction, 0, 0, {});
    EXPECT_EQ(
        plist(QStringLiteral("/List/BookProperties.plist")).value(QStringLiteral("Notes")).toStringList().join(u' '),
        QStringLiteral("b.md c.md done.md a.md"));
}

TEST_F(DesktopTasks, ringAndSpaceBarGoOneStateOn)
{
    const QString a = task(QStringLiteral("a.md"));
    const QString b = task(QStringLiteral("b.md"));
    showList({list, 0, {}});
    clickRing(b);
    EXPECT_EQ(state(b), QStringLiteral("started"));
    EXPECT_FALSE(view.selectionModel()->hasSelection());
    view.selectAll();
    QTest::keyClick(&view, Qt::Key_Space);
    EXPECT_EQ(state(a), QStringLiteral("started"));
    EXPECT_EQ(state(b), QStringLiteral("done"));
    settle();
    EXPECT_EQ(counters(), QStringLiteral("1 0"));
    undo();
    EXPECT_EQ(state(a), QString());
    EXPECT_EQ(state(b), QStringLiteral("started"));
    EXPECT_EQ(counters(), QStringLiteral("0 0"));
    redo();
    EXPECT_EQ(state(b), QStringLiteral("done"));
    // A press that is let go elsewhere changes nothing.
    const QRect ring = DocumentDelegate::iconArea(view.visualRect(rowOf(a)), Qt::LeftToRight);
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, ring.center());
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, ring.center() + QPoint(80, 0));
    EXPECT_EQ(state(a), QStringLiteral("started"));
}

TEST_F(DesktopTasks, aRepeatingTaskIsUndoneWithItsCopy)
{
    const QString path = task(QStringLiteral("rent.md"));
    tm_setDueDate(path, utc(QStringLiteral("2026-11-20T08:00:00Z")));
    tm_setRepeatDetails(path, {QStringLiteral("when due"), weekly, QStringLiteral("1")});
    toggleTasks(actions, {path});
    settle();
    const QVariantMap before = lasting();
    toggleTasks(actions, {path});
    settle();
    EXPECT_EQ(names(QStringLiteral("/List")).filter(QStringLiteral(".md")).size(), 2);
    EXPECT_EQ(tm_dueDateForTask(path), utc(QStringLiteral("2026-11-27T08:00:00Z")));
    undo();
    EXPECT_EQ(names(QStringLiteral("/List")).filter(QStringLiteral(".md")), QStringList{QStringLiteral("rent.md")});
    EXPECT_EQ(lasting(), before);
    redo();
    EXPECT_EQ(tm_dueDateForTask(path), utc(QStringLiteral("2026-11-27T08:00:00Z")));
    // Undone before the copy was made, none comes later.
    undo();
    toggleTasks(actions, {path});
    actions.undoStack().undo();
    settle();
    EXPECT_EQ(lasting(), before);
}

TEST_F(DesktopTasks, undoneStatesGoBackIntoTheTextTheyCameFrom)
{
    settings().setObject(QStringLiteral("markTaskWithCharacter"), QStringLiteral("*"));
    const QByteArray text = "Plan\n* Ask Bob\n* Call Ann\n";
    const QString plan = write(QStringLiteral("/List/Plan.md"), text);
    const QStringList made = extractTasksOf(actions, {plan});
    ASSERT_EQ(made.size(), 2);
    toggleTasks(actions, {made[0]});
    toggleTasks(actions, {made[0]});
    EXPECT_NE(read(QStringLiteral("/List/Plan.md")), text);
    undo();
    EXPECT_EQ(read(QStringLiteral("/List/Plan.md")), text);
    EXPECT_EQ(state(made[0]), QStringLiteral("started"));
    undo();
    undo();
    EXPECT_EQ(names(QStringLiteral("/List")).filter(QStringLiteral(".md")), QStringList{QStringLiteral("Plan.md")});
}

TEST_F(DesktopTasks, dueDatesAreSetClearedAndUndone)
{
    const QString a = task(QStringLiteral("a.md"));
    const QString b = task(QStringLiteral("b.md"));
    const QDateTime morning = utc(QStringLiteral("2026-11-20T08:00:00Z"));
    const auto answer = [&](int button, const QStringList &repeat) {
        return [=](const Question &, DueDateChoice &choice) {
            choice = {morning, repeat};
            return button;
        };
    };
    const QStringList rule{QStringLiteral("when done"), weekly, QStringLiteral("2")};
    // A document of an ordinary book is left out.
    chooseDueDates(actions, {a, b, write(QStringLiteral("/Notes/c.md"))}, answer(0, rule));
    settle();
    EXPECT_EQ(tm_dueDateForTask(b), morning);
    EXPECT_EQ(tm_repeatDetails(b), rule);
    EXPECT_EQ(counters(), QStringLiteral("0 2"));
    chooseDueDates(actions, {a}, answer(2, {}));
    EXPECT_EQ(actions.undoStack().count(), 1);
    clearAlertsOf(actions, {a});
    EXPECT_FALSE(tm_dueDateHasAlertTime(tm_dueDateForTask(a)));
    stopRepeating(actions, {a});
    EXPECT_FALSE(tm_repeatDetails(a));
    chooseDueDates(actions, {a, b}, answer(1, {}));
    settle();
    EXPECT_EQ(counters(), QStringLiteral("0 0"));
    for (int i = 0; i < 3; ++i) undo();
    EXPECT_EQ(tm_dueDateForTask(a), morning);
    EXPECT_EQ(tm_repeatDetails(a), rule);
    EXPECT_EQ(counters(), QStringLiteral("0 2"));
    undo();
    EXPECT_FALSE(hasDueDate(a));
    redo();
    EXPECT_EQ(tm_dueDateForTask(a), morning);
    // From a rule to none, by the dialog.
    chooseDueDates(actions, {a}, answer(0, {}));
    settle();
    EXPECT_FALSE(tm_repeatDetails(a));
    undo();
    EXPECT_EQ(tm_repeatDetails(a), rule);
    redo();
    EXPECT_FALSE(tm_repeatDetails(a));
}

TEST_F(DesktopTasks, tasklistsComeAndGoWithTheirRecords)
{
    toggleTasks(actions, {task(QStringLiteral("a.md"))});
    const QByteArray records = read(QStringLiteral("/List/TMTasklistDetails.plist"));
    toggleTasklist(actions, list);
    EXPECT_FALSE(tm_bookIsTasklist(list));
    undo();
    EXPECT_EQ(read(QStringLiteral("/List/TMTasklistDetails.plist")), records);
    const QString plain = makeBook(QStringLiteral("/Plain"));
    toggleTasklist(actions, plain);
    EXPECT_TRUE(tm_bookIsTasklist(plain));
    undo();
    EXPECT_EQ(names(QStringLiteral("/Plain")), QStringList());
    resetTasks(list); // nobody there to say yes
    EXPECT_EQ(state(list + QStringLiteral("/a.md")), QStringLiteral("started"));
}

TEST_F(DesktopTasks, outlineCountsWhatTheCoreCounts)
{
    OutlineBadges badges;
    const auto badgeOf = [&badges](const TMLTOutlineItem &item) {
        QSignalSpy counted(&badges, &OutlineBadges::changed);
        (void)badges.badgeOf(item);
        counted.wait(2000);
        return badges.badgeOf(item);
    };
    tm_setDueDate(task(QStringLiteral("late.md")), now().addDays(-1));
    tm_setDueDate(task(QStringLiteral("soon.md")), now().addSecs(60));
    write(QStringLiteral("/List/Below/x.md"));
    tm_toggleTasklistKeepingDetails(at(QStringLiteral("/List/Below")), true);
    write(QStringLiteral("/In/y.md"));
    makeBook(QStringLiteral("/In/TMImages"));
    settings().setObject(QStringLiteral("defaultInbox"), QStringLiteral("/In"));
    settings().setObject(QStringLiteral("dueTasksLookAhead"), 1);
    settle();
    EXPECT_EQ(badgeOf(*TMLTOutlineItem::childAtPath(list)), (Badge{3, 1, true}));
    EXPECT_EQ(badgeOf(TMLTOutlineItem(QString(), nullptr, DueTasksBook)), (Badge{2, 1, false}));
    EXPECT_EQ(badgeOf(TMLTOutlineItem(QString(), nullptr, InboxBook)), (Badge{1, 0, false}));
    EXPECT_EQ(badges.badgeOf(*TMLTOutlineItem::booksItem()), Badge());
    // A change is told; the program's icon hears of it although no row asked.
    QSignalSpy overdue(&badges, &OutlineBadges::overdueChanged);
    tm_clearDueDate(list + QStringLiteral("/late.md"));
    settle();
    ASSERT_TRUE(overdue.wait(5000));
    EXPECT_EQ(overdue.last().first().toLongLong(), 0);
    EXPECT_EQ(badgeOf(*TMLTOutlineItem::childAtPath(list)), (Badge{3, 0, true}));
}

// -- the keys ---------------------------------------------------------------------------------------------------------

TEST_F(DesktopTasks, theKeysAreSeenToGoSomewhere)
{
    const auto highlight = [](const QWidget &widget) {
        return widget.palette().color(QPalette::Active, QPalette::Highlight);
    };
    const auto standard = [] { return QApplication::palette().color(QPalette::Active, QPalette::Highlight); };
    QWidget window;
    DocumentListView first(&window);
    DocumentListView second(&window);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    first.setFocus();
    EXPECT_EQ(highlight(first), standard());
    EXPECT_NE(highlight(second), standard());
    second.setFocus();
    EXPECT_NE(highlight(first), standard()) << "the selection is grey where the keys do not go";
    EXPECT_EQ(highlight(second), standard());
}

TEST_F(DesktopTasks, headerTakesTheKeysFromItsFirstField)
{
    DocumentHeader header(actions);
    header.show();
    header.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&header));
    header.setDocument(task(QStringLiteral("a.md")), false);
    ASSERT_TRUE(header.focusFirst());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(state(at(QStringLiteral("/List/a.md"))), u"started");
    header.setDocument(write(QStringLiteral("/Plain/a.md")), false);
    EXPECT_FALSE(header.focusFirst()) << "no task and no contexts";
    settings().setObject(QStringLiteral("contextsEnabled"), true);
    header.setDocument(write(QStringLiteral("/Plain/b.md")), false);
    ASSERT_TRUE(header.focusFirst());
    EXPECT_EQ(QApplication::focusWidget(), header.contextsField());
}
