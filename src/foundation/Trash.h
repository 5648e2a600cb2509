// SPDX-License-Identifier: GPL-3.0-or-later
// The trash of the desktop (freedesktop.org Trash specification 1.0).
#pragma once

#include <QString>

#include <memory>
#include <optional>

namespace tomelet {

class Trash
{
public:
    virtual ~Trash() = default;
    /// Moves the item to the trash and tells where it went; nothing when no trash is available for it.
    [[nodiscard]] virtual std::optional<QString> take(const QString &path) = 0;
    /// Moves an item that `take` put there back to where it was; false when that place is taken or gone.
    [[nodiscard]] virtual bool restore(const QString &trashPath, const QString &originalPath) = 0;
};

/// The user's trash on this machine.
[[nodiscard]] std::unique_ptr<Trash> makeDesktopTrash();

} // namespace tomelet
