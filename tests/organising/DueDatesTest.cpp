// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/organising/Tasklist.h"

#include "library/Properties.h"
#include "organising/dates/DueDateCalendar.h"
#include "organising/dates/DueDateDialog.h"
#include "organising/dates/DueDateTexts.h"
#include "organising/dates/RepeatRule.h"

#include <ctime>

using namespace tomelet;
using tomelet::test::Tasklist;

class DueDates : public Tasklist
{
protected:
    ~DueDates() override { setZone("Europe/Berlin"); }
    static void setZone(const char *zone)
    {
        qputenv("TZ", zone);
        tzset();
    }
    static TaskRecord rule(const char *type, const char *unit, const QVariant &factor)
    {
        return {{taskField::repeatType, QString::fromLatin1(type)},
                {taskField::repeatUnit, QString::fromLatin1(unit)},
                {taskField::repeatFactor, factor}};
    }
    // A repeating task that is about to be done.
    QString repeating(const char *due, const char *type, const char *unit, int factor)
    {
        const QString item = task(QStringLiteral("a.md"));
        tm_setRepeatDetails(item, {QString::fromLatin1(type), QString::fromLatin1(unit), QString::number(factor)});
        tm_setDueDate(item, utc(QString::fromLatin1(due)));
        tm_toggleTask(item);
        return item;
    }
};

TEST_F(DueDates, stepsByTheCalendar)
{
    const struct
    {
        const char *zone, *from, *unit;
        int factor;
        const char *now, *wanted;
    } rows[] = {
        // Each step starts at the date reached: the 31st is lost for good in February.
        {"Europe/Berlin", "2026-01-31T09:00:00Z", "month", 1, "2026-02-01T00:00:00Z", "2026-02-28T09:00:00Z"},
        {"Europe/Berlin", "2026-01-31T09:00:00Z", "month", 1, "2026-03-01T00:00:00Z", "2026-03-28T09:00:00Z"},
        {"Europe/Berlin", "2024-02-29T09:00:00Z", "year", 1, "2025-01-01T00:00:00Z", "2025-02-28T09:00:00Z"},
        {"Europe/Berlin", "2024-02-29T09:00:00Z", "year", 4, "2025-01-01T00:00:00Z", "2028-02-29T09:00:00Z"},
        // Summer time: the clock keeps its time of day, hours keep their length.
        {"Europe/Berlin", "2026-03-28T09:00:00Z", "day", 1, "2026-03-28T10:00:00Z", "2026-03-29T08:00:00Z"},
        {"Europe/Berlin", "2026-03-28T22:00:00Z", "hour", 12, "2026-03-28T23:00:00Z", "2026-03-29T10:00:00Z"},
        {"Europe/Berlin", "2026-03-28T01:30:00Z", "day", 1, "2026-03-28T02:00:00Z", "2026-03-29T01:00:00Z"},
        {"Europe/Berlin", "2026-10-24T00:30:00Z", "day", 1, "2026-10-24T02:00:00Z", "2026-10-25T00:30:00Z"},
        {"America/New_York", "2026-10-30T12:00:00Z", "week", 1, "2026-10-31T00:00:00Z", "2026-11-06T13:00:00Z"},
        {"Australia/Lord_Howe", "2026-10-03T15:45:00Z", "day", 1, "2026-10-03T16:00:00Z", "2026-10-04T15:45:00Z"},
        {"America/Sao_Paulo", "2018-11-03T03:00:00Z", "day", 1, "2018-11-03T04:00:00Z", "2018-11-04T03:00:00Z"},
        // Missed ones are skipped, one on the very moment as well; one that is early still moves on.
        {"Europe/Berlin", "2026-11-01T09:00:00Z", "day", 3, "2026-11-10T09:00:00Z", "2026-11-13T09:00:00Z"},
        {"Europe/Berlin", "2026-11-30T09:00:00Z", "week", 2, "2026-11-10T09:00:00Z", "2026-12-14T09:00:00Z"},
        {"Europe/Berlin", "2020-01-01T09:00:00Z", "hour", 7, "2026-11-10T09:00:00Z", "2026-11-10T12:00:00Z"},
        {"Europe/Berlin", "0001-01-01T09:00:00Z", "hour", 1, "2026-11-10T09:30:00Z", "2026-11-10T10:00:00Z"},
        {"Europe/Berlin", "9999-06-01T09:00:00Z", "year", 1, "2026-11-10T09:30:00Z", ""},
    };
    for (const auto &row : rows) {
        setZone(row.zone);
        const auto parsed = repeatRuleOf(rule("when due", row.unit, QString::number(row.factor)));
        ASSERT_TRUE(parsed);
        const QDateTime next =
            nextOccurrence(utc(QString::fromLatin1(row.from)), *parsed, utc(QString::fromLatin1(row.now)));
        EXPECT_EQ(next.isValid() ? next.toString(Qt::ISODate) : QString(), QLatin1StringView(row.wanted))
            << row.from << ' ' << row.unit;
    }
    setZone("Europe/Berlin");
    const auto daily = repeatRuleOf(rule("when due", "day", QStringLiteral("1")));
    const QDateTime next = nextOccurrence(farPast().addDays(2), *daily, now());
    EXPECT_TRUE(next > now() && next <= now().addDays(1));
}

