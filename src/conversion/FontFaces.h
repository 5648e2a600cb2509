// SPDX-License-Identifier: GPL-3.0-or-later
// The font files that ship with the program, as style sheets name them.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// Empty for a face that does not ship; else the `@font-face` text first and the font files behind it. With `forEpub`
/// the text looks for the files in "../fonts", else in the program's own folder.
[[nodiscard]] QStringList tm_fontsToIncludeForFace(const QString &face, bool forEpub);

} // namespace tomelet
