// SPDX-License-Identifier: GPL-3.0-or-later
// The question how lines are to be sorted.
#pragma once

#include <functional>

class QWidget;

namespace tomelet::desktop {

/// Asks in a dialog over the parent, keeps the answers in the settings `SortLinesCaseSensitive` and
/// `SortLinesDescending`, and then has the lines sorted; nothing happens on "Cancel".
void askForSortOptions(QWidget *parent, std::function<void()> sort);

} // namespace tomelet::desktop
