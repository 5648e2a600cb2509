// SPDX-License-Identifier: GPL-3.0-or-later
// The recently opened items: normalised paths in `TMResources/Misc/RecentItems.txt`, newest first.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// Puts the item in front. More are kept than are shown, so that vanished ones leave no gap.
void tm_addToRecentItems(const QString &path);
void clearRecentItems();
/// The list as it stands.
[[nodiscard]] QStringList storedRecentItems();
/// Puts back a list that was read before, as it was.
void restoreRecentItems(const QStringList &items);
/// Those that still exist, cut for display. Takes the others off the stored list, unless the root looks unmounted.
[[nodiscard]] QStringList verifiedListOfRecentItems();
/// The newest that exists and is none of the excluded full paths; "" when there is none.
[[nodiscard]] QString mostRecentDocument(const QStringList &excludedPaths);

} // namespace tomelet
