// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/organising/Tasklist.h"

#include "library/ItemDictionary.h"
#include "library/ItemPath.h"
#include "library/OutlineItem.h"
#include "library/Properties.h"
#include "organising/lists/DocumentList.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskRows.h"

#include <QCoreApplication>
#include <QFile>

using namespace tomelet;
using tomelet::test::Tasklist;

class TaskLists : public Tasklist
{
protected:
    static QString listed() { return settings().stringList(QStringLiteral("allTaskLists")).join(u' '); }
    QStringList dueNames() const
    {
        QStringList found;
        for (const QVariant &row : tm_arrayOfDueTasksAsNumbers(root, false))
            found.append(row.toMap().value(QStringLiteral("title")).toString());
        return found;
    }
    QString counted(const QString &book, bool descendants) const
    {
        const QVariantMap counts = tm_allOpenTasksCountingDescendants(book, descendants);
        return counts.value(QStringLiteral("totalTasks")).toString() + u' ' +
               counts.value(QStringLiteral("dueTasks")).toString() + u' ' +
               counts.value(QStringLiteral("doneTasks")).toString();
    }
};

TEST_F(TaskLists, threeWaysToTheList)
{
    for (const char *store :
         {"/TMTasklistDetails.plist", "/B/C/TMTasklistDetails.plist", "/.TMTrash/TMTasklistDetails.plist",
          "/D/TMTasklistDetails_inactive.plist", "/B/.Trash-0/X/TMTasklistDetails.plist"})
        write(QString::fromLatin1(store), "");
    QFile::link(at(QStringLiteral("/B")), at(QStringLiteral("/B/C/up")));
    updateListOfTasklistsQuick();
    EXPECT_EQ(listed(), u"/ /B/C /List");
    updateListOfTasklistRemoving(at(QStringLiteral("/B/C/TMTasklistDetails.plist")), at(QStringLiteral("/D")));
    EXPECT_EQ(listed(), u"/ /List /D");
    updateListOfTasklistRemoving(root, {});
    EXPECT_EQ(listed(), u"/List /D");

    settings().setObject(QStringLiteral("rebuildingAllTasklistsFlag"), true);
    EXPECT_EQ(knownTasklists().join(u' '), u"/ /B/C /List") << "while a collection runs the folders are asked";
    updateListOfTasklists();
    EXPECT_FALSE(settings().contains(QStringLiteral("rebuildingAllTasklistsFlag")));
    EXPECT_EQ(settings().stringList(QStringLiteral("booksList")).join(u' '), u"B B/C D List");
    QFile::remove(at(QStringLiteral("/TMTasklistDetails.plist")));
    updateListOfTasklists();
    EXPECT_EQ(listed(), u"/ /B/C /List") << "not twice within two seconds";
    setNow(QStringLiteral("2026-11-21T11:00:02Z"));
    updateListOfTasklists();
    EXPECT_EQ(listed(), u"/B/C /List");
    tm_resetTasklist(at(QStringLiteral("/B")));
    EXPECT_EQ(listed(), u"/B/C /List /B") << "a reset makes a tasklist where there was none";
    tm_toggleTasklistKeepingDetails(at(QStringLiteral("/B")), false);
    platform().rootOverride = at(QStringLiteral("/B"));
    EXPECT_EQ(knownTasklists().join(u' '), u"/C") << "another notebook has other tasklists";
    EXPECT_EQ(listed(), u"/B/C /List");
}

