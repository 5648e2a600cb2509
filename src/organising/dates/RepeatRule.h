// SPDX-License-Identifier: GPL-3.0-or-later
// When a task comes again: the rule in its record, the next date by it, and the rule as people read it.
//
// Details travel as three texts in this order: type ("when due", "when done"), unit ("hour", "day", "week",
// "month", "year"), factor (a whole number). An empty list is no repeat.
#pragma once

#include "organising/dates/DueDateCalendar.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace tomelet {

struct RepeatRule
{
    bool whenDone = false; ///< counted from the day on which it was done, not from the due date
    CalendarUnit unit = CalendarUnit::Day;
    int factor = 1;
};

/// The rule of a task record. Nothing where there is none, and for one that cannot be followed: another type
/// or unit, a factor that is no number, below 1 or above a million.
[[nodiscard]] std::optional<RepeatRule> repeatRuleOf(const QVariantMap &record);
/// The first date behind `now` that is reached from `date` step by step, at least one step on. Each step is
/// taken from the date that the one before reached: 31 January, 28 February, 28 March. Invalid when there is
/// none before the year 10000.
[[nodiscard]] QDateTime nextOccurrence(const QDateTime &date, const RepeatRule &rule, const QDateTime &now);
/// The number by which the rule's unit is known where it comes every single time (day 16, week 256, month 8,
/// year 4, hour 32), else 0.
[[nodiscard]] int repeatInterval(const RepeatRule &rule);

/// "Every Day ", "Every 2 weeks", "1 week after completion", " 3 days after completion" with these very
/// blanks; "---" for no details. Details that cannot be followed are told all the same.
[[nodiscard]] QString tm_readableRepeatDetailsForDetails(const QStringList &details);
/// "hour" to "year", or "hours" to "years" above 1, in the language in force; other units as they are.
[[nodiscard]] QString repeatUnitWord(const QString &unit, qlonglong factor);

} // namespace tomelet
