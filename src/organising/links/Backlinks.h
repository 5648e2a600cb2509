// SPDX-License-Identifier: GPL-3.0-or-later
// Backlinks: each item knows which documents refer to it, and under which path it was known to them.
#pragma once

#include "foundation/Progress.h"
#include "foundation/PropertyStore.h"

#include <QMap>
#include <QString>
#include <QStringList>

namespace tomelet {

/// Notes that the document refers to the item, which may be given relative to the root.
void tm_addBacklink(const QString &item, const QString &referrer);
/// Puts another referrer in the place of one, or none for an empty text; referrers that are gone are dropped.
void tm_changeBacklinkFrom(const QString &item, const QString &oldReferrer, const QString &newReferrer);
/// The same for many documents, written with other items.
void addBacklinks(StoreBatch &stores, const QString &item, const QStringList &referrers);
void changeBacklink(StoreBatch &stores, const QString &item, const QString &oldReferrer, const QString &newReferrer);
/// True when there was anything to remove.
bool tm_removeBacklinks(const QString &item);
/// Stores the document as a backlink of all it refers to; these, normalised. Does nothing while links are not managed.
QStringList tm_refreshBacklinksForReferencedDocuments(const QString &document);

/// What the references of documents make of the property files: gathered first, so that each file is written once.
struct BacklinksToAdd
{
    QMap<QString, QStringList> referrers; ///< normalised paths of targets with the full paths of documents
    QStringList unmarked;                 ///< documents that are to note where they are
};

/// Adds the references of one document; gives their targets, normalised. None while links are not managed, and none
/// for a document that somebody else has moved: its links are put right instead.
QStringList collectReferences(const QString &document, BacklinksToAdd &found);
/// One write per item; the progress counts property files. A stop leaves the rest to the next refresh: true when all
/// are stored.
bool storeBacklinks(const BacklinksToAdd &found, const Progress &progress = {});

/// Mends an item whose `ReferencedPath` is not its path.
void tm_repairBrokenBacklink(const QString &item);

} // namespace tomelet
