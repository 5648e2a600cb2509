// SPDX-License-Identifier: GPL-3.0-or-later
// The files that ship with the program: style sheets, welcome documents, icons, translations.
#pragma once

#include <QString>

namespace tomelet {

/// The path of a shipped file. The folder is $TOMELET_RESOURCES, else "share/tomelet" beside the program's "bin",
/// else "resources" of the source tree that the program was built from.
[[nodiscard]] QString resourcePath(const QString &relativePath);

} // namespace tomelet
