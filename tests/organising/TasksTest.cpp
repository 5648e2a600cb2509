// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/organising/Tasklist.h"

#include "foundation/Platform.h"
#include "library/Deletion.h"
#include "library/ItemOperations.h"
#include "library/Properties.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskStore.h"

using namespace tomelet;
using tomelet::test::Tasklist;

class Tasks : public Tasklist
{};

TEST_F(Tasks, existenceOfTheStoreMakesATasklist)
{
    const QString plain = write(QStringLiteral("/Plain/a.md"));
    EXPECT_FALSE(tm_itemIsTask(plain));
    EXPECT_EQ(tm_dueDateForTask(plain), farFuture());
    EXPECT_EQ(tm_toggleTask(plain), u"task-started") << "the answer is given, but nothing is stored";
    tm_setDueDate(plain, now());
    tm_setTaskDetails(plain, {{taskField::state, QStringLiteral("done")}});
    EXPECT_EQ(names(QStringLiteral("/Plain")), QStringList{QStringLiteral("a.md")});

    const QString item = task(QStringLiteral("a.md"));
    EXPECT_EQ(tm_iconForTask(item), u"task-open");
    EXPECT_EQ(tm_iconForTask(makeBook(QStringLiteral("/List/Book"))), u"");
    write(QStringLiteral("/List/TMTasklistDetails.plist"), "no property list");
    EXPECT_EQ(tm_iconForTask(item), u"task-open");
    EXPECT_EQ(tm_toggleTask(item), u"task-started");
    tm_setDueDate(item, now());
    EXPECT_EQ(read(QStringLiteral("/List/TMTasklistDetails.plist")), "no property list");
    tm_toggleItemIsTask(item);
    EXPECT_EQ(state(item), u"no_task") << "only this replaces a broken store";
}

TEST_F(Tasks, ringOfStatesMovesBothCounters)
{
    const QString item = task(QStringLiteral("a.md"));
    tm_setDueDate(item, now().addDays(-1));
    EXPECT_EQ(counters(), u"0 1");
    const struct
    {
        const char *icon, *state, *counters;
    } steps[] = {{"task-started-due", "started", "0 1"},
                 {"task-done", "done", "1 0"},
                 {"task-canceled", "canceled", "1 0"},
                 {"task-open-due", "", "0 1"},
                 {"task-started-due", "started", "0 1"}};
    qint64 second = 0;
    for (const auto &step : steps) {
        const QDateTime date = now().addSecs(++second);
        EXPECT_EQ(tm_toggleTaskWithDate(item, date), QLatin1StringView(step.icon));
        EXPECT_EQ(state(item), QLatin1StringView(step.state));
        EXPECT_EQ(counters(), QLatin1StringView(step.counters)) << step.icon;
        EXPECT_EQ(tm_doneDateForTask(item), date);
    }
    EXPECT_TRUE(tm_taskIsDoneOrCanceled(QStringLiteral("task-canceled")));
}

TEST_F(Tasks, twoWritersOfOneStoreLoseNothing)
{
    setStore({{QStringLiteral("a.md"), record("")},
              {QStringLiteral("b.md"), record("")},
              {QStringLiteral("__DoneItemCount__"), QStringLiteral("3")}});
    TaskStore here(list);
    TaskStore there(list);
    here.setRecord(QStringLiteral("a.md"), record("done"));
    here.setDoneCount(4);
    there.remove(QStringLiteral("b.md"));
    there.setRecord(QStringLiteral("c.md"), record("started"));
    there.setDoneCount(5);
    ASSERT_TRUE(there.save());
    ASSERT_TRUE(here.save());
    EXPECT_EQ(store(), (QVariantMap{{QStringLiteral("a.md"), record("done")},
                                    {QStringLiteral("c.md"), record("started")},
                                    {QStringLiteral("__DoneItemCount__"), QStringLiteral("6")}}));
    EXPECT_EQ(here.keys(), (QStringList{QStringLiteral("a.md"), QStringLiteral("c.md")}));

    // Counters that were put right go by what was read.
    TaskStore counted(list);
    counted.setDueCount(7);
    here.setRecord(QStringLiteral("a.md"), record("canceled"));
    ASSERT_TRUE(here.save());
    StoreBatch batch;
    counted.save(batch);
    batch.flush();
    EXPECT_EQ(counters(), u"6 0");
}

TEST_F(Tasks, firstToggleMakesARecordAndNoCounters)
{
    const QString item = task(QStringLiteral("a.md"));
    tm_toggleTaskWithDate(item, farPast());
    EXPECT_EQ(store().keys(), QStringList{QStringLiteral("a.md")});
    EXPECT_EQ(tm_doneDateForTask(item), now()) << "the moment itself, not the date handed over";
}

