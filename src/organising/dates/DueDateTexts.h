// SPDX-License-Identifier: GPL-3.0-or-later
// Dates as people read them, in the styles of the current locale (LC_ALL, LC_TIME, LANG) and the local time
// zone.
#pragma once

#include <QDateTime>
#include <QString>

namespace tomelet {

/// "HH:mm".
[[nodiscard]] QString tm_alertTimeString(const QDateTime &date);
/// "Nov 21, 2026, 9:30 AM": medium date and short time.
[[nodiscard]] QString tm_shortDateTimeString(const QDateTime &date);
/// "2026-11-21 09.30".
[[nodiscard]] QString tm_sortableDateTimeString(const QDateTime &date);

/// "Today", "Yesterday", "Tomorrow" or "Sat, Nov 21, 2026", and the time where there is an alert. "" for the
/// two dates that stand for a missing one, here and below.
[[nodiscard]] QString tm_weekdayString(const QDateTime &date);
/// The same with " (3 days)" or " (3 days ago)" behind it for days that are two or more away.
[[nodiscard]] QString tm_weekdayStringWithOffset(const QDateTime &date);
/// Always weekday, date and time.
[[nodiscard]] QString tm_absoluteWeekdayString(const QDateTime &date);
/// For past moments: "just now", minutes, hours, and then the words of tm_weekdayString.
[[nodiscard]] QString tm_fancyWeekdayString(const QDateTime &date);

} // namespace tomelet
