// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/organising/Tasklist.h"

#include "library/Root.h"
#include "organising/dates/ReminderDelivery.h"
#include "organising/dates/Reminders.h"
#include "organising/tasks/TaskLists.h"

using namespace tomelet;
using tomelet::test::Tasklist;

namespace {

class NotedReminders final : public ReminderPresenter
{
public:
    void present(const Reminder &reminder, const Answers &given) override
    {
        shown.append(reminder.path);
        answers = given;
    }
    void withdraw(const QString &path) override { withdrawn.append(path); }

    QStringList shown, withdrawn;
    Answers answers;
};

} // namespace

class Reminders : public Tasklist
{
protected:
    QString due(const char *name, int minutes)
    {
        const QString item = task(QString::fromLatin1(name));
        tm_setDueDate(item, now().addSecs(60 * minutes));
        return item;
    }
    static QString scheduled()
    {
        QStringList found;
        for (const Reminder &reminder : scheduledReminders()) found.append(reminderText(reminder.path));
        return found.join(u' ');
    }
};

TEST_F(Reminders, areRebuiltFromTheStores)
{
    due("late.md", -60);
    const QString later = due("later.md", 120);
    const QString soon = due("soon.md", 60);
    drainPendingWork();
    EXPECT_EQ(scheduled(), u"soon later");
    tm_setRepeatDetails(later, {QStringLiteral("when due"), QStringLiteral("day"), QStringLiteral("1")});
    const QList<ReminderCandidate> candidates = reminderCandidates();
    EXPECT_EQ(candidates.last().repeatInterval, 16);
    for (int i = 0; i < 2; ++i) tm_toggleTask(soon);
    drainPendingWork();
    EXPECT_EQ(scheduled(), u"later");
    for (int i = 0; i < 2; ++i) tm_toggleTask(soon);
    drainPendingWork();
    EXPECT_EQ(scheduled(), u"soon later") << "open again";
    tm_toggleTasklistKeepingDetails(list, true);
    drainPendingWork();
    EXPECT_EQ(scheduled(), u"");
}

TEST_F(Reminders, skipResourcesTrashAndBrokenStores)
{
    const QVariantMap values{{QStringLiteral("x.md"), record("", now().addDays(1))}};
    for (const char *book : {"/TMResources/T", "/.TMTrash/T", "/Other"}) {
        write(QString::fromLatin1(book) + QStringLiteral("/x.md"));
        writeStore(taskStorePath(at(QString::fromLatin1(book))), values);
    }
    setStore({{QStringLiteral("a"), qlonglong(1)}, {QStringLiteral("b"), QVariantMap{{taskField::dueDate, true}}}});
    write(QStringLiteral("/Broken/TMTasklistDetails.plist"), "bplist00");
    settings().setObject(QStringLiteral("allTaskLists"),
                         QVariantList{QStringLiteral("/TMResources/T"), QStringLiteral("/.TMTrash/T"),
                                      QStringLiteral("/Other"), QStringLiteral("/Broken"), QStringLiteral("/Gone"),
                                      QStringLiteral("/List")});
    tm_repostAllNotifications();
    ASSERT_EQ(scheduledReminders().size(), 1);
    EXPECT_EQ(scheduledReminders().first().path, at(QStringLiteral("/Other/x.md")));
}

TEST_F(Reminders, asADictionary)
{
    const QString item = task(QStringLiteral("Buy.me.md"));
    const QVariantMap loud = tm_notificationForDate(item, now(), 16);
    EXPECT_EQ(loud.value(QStringLiteral("informativeText")), QStringLiteral("Buy.me"));
    EXPECT_EQ(loud.value(QStringLiteral("identifier")), item);
    EXPECT_TRUE(loud.contains(QStringLiteral("soundName")));
    const QVariantMap silent = tm_notificationForDate(item, utc(QStringLiteral("2026-11-20T23:01:00Z")), 0);
    EXPECT_FALSE(silent.contains(QStringLiteral("soundName")));
}

TEST_F(Reminders, areDeliveredOnceAndByOne)
{
    const QString item = due("a.md", 5);
    due("b.md", 60);
    drainPendingWork();
    NotedReminders here;
    const ReminderDelivery delivery(here);
    EXPECT_TRUE(here.shown.isEmpty());
    platform().clock.fix(now().addSecs(300));
    NotedReminders there;
    const ReminderDelivery second(there);
    EXPECT_EQ(there.shown, QStringList{item}) << "what came due is shown at once";
    drainPendingWork();
    EXPECT_EQ(scheduled(), u"b");
    EXPECT_TRUE(here.shown.isEmpty()) << "two programs do not both show it";

    platform().clock.fix(now().addSecs(1));
    tm_correctTaskCountAtPath(list);
    EXPECT_EQ(counters(), u"0 1");
    QString opened;
    const auto watching =
        notifications().observe(QStringLiteral("TMLTShowItemAtPathNotification"), [&](const QVariantMap &payload) {
            opened = payload.value(QStringLiteral("path")).toString();
        });
    there.answers.opened();
    EXPECT_EQ(opened, item);
    for (int i = 0; i < 2; ++i) tm_toggleTask(item);
    drainPendingWork();
    EXPECT_EQ(there.withdrawn, QStringList{item}) << "a task that is done is not reminded of";
    EXPECT_TRUE(deliveredReminders().isEmpty());
}

TEST_F(Reminders, missedOnesWaitForSomebodyToShowThem)
{
    const QString item = due("a.md", 5);
    const QString done = due("b.md", 6);
    drainPendingWork();
    platform().clock.fix(now().addSecs(3600));
    for (int i = 0; i < 2; ++i) tm_toggleTask(done);
    drainPendingWork();
    EXPECT_EQ(scheduled(), u"") << "an overdue task has no scheduled reminder";
    NotedReminders presenter;
    {
        const ReminderDelivery delivery(presenter);
        EXPECT_EQ(presenter.shown, QStringList{item});
        presenter.answers.failed();
        rebuildRemindersSoon();
        drainPendingWork();
        EXPECT_EQ(presenter.shown.size(), 1) << "with nobody to show it, it is not tried at every rebuild";
    }
    const ReminderDelivery again(presenter);
    EXPECT_EQ(presenter.shown, QStringList({item, item})) << "what could not be shown is tried again";
    const ReminderDelivery third(presenter);
    EXPECT_EQ(presenter.shown.size(), 2);
}