TEST_F(Tasks, countersNeverFallBelowZeroAndOddOnesAreRead)
{
    const QString item = task(QStringLiteral("a.md"));
    const QDateTime past = now().addDays(-1);
    setStore({{QStringLiteral("a.md"), record("started", past)}});
    tm_toggleTask(item);
    EXPECT_EQ(counters(), u"1 0");
    setStore({{QStringLiteral("a.md"), record("canceled", past)}, {QStringLiteral("__DueItemCount__"), qlonglong(4)}});
    tm_toggleTask(item);
    EXPECT_EQ(counters(), u"0 5");
    setStore({{QStringLiteral("a.md"), QStringLiteral("no dictionary")},
              {QStringLiteral("__DoneItemCount__"), QVariantList{1}}});
    EXPECT_EQ(tm_iconForTask(item), u"task-open");
    EXPECT_EQ(tm_toggleTask(item), u"task-started");
    EXPECT_EQ(state(item), u"started");
    setStore({{QStringLiteral("a.md"), QVariantMap{{taskField::dueDate, QStringLiteral("2026-01-01T00:00:00Z")},
                                                   {taskField::state, qlonglong(3)}}}});
    EXPECT_EQ(tm_iconForTask(item), u"task-open") << "a text is no date";
}

TEST_F(Tasks, noTask)
{
    const QString item = task(QStringLiteral("a.md"));
    tm_setRepeatDetails(item, {QStringLiteral("when due"), QStringLiteral("day"), QStringLiteral("1")});
    tm_setDueDate(item, now().addDays(-1));
    tm_toggleItemIsTask(item);
    EXPECT_FALSE(tm_itemIsTask(item));
    EXPECT_EQ(tm_dueDateForTask(item), farPast());
    EXPECT_EQ(counters(), u"1 0");
    tm_toggleItemIsTask(item);
    EXPECT_EQ(tm_getAllTaskDetails(item)->keys(), QStringList{taskField::changed});
    tm_toggleItemIsTask(item);
    EXPECT_EQ(tm_toggleTask(item), u"task-started");
    EXPECT_EQ(counters(), u"1 0") << "one too high by the table of steps";
    tm_taskPlistChangedAtPath(taskStorePath(list));
    EXPECT_EQ(counters(), u"0 0") << "until the changed store is recounted";
}

TEST_F(Tasks, keysMeetTheirDocumentsInEveryNormalForm)
{
    const QString composed = QString::fromUtf8("\u00e9.md");
    const QString decomposed = QString::fromUtf8("e\u0301.md");
    const QString item = task(composed);
    task(QStringLiteral("A.md"));
    setStore({{decomposed, record("started")}, {QStringLiteral("a.md"), record("done")}});
    EXPECT_EQ(tm_toggleTask(item), u"task-done");
    EXPECT_TRUE(store().contains(decomposed)) << "the stored spelling is kept";
    EXPECT_FALSE(store().contains(composed));
    EXPECT_EQ(tm_iconForTask(at(QStringLiteral("/List/A.md"))), u"task-open") << "case tells names apart";
    tm_correctTaskCountAtPath(list);
    EXPECT_TRUE(store().contains(decomposed));

    const QDateTime past = now().addDays(-1);
    setStore({{decomposed, record("", past)}, {composed, record("", past)}});
    EXPECT_EQ(tm_correctTaskCountAtPathWithCleanup(list, false), 1) << "two keys of one document are one task";
    tm_toggleTask(item);
    EXPECT_EQ(store().value(decomposed).toMap(), record("", past)) << "the very name goes first";
    EXPECT_EQ(state(item), u"started");
}

TEST_F(Tasks, recordsTravelWithTheirDocuments)
{
    const QString item = task(QStringLiteral("a.md"));
    makeBook(QStringLiteral("/Plain"));
    const QVariantMap full = QVariantMap(record("started", now().addDays(3)));
    tm_setTaskDetails(item, full);
    ASSERT_TRUE(tm_moveItemToPath(item, at(QStringLiteral("/List/b.md"))));
    EXPECT_EQ(store().keys(), QStringList{QStringLiteral("b.md")});
    ASSERT_TRUE(tm_copyItemToPath(at(QStringLiteral("/List/b.md")), at(QStringLiteral("/List/c.md"))));
    ASSERT_TRUE(tm_copyItemToPath(at(QStringLiteral("/List/b.md")), at(QStringLiteral("/Plain/c.md"))));
    EXPECT_EQ(tm_getAllTaskDetails(at(QStringLiteral("/List/c.md"))), full);
    ASSERT_TRUE(tm_moveItemToPath(at(QStringLiteral("/List/b.md")), at(QStringLiteral("/Plain/b.md"))));
    EXPECT_EQ(names(QStringLiteral("/Plain")).join(u' '), u"b.md c.md") << "an ordinary book keeps nothing";
    EXPECT_EQ(store().keys(), QStringList{QStringLiteral("c.md")});
}

