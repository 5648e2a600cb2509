// SPDX-License-Identifier: GPL-3.0-or-later
// A year of tasks in three time zones with summer time: tasks with random states, dates and repeats are changed at
// random, and after every step counters, due list and reminders equal what a plain model of them says. The model knows
// no code of ours: repeats are stepped by ICU's calendar, counts are counted.
//
// Sixty tasks every few days are what a run of all tests has time for. TOMELET_FULL_YEAR=1 makes it a thousand tasks
// day by day, with due list and reminders compared after each single change: ten minutes.
#include "tests/organising/Tasklist.h"

#include "organising/dates/Reminders.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskRows.h"

#include <QRandomGenerator>

#include <unicode/ucal.h>

#include <ctime>
#include <map>

using namespace tomelet;
using tomelet::test::Tasklist;

namespace {

struct Scale
{
    int books, tasksOfBook, changesOfDay, mostDaysBetween;
    bool comparesEachChange;
};
const Scale scale =
    qEnvironmentVariableIsSet("TOMELET_FULL_YEAR") ? Scale{20, 50, 10, 1, true} : Scale{3, 20, 5, 3, false};

struct ModelTask
{
    bool hasRecord = false;
    QString state;
    QDateTime due;
    QString type, unit;
    int factor = 0;
};

// The calendar of the zone, whose clocks show the next valid time for one that they skip and the first of two
// equal ones.
class OracleCalendar
{
public:
    explicit OracleCalendar(const char *zone)
    {
        UErrorCode status = U_ZERO_ERROR;
        const QString name = QString::fromLatin1(zone);
        m_calendar = ucal_open(reinterpret_cast<const UChar *>(name.utf16()), int32_t(name.size()), "en_US",
                               UCAL_GREGORIAN, &status);
        ucal_setAttribute(m_calendar, UCAL_SKIPPED_WALL_TIME, UCAL_WALLTIME_NEXT_VALID);
        ucal_setAttribute(m_calendar, UCAL_REPEATED_WALL_TIME, UCAL_WALLTIME_FIRST);
    }
    ~OracleCalendar() { ucal_close(m_calendar); }
    OracleCalendar(const OracleCalendar &) = delete;
    OracleCalendar &operator=(const OracleCalendar &) = delete;

    QDateTime plus(const QDateTime &date, const QString &unit, int factor)
    {
        static const std::map<QString, UCalendarDateFields> fields{{QStringLiteral("hour"), UCAL_HOUR},
                                                                   {QStringLiteral("day"), UCAL_DATE},
                                                                   {QStringLiteral("week"), UCAL_WEEK_OF_YEAR},
                                                                   {QStringLiteral("month"), UCAL_MONTH},
                                                                   {QStringLiteral("year"), UCAL_YEAR}};
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(m_calendar, double(date.toMSecsSinceEpoch()), &status);
        ucal_add(m_calendar, fields.at(unit), factor, &status);
        return QDateTime::fromMSecsSinceEpoch(qint64(ucal_getMillis(m_calendar, &status)), Qt::UTC);
    }
    // The time of day of one moment (or midnight and so many minutes) on the day of another.
    QDateTime timeOnDay(const QDateTime &day, int hour, int minute)
    {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(m_calendar, double(day.toMSecsSinceEpoch()), &status);
        const int32_t year = ucal_get(m_calendar, UCAL_YEAR, &status),
                      month = ucal_get(m_calendar, UCAL_MONTH, &status);
        const int32_t date = ucal_get(m_calendar, UCAL_DATE, &status);
        ucal_clear(m_calendar);
        ucal_setDateTime(m_calendar, year, month, date, hour, minute, 0, &status);
        return QDateTime::fromMSecsSinceEpoch(qint64(ucal_getMillis(m_calendar, &status)), Qt::UTC);
    }
    int get(const QDateTime &date, UCalendarDateFields field)
    {
        UErrorCode status = U_ZERO_ERROR;
        ucal_setMillis(m_calendar, double(date.toMSecsSinceEpoch()), &status);
        return ucal_get(m_calendar, field, &status);
    }

private:
    UCalendar *m_calendar = nullptr;
};

bool settled(const ModelTask &task)
{
    return task.state == u"done" || task.state == u"canceled" || task.state == u"no_task";
}

} // namespace

