// SPDX-License-Identifier: GPL-3.0-or-later
// What targets that write files need: a folder of their own, and conditions that end the run.
#pragma once

#include <QTemporaryDir>

#include <cstdlib>

namespace tomelet::fuzz {

/// Removed when the run ends in order.
inline QTemporaryDir &world()
{
    static QTemporaryDir folder;
    return folder;
}

inline void require(bool condition)
{
    if (!condition) std::abort();
}

} // namespace tomelet::fuzz
