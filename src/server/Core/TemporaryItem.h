// SPDX-License-Identifier: GPL-3.0-or-later
// Files and folders that are not finished yet. They lie in the root folder itself, so that the final rename
// stays within one file system, under names that no listing shows and no request reaches.
#pragma once

#include "server/Core/FileHandle.h"

#include <memory>
#include <string>
#include <string_view>

namespace tomelet::http {

/// A file or folder that vanishes with the object unless it was moved into place. It is locked for as long as
/// it is in use, so that another server's clean-up leaves it alone.
class TemporaryItem
{
public:
    enum class Kind { File, Folder };

    /// Makes the item in the folder; isValid() tells whether that worked.
    TemporaryItem(Kind kind, const std::string &folder);
    TemporaryItem(const TemporaryItem &) = delete;
    TemporaryItem &operator=(const TemporaryItem &) = delete;
    ~TemporaryItem();

    /// False once anything went wrong: making it, or a write on a full disk.
    [[nodiscard]] bool isValid() const { return m_valid; }
    [[nodiscard]] const std::string &path() const { return m_path; }
    /// Adds bytes to a file.
    void append(std::string_view data);
    /// Puts a file at the target, replacing a regular file there in one step. The old file's mode, owner and
    /// extended attributes are kept, and the new bytes are on the disk before the old ones are given up. A
    /// target that is a symbolic link to a file stays one: the file behind it is replaced. False changes
    /// nothing.
    [[nodiscard]] bool moveIntoPlace(const std::string &target);

private:
    bool renameTo(const std::string &target);
    bool copyBeside(const std::string &target);

    std::string m_path;
    FileHandle m_handle;
    bool m_valid = false;
};

/// Writes the bytes to the target as TemporaryItem::moveIntoPlace does, by way of a file in the folder.
[[nodiscard]] bool writeFileAtomically(const std::string &folder, const std::string &target, std::string_view bytes);

/// True for the name of a temporary item, of whichever server.
[[nodiscard]] bool isTemporaryName(std::string_view name);
/// Removes from the folder what servers left there that did not end in order.
void removeAbandonedItems(const std::string &folder);

} // namespace tomelet::http
