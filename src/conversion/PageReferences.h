// SPDX-License-Identifier: GPL-3.0-or-later
// The references of a page between the forms in which they are stored, shown and carried to other folders.
#pragma once

#include <QString>

namespace tomelet {

/// `src` and `href` values that mean an item of the library (a tomelet URL without action, a path or file URL below
/// the root, the normalised path of an existing item) as seen from the folder. All others stay byte for byte.
[[nodiscard]] QString tm_makeTMLinksRelativeTo(const QString &html, const QString &folder);
/// Values that are paths or file URLs below the root as normalised paths. All others stay, relative ones above all.
[[nodiscard]] QString tm_makeReferencesAbsoluteToTMRoot(const QString &html, const QString &path);

} // namespace tomelet