TEST_F(Tasks, recordsComeBackWithDeletedDocuments)
{
    const QString item = task(QStringLiteral("a.md"));
    const TaskRecord full = record("started", now().addDays(3));
    tm_setTaskDetails(item, full);
    storeLastDeletion(performDeleteSelectedItems({item}, false).records);
    tm_correctTaskCountAtPath(list);
    EXPECT_FALSE(tm_getAllTaskDetails(item));
    EXPECT_TRUE(undoLastDelete(lastDeletion()).isEmpty());
    EXPECT_EQ(tm_getAllTaskDetails(item), full);
}

TEST_F(Tasks, tasklistsAreKnownWhereverTheirBooksGo)
{
    const auto listed = [] { return settings().stringList(QStringLiteral("allTaskLists")).join(u' '); };
    updateListOfTasklistsQuick();
    ASSERT_TRUE(tm_copyItemToPath(list, at(QStringLiteral("/Copy"))));
    EXPECT_EQ(listed(), u"/Copy /List");
    ASSERT_TRUE(tm_moveItemToPath(list, at(QStringLiteral("/Copy/Moved"))));
    EXPECT_EQ(listed(), u"/Copy /Copy/Moved");
    const Deletion deletion = performDeleteSelectedItems({at(QStringLiteral("/Copy/Moved"))}, false);
    EXPECT_EQ(listed(), u"/Copy");
    undoLastDelete(deletion.records);
    EXPECT_EQ(listed(), u"/Copy /Copy/Moved");
}

TEST_F(Tasks, switchingATasklistOffAndOn)
{
    const QString item = task(QStringLiteral("a.md"));
    tm_toggleTask(item);
    const QByteArray bytes = read(QStringLiteral("/List/TMTasklistDetails.plist"));
    EXPECT_EQ(knownTasklists(), QStringList{QStringLiteral("/List")});
    EXPECT_FALSE(settings().contains(QStringLiteral("allTaskLists"))) << "reading stores nothing";
    updateListOfTasklistsQuick();
    tm_toggleTasklistKeepingDetails(list, true);
    EXPECT_FALSE(tm_bookIsTasklist(list));
    EXPECT_TRUE(knownTasklists().isEmpty());
    tm_toggleTasklistKeepingDetails(list, true);
    EXPECT_EQ(read(QStringLiteral("/List/TMTasklistDetails.plist")), bytes);

    write(QStringLiteral("/List/TMTasklistDetails_inactive.plist"), "kept");
    tm_toggleTasklistKeepingDetails(list, true);
    EXPECT_TRUE(tm_bookIsTasklist(list)) << "neither of two stores is overwritten";
    EXPECT_EQ(read(QStringLiteral("/List/TMTasklistDetails_inactive.plist")), "kept");
    tm_resetTasklist(list);
    EXPECT_TRUE(store().isEmpty());
    EXPECT_TRUE(tm_bookIsTasklist(list));
}

TEST_F(Tasks, mergingKeepsTheLaterChange)
{
    const auto changed = [this](int hours, const char *state) {
        QVariantMap values = record(state);
        if (hours) values.insert(taskField::changed, now().addSecs(hours * 3600));
        return QVariant(values);
    };
    const QString composed = QString::fromUtf8("\u00e9.md");
    const QString decomposed = QString::fromUtf8("e\u0301.md");
    const QVariantMap own{{QStringLiteral("1.md"), changed(2, "own")},
                          {QStringLiteral("2.md"), changed(1, "own")},
                          {QStringLiteral("equal"), changed(1, "own")},
                          {QStringLiteral("none"), changed(0, "own")},
                          {QStringLiteral("dated"), changed(1, "own")},
                          {QStringLiteral("undated"), changed(0, "own")},
                          {composed, changed(1, "own")},
                          {QStringLiteral("__DueItemCount__"), QStringLiteral("7")}};
    const QVariantMap other{{QStringLiteral("1.md"), changed(1, "other")},
                            {QStringLiteral("2.md"), changed(2, "other")},
                            {QStringLiteral("equal"), changed(1, "other")},
                            {QStringLiteral("none"), changed(0, "other")},
                            {QStringLiteral("dated"), changed(0, "other")},
                            {QStringLiteral("undated"), changed(1, "other")},
                            {QStringLiteral("01.md"), changed(1, "other")},
                            {decomposed, changed(2, "other")},
                            {QStringLiteral("__DueItemCount__"), QStringLiteral("9")}};
    const QVariantMap merged = tm_dictionaryByMergingWithTaskDetails(own, other);
    QStringList winners;
    for (auto it = merged.begin(); it != merged.end(); ++it)
        winners.append(it.key() + u' ' + it->toMap().value(taskField::state, it.value()).toString());
    EXPECT_EQ(
        winners,
        QStringList({QStringLiteral("01.md other"), QStringLiteral("1.md own"), QStringLiteral("2.md other"),
                     QStringLiteral("__DueItemCount__ 7"), QStringLiteral("dated own"), QStringLiteral("equal other"),
                     QString(decomposed + u" other"), QStringLiteral("none own"), QStringLiteral("undated other")}));
}

