// SPDX-License-Identifier: GPL-3.0-or-later
// User extended attributes of files (xattr(7)). Where the file system has none, reading gives nothing and writing
// fails without complaint.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tomelet {

/// The value of the attribute "user." + name.
[[nodiscard]] std::optional<QByteArray> extendedAttribute(const QString &path, const QString &name);
/// Stores the attribute; false where that is not possible.
bool setExtendedAttribute(const QString &path, const QString &name, const QByteArray &value);
/// Copies all user attributes of a file to an open one, as far as they can be copied.
void copyExtendedAttributes(const QByteArray &encodedPath, int targetDescriptor);

} // namespace tomelet
