// SPDX-License-Identifier: GPL-3.0-or-later
// The panel over the window while long work runs: a title, a bar and a button to stop.
#pragma once

#include "foundation/Progress.h"

#include <QString>

class QWidget;

namespace tomelet::desktop {

/// Runs the work on this thread and keeps the window painted; the person can stop it. The panel shows only when the
/// work takes longer than a moment. True when the work was not stopped.
bool runWithProgress(QWidget *parent, const QString &title, const std::function<void(const Progress &)> &work);

} // namespace tomelet::desktop
