// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/dates/DueDateDialog.h"

#include "foundation/Conversions.h"
#include "foundation/Localization.h"
#include "organising/dates/DueDateCalendar.h"
#include "organising/dates/RepeatRule.h"
#include "organising/tasks/TaskRepeats.h"
#include "organising/tasks/Tasks.h"

#include <chrono>

namespace tomelet {

using namespace std::chrono_literals;

// -- the repeat controls ----------------------------------------------------------------------------------------------

namespace {

const QStringList types{QString(), QStringLiteral("when due"), QStringLiteral("when done")};
const QStringList units{QStringLiteral("hour"), QStringLiteral("day"), QStringLiteral("week"), QStringLiteral("month"),
                        QStringLiteral("year")};
constexpr int week = 2;

} // namespace

QStringList TMLTDueDatePicker::typeTitles()
{
    return {localized(TOMELET_TEXT("Don't Repeat")), localized(TOMELET_TEXT("Every")),
            localized(TOMELET_TEXT("When done, after"))};
}

QStringList TMLTDueDatePicker::unitTitles() const
{
    QStringList titles;
    for (const QString &unit : units) titles.append(repeatUnitWord(unit, m_factor));
    return titles;
}

void TMLTDueDatePicker::setRepeatDetails(const QStringList &details)
{
    m_type = details.isEmpty() ? 0 : int(std::max<qsizetype>(0, types.indexOf(details.first())));
    m_unit = int(std::max<qsizetype>(0, units.indexOf(details.value(1))));
    m_factor = std::max<qlonglong>(0, integerFromVariant(details.value(2)));
}

QStringList TMLTDueDatePicker::repeatDetails() const
{
    if (m_type <= 0 || m_type >= types.size()) return {};
    return {types[m_type], units.value(m_unit), QString::number(m_factor)};
}

bool TMLTDueDatePicker::chooseType(int index)
{
    m_type = index;
    if (index == 0 || m_factor != 0) return false;
    m_factor = 1;
    m_unit = week;
    return true;
}

// -- the dialog -------------------------------------------------------------------------------------------------------

Question dueDateQuestion()
{
    return {localized(TOMELET_TEXT("Set Due Date, Alert Time and Repeat Interval")),
            localized(TOMELET_TEXT("Adjust date and/or time. If you don't need an alert, leave the time a midnight.")),
            {localized(TOMELET_TEXT("Set")), localized(TOMELET_TEXT("Clear")), localized(TOMELET_TEXT("Cancel"))}};
}

DueDateChoice startOfDueDateDialog(const QStringList &items)
{
    const QString first = items.value(0);
    const QDateTime due = tm_dueDateForTask(first);
    const QStringList details = tm_repeatDetails(first).value_or(QStringList());
    if (due == farFuture() || due == farPast()) return {tm_todayMidnight(), details};
    return {tm_dueDateHasAlertTime(due) ? due : tm_thatDayMidnight(due), details};
}

void setChosenRepeat(const QString &item, const QStringList &details, bool hadRule)
{
    if (hadRule || !details.isEmpty()) tm_setRepeatDetails(item, details);
}

static void later(const char *name, const QString &item, std::chrono::milliseconds delay, std::function<void()> call)
{
    platform().delayedCalls.schedule(QLatin1StringView(name), item, delay, std::move(call));
}

void tm_showDueDateDialogForItems(const QStringList &items, const DueDateDialog &dialog)
{
    if (items.isEmpty()) return;
    DueDateChoice choice = startOfDueDateDialog(items);
    const bool hadRule = !choice.repeatDetails.isEmpty();
    const int button = dialog(dueDateQuestion(), choice);
    for (const QString &item : items) {
        if (button == 0) {
            const QDateTime date = withoutMidnightAlert(choice.date);
            setChosenRepeat(item, choice.repeatDetails, hadRule);
            later("tm_setDueDate", item, 300ms, [item, date] { tm_setDueDate(item, date); });
        } else if (button == 1) {
            later("tm_clearDueDate", item, 400ms, [item] { tm_clearDueDate(item); });
        }
    }
}

void clearAlerts(const QStringList &items)
{
    for (const QString &item : items) {
        const QDateTime due = tm_dueDateForTask(item);
        if (due != farFuture() && due != farPast()) tm_setDueDate(item, tm_thatDayMidnight(due).addSecs(60));
    }
}

} // namespace tomelet
