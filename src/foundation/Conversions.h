// SPDX-License-Identifier: GPL-3.0-or-later
// Values between their forms: variant trees (bool, qlonglong, double, QString, QByteArray, QDateTime in UTC, lists
// and maps), JSON, and the loose readings of booleans and numbers that settings and properties are read with.
#pragma once

#include <QJsonValue>
#include <QString>
#include <QVariant>

namespace tomelet {

/// True for true, numbers other than 0, and texts whose first character after blanks, sign and zeros is one of
/// "YyTt" or a digit 1 to 9. Everything else is false.
[[nodiscard]] bool boolFromVariant(const QVariant &value);
/// A number cut to its whole part; a text's leading decimal number ("12px" is 12); otherwise 0.
[[nodiscard]] qlonglong integerFromVariant(const QVariant &value);
/// As integerFromVariant, with fraction and exponent; always with the decimal point.
[[nodiscard]] double numberFromVariant(const QVariant &value);
/// Texts as they are, numbers in decimal, booleans "1" and "0", dates as ISO 8601 in UTC; otherwise "".
[[nodiscard]] QString textFromVariant(const QVariant &value);

/// JSON of a variant tree; dates become ISO 8601 in UTC ("2026-11-21T08:30:00Z"), data becomes Base64 text.
[[nodiscard]] QJsonValue jsonFromVariant(const QVariant &value);
/// The variant tree of a JSON value: whole numbers become qlonglong, null an invalid variant.
[[nodiscard]] QVariant variantFromJson(const QJsonValue &value);

/// One line of JSON that keeps dates apart from texts, as {"$date": ...}; inverse of variantFromJsonText.
[[nodiscard]] QString jsonTextFromVariant(const QVariant &value);
/// What jsonTextFromVariant wrote; text that is no JSON is taken as a plain string.
[[nodiscard]] QVariant variantFromJsonText(const QString &text);

/// ISO 8601 in UTC, whole seconds, with a literal Z. An invalid date gives "".
[[nodiscard]] QString isoFromDate(const QDateTime &date);
/// The date of an ISO 8601 text, in UTC; a text without a zone is read in local time. Invalid when it is none.
[[nodiscard]] QDateTime dateFromIso(const QString &text);

} // namespace tomelet
