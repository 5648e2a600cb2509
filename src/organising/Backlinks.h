// SPDX-License-Identifier: GPL-3.0-or-later
// Backlinks: each item knows which documents refer to it, and under which path it was known to them.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// Notes that the document refers to the item, which may be given relative to the root.
void tm_addBacklink(const QString &item, const QString &referrer);
/// Puts another referrer in the place of one, or none for an empty text; referrers that are gone are dropped.
void tm_changeBacklinkFrom(const QString &item, const QString &oldReferrer, const QString &newReferrer);
/// True when there was anything to remove.
bool tm_removeBacklinks(const QString &item);
/// Stores the document as a backlink of all it refers to; these, normalised. Does nothing while links are not managed.
QStringList tm_refreshBacklinksForReferencedDocuments(const QString &document);

/// Mends an item whose `ReferencedPath` is not its path.
void tm_repairBrokenBacklink(const QString &item);

} // namespace tomelet
