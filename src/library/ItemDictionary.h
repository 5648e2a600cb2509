// SPDX-License-Identifier: GPL-3.0-or-later
// An item as a row of a list: a dictionary of what lists show and sort by.
//
// Keys: title, path, parent, modDate, creationDate, DueDate (the sort date, not always a due date), custom ("0012",
// "-0001", "9000"), taskIcon, taskIsRepeating ("1" or ""), pinnedSequence, _TMFAV ("1" or ""), cellColor.
#pragma once

#include "foundation/Collation.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace tomelet {

/// What a list reads once and shares among its rows; what is missing is read for the row.
struct RowSources
{
    std::optional<LocalizedIndex> sortOrder;   ///< `Notes` or `Books` of the item's book
    std::optional<LocalizedIndex> pinnedOrder; ///< `Pinned` of the item's book
};

/// The row of an item. `details` is its task record where the caller has it; it is looked up for a null one.
[[nodiscard]] QVariantMap itemRow(const QString &path, bool asTask, const QVariant &details, const RowSources &sources);
[[nodiscard]] QVariantMap tm_dictionaryForItemAsTask(const QString &path, bool asTask, const QVariant &details,
                                                     const QVariant &sortOrder, const QVariant &pinnedOrder = {});
/// The row as a task where the item is one.
[[nodiscard]] QVariantMap tm_dictionaryForItemAtPath(const QString &path);

/// Sorts rows in place by title, creationDate, modDate, DueDate or custom ("" is title). Stable passes: name, then
/// the key, then pins, which come first in every order but custom.
void tm_sortByParameter(QVariantList &rows, const QString &parameter, bool descending);
void sortRows(QList<QVariantMap> &rows, const QString &parameter, bool descending);

} // namespace tomelet
