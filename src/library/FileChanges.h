// SPDX-License-Identifier: GPL-3.0-or-later
// What follows the files of the notebook, wherever they are changed.
#pragma once

#include "foundation/NotificationCenter.h"

#include <QString>

#include <functional>
#include <vector>

namespace tomelet {

/// Calls the observer with the path of each item that came, changed, went or moved, after a move with both its places.
[[nodiscard]] std::vector<NotificationCenter::Subscription>
observeFileChanges(const std::function<void(const QString &path)> &observer);

} // namespace tomelet
