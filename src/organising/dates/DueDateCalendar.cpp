// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/dates/DueDateCalendar.h"

#include "foundation/Platform.h"

namespace tomelet {

namespace {

constexpr qint64 secondsOfDay = 86400;

qint64 localOffset(qint64 moment)
{
    return QDateTime::fromSecsSinceEpoch(moment, Qt::LocalTime).offsetFromUtc();
}

// The first second at which the second offset is in force, somewhere between the two moments.
qint64 changeOfOffset(qint64 before, qint64 after)
{
    const qint64 newOffset = localOffset(after);
    while (after - before > 1) {
        const qint64 middle = before + (after - before) / 2;
        (localOffset(middle) == newOffset ? after : before) = middle;
    }
    return after;
}

// `wall` is what the clock shows, counted as if it were UTC.
qint64 momentOfWallTime(qint64 wall)
{
    const qint64 before = localOffset(wall - secondsOfDay);
    const qint64 after = localOffset(wall + secondsOfDay);
    if (before == after || localOffset(wall - before) == before) return wall - before;
    if (localOffset(wall - after) == after) return wall - after;
    return changeOfOffset(wall - secondsOfDay, wall + secondsOfDay);
}

bool isInRange(const QDate &day)
{
    return day.isValid() && day.year() >= 1 && day.year() <= 9999;
}

} // namespace

QDateTime momentOf(const QDate &day, const QTime &time)
{
    if (!day.isValid()) return {};
    const qint64 wall = QDateTime(day, QTime(time.hour(), time.minute(), time.second()), Qt::UTC).toSecsSinceEpoch();
    return QDateTime::fromSecsSinceEpoch(momentOfWallTime(wall), Qt::UTC);
}

QDateTime movedBy(const QDateTime &date, CalendarUnit unit, qlonglong count)
{
    if (unit == CalendarUnit::Hour) {
        const QDateTime moved = date.toUTC().addSecs(count * 3600);
        return isInRange(moved.date()) ? moved : QDateTime();
    }
    const QDateTime local = date.toLocalTime();
    QDate day = local.date();
    switch (unit) {
    case CalendarUnit::Week: day = day.addDays(7 * count); break;
    case CalendarUnit::Month: day = day.addMonths(int(count)); break;
    case CalendarUnit::Year: day = day.addYears(int(count)); break;
    default: day = day.addDays(count); break;
    }
    return isInRange(day) ? momentOf(day, local.time()) : QDateTime();
}

QDateTime tm_thatDayMidnight(const QDateTime &date)
{
    return momentOf(date.toLocalTime().date(), QTime(0, 0));
}

QDateTime tm_todayMidnight()
{
    return tm_thatDayMidnight(platform().clock.now());
}

qlonglong tm_todayInSecondsLocalized()
{
    return QTime(0, 0).secsTo(platform().clock.now().toLocalTime().time());
}

bool tm_dueDateHasAlertTime(const QDateTime &date)
{
    if (!date.isValid() || date == farPast() || date == farFuture()) return false;
    const QTime time = date.toLocalTime().time();
    return time.hour() != 0 || time.minute() != 1 || time.second() != 0;
}

QDateTime withoutMidnightAlert(const QDateTime &date)
{
    return date == tm_thatDayMidnight(date) ? date.addSecs(60) : date;
}

} // namespace tomelet
