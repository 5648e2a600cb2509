// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Conversions.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <limits>

namespace tomelet {

bool boolFromVariant(const QVariant &value)
{
    if (value.typeId() != QMetaType::QString) return value.toDouble() != 0;
    const QString text = value.toString();
    qsizetype i = 0;
    while (i < text.size() && text[i].isSpace()) ++i;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) ++i;
    while (i < text.size() && text[i] == u'0') ++i;
    if (i == text.size()) return false;
    const QChar first = text[i];
    return QStringView(u"YyTt123456789").contains(first);
}

// The longest decimal number that the text begins with, blanks in front skipped.
static QStringView leadingNumber(QStringView text, bool withFraction)
{
    text = text.trimmed();
    qsizetype end = 0;
    const auto digits = [&] {
        while (end < text.size() && text[end] >= u'0' && text[end] <= u'9') ++end;
    };
    if (end < text.size() && (text[end] == u'+' || text[end] == u'-')) ++end;
    digits();
    if (!withFraction) return text.left(end);
    if (end < text.size() && text[end] == u'.') {
        ++end;
        digits();
    }
    if (end < text.size() && (text[end] == u'e' || text[end] == u'E')) {
        const qsizetype mark = end++;
        if (end < text.size() && (text[end] == u'+' || text[end] == u'-')) ++end;
        const qsizetype before = end;
        digits();
        if (end == before) end = mark;
    }
    return text.left(end);
}

qlonglong integerFromVariant(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString) return leadingNumber(value.toString(), false).toLongLong();
    if (value.typeId() == QMetaType::Double) {
        const double number = value.toDouble();
        if (std::abs(number) < 9.2e18) return static_cast<qlonglong>(number);
        using Limits = std::numeric_limits<qlonglong>;
        return number > 0 ? Limits::max() : number < 0 ? Limits::min() : 0;
    }
    return value.toLongLong();
}

double numberFromVariant(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString) return leadingNumber(value.toString(), true).toDouble();
    return value.toDouble();
}

QString textFromVariant(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString: return value.toString();
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::QDateTime: return isoFromDate(value.toDateTime());
    case QMetaType::Double: return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    case QMetaType::QVariantList:
    case QMetaType::QVariantMap: return {};
    default: return value.toString();
    }
}

QString isoFromDate(const QDateTime &date)
{
    if (!date.isValid()) return {};
    return date.toUTC().toString(QStringLiteral("yyyy-MM-ddThh:mm:ss'Z'"));
}

QDateTime dateFromIso(const QString &text)
{
    const QDateTime date = QDateTime::fromString(text, Qt::ISODateWithMs);
    return date.isValid() ? date.toUTC() : QDateTime();
}

QJsonValue jsonFromVariant(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType: return QJsonValue::Null;
    case QMetaType::QDateTime: return isoFromDate(value.toDateTime());
    case QMetaType::QByteArray: return QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        QJsonArray array;
        for (const QVariant &entry : value.toList()) array.append(jsonFromVariant(entry));
        return array;
    }
    case QMetaType::QVariantMap: {
        QJsonObject object;
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it) object.insert(it.key(), jsonFromVariant(it.value()));
        return object;
    }
    default: return QJsonValue::fromVariant(value);
    }
}

QVariant variantFromJson(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Double: {
        // Whole numbers are kept to the last digit: the place of what is not pinned is the largest there is.
        const QVariant plain = value.toVariant();
        if (plain.typeId() == QMetaType::LongLong) return plain;
        const double number = value.toDouble();
        if (std::abs(number) < 9e15 && number == std::floor(number)) return value.toInteger();
        return number;
    }
    case QJsonValue::Array: {
        QVariantList list;
        for (const QJsonValue entry : value.toArray()) list.append(variantFromJson(entry));
        return list;
    }
    case QJsonValue::Object: {
        QVariantMap map;
        const QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it) map.insert(it.key(), variantFromJson(it.value()));
        return map;
    }
    case QJsonValue::Null:
    case QJsonValue::Undefined: return {};
    default: return value.toVariant();
    }
}

static const QString dateKey = QStringLiteral("$date");

static QVariant withDatesMarked(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDateTime) return QVariantMap{{dateKey, isoFromDate(value.toDateTime())}};
    if (value.typeId() == QMetaType::QVariantList) {
        QVariantList list = value.toList();
        for (QVariant &entry : list) entry = withDatesMarked(entry);
        return list;
    }
    if (value.typeId() == QMetaType::QVariantMap) {
        QVariantMap map = value.toMap();
        for (QVariant &entry : map) entry = withDatesMarked(entry);
        return map;
    }
    return value;
}

static QVariant withDatesRead(const QVariant &value)
{
    if (value.typeId() == QMetaType::QVariantList) {
        QVariantList list = value.toList();
        for (QVariant &entry : list) entry = withDatesRead(entry);
        return list;
    }
    if (value.typeId() == QMetaType::QVariantMap) {
        QVariantMap map = value.toMap();
        if (map.size() == 1 && map.firstKey() == dateKey) return dateFromIso(map.first().toString());
        for (QVariant &entry : map) entry = withDatesRead(entry);
        return map;
    }
    return value;
}

QString jsonTextFromVariant(const QVariant &value)
{
    const QJsonArray wrapped{jsonFromVariant(withDatesMarked(value))};
    const QByteArray text = QJsonDocument(wrapped).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(text.mid(1, text.size() - 2));
}

QVariant variantFromJsonText(const QString &text)
{
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray('[' + text.toUtf8() + ']'));
    const QJsonArray array = document.array();
    if (array.size() != 1) return text;
    return withDatesRead(variantFromJson(array.first()));
}

} // namespace tomelet
