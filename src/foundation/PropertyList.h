// SPDX-License-Identifier: GPL-3.0-or-later
// Property lists: trees of dictionaries, arrays, texts, numbers, booleans, dates and data, in the XML and the
// binary form that Apple's property list DTD and CFBinaryPList.c describe.
//
// A tree is made of QVariantMap, QVariantList, QString, QByteArray, QDateTime (UTC), bool, qlonglong and
// double.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QVariant>

#include <optional>

namespace tomelet {

/// Reads either form, told apart by the first bytes. Gives nothing for what is truncated, wrongly typed,
/// nested more than 512 deep, or no property list at all; `error` then says what and where. Never reads
/// outside `bytes`, and needs memory in proportion to them.
[[nodiscard]] std::optional<QVariant> parsePropertyList(QByteArrayView bytes, QString *error = nullptr);

/// The XML form as the platform's dictionary writer makes it: header with the DTD, tabs, keys sorted, dates
/// in whole seconds of UTC, data in wrapped Base64. Characters that XML 1.0 cannot hold are left out.
[[nodiscard]] QByteArray xmlPropertyList(const QVariant &tree);

/// The binary form ("bplist00"); equal texts are stored once.
[[nodiscard]] QByteArray binaryPropertyList(const QVariant &tree);

} // namespace tomelet
