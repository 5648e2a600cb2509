// SPDX-License-Identifier: GPL-3.0-or-later
// Property files whose document is gone.
#pragma once

#include <QString>

namespace tomelet {

/// Whether the entry of a book is a property file that belongs to nothing: its name is that of a document with ".plist"
/// behind it, it holds properties and nothing else, and neither the document nor a placeholder of it is there.
[[nodiscard]] bool isOrphanedPropertyFile(const QString &path);
/// Moves such a file to the trash, unless a sync is in progress or the file bears a date far ahead; true when it is
/// gone.
bool removeOrphanedPropertyFile(const QString &path);

} // namespace tomelet