class TaskYear : public Tasklist, public ::testing::WithParamInterface<const char *>
{
protected:
    TaskYear()
        : m_calendar(GetParam())
        , m_random(20260101)
    {
        qputenv("TZ", GetParam());
        tzset();
        for (int book = 0; book < scale.books; ++book) {
            makeBook(QStringLiteral("/B%1").arg(book));
            tm_toggleTasklistKeepingDetails(at(QStringLiteral("/B%1").arg(book)), false);
            for (int i = 0; i < scale.tasksOfBook; ++i)
                m_model[write(QStringLiteral("/B%1/t%2.md").arg(book).arg(i), "x")] = {};
        }
        drainPendingWork();
    }
    ~TaskYear() override
    {
        qputenv("TZ", "Europe/Berlin");
        tzset();
    }

    int random(int below) { return int(m_random.bounded(below)); }
    QString anyTask() { return std::next(m_model.begin(), random(int(m_model.size())))->first; }

    void change();
    void toggle(const QString &path, ModelTask &task);
    void repeat(ModelTask &task, const QString &book);
    QDateTime anyDate();
    void compareCounters(const QString &book, const char *after);
    void compareRest();

    OracleCalendar m_calendar;
    QRandomGenerator m_random;
    std::map<QString, ModelTask> m_model;
    std::map<QString, int> m_doneCopies; ///< dated copies of each book
};

// Around now, with a liking for the hours in which clocks change, and for midnight.
QDateTime TaskYear::anyDate()
{
    const QDateTime day = now().addDays(random(40) - 15);
    const int kind = random(3);
    return m_calendar.timeOnDay(day, kind == 0 ? random(4) : random(24), kind == 1 ? 1 : random(60));
}

void TaskYear::toggle(const QString &path, ModelTask &task)
{
    tm_toggleTask(path);
    if (!task.hasRecord || task.state.isEmpty() || task.state == u"no_task") task.state = QStringLiteral("started");
    else if (task.state == u"started") task.state = QStringLiteral("done");
    else if (task.state == u"done") task.state = QStringLiteral("canceled");
    else task.state = QString();
    task.hasRecord = true;
}

void TaskYear::repeat(ModelTask &task, const QString &book)
{
    QDateTime next = task.due;
    if (task.type == u"when done") {
        const QDateTime &clock = task.unit == u"hour" ? now() : task.due;
        next = m_calendar.timeOnDay(now(), m_calendar.get(clock, UCAL_HOUR_OF_DAY), m_calendar.get(clock, UCAL_MINUTE));
    }
    do next = m_calendar.plus(next, task.unit, task.factor);
    while (next <= now());
    task.due = next;
    task.state = QString();
    ++m_doneCopies[book];
}

void TaskYear::change()
{
    static const char *const units[] = {"hour", "day", "week", "month", "year"};
    const QString path = anyTask();
    const QString book = path.section(u'/', 0, -2);
    ModelTask &task = m_model[path];
    const int kind = random(10);
    if (kind < 6) {
        const bool wasNoTask = task.state == u"no_task";
        toggle(path, task);
        // Toggling what is no task leaves a counter wrong, on purpose, until the store is recounted.
        if (wasNoTask) tm_taskPlistChangedAtPath(taskStorePath(book));
        compareCounters(book, "a toggle");
        drainPendingWork();
        if (task.state == u"done" && !task.type.isEmpty()) repeat(task, book);
    } else if (kind < 8) {
        const QDateTime due = anyDate();
        tm_setDueDate(path, due);
        task.hasRecord = true;
        task.due = due;
        if (random(3) > 0) {
            task.type = random(2) ? QStringLiteral("when due") : QStringLiteral("when done");
            task.unit = QString::fromLatin1(units[random(5)]);
            task.factor = 1 + random(3);
            tm_setRepeatDetails(path, {task.type, task.unit, QString::number(task.factor)});
        }
    } else if (kind == 8) {
        tm_clearDueDate(path);
        if (task.hasRecord) task = {true, task.state, {}, {}, {}, 0};
    } else {
        tm_toggleItemIsTask(path);
        task = {true, task.hasRecord && task.state == u"no_task" ? QString() : QStringLiteral("no_task"), {}, {}, {},
                0};
    }
    compareCounters(book, "a change");
}

