// SPDX-License-Identifier: GPL-3.0-or-later
// What the forms of a property list share: the kinds of values, the limit of nesting, and the dates.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <QVariant>

#include <optional>

namespace tomelet::propertylist {

/// Containers may lie this deep in one another; deeper files are hostile and would use up the stack.
inline constexpr int deepestNesting = 512;

enum class Kind { None, Boolean, Integer, Real, Date, Data, Text, Array, Dictionary };

/// The kind that a value is written as. None for what a property list cannot hold: writers leave it out.
[[nodiscard]] Kind kindOf(const QVariant &value);

/// "2026-11-21T08:30:00Z" of milliseconds since 1970, in whole seconds, cut towards the past.
[[nodiscard]] QByteArray textOfDate(qint64 milliseconds);
/// Inverse of textOfDate, for any year of -32767 to 32767 in the Gregorian calendar.
[[nodiscard]] std::optional<qint64> dateOfText(QStringView text);
/// Whether the date lies in a year that textOfDate can write.
[[nodiscard]] bool isDateInRange(double millisecondsSince1970);

/// The two readers give an invalid value and say in `error` what is wrong and where.
[[nodiscard]] QVariant parseXml(QByteArrayView bytes, QString &error);
[[nodiscard]] QVariant parseBinary(QByteArrayView bytes, QString &error);

} // namespace tomelet::propertylist
