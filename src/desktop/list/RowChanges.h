// SPDX-License-Identifier: GPL-3.0-or-later
// How one list of rows becomes another: what goes, what comes, who stands where, and which rows show something else.
// To find that out takes time in proportion to the list, and may be done on any thread.
#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

#include <utility>
#include <vector>

namespace tomelet::desktop {

/// The full path of a row's item; for what is no file, its title.
[[nodiscard]] QString pathOfRow(const QVariantMap &row);

/// To be followed in this order: rows go, rows come at the end, and all take their places.
struct RowChanges
{
    QList<QVariantMap> after;
    std::vector<std::pair<int, int>> removed; ///< first and last of each run, from the end of the list to its beginning
    QList<QVariantMap> added;
    std::vector<int> places;  ///< where each row stands then; empty when all stay where they are
    std::vector<int> changed; ///< positions in `after` of the rows that were there and show something else
    qsizetype removedRows = 0;
};
[[nodiscard]] RowChanges rowChanges(const QList<QVariantMap> &before, QList<QVariantMap> after);

} // namespace tomelet::desktop
