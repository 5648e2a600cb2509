// SPDX-License-Identifier: GPL-3.0-or-later
// The root folder of the library and the folders that belong to it. The root is never cached: each call takes the
// setting and resolves symbolic links; batches take it once and pass it on.
#pragma once

#include <QString>

namespace tomelet {

/// The resolved root without a trailing "/"; the path as written where it does not exist; "" when none is chosen.
[[nodiscard]] QString tomeletRoot();
/// The root is set and is an existing folder.
[[nodiscard]] bool rootIsInForce();
/// The root cannot be listed or holds nothing at all, as when its disk is not mounted. What is derived from the
/// root must then be left as it is.
[[nodiscard]] bool rootLooksUnmounted();

/// `TMResources/Misc` in the root. Writers make it themselves.
[[nodiscard]] QString miscFolder();
/// The file of that name in `TMResources/Misc`.
[[nodiscard]] QString miscFile(const QString &name);
/// Writes to that folder need it to exist; true when it does afterwards.
bool makeMiscFolder();

/// Upper-case hexadecimal MD5 of the root: the name under which state outside the root is kept.
[[nodiscard]] QString rootKey();
/// State of this root in the user's data folder, for example `AppState.txt`.
[[nodiscard]] QString rootStateFolder();
/// The cache of this root: each cached file mirrors its item's path below the root.
[[nodiscard]] QString rootCacheFolder();

} // namespace tomelet