TEST_F(DueDates, rulesThatCannotBeFollowed)
{
    for (const TaskRecord &bad :
         {rule("when due", "day", QStringLiteral("0")), rule("when due", "day", QStringLiteral("-1")),
          rule("when due", "day", QStringLiteral("x")), rule("when due", "fortnight", QStringLiteral("1")),
          rule("always", "day", QStringLiteral("1")), rule("when due", "year", QStringLiteral("99999999999")),
          rule("when due", "day", QVariant(QVariantList{1})), TaskRecord()})
        EXPECT_FALSE(repeatRuleOf(bad));
    EXPECT_EQ(repeatRuleOf(rule("when done", "day", qlonglong(2)))->factor, 2);
    const QString item = repeating("2026-11-01T09:00:00Z", "when due", "day", 0);
    tm_toggleTask(item);
    drainPendingWork();
    EXPECT_EQ(state(item), u"done") << "a broken rule neither repeats nor hangs";
    EXPECT_EQ(names(QStringLiteral("/List")).size(), 2);
}

TEST_F(DueDates, doneTaskComesAgainAndLeavesADatedCopy)
{
    const QString item = repeating("2026-11-18T08:00:00Z", "when due", "day", 1);
    tm_setProperty(item, QStringLiteral("red"), QStringLiteral("cellColor"));
    const QDateTime toggled = now().addSecs(-60);
    tm_toggleTaskWithDate(item, toggled);
    EXPECT_EQ(counters(), u"1 0");
    drainPendingWork();
    EXPECT_EQ(tm_dueDateForTask(item), utc(QStringLiteral("2026-11-22T08:00:00Z")));
    EXPECT_EQ(tm_iconForTask(item), u"task-open");
    EXPECT_EQ(tm_doneDateForTask(item), toggled);
    EXPECT_EQ(counters(), u"1 0");

    QString copyName;
    for (const QString &key : store().keys())
        if (key.startsWith(u"a - ")) copyName = key;
    EXPECT_TRUE(copyName.startsWith(u"a - Nov 21, 2026, 12.00")) << copyName.toStdString();
    const QString copy = at(QStringLiteral("/List/") + copyName);
    EXPECT_EQ(*tm_getAllTaskDetails(copy),
              TaskRecord({{taskField::state, QStringLiteral("done")},
                          {taskField::dueDate, utc(QStringLiteral("2026-11-18T08:00:00Z"))},
                          {taskField::changed, now()}}));
    EXPECT_EQ(tm_propertyForKey(copy, QStringLiteral("cellColor")), QStringLiteral("red"));
    EXPECT_EQ(tm_repeatDetails(item)->join(u' '), u"when due day 1");
}

TEST_F(DueDates, whenDoneCountsFromTheDayOfFinishing)
{
    const QString item = repeating("2026-11-16T08:00:00Z", "when done", "week", 1);
    tm_toggleTask(item);
    drainPendingWork();
    EXPECT_EQ(tm_dueDateForTask(item), utc(QStringLiteral("2026-11-28T08:00:00Z")));
    for (const QString &key : store().keys()) {
        if (!key.startsWith(u"a - ")) continue;
        EXPECT_EQ(dateField(store().value(key).toMap(), taskField::dueDate),
                  utc(QStringLiteral("2026-11-21T08:00:00Z")));
    }
    setNow(QStringLiteral("2026-11-21T11:00:30Z"));
    const QString hourly = repeating("2026-11-16T08:30:00Z", "when done", "hour", 2);
    tm_toggleTask(hourly);
    drainPendingWork();
    EXPECT_EQ(tm_dueDateForTask(hourly), utc(QStringLiteral("2026-11-21T13:00:00Z")))
        << "hours count from this very minute";
}