void TaskYear::compareCounters(const QString &book, const char *after)
{
    qlonglong done = m_doneCopies[book], due = 0;
    for (const auto &[path, task] : m_model) {
        if (!path.startsWith(QString(book + u'/'))) continue;
        if (settled(task)) ++done;
        else if (task.due.isValid() && task.due < now()) ++due;
    }
    const TaskStore store(book);
    ASSERT_EQ(store.doneCount(), done) << "after " << after;
    ASSERT_EQ(store.dueCount(), due) << "after " << after;
}

void TaskYear::compareRest()
{
    QMap<QString, QDateTime> dueWanted, remindersWanted;
    static constexpr int days[] = {0, 0, 1, 3, 5, 7};
    const int index = random(6);
    settings().setObject(QStringLiteral("dueTasksLookAhead"), index);
    const int passed = m_calendar.get(now(), UCAL_HOUR_OF_DAY) * 3600 + m_calendar.get(now(), UCAL_MINUTE) * 60;
    const QDateTime horizon = index == 0 ? now() : now().addSecs(86399 - passed + days[index] * 86400);
    for (const auto &[path, task] : m_model) {
        if (settled(task) || !task.due.isValid()) continue;
        if (task.due < now() || task.due < horizon) dueWanted.insert(path, task.due);
        if (task.due > now()) remindersWanted.insert(path, task.due);
    }
    QMap<QString, QDateTime> due, reminders;
    for (const QVariant &row : tm_arrayOfDueTasksAsNumbers(root, false)) {
        const QVariantMap values = row.toMap();
        due.insert(values.value(QStringLiteral("path")).toString(),
                   values.value(QStringLiteral("DueDate")).toDateTime());
    }
    QDateTime last;
    for (const Reminder &reminder : scheduledReminders()) {
        reminders.insert(reminder.path, reminder.fireDate);
        ASSERT_FALSE(last.isValid() && reminder.fireDate < last) << "not in the order of their dates";
        last = reminder.fireDate;
    }
    ASSERT_EQ(due, dueWanted);
    ASSERT_EQ(reminders, remindersWanted);
}

TEST_P(TaskYear, everyStepEqualsAPlainRecount)
{
    const QDateTime start = utc(QStringLiteral("2027-01-01T11:00:00Z"));
    for (int day = 0; day < 365 && !HasFatalFailure(); day += 1 + random(scale.mostDaysBetween)) {
        platform().clock.fix(start.addDays(day).addSecs(3600 * random(12)));
        for (int index = 0; index < scale.books; ++index) {
            const QString book = at(QStringLiteral("/B%1").arg(index));
            tm_correctTaskCountAtPath(book);
            compareCounters(book, "the night");
        }
        for (int i = 0; i < scale.changesOfDay && !HasFatalFailure(); ++i) {
            change();
            if (!scale.comparesEachChange) continue;
            drainPendingWork();
            compareRest();
        }
        drainPendingWork();
        compareRest();
    }
    int copies = 0;
    for (const auto &[book, count] : m_doneCopies) copies += count;
    EXPECT_GT(copies, 20) << "the year was too quiet to tell anything";
}

INSTANTIATE_TEST_SUITE_P(Zones, TaskYear,
                         ::testing::Values("Europe/Berlin", "America/New_York", "Australia/Lord_Howe"));
