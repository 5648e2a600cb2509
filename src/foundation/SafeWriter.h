// SPDX-License-Identifier: GPL-3.0-or-later
// The one way in which the program writes a file: no reader ever sees half of one, and a failure leaves the old one.
#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>

namespace tomelet {

struct WriteResult
{
    bool ok = false;
    QString message; ///< what went wrong, for a person; names the file
    explicit operator bool() const { return ok; }
};

/// Writes the bytes beside the target, flushes them to disk, gives them the target's mode and user attributes, and
/// renames them over it. A symbolic link is followed, so that the link stays. The folder must exist.
[[nodiscard]] WriteResult writeFile(const QString &path, QByteArrayView bytes);

/// Reads a whole file. Nothing when it cannot be read, or is no ordinary file.
[[nodiscard]] std::optional<QByteArray> readFile(const QString &path);

/// Renames a file that cannot be read, so that nothing is written over it, and logs one line.
/// "Notes.plist" becomes "Notes.plist.unreadable-20261121T083000.plist". False when the rename failed.
bool setAside(const QString &path);

} // namespace tomelet
