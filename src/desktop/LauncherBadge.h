// SPDX-License-Identifier: GPL-3.0-or-later
// The number on the program's icon in docks that show one: the LauncherEntry interface, which the docks of
// several desktops listen to on the session bus.
#pragma once

#include <QtGlobal>

namespace tomelet::desktop {

/// Shows the number; none for 0.
void showLauncherBadge(qlonglong count);

} // namespace tomelet::desktop