TEST_F(DueDates, copyOfALongNameKeepsItsStamp)
{
    const QString item = task(QString(110, QChar(0xfc)) + QStringLiteral(".md"));
    for (const char *stamp : {"Nov 21, 2026, 12.00", "Nov 21, 2026, 12.01"}) {
        tm_setRepeatDetails(item, {QStringLiteral("when due"), QStringLiteral("day"), QStringLiteral("1")});
        tm_setDueDate(item, now().addDays(-1));
        for (int i = 0; i < 2; ++i) tm_toggleTask(item);
        drainPendingWork();
        const QStringList found = names(QStringLiteral("/List")).filter(QString::fromLatin1(stamp));
        ASSERT_EQ(found.size(), 1) << stamp;
        EXPECT_TRUE(found.first().endsWith(u".md") && found.first().toUtf8().size() <= 249);
        platform().clock.fix(now().addSecs(60));
    }
}

TEST_F(DueDates, noCopyWhenItIsNoLongerDone)
{
    const QString item = repeating("2026-11-18T08:00:00Z", "when due", "day", 1);
    tm_toggleTask(item);
    tm_toggleTask(item);
    drainPendingWork();
    EXPECT_EQ(state(item), u"canceled");
    EXPECT_EQ(names(QStringLiteral("/List")).join(u' '), u"TMTasklistDetails.plist a.md");
    tm_addRepeatingTask(at(QStringLiteral("/nowhere.md")));
}

TEST_F(DueDates, settingAndClearing)
{
    const QString item = task(QStringLiteral("a.md"));
    tm_setDueDate(item, utc(QStringLiteral("2026-11-20T09:30:45Z")));
    EXPECT_EQ(tm_dueDateForTask(item), utc(QStringLiteral("2026-11-20T09:30:00Z")));
    EXPECT_EQ(counters(), u"0 1");
    tm_setDueDate(item, utc(QStringLiteral("2026-11-22T09:30:00Z")));
    EXPECT_EQ(counters(), u"0 0");
    tm_setDueDate(item, utc(QStringLiteral("0001-01-01T00:00:59Z")));
    EXPECT_EQ(tm_dueDateForTask(item), farPast());
    tm_setDueDate(item, utc(QStringLiteral("1970-01-01T00:00:00Z")).addMSecs(-500));
    EXPECT_EQ(tm_dueDateForTask(item), utc(QStringLiteral("1969-12-31T23:59:00Z")));
    tm_setDueDate(item, QDateTime());
    tm_setRepeatDetails(item, {QStringLiteral("when due"), QStringLiteral("week"), QStringLiteral("2")});
    EXPECT_EQ(tm_readableRepeatDetails(item), u"Every 2 weeks");
    tm_clearDueDate(item);
    EXPECT_EQ(tm_getAllTaskDetails(item)->keys(), QStringList{taskField::changed});
    EXPECT_EQ(counters(), u"0 0");
    EXPECT_EQ(tm_readableRepeatDetails(item), u"---");
}

TEST_F(DueDates, readableRules)
{
    const struct
    {
        const char *type, *unit, *factor, *wanted;
    } rows[] = {{"when due", "day", "1", "Every Day "},
                {"when due", "hour", "0", "Every Hour "},
                {"when due", "moon", "1", "Every "},
                {"when due", "month", "3", "Every 3 months"},
                {"when done", "week", "1", "1 week after completion"},
                {"when done", "year", "2", " 2 years after completion"}};
    for (const auto &row : rows)
        EXPECT_EQ(tm_readableRepeatDetailsForDetails(
                      {QString::fromLatin1(row.type), QString::fromLatin1(row.unit), QString::fromLatin1(row.factor)}),
                  QLatin1StringView(row.wanted));
}

