// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/dates/RepeatRule.h"

#include "foundation/Conversions.h"
#include "foundation/Localization.h"
#include "organising/tasks/TaskStore.h"

namespace tomelet {

namespace {

struct Unit
{
    const char *stored;
    CalendarUnit unit;
    int number; ///< the platform's number of the calendar unit
    const char *every;
    const char *singular;
    const char *plural;
    const char *everyMany; ///< the word "Every" in front of a number; other languages have two forms
};

const Unit units[] = {
    {"hour", CalendarUnit::Hour, 32, TOMELET_TEXT("Every Hour"), TOMELET_TEXT("hour"), TOMELET_TEXT("hours"),
     TOMELET_TEXT("EveryPl2")},
    {"day", CalendarUnit::Day, 16, TOMELET_TEXT("Every Day"), TOMELET_TEXT("day"), TOMELET_TEXT("days"),
     TOMELET_TEXT("EveryPl")},
    {"week", CalendarUnit::Week, 256, TOMELET_TEXT("Every Week"), TOMELET_TEXT("week"), TOMELET_TEXT("weeks"),
     TOMELET_TEXT("EveryPl2")},
    {"month", CalendarUnit::Month, 8, TOMELET_TEXT("Every Month"), TOMELET_TEXT("month"), TOMELET_TEXT("months"),
     TOMELET_TEXT("EveryPl")},
    {"year", CalendarUnit::Year, 4, TOMELET_TEXT("Every Year"), TOMELET_TEXT("year"), TOMELET_TEXT("years"),
     TOMELET_TEXT("EveryPl")},
};

const Unit *unitOf(const QString &text)
{
    for (const Unit &unit : units)
        if (text == QLatin1StringView(unit.stored)) return &unit;
    return nullptr;
}

constexpr int largestFactor = 1000000;

// Dates this many steps back, or more, are brought nearer in one leap: nobody's due date is, and it ends in a
// blink.
constexpr qlonglong mostSteps = 20000;

QDateTime broughtNear(const QDateTime &date, const RepeatRule &rule, const QDateTime &now)
{
    const qlonglong daysOfStep = rule.factor * (rule.unit == CalendarUnit::Week ? 7 : 1);
    const qlonglong missed = date.daysTo(now) / daysOfStep;
    return missed > mostSteps ? movedBy(date, CalendarUnit::Day, (missed - mostSteps) * daysOfStep) : date;
}

QDateTime nextHour(const QDateTime &date, int factor, const QDateTime &now)
{
    const qint64 step = qint64(factor) * 3600 * 1000;
    const qint64 missed = std::max<qint64>(0, date.msecsTo(now) / step);
    return movedBy(date, CalendarUnit::Hour, (missed + 1) * factor);
}

QString everyMany(const char *key)
{
    const QString word = localized(key);
    return word == QLatin1StringView(key) ? localized(TOMELET_TEXT("Every")) : word;
}

} // namespace

std::optional<RepeatRule> repeatRuleOf(const QVariantMap &record)
{
    const QString type = textFromVariant(record.value(taskField::repeatType));
    const Unit *unit = unitOf(textFromVariant(record.value(taskField::repeatUnit)));
    bool isNumber = false;
    const qlonglong factor = textFromVariant(record.value(taskField::repeatFactor)).toLongLong(&isNumber);
    if ((type != u"when due" && type != u"when done") || !unit) return std::nullopt;
    if (!isNumber || factor < 1 || factor > largestFactor) return std::nullopt;
    return RepeatRule{type == u"when done", unit->unit, int(factor)};
}

QDateTime nextOccurrence(const QDateTime &date, const RepeatRule &rule, const QDateTime &now)
{
    if (rule.unit == CalendarUnit::Hour) return nextHour(date, rule.factor, now);
    const bool byDays = rule.unit == CalendarUnit::Day || rule.unit == CalendarUnit::Week;
    QDateTime next = byDays ? broughtNear(date, rule, now) : date;
    do next = movedBy(next, rule.unit, rule.factor);
    while (next.isValid() && next <= now);
    return next;
}

int repeatInterval(const RepeatRule &rule)
{
    if (rule.factor != 1) return 0;
    for (const Unit &unit : units)
        if (unit.unit == rule.unit) return unit.number;
    return 0;
}

QString repeatUnitWord(const QString &unit, qlonglong factor)
{
    const Unit *known = unitOf(unit);
    return known ? localized(factor > 1 ? known->plural : known->singular) : unit;
}

QString tm_readableRepeatDetailsForDetails(const QStringList &details)
{
    if (details.isEmpty()) return QStringLiteral("---");
    const QString word = details.value(1);
    const Unit *unit = unitOf(word);
    const qlonglong factor = integerFromVariant(details.value(2));
    const QString number = QString::number(factor);
    if (details.first().contains(u"due")) {
        if (factor < 2) return localized(unit ? unit->every : TOMELET_TEXT("Every")) + u' ';
        return everyMany(unit ? unit->everyMany : TOMELET_TEXT("EveryPl")) + u' ' + number + u' ' +
               repeatUnitWord(word, factor);
    }
    const QString ending = u' ' + localized(TOMELET_TEXT("after completion"));
    if (factor < 2) return QStringLiteral("1 ") + repeatUnitWord(word, 1) + ending;
    return u' ' + number + u' ' + repeatUnitWord(word, factor) + ending;
}

} // namespace tomelet
