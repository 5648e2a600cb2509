// SPDX-License-Identifier: GPL-3.0-or-later
// Which fonts this machine has, asked of fontconfig so that programs without a window know as well.
#pragma once

#include <QString>

namespace tomelet {

/// A family, full name or PostScript name that is installed. False for "".
[[nodiscard]] bool fontIsInstalled(const QString &name);
/// The family that "sans-serif" stands for.
[[nodiscard]] QString systemFontFace();

} // namespace tomelet
