// SPDX-License-Identifier: GPL-3.0-or-later
// Deleting selected items as a person does it: into the trash, with a way back.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace tomelet {

/// Where an item was and where it lies in the trash; the second is empty after a permanent deletion.
struct DeletionRecord
{
    QString orgURL;
    QString trashURL;
    QVariantMap task; ///< its task record, which the next recount of its book takes away
};

struct Deletion
{
    QList<DeletionRecord> records; ///< what can be undone; a document's property file has a record of its own
    bool permanent = false;        ///< at least one item is gone for good
    QStringList failed;            ///< items that still stand
};

/// Deletes the items from the last to the first. Where the trash does not take one, the person is asked whether it
/// is to be deleted for good; "no" leaves the item.
Deletion performDeleteSelectedItems(const QStringList &items, bool deletePermanently);
/// Puts everything back that can be; the records of what could not. Redoing is deleting the items again.
QList<DeletionRecord> undoLastDelete(const QList<DeletionRecord> &records);

/// The last deletion of this root, for an undo in a later call of the program; an empty list forgets it.
void storeLastDeletion(const QList<DeletionRecord> &records);
[[nodiscard]] QList<DeletionRecord> lastDeletion();

} // namespace tomelet
