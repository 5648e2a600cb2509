// SPDX-License-Identifier: GPL-3.0-or-later
// The style sheet inside formatted documents on disk.
#pragma once

#include <QString>

namespace tomelet {

/// The text without the comments that tell which version of the program wrote it.
[[nodiscard]] QString tm_removeGeneratorTomelet(const QString &text);
/// Gives an HTML file the style that its item has now. A file that would not change is not written.
void tm_updateEmbeddedStylesheet(const QString &path);
/// The same for files with an extension that begins with "htm"; others stay.
void tm_applyCurrentStyle(const QString &path);

} // namespace tomelet
