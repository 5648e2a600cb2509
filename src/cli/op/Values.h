// SPDX-License-Identifier: GPL-3.0-or-later
// Values between the variants of the command line and the types of operations.
#pragma once

#include "foundation/Conversions.h"
#include "foundation/Range.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <concepts>
#include <optional>
#include <stdexcept>
#include <type_traits>

namespace tomelet::cli {

template <typename T>
struct IsOptional : std::false_type
{};
template <typename T>
struct IsOptional<std::optional<T>> : std::true_type
{};

/// A range in its text form, "{location, length}"; null is the whole text. Throws for anything else.
inline Range rangeFromVariant(const QVariant &value)
{
    if (!value.isValid()) return wholeRange;
    const auto range = rangeFromText(value.toString());
    if (!range) throw std::invalid_argument("a range is written \"{location, length}\"");
    return *range;
}

/// A value as the type that an operation takes. JSON numbers serve as texts and texts as numbers, so that a shell's
/// words need no quotes.
template <typename T>
T fromVariant(const QVariant &value)
{
    if constexpr (std::same_as<T, QVariant>) return value;
    else if constexpr (IsOptional<T>::value) {
        if (!value.isValid()) return std::nullopt;
        return fromVariant<typename T::value_type>(value);
    } else if constexpr (std::same_as<T, bool>) return boolFromVariant(value);
    else if constexpr (std::is_enum_v<T>) return T(integerFromVariant(value));
    else if constexpr (std::integral<T>) return T(integerFromVariant(value));
    else if constexpr (std::floating_point<T>) return T(numberFromVariant(value));
    else if constexpr (std::same_as<T, QString>) return value.isValid() ? textFromVariant(value) : QString();
    else if constexpr (std::same_as<T, QStringList>) return value.toStringList();
    else if constexpr (std::same_as<T, QDateTime>)
        return value.typeId() == QMetaType::QString ? dateFromIso(value.toString()) : value.toDateTime();
    else if constexpr (std::same_as<T, Range>) return rangeFromVariant(value);
    else return value.value<T>();
}

template <typename T>
QVariant toVariant(const T &value)
{
    if constexpr (std::same_as<T, QVariant>) return value;
    else if constexpr (IsOptional<T>::value) return value ? toVariant(*value) : QVariant();
    else if constexpr (std::same_as<T, bool> || std::same_as<T, double>) return value;
    else if constexpr (std::is_enum_v<T>) return qlonglong(value);
    else if constexpr (std::integral<T>) return qlonglong(value);
    else if constexpr (std::same_as<T, QStringList>) return QVariantList(value.begin(), value.end());
    else if constexpr (std::same_as<T, QDateTime>) return value.isValid() ? QVariant(value) : QVariant();
    else if constexpr (std::same_as<T, Range>) return textOfRange(value);
    else return QVariant::fromValue(value);
}

} // namespace tomelet::cli
