// SPDX-License-Identifier: GPL-3.0-or-later
// Calendar arithmetic in the local time zone, and the days that due dates are measured by. All dates go in
// and come out in UTC. A local time that no clock shows, because summer time leaps over it, is the first one
// that a clock does show; of a local time that comes twice, the first is meant.
#pragma once

#include <QDateTime>

namespace tomelet {

enum class CalendarUnit { Hour, Day, Week, Month, Year };

/// The moment at which local clocks show the time on that day; invalid for no day.
[[nodiscard]] QDateTime momentOf(const QDate &day, const QTime &time);
/// The date moved on by so many units: hours as they pass, all others by the local calendar, whose shorter
/// months end earlier (31 January and a month is 28 February). Invalid beyond the years 1 to 9999.
[[nodiscard]] QDateTime movedBy(const QDateTime &date, CalendarUnit unit, qlonglong count);

/// The beginning of the date's local day.
[[nodiscard]] QDateTime tm_thatDayMidnight(const QDateTime &date);
[[nodiscard]] QDateTime tm_todayMidnight();
/// Seconds that the local clock has counted since midnight.
[[nodiscard]] qlonglong tm_todayInSecondsLocalized();

/// False for the dates that stand for a missing one and for 00:01:00 local time, which means a day without an
/// alert.
[[nodiscard]] bool tm_dueDateHasAlertTime(const QDateTime &date);
/// A date at exact local midnight a minute later, as a day without an alert; every other date as it is.
[[nodiscard]] QDateTime withoutMidnightAlert(const QDateTime &date);

} // namespace tomelet
