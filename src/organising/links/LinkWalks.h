// SPDX-License-Identifier: GPL-3.0-or-later
// Work on the links of the whole library or of one book: refresh, check, repair, remove. Paths are full.
#pragma once

#include "foundation/Progress.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace tomelet {

/// Visits all below a folder that takes part in links: no trash, no hidden items, no resources, no logs, nothing
/// inside document packages or behind symbolic links. A folder comes before what it holds; a package is no book.
/// The walk ends where `visit` says false; true when it came to its end.
bool walkLinkedItems(const QString &folder, const std::function<bool(const QString &path, bool isBook)> &visit);

struct RefreshedLinks
{
    qsizetype links = 0;
    qsizetype documents = 0;

    /// The report for people.
    [[nodiscard]] QString message() const;
};

/// Stores the backlinks of every document below the folder. With `sinceReferenceDate` and for the root, only
/// documents changed since the last refresh of the root are read.
/// Stopped half-way it stores what it has found, and the next refresh reads everything again.
RefreshedLinks tm_refreshAllBacklinksStartingAtReferenceDate(const QString &folder, bool sinceReferenceDate,
                                                             const Progress &progress = {});

enum class BacklinkCheck { Find, Repair, Remove };

struct CheckedBacklinks
{
    BacklinkCheck check = BacklinkCheck::Find;
    qsizetype items = 0;    ///< that have a stored path
    qsizetype removed = 0;  ///< documents whose backlinks were removed
    QStringList mismatches; ///< items whose stored path was not their own
    QStringList stalePaths; ///< the stored path of each mismatch, normalised

    [[nodiscard]] QString message() const;
    /// What the person reads before a repair: each mismatch with its stale path in brackets.
    [[nodiscard]] QString explanation() const;
};

/// Goes through all backlinks below the folder. Repairs are queued, in the order of the walk.
CheckedBacklinks tm_findBrokenBacklinks(const QString &folder, BacklinkCheck check, const Progress &progress = {});

} // namespace tomelet
