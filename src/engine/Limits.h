// SPDX-License-Identifier: GPL-3.0-or-later
// The limits that hostile documents meet.
#pragma once

namespace tomelet::engine {

/// Every walk over the tree and the nesting of block parses stop here, silently. It bounds the stack.
inline constexpr int kMaxDepth = 1000;

} // namespace tomelet::engine