TEST_F(DueDates, texts)
{
    const QString thin = QString::fromUtf8("\u202f");
    const auto weekday = [](const char *iso) { return tm_weekdayString(utc(QString::fromLatin1(iso))); };
    EXPECT_EQ(weekday("2026-11-20T23:01:00Z"), u"Today") << "one minute past midnight is no alert";
    EXPECT_EQ(QString(weekday("2026-11-22T08:30:00Z")).replace(thin, QStringLiteral(" ")), u"Tomorrow, 9:30 AM");
    EXPECT_EQ(weekday("2026-11-19T23:01:00Z"), u"Yesterday");
    EXPECT_EQ(weekday("2026-12-23T23:01:00Z"), u"Thu, Dec 24, 2026");
    EXPECT_EQ(tm_weekdayStringWithOffset(utc(QStringLiteral("2026-11-23T23:01:00Z"))), u"Tue, Nov 24, 2026 (3 days)");
    EXPECT_EQ(tm_weekdayStringWithOffset(utc(QStringLiteral("2026-11-18T23:01:00Z"))),
              u"Thu, Nov 19, 2026 (2 days ago)");
    EXPECT_EQ(tm_weekdayStringWithOffset(utc(QStringLiteral("2026-11-21T23:01:00Z"))), u"Tomorrow");
    EXPECT_EQ(tm_absoluteWeekdayString(now()).replace(thin, QStringLiteral(" ")), u"Sat, Nov 21, 2026, 12:00 PM");
    EXPECT_EQ(tm_sortableDateTimeString(now()), u"2026-11-21 12.00");
    EXPECT_EQ(tm_alertTimeString(now()), u"12:00");
    EXPECT_FALSE(tm_thatDayMidnight(QDateTime()).isValid());
    EXPECT_EQ(tm_shortDateTimeString(QDateTime()), u"");
    for (const QDateTime &none : {farPast(), farFuture(), QDateTime()})
        EXPECT_EQ(tm_weekdayString(none) + tm_absoluteWeekdayString(none) + tm_fancyWeekdayString(none), u"");
    const struct
    {
        int age;
        const char *wanted;
    } rows[] = {{0, "just now"},      {119, "just now"},     {120, "2 minutes ago"}, {3599, "59 minutes ago"},
                {3600, "1 hour ago"}, {7200, "2 hours ago"}, {14399, "3 hours ago"}};
    for (const auto &row : rows)
        EXPECT_EQ(tm_fancyWeekdayString(now().addSecs(-row.age)), QLatin1StringView(row.wanted));
    EXPECT_TRUE(tm_fancyWeekdayString(now().addSecs(-14400)).startsWith(u"Today, "));
}

TEST_F(DueDates, dialog)
{
    const QString item = task(QStringLiteral("a.md"));
    const QString other = task(QStringLiteral("b.md"));
    const auto answer = [&](int button, const DueDateChoice &wanted) {
        DueDateChoice start;
        tm_showDueDateDialogForItems({item, other}, [&](const Question &, DueDateChoice &choice) {
            start = choice;
            choice = wanted;
            return button;
        });
        drainPendingWork();
        return start;
    };
    const QDateTime midnight = utc(QStringLiteral("2026-11-20T23:00:00Z"));
    EXPECT_EQ(answer(2, {now(), {}}).date, midnight) << "without a date it begins with today";
    EXPECT_EQ(tm_dueDateForTask(item), farFuture());
    const QStringList weekly{QStringLiteral("when due"), QStringLiteral("week"), QStringLiteral("1")};
    (void)answer(0, {midnight, weekly});
    EXPECT_EQ(tm_dueDateForTask(other), midnight.addSecs(60));
    EXPECT_FALSE(tm_dueDateHasAlertTime(tm_dueDateForTask(other)));
    const DueDateChoice start = answer(0, {now(), {}});
    EXPECT_EQ(start.date, midnight);
    EXPECT_EQ(start.repeatDetails, weekly);
    EXPECT_EQ(tm_readableRepeatDetails(item) + tm_readableRepeatDetails(other), u"------") << "told not to repeat";
    tm_setRepeatDetails(other, weekly);
    (void)answer(0, {now(), {}});
    EXPECT_EQ(tm_repeatDetails(other), weekly) << "nobody spoke of its rule";
    EXPECT_EQ(answer(2, {}).date, now());
    clearAlerts({item});
    EXPECT_EQ(tm_dueDateForTask(item), midnight.addSecs(60));
    (void)answer(1, {});
    EXPECT_EQ(tm_dueDateForTask(item), farFuture());

    TMLTDueDatePicker picker;
    EXPECT_FALSE(picker.showsUnitAndFactor());
    EXPECT_TRUE(picker.chooseType(2)) << "a new rule asks for its factor";
    EXPECT_EQ(picker.repeatDetails().join(u' '), u"when done week 1");
    EXPECT_EQ(picker.unitTitles().value(2), u"week");
    picker.setFactor(2);
    EXPECT_EQ(picker.unitTitles().value(2), u"weeks");
    EXPECT_FALSE(picker.chooseType(1));
    picker.chooseType(0);
    EXPECT_TRUE(picker.repeatDetails().isEmpty());
}
