// SPDX-License-Identifier: GPL-3.0-or-later
// The names in a folder with their kinds, read in one go without a look at each file.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace tomelet {

struct FolderEntry
{
    QString name;
    bool isFolder = false; ///< a symbolic link counts as what it leads to
    bool exists = true;    ///< false for a link that leads nowhere and for what vanished meanwhile
};

/// All entries but "." and "..", hidden ones included, in no particular order. Nothing when the folder cannot be
/// listed.
[[nodiscard]] std::optional<std::vector<FolderEntry>> listFolder(const QString &path);
/// The names alone, sorted by code units; empty when the folder cannot be listed.
[[nodiscard]] QStringList namesInFolder(const QString &path);
/// True for a folder, links followed.
[[nodiscard]] bool isFolder(const QString &path);
/// True for anything at all at the path, a link that leads nowhere included.
[[nodiscard]] bool itemExists(const QString &path);
/// Makes the folder and the ones above it; true when it stands afterwards.
bool makeFolder(const QString &path);

/// The last part of a path, the path without it, its extension (without the point, "" when there is none), and the
/// path without extension. As for the platform's path operations: trailing "/" do not count, a name that only
/// begins with a point has no extension, and an extension holds no blank.
[[nodiscard]] QString lastPathComponent(const QString &path);
[[nodiscard]] QString parentPath(const QString &path);
[[nodiscard]] QString pathExtension(const QString &path);
[[nodiscard]] QString pathWithoutExtension(const QString &path);
/// Joins with exactly one "/" between.
[[nodiscard]] QString joinPath(const QString &folder, const QString &component);

} // namespace tomelet
