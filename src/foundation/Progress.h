// SPDX-License-Identifier: GPL-3.0-or-later
// How long work tells where it stands and learns whether to go on.
#pragma once

#include <QtGlobal>

#include <functional>

namespace tomelet {

/// Called after each item with the number done and the number of all (0: not known). False stops the work at the next
/// item; what is done stays done. An empty function never stops.
using Progress = std::function<bool(qsizetype done, qsizetype all)>;

} // namespace tomelet
