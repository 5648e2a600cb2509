// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/dates/DueDateTexts.h"

#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "organising/dates/DueDateCalendar.h"

#include <unicode/udat.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tomelet {

namespace {

// In the C locale, which has no styles of its own, those that go with the program's own texts.
QByteArray dateLocale()
{
    for (const char *variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const QByteArray value = qgetenv(variable);
        if (value.isEmpty()) continue;
        const QByteArray name = value.split('.').first();
        return name == "C" || name == "POSIX" ? QByteArray("en_US") : name;
    }
    return "en_US";
}

struct DateFormat
{
    UDateFormatStyle timeStyle = UDAT_NONE;
    UDateFormatStyle dateStyle = UDAT_NONE;
    QString pattern; ///< in place of the styles, which are UDAT_PATTERN then
    QByteArray locale;
    bool operator==(const DateFormat &) const = default;
};

// Making one takes a hundred times as long as using it, and there are a handful. Null when there is none.
UDateFormat *openFormat(const DateFormat &wanted)
{
    using Opened = std::pair<DateFormat, icu::LocalUDateFormatPointer>;
    thread_local std::vector<Opened> opened;
    const auto known = std::ranges::find(opened, wanted, &Opened::first);
    if (known != opened.end()) return known->second.getAlias();
    static const UChar utc[] = u"UTC";
    UErrorCode status = U_ZERO_ERROR;
    const auto *units = reinterpret_cast<const UChar *>(wanted.pattern.utf16());
    icu::LocalUDateFormatPointer format(udat_open(wanted.timeStyle, wanted.dateStyle, wanted.locale.constData(), utc,
                                                  -1, units, int32_t(wanted.pattern.size()), &status));
    if (U_FAILURE(status)) return nullptr;
    opened.emplace_back(wanted, std::move(format));
    return opened.back().second.getAlias();
}

// The local time is handed over as if it were UTC, so that one reading of the time zone holds everywhere.
QString formatted(const QDateTime &date, UDateFormatStyle timeStyle, UDateFormatStyle dateStyle,
                  const QString &pattern = {})
{
    if (!date.isValid()) return {};
    UDateFormat *format = openFormat({timeStyle, dateStyle, pattern, dateLocale()});
    if (!format) return {};
    const QDateTime local = date.toLocalTime();
    const double wall = double(local.toMSecsSinceEpoch()) + 1000.0 * local.offsetFromUtc();
    UChar text[128];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = udat_format(format, wall, text, 128, nullptr, &status);
    return U_SUCCESS(status) ? QString::fromUtf16(text, std::min<int32_t>(length, 128)) : QString();
}

QString mediumDate(const QDateTime &date)
{
    return formatted(date, UDAT_NONE, UDAT_MEDIUM);
}

QString shortTime(const QDateTime &date)
{
    return formatted(date, UDAT_SHORT, UDAT_NONE);
}

bool isMissing(const QDateTime &date)
{
    return !date.isValid() || date == farPast() || date == farFuture();
}

QString dayWord(const QDateTime &date)
{
    const QDateTime now = platform().clock.now();
    const QString day = mediumDate(date);
    if (day == mediumDate(now)) return localized(TOMELET_TEXT("Today"));
    if (day == mediumDate(now.addSecs(-86400))) return localized(TOMELET_TEXT("Yesterday"));
    if (day == mediumDate(now.addSecs(86400))) return localized(TOMELET_TEXT("Tomorrow"));
    return formatted(date, UDAT_PATTERN, UDAT_PATTERN, QStringLiteral("ccc")) + QStringLiteral(", ") + day;
}

} // namespace

QString tm_alertTimeString(const QDateTime &date)
{
    return date.toLocalTime().toString(QStringLiteral("HH:mm"));
}

QString tm_shortDateTimeString(const QDateTime &date)
{
    return formatted(date, UDAT_SHORT, UDAT_MEDIUM);
}

QString tm_sortableDateTimeString(const QDateTime &date)
{
    return date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH.mm"));
}

QString tm_weekdayString(const QDateTime &date)
{
    if (isMissing(date)) return {};
    const QString day = dayWord(date);
    return tm_dueDateHasAlertTime(date) ? day + QStringLiteral(", ") + shortTime(date) : day;
}

QString tm_weekdayStringWithOffset(const QDateTime &date)
{
    if (isMissing(date)) return {};
    const qint64 days = platform().clock.now().toLocalTime().date().daysTo(date.toLocalTime().date());
    QString offset;
    if (days >= 2) offset = localized(TOMELET_TEXT(" (%lu days)"));
    else if (days <= -2) offset = localized(TOMELET_TEXT(" (%lu days ago)"));
    return tm_weekdayString(date) + offset.replace(QLatin1String("%lu"), QString::number(qAbs(days)));
}

QString tm_absoluteWeekdayString(const QDateTime &date)
{
    if (isMissing(date)) return {};
    return formatted(date, UDAT_PATTERN, UDAT_PATTERN, QStringLiteral("ccc")) + QStringLiteral(", ") +
           mediumDate(date) + QStringLiteral(", ") + shortTime(date);
}

QString tm_fancyWeekdayString(const QDateTime &date)
{
    if (isMissing(date)) return {};
    const qint64 age = date.secsTo(platform().clock.now());
    if (age < 0 || age >= 14400) return tm_weekdayString(date);
    if (age < 120) return localized(TOMELET_TEXT("just now"));
    if (age >= 3600 && age < 7200) return localized(TOMELET_TEXT("1 hour ago"));
    QString text = age < 3600 ? localized(TOMELET_TEXT("%d minutes ago")) : localized(TOMELET_TEXT("%d hours ago"));
    return text.replace(QLatin1String("%d"), QString::number(age < 3600 ? age / 60 : age / 3600));
}

} // namespace tomelet
