// SPDX-License-Identifier: GPL-3.0-or-later
// What a file carries beside its bytes.
#pragma once

namespace tomelet::http {

/// Gives the target the source's mode, owner and extended attributes, each as far as the system lets us.
void copyAttributes(int source, int target);
/// Gives the target the source's dates of access and modification.
void copyTimes(int source, int target);

} // namespace tomelet::http
