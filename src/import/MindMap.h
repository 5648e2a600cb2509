// SPDX-License-Identifier: GPL-3.0-or-later
// Mind maps in the form of iThoughts: a ZIP archive with the map and, where its program made one, a picture of it.
#pragma once

#include <QString>

namespace tomelet {

/// The map's own picture ("preview.png", in whatever folder of the archive), unpacked into the cache under a name that
/// is another one once the file changed. "" where there is none, or none below 32 MB.
[[nodiscard]] QString tm_pathToPreviewOfITMZ(const QString &path);

} // namespace tomelet