// -- the line that a task came from -----------------------------------------------------------------------------------

class TaskSource : public Tasklist
{
protected:
    QString taskFrom(const QString &name, const QByteArray &source, const char *url)
    {
        settings().setObject(QStringLiteral("markTaskWithCharacter"), QStringLiteral("- [ ]"));
        write(QStringLiteral("/Source.md"), source);
        const QString item = task(name);
        tm_setProperty(item, QString::fromUtf8(url), QStringLiteral("URL"));
        setStore({{name, record("started")}});
        return item;
    }
    // What stands in the source after each of three steps.
    QByteArrayList threeSteps(const QString &item, const QString &source = QStringLiteral("/Source.md"))
    {
        QByteArrayList texts;
        for (int i = 0; i < 3; ++i) {
            tm_toggleTask(item);
            texts.append(read(source));
        }
        return texts;
    }
};

TEST_F(TaskSource, checkBoxGoesRound)
{
    const QString item =
        taskFrom(QStringLiteral("Buy milk.txt"), "a\n\t- [ ] Buy milk \n- [ ] Buy milk\n", "tomelet://show/Source.md");
    EXPECT_EQ(threeSteps(item),
              QByteArrayList({"a\n\t- [x] Buy milk \n- [ ] Buy milk\n", "a\n\t-  Buy milk \n- [ ] Buy milk\n",
                              "a\n\t- [ ] Buy milk \n- [ ] Buy milk\n"}));
}

TEST_F(TaskSource, ownMarkerKeepsBlanksAndEncoding)
{
    const QString item = taskFrom(QStringLiteral("Caf\u00e9 1.5.txt"), {}, "tomelet://Source.md");
    settings().setObject(QStringLiteral("markTaskWithCharacter"), QStringLiteral("*"));
    const QByteArray utf16 =
        QByteArray::fromHex("fffe") + QByteArray(reinterpret_cast<const char *>(u"*  Caf\u00e9 1.5\r\n"), 2 * 13);
    write(QStringLiteral("/Source.md"), utf16);
    const QByteArrayList steps = threeSteps(item);
    EXPECT_EQ(steps[0], QByteArray(utf16).replace(2, 2, QByteArray::fromHex("1327")));
    EXPECT_EQ(steps[1], QByteArray(utf16).replace(2, 2, QByteArray::fromHex("d700")));
    EXPECT_EQ(steps[2], utf16);
}

TEST_F(TaskSource, onlyWhatFitsIsTouched)
{
    const QByteArray text = "- [ ] a (b\n- [ ] Call\n";
    const QString odd = taskFrom(QStringLiteral("a (b.txt"), text, "tomelet://show/Source.md");
    EXPECT_EQ(threeSteps(odd), QByteArrayList({text, text, text})) << "a title that is no pattern finds nothing";
    for (const char *url :
         {"http://Source.md", "tomelet://show/Source.MD", "tomelet://show/gone.md", "tomelet://show/List"})
        EXPECT_EQ(threeSteps(taskFrom(QStringLiteral("Call.txt"), text, url)), QByteArrayList({text, text, text}))
            << url;
    const QString noMarker = taskFrom(QStringLiteral("Call.txt"), text, "tomelet://show/Source.md");
    settings().remove(QStringLiteral("markTaskWithCharacter"));
    EXPECT_EQ(threeSteps(noMarker), QByteArrayList({text, text, text}));
}

TEST_F(TaskSource, pagesAndLongTitles)
{
    const QString item = taskFrom(QStringLiteral("Call.txt"), {}, "tomelet://show/A%20b.html");
    write(QStringLiteral("/A b.html"), "<p>\n - [ ] Call </p>");
    EXPECT_EQ(threeSteps(item, QStringLiteral("/A b.html"))[0], "<p>\n - [x] Call </p>");

    const QByteArray title(120, 'x');
    const QString longOne = taskFrom(QString::fromLatin1(title.first(101)) + QStringLiteral(".txt"),
                                     "- [ ] " + title + "\n", "tomelet://show/Source.md");
    write(longOne.mid(root.size()), "  " + title + " \nmore\n");
    EXPECT_EQ(threeSteps(longOne)[0], "- [x] " + title + "\n");
}
