// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/PropertyList.h"

#include "foundation/PropertyList_p.h"

#include <QDateTime>

#include <chrono>

namespace tomelet {

namespace propertylist {

namespace {

using Days = std::chrono::sys_days;
constexpr qint64 millisecondsOfDay = 86'400'000;

// The calendar of <chrono> and not QDate's, which has no year 0 and so shifts everything before the year 1.
constexpr qint64 firstMillisecond =
    Days(std::chrono::year::min() / 1 / 1).time_since_epoch().count() * millisecondsOfDay;
constexpr qint64 endMillisecond =
    (Days(std::chrono::year::max() / 12 / 31).time_since_epoch().count() + 1) * millisecondsOfDay;

bool hasShape(QStringView text, QLatin1StringView shape)
{
    if (text.size() != shape.size()) return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isDigit = text[i] >= u'0' && text[i] <= u'9';
        if (shape[i] == QLatin1Char('9') ? !isDigit : text[i] != shape[i]) return false;
    }
    return true;
}

} // namespace

bool isDateInRange(double milliseconds)
{
    return milliseconds >= double(firstMillisecond) && milliseconds < double(endMillisecond);
}

QByteArray textOfDate(qint64 milliseconds)
{
    using namespace std::chrono;
    const auto second = floor<seconds>(sys_time<std::chrono::milliseconds>(std::chrono::milliseconds(milliseconds)));
    const auto day = floor<days>(second);
    const year_month_day date(day);
    const hh_mm_ss time(second - day);
    return QByteArray(QString::asprintf("%04d-%02u-%02uT%02d:%02d:%02dZ", int(date.year()), unsigned(date.month()),
                                        unsigned(date.day()), int(time.hours().count()), int(time.minutes().count()),
                                        int(time.seconds().count()))
                          .toLatin1());
}

std::optional<qint64> dateOfText(QStringView text)
{
    using namespace std::chrono;
    const QLatin1StringView shape("-99-99T99:99:99Z");
    if (text.size() <= shape.size()) return {};
    const QStringView tail = text.last(shape.size());
    bool isNumber = false;
    const int yearNumber = text.chopped(shape.size()).toInt(&isNumber);
    if (!isNumber || std::abs(yearNumber) > 32767 || !hasShape(tail, shape)) return {};
    const auto number = [&](qsizetype at) { return tail.sliced(at, 2).toUInt(); };
    const year_month_day date(year(yearNumber), month(number(1)), day(number(4)));
    const unsigned hour = number(7), minute = number(10), second = number(13);
    if (!date.ok() || hour > 23 || minute > 59 || second > 60) return {};
    return sys_days(date).time_since_epoch().count() * millisecondsOfDay +
           (qint64(hour) * 3600 + minute * 60 + second) * 1000;
}

Kind kindOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool: return Kind::Boolean;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong: return Kind::Integer;
    case QMetaType::Float:
    case QMetaType::Double: return Kind::Real;
    case QMetaType::QString: return Kind::Text;
    case QMetaType::QByteArray: return Kind::Data;
    case QMetaType::QStringList:
    case QMetaType::QVariantList: return Kind::Array;
    case QMetaType::QVariantMap: return Kind::Dictionary;
    case QMetaType::QDateTime: {
        const QDateTime date = value.toDateTime();
        return date.isValid() && isDateInRange(double(date.toMSecsSinceEpoch())) ? Kind::Date : Kind::None;
    }
    default: return Kind::None;
    }
}

} // namespace propertylist

std::optional<QVariant> parsePropertyList(QByteArrayView bytes, QString *error)
{
    QString reason;
    const QVariant tree =
        bytes.startsWith("bplist") ? propertylist::parseBinary(bytes, reason) : propertylist::parseXml(bytes, reason);
    if (error) *error = reason;
    if (!tree.isValid()) return {};
    return tree;
}

} // namespace tomelet
