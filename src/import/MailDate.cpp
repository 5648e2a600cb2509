// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/MailDate.h"

#include "conversion/Patterns.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>

#include <unicode/udat.h>

#include <optional>

namespace tomelet {

namespace {

// Seconds east of Greenwich: "+0100", or one of the names that the standard knows.
std::optional<int> zoneOffset(const QString &zone)
{
    if (zone.startsWith(u'+') || zone.startsWith(u'-')) {
        const int number = zone.mid(1).toInt();
        return (zone.startsWith(u'-') ? -1 : 1) * (number / 100 * 3600 + number % 100 * 60);
    }
    static const std::pair<QString, int> names[] = {
        {QStringLiteral("GMT"), 0},  {QStringLiteral("UTC"), 0},  {QStringLiteral("UT"), 0},
        {QStringLiteral("Z"), 0},    {QStringLiteral("EST"), -5}, {QStringLiteral("EDT"), -4},
        {QStringLiteral("CST"), -6}, {QStringLiteral("CDT"), -5}, {QStringLiteral("MST"), -7},
        {QStringLiteral("MDT"), -6}, {QStringLiteral("PST"), -8}, {QStringLiteral("PDT"), -7},
        {QStringLiteral("CET"), 1},  {QStringLiteral("CEST"), 2}};
    for (const auto &[name, hours] : names)
        if (zone == name) return hours * 3600;
    return std::nullopt;
}

QDateTime dateOf(const QString &value)
{
    const PatternMatches found = firstMatchOfPattern(
        value, QStringLiteral(R"(^\s*(?:(?:Mon|Tue|Wed|Thu|Fri|Sat|Sun),\s*)?(\d{1,2}) ([A-Z][a-z]{2}) (\d{4}) )"
                              R"((\d{1,2}):(\d\d):(\d\d) ([+-]\d{4}|[A-Z]{1,4})\s*$)"));
    if (found.isEmpty()) return {};
    const auto part = [&](size_t group) { return substring(value, found[0].group(group)); };
    static const QString months = QStringLiteral("JanFebMarAprMayJunJulAugSepOctNovDec");
    const qsizetype month = months.indexOf(part(2));
    const auto offset = zoneOffset(part(7));
    if (month < 0 || month % 3 != 0 || !offset) return {};
    const QDate date(part(3).toInt(), int(month / 3) + 1, part(1).toInt());
    const QTime time(part(4).toInt(), part(5).toInt(), part(6).toInt());
    if (!date.isValid() || !time.isValid()) return {};
    return QDateTime(date, time, Qt::UTC).addSecs(-*offset);
}

} // namespace

QString readableMailDate(const QString &value)
{
    const QDateTime date = dateOf(value);
    if (!date.isValid()) return {};
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUDateFormatPointer format(
        udat_open(UDAT_SHORT, UDAT_LONG, QLocale().name().toLatin1().constData(), nullptr, 0, nullptr, 0, &status));
    char16_t buffer[200];
    const int32_t length = udat_format(format.getAlias(), double(date.toMSecsSinceEpoch()), buffer,
                                       int32_t(std::size(buffer)), nullptr, &status);
    return U_FAILURE(status) ? QString() : QString::fromUtf16(buffer, length);
}

} // namespace tomelet