TEST_F(TaskLists, recount)
{
    const QDateTime past = now().addDays(-1);
    for (const char *name : {"a.md", "b.md", "c.md", "d.md", "e.md"}) task(QString::fromLatin1(name));
    setStore({{QStringLiteral("a.md"), record("done", past)},
              {QStringLiteral("b.md"), record("no_task")},
              {QStringLiteral("c.md"), record("started", past)},
              {QStringLiteral("d.md"), record("", past)},
              {QStringLiteral("e.md"), record("", now().addSecs(5))},
              {QStringLiteral("gone.md"), record("", past)}});
    EXPECT_EQ(tm_correctTaskCountAtPathWithCleanup(list, false), 2);
    EXPECT_EQ(counters(), u"2 2");
    EXPECT_TRUE(store().contains(QStringLiteral("gone.md")));
    EXPECT_EQ(tm_correctTaskCountAtPath(list), 2);
    EXPECT_FALSE(store().contains(QStringLiteral("gone.md")));
    EXPECT_EQ(counters(), u"2 2");

    const QDateTime written = fileDates(taskStorePath(list)).modified;
    int told = 0;
    const auto watching = notifications().observe(QStringLiteral("TMLTHandleFileModificationInstantly"),
                                                  [&told](const QVariantMap &) { ++told; });
    tm_correctTaskCountAtPath(list);
    EXPECT_EQ(told, 0) << "nothing changed, so nothing is written";
    EXPECT_EQ(fileDates(taskStorePath(list)).modified, written);
    EXPECT_EQ(tm_correctTaskCountAtPath(at(QStringLiteral("/nowhere"))), 0);
}

TEST_F(TaskLists, countsBelowABook)
{
    write(QStringLiteral("/List/a.md"));
    write(QStringLiteral("/List/a.md.plist"));
    write(QStringLiteral("/List/.b.md.icloud"));
    write(QStringLiteral("/List/c.autosave"));
    write(QStringLiteral("/List/Sub/x.md"));
    write(QStringLiteral("/List/Sub/y.md"));
    write(QStringLiteral("/Listless/z.md"));
    for (const char *store : {"/List/Sub/TMTasklistDetails.plist", "/Listless/TMTasklistDetails.plist"})
        writeStore(at(QString::fromLatin1(store)),
                   QVariantMap{{QStringLiteral("__DoneItemCount__"), QStringLiteral("2")},
                               {QStringLiteral("__DueItemCount__"), QStringLiteral("1")}});
    setStore({{QStringLiteral("__DoneItemCount__"), QStringLiteral("9")}});
    updateListOfTasklistsQuick();
    EXPECT_EQ(counted(list, false), u"1 0 1") << "no more done than there are";
    EXPECT_EQ(counted(list, true), u"3 1 3");
    EXPECT_EQ(counted(QStringLiteral("/List"), true), u"3 1 3");
    EXPECT_EQ(counted(root, true), u"4 2 4") << "the root itself, and each tasklist once";
    writeStore(at(QStringLiteral("/List/Sub/TMTasklistDetails.plist")), QVariantMap());
    EXPECT_EQ(counted(list, true), u"3 0 1");
}

TEST_F(TaskLists, dueListLooksAhead)
{
    const struct
    {
        const char *name, *due;
    } tasks[] = {
        {"overdue", "2026-11-21T10:59:00Z"},  {"soon", "2026-11-21T11:00:05Z"},      {"23:59", "2026-11-21T22:59:00Z"},
        {"00:01", "2026-11-21T23:01:00Z"},    {"day after", "2026-11-23T10:00:00Z"}, {"3 days", "2026-11-24T22:59:00Z"},
        {"6 days", "2026-11-27T12:00:00Z"},   {"a week", "2026-11-28T22:58:00Z"},    {"far", "3999-01-01T00:00:00Z"},
        {"long ago", "0001-01-02T00:00:00Z"}, {"done", "2026-11-21T10:00:00Z"}};
    QVariantMap values;
    for (const auto &row : tasks) {
        task(QString::fromLatin1(row.name));
        values.insert(QString::fromLatin1(row.name),
                      record(qstrcmp(row.name, "done") ? "" : "done", utc(QString::fromLatin1(row.due))));
    }
    values.insert(QStringLiteral("gone"), record("", utc(QStringLiteral("2026-11-20T10:00:00Z"))));
    task(QStringLiteral("undated"));
    setStore(values);
    EXPECT_EQ(dueNames().join(u','), u"long ago,overdue");
    EXPECT_EQ(counters(), u"0 2") << "mended on the way";
    EXPECT_EQ(tm_arrayOfDueTasksAsNumbers(root, true), QVariantList({2, 2}));
    const char *added[] = {"23:59,soon", "00:01", "3 days,day after", "", "6 days,a week"};
    QStringList wanted{QStringLiteral("long ago"), QStringLiteral("overdue")};
    for (int index = 1; index <= 5; ++index) {
        wanted += QString::fromLatin1(added[index - 1]).split(u',', Qt::SkipEmptyParts);
        wanted.sort();
        chooseDueLookAhead(index);
        EXPECT_EQ(dueNames(), wanted) << index;
    }
    settings().setObject(QStringLiteral("dueTasksLookAhead"), 6);
    EXPECT_EQ(dueNames().size(), wanted.size() - 1) << "six days are less than a week";
    TMLTDocumentListViewController due;
    due.setSource({{}, DueTasksBook, {}});
    due.getDocumentsInFolder();
    EXPECT_EQ(due.documentsList.first().value(QStringLiteral("title")), QStringLiteral("long ago"));
}

