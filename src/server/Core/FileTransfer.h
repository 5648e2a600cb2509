// SPDX-License-Identifier: GPL-3.0-or-later
// Copying and moving files and folders, never over something that is there.
#pragma once

#include <string>

namespace tomelet::http {

/// True when something lies at the path, a symbolic link to nowhere included.
[[nodiscard]] bool itemExists(const std::string &path);
/// True for a folder or a symbolic link to one.
[[nodiscard]] bool isFolder(const std::string &path);

/// Copies all bytes from one open file to another, from the beginning of the first.
[[nodiscard]] bool copyBytes(int source, int target);
/// Copies a file, a folder with all that is in it, or a symbolic link as a link, with attributes and dates.
/// The copy is made in a temporary place in scratchFolder and appears at the target whole; false leaves
/// nothing behind.
[[nodiscard]] bool copyItem(const std::string &source, const std::string &target, const std::string &scratchFolder);
/// Moves an item by renaming it; to another file system by a copy. False when the target exists.
[[nodiscard]] bool moveItem(const std::string &source, const std::string &target, const std::string &scratchFolder);

} // namespace tomelet::http
