// SPDX-License-Identifier: GPL-3.0-or-later
// A year of tasks in three time zones with summer time: tasks with random states, dates and repeats are changed, moved
// and switched off at random, and after every step records, icons, counters, due list, reminders and their alerts equal
// what a plain model of them says. The model knows no code of ours: repeats are stepped by ICU's calendar, counts are
// counted.
//
// Sixty tasks every few days are what a run of all tests has time for. TOMELET_FULL_YEAR=1 makes it a thousand tasks
// day by day, with due list and reminders compared after each single change: ten minutes.
#include "tests/organising/Tasklist.h"

#include "library/ItemOperations.h"
#include "organising/dates/Reminders.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskRows.h"

#include <QRandomGenerator>

#include <unicode/ucal.h>

#include <ctime>
#include <map>
#include <set>

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

    static QString bookOf(const QString &path) { return path.section(u'/', 0, -2); }

    void change();
    void toggle(const QString &path, ModelTask &task);
    void repeat(const QString &path, ModelTask &task);
    void setDate(const QString &path, ModelTask &task);
    void move(const QString &path);
    void switchOffOrOn(const QString &book);
    QDateTime anyDate();
    void compareTask(const QString &path);
    void compareCopy(const QString &book, const QDateTime &due);
    void compareCounters(const QString &book, const char *after);
    void compareRest();
    void compareReminders(const QMap<QString, QDateTime> &wanted);

    OracleCalendar m_calendar;
    QRandomGenerator m_random;
    std::map<QString, ModelTask> m_model;
    std::map<QString, std::set<QString>> m_copies; ///< names of the dated copies in each book
    std::set<QString> m_off;                       ///< books whose tasklist is switched off
    int m_moves = 0;
};