TEST_F(TaskLists, defaultOrderOfATasklist)
{
    QVariantMap values;
    const auto add = [&](const char *name, const char *state, int dueDays, int changedHours) {
        task(QString::fromLatin1(name));
        TaskRecord fields = record(state, dueDays ? now().addDays(dueDays) : QDateTime());
        if (changedHours) fields.insert(taskField::changed, now().addSecs(changedHours * 3600));
        values.insert(QString::fromLatin1(name), fields);
    };
    add("done early", "done", -3, -30);
    add("done late", "done", 0, -1);
    add("done undated", "done", 0, 0);
    add("canceled late", "canceled", 1, -2);
    add("canceled early", "canceled", 0, -4);
    add("due later", "started", 9, 0);
    add("due", "", -1, 0);
    add("no task", "no_task", 0, 0);
    task(QStringLiteral("without a record"));
    setStore(values);
    TMLTDocumentListViewController view;
    view.setSource({list, 0, {}});
    view.getDocumentsInFolder();
    QStringList titles;
    for (const QVariantMap &row : view.documentsList) titles.append(row.value(QStringLiteral("title")).toString());
    EXPECT_EQ(titles.join(u','), u"no task,due,due later,without a record,done late,done early,done undated,"
                                 "canceled late,canceled early");
    EXPECT_EQ(view.documentsList[1].value(QStringLiteral("taskIcon")), QStringLiteral("task-open-due"));
    const QString due = at(QStringLiteral("/List/due"));
    const QVariantMap rule{{taskField::repeatType, QStringLiteral("when due")}};
    EXPECT_EQ(tm_dictionaryForItemAsTask(due, true, rule, {}).value(QStringLiteral("taskIsRepeating")),
              QStringLiteral("1"));
    EXPECT_EQ(view.documentsList[1].value(QStringLiteral("taskIsRepeating")), QString());
    const QVariantMap plain = tm_dictionaryForItemAsTask(due, false, {}, QVariantList());
    EXPECT_EQ(plain.value(QStringLiteral("DueDate")).toDateTime(), farFuture());
    EXPECT_GT(farFuture(), view.documentsList.last().value(QStringLiteral("DueDate")).toDateTime());
}

TEST_F(TaskLists, openCheckBoxes)
{
    EXPECT_EQ(
        openChecklistItems(write(QStringLiteral("/a.md"), "- [ ] a\n > - [ ] b\n- [x] c\n\t: - [ ] d\nx - [ ] e\n")),
        3);
    EXPECT_EQ(openChecklistItems(write(QStringLiteral("/a.txt"), "- [ ] a\n")), 0);
    const QString page = write(QStringLiteral("/a.html"), "<i class=\"tm_checkbox\"></i><i class=\"tm_checkbox\"></i>");
    EXPECT_EQ(openChecklistItems(page), 2);
    qlonglong told = -1;
    countOpenChecklistItems(page, [&told](qlonglong count) { told = count; });
    while (told < 0) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(told, 2);
}
