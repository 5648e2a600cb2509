// SPDX-License-Identifier: GPL-3.0-or-later
// Moving, copying and removing files and whole folders. Nothing that exists is ever overwritten.
#pragma once

#include <QString>

namespace tomelet {

struct FileResult
{
    bool ok = false;
    QString message; ///< what went wrong, for a person; names the file
    explicit operator bool() const { return ok; }
};

/// Renames, also to another file system. Fails when something stands at the target, unless that is the very item
/// under another spelling of its name.
[[nodiscard]] FileResult moveItem(const QString &from, const QString &to);
/// Copies a file or a folder with all it holds; dates, modes and user attributes go along, links stay links. The
/// target appears when it is complete.
[[nodiscard]] FileResult copyItem(const QString &from, const QString &to);
/// Removes a file, a link, or a folder with all it holds, without following links.
[[nodiscard]] FileResult removeItem(const QString &path);

} // namespace tomelet