// Around now, with a liking for the hours in which clocks change, and for days without an alert.
QDateTime TaskYear::anyDate()
{
    const QDateTime day = now().addDays(random(40) - 15);
    const int kind = random(3);
    if (kind == 1) return m_calendar.timeOnDay(day, 0, 1);
    return m_calendar.timeOnDay(day, kind == 0 ? random(4) : random(24), random(60));
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

void TaskYear::repeat(const QString &path, ModelTask &task)
{
    QDateTime next = task.due;
    if (task.type == u"when done") {
        const QDateTime &clock = task.unit == u"hour" ? now() : task.due;
        next = m_calendar.timeOnDay(now(), m_calendar.get(clock, UCAL_HOUR_OF_DAY), m_calendar.get(clock, UCAL_MINUTE));
    }
    compareCopy(bookOf(path), next);
    do next = m_calendar.plus(next, task.unit, task.factor);
    while (next <= now());
    task.due = next;
    task.state = QString();
}

void TaskYear::setDate(const QString &path, ModelTask &task)
{
    static const char *const units[] = {"hour", "day", "week", "month", "year"};
    task.hasRecord = true;
    task.due = anyDate();
    tm_setDueDate(path, task.due);
    if (random(3) == 0) return;
    task.type = random(2) ? QStringLiteral("when due") : QStringLiteral("when done");
    task.unit = QString::fromLatin1(units[random(5)]);
    task.factor = 1 + random(3);
    tm_setRepeatDetails(path, {task.type, task.unit, QString::number(task.factor)});
}

// The counters of both books are right after their next recount.
void TaskYear::move(const QString &path)
{
    const QString target = at(QStringLiteral("/B%1/m%2.md").arg(random(scale.books)).arg(++m_moves));
    if (m_off.contains(bookOf(target))) return;
    ASSERT_TRUE(tm_moveItemToPath(path, target));
    for (const QString &book : {bookOf(path), bookOf(target)}) tm_correctTaskCountAtPath(book);
    auto task = m_model.extract(path);
    task.key() = target;
    m_model.insert(std::move(task));
    compareTask(target);
    compareCounters(bookOf(target), "a move");
}

void TaskYear::switchOffOrOn(const QString &book)
{
    tm_toggleTasklistKeepingDetails(book, true);
    if (m_off.erase(book) == 0) m_off.insert(book);
    // What is past by now has become so without anybody to count it.
    else tm_correctTaskCountAtPath(book);
}

void TaskYear::change()
{
    const QString path = anyTask();
    const QString book = bookOf(path);
    const int kind = random(60);
    if (kind == 0 || m_off.contains(book)) return switchOffOrOn(book);
    ModelTask &task = m_model[path];
    if (kind < 33) {
        const bool wasNoTask = task.state == u"no_task";
        toggle(path, task);
        // Toggling what is no task leaves a counter wrong, on purpose, until the store is recounted.
        if (wasNoTask) tm_taskPlistChangedAtPath(taskStorePath(book));
        compareCounters(book, "a toggle");
        drainPendingWork();
        if (task.state == u"done" && !task.type.isEmpty()) repeat(path, task);
    } else if (kind < 44) {
        setDate(path, task);
    } else if (kind < 47) {
        tm_clearDueDate(path);
        if (task.hasRecord) task = {true, task.state, {}, {}, {}, 0};
    } else if (kind < 50) {
        tm_setRepeatDetails(path, {});
        task = {task.hasRecord, task.state, task.due, {}, {}, 0};
    } else if (kind < 55) {
        tm_toggleItemIsTask(path);
        task = {true, task.hasRecord && task.state == u"no_task" ? QString() : QStringLiteral("no_task"), {}, {}, {},
                0};
    } else {
        return move(path);
    }
    compareTask(path);
    compareCounters(book, "a change");
}

void TaskYear::compareTask(const QString &path)
{
    const ModelTask &task = m_model[path];
    const TaskRecord record = tm_getAllTaskDetails(path).value_or(TaskRecord());
    ASSERT_EQ(record.value(QStringLiteral("State")).toString(), task.state);
    ASSERT_EQ(record.value(QStringLiteral("DueDate")).toDateTime(), task.due);
    ASSERT_EQ(record.value(QStringLiteral("RepeatType")).toString(), task.type);
    const QString state = task.state.isEmpty() ? QStringLiteral("open") : task.state;
    const bool due = task.due.isValid() && task.due < now() && !settled(task);
    ASSERT_EQ(tm_iconForTask(path),
              state == u"no_task" ? QString() : QString(u"task-" + state + (due ? u"-due" : u"")));
}

// One more copy than there were lies in the book, done just now and due when the occurrence was.
void TaskYear::compareCopy(const QString &book, const QDateTime &due)
{
    QStringList added;
    for (const QString &name : names(book.mid(root.size())))
        if (name.endsWith(u".md") && !m_model.contains(QString(book + u'/' + name)) &&
            m_copies[book].insert(name).second)
            added.append(name);
    ASSERT_EQ(added.size(), 1);
    ASSERT_EQ(tm_getAllTaskDetails(QString(book + u'/' + added.first())),
              TaskRecord({{QStringLiteral("State"), QStringLiteral("done")},
                          {QStringLiteral("DueDate"), due},
                          {QStringLiteral("Changed"), now()}}));
}

void TaskYear::compareCounters(const QString &book, const char *after)
{
    if (m_off.contains(book)) return;
    qlonglong done = qlonglong(m_copies[book].size()), due = 0;
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
    qlonglong overdue = 0;
    for (const auto &[path, task] : m_model) {
        if (settled(task) || !task.due.isValid() || m_off.contains(bookOf(path))) continue;
        if (task.due < now()) ++overdue;
        if (task.due < now() || task.due < horizon) dueWanted.insert(path, task.due);
        if (task.due > now()) remindersWanted.insert(path, task.due);
    }
    QMap<QString, QDateTime> due;
    for (const QVariant &row : tm_arrayOfDueTasksAsNumbers(root, false)) {
        const QVariantMap values = row.toMap();
        due.insert(values.value(QStringLiteral("path")).toString(),
                   values.value(QStringLiteral("DueDate")).toDateTime());
    }
    ASSERT_EQ(due, dueWanted);
    ASSERT_EQ(tm_arrayOfDueTasksAsNumbers(root, true), QVariantList({qlonglong(dueWanted.size()), overdue}));
    compareReminders(remindersWanted);
}

void TaskYear::compareReminders(const QMap<QString, QDateTime> &wanted)
{
    QMap<QString, QDateTime> reminders;
    QDateTime last;
    for (const auto &[path, fireDate] : scheduledReminders()) {
        reminders.insert(path, fireDate);
        ASSERT_FALSE(last.isValid() && fireDate < last) << "not in the order of their dates";
        last = fireDate;
        const int minuteOfDay = m_calendar.get(fireDate, UCAL_HOUR_OF_DAY) * 60 + m_calendar.get(fireDate, UCAL_MINUTE);
        const bool sounds = tm_notificationForDate(path, fireDate, 0).contains(QStringLiteral("soundName"));
        ASSERT_EQ(sounds, minuteOfDay != 1) << "only a day without an alert is silent";
    }
    ASSERT_EQ(reminders, wanted);
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
    size_t copies = 0;
    for (const auto &[book, found] : m_copies) copies += found.size();
    EXPECT_GT(copies, 15U) << "the year was too quiet to tell anything";
    EXPECT_GT(m_moves, 10);
}

INSTANTIATE_TEST_SUITE_P(Zones, TaskYear,
                         ::testing::Values("Europe/Berlin", "America/New_York", "Australia/Lord_Howe"));
