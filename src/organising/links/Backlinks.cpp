// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/links/Backlinks.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "organising/links/DocumentReferences.h"
#include "organising/links/LinkRewriting.h"

namespace tomelet {

namespace {

const QString backlinksKey = QStringLiteral("Backlinks");
const QString referencedKey = QStringLiteral("ReferencedPath");

QVariantList listFrom(const QStringList &paths)
{
    return {paths.begin(), paths.end()};
}

void logMismatch(const QString &path, const QString &stored)
{
    logLine(QStringLiteral("### MISMATCH: should be %1, but is %2").arg(path, stored));
}

} // namespace

// The full path of an item that may be given relative to the root; "" when there is none.
static QString existingItem(const QString &item, const QString &root)
{
    const QString full = tm_itemIsChildOfTomelet(item, root) ? item : fullPathOf(item, root);
    return itemExists(full) ? full : QString();
}

void addBacklinks(StoreBatch &stores, const QString &item, const QStringList &referrers)
{
    const QString root = tomeletRoot();
    const QString full = existingItem(item, root);
    if (full.isEmpty()) return;
    const QString path = tm_normalizedPath(full, root);
    stores.change(propertyFileOf(full), [=](QVariantMap &properties) {
        const QVariantMap before = properties;
        QStringList backlinks = properties.value(backlinksKey).toStringList();
        const QString stored = properties.value(referencedKey).toString();
        if (backlinks.isEmpty() || stored.isEmpty()) properties.insert(referencedKey, path);
        else if (stored != path) logMismatch(path, stored);
        const LocalizedIndex known(backlinks);
        for (const QString &referrer : referrers) {
            const QString normalized = tm_normalizedPath(referrer, root);
            if (!known.find(normalized)) backlinks.append(normalized);
        }
        backlinks.removeDuplicates();
        properties.insert(backlinksKey, listFrom(backlinks));
        if (properties != before) logLine(QStringLiteral("backlinks changed for %1").arg(full));
        return properties != before;
    });
}

void tm_addBacklink(const QString &item, const QString &referrer)
{
    StoreBatch stores;
    addBacklinks(stores, item, {referrer});
}

void changeBacklink(StoreBatch &stores, const QString &item, const QString &oldReferrer, const QString &newReferrer)
{
    const QString root = tomeletRoot();
    const QString full = existingItem(item, root);
    if (full.isEmpty()) return;
    stores.change(propertyFileOf(full), [=](QVariantMap &properties) {
        const QVariantMap before = properties;
        QStringList backlinks = properties.value(backlinksKey).toStringList();
        backlinks.removeAll(tm_normalizedPath(oldReferrer, root));
        if (!newReferrer.isEmpty()) backlinks.append(tm_normalizedPath(newReferrer, root));
        backlinks.removeIf([&](const QString &path) { return !itemExists(fullPathOf(path, root)); });
        backlinks.removeDuplicates();
        if (backlinks.isEmpty()) {
            // The two keys stand and go together.
            properties.remove(backlinksKey);
            properties.remove(referencedKey);
        } else {
            properties.insert(backlinksKey, listFrom(backlinks));
        }
        return properties != before;
    });
}

void tm_changeBacklinkFrom(const QString &item, const QString &oldReferrer, const QString &newReferrer)
{
    StoreBatch stores;
    changeBacklink(stores, item, oldReferrer, newReferrer);
}

bool tm_removeBacklinks(const QString &item)
{
    bool removed = false;
    changeDictionary(propertyFileOf(item), [&](QVariantMap &properties) {
        removed = properties.remove(backlinksKey) + properties.remove(referencedKey) > 0;
        return removed;
    });
    return removed;
}

namespace {

// True when the document was moved by somebody else and has been put right instead.
bool resolvesMismatch(const QString &document, const QString &stored, const QString &path, const QString &root)
{
    if (stored.isEmpty() || stored == path) return false;
    logLine(QStringLiteral("Resolving link mismatch for %1").arg(document));
    tm_adjustLinksAndBacklinksAfterRenameFrom(document, fullPathOf(stored, root));
    return true;
}

} // namespace

QStringList collectReferences(const QString &document, BacklinksToAdd &found)
{
    if (!settings().boolean(QStringLiteral("manageLinks")) || document.contains(u"TMResources")) return {};
    const QString root = tomeletRoot();
    const QString path = tm_normalizedPath(document, root);
    const QString stored = tm_propertyForKey(document, referencedKey).toString();
    if (resolvesMismatch(document, stored, path, root)) return {};
    const QStringList targets = tm_verifiedArrayOfReferencedDocuments(document);
    for (const QString &target : targets) found.referrers[target].append(document);
    if (!targets.isEmpty() && stored != path) found.unmarked.append(document);
    return targets;
}

bool storeBacklinks(const BacklinksToAdd &found, const Progress &progress)
{
    const QString root = tomeletRoot();
    const qsizetype all = found.referrers.size() + found.unmarked.size();
    qsizetype done = 0;
    const auto stopped = [&] { return progress && !progress(++done, all); };
    StoreBatch stores;
    for (auto target = found.referrers.begin(); target != found.referrers.end(); ++target) {
        addBacklinks(stores, target.key(), target.value());
        if (stopped()) return false;
    }
    for (const QString &document : found.unmarked) {
        logLine(QStringLiteral("setting backlinkRef for %1").arg(document));
        stores.change(propertyFileOf(document), [document, root](QVariantMap &properties) {
            properties.insert(referencedKey, tm_normalizedPath(document, root));
            return true;
        });
        if (stopped()) return false;
    }
    return true;
}

QStringList tm_refreshBacklinksForReferencedDocuments(const QString &document)
{
    BacklinksToAdd found;
    const QStringList targets = collectReferences(document, found);
    storeBacklinks(found);
    return targets;
}

// -- repair -----------------------------------------------------------------------------------------------------------

namespace {

// The topmost folders in which two paths of one moved item differ.
std::pair<QString, QString> changedFolders(QString a, QString b)
{
    while (!a.isEmpty() && !b.isEmpty() && a != u"/" && b != u"/" &&
           localizedCompare(lastPathComponent(a), lastPathComponent(b)) == 0) {
        a = parentPath(a);
        b = parentPath(b);
    }
    return {a, b};
}

} // namespace

void tm_repairBrokenBacklink(const QString &item)
{
    const QString root = tomeletRoot();
    const QString path = tm_normalizedPath(item, root);
    const QString stored = tm_propertyForKey(item, referencedKey).toString();
    if (stored.isEmpty() || stored == path) return;
    const QString former = fullPathOf(stored, root);
    if (itemExists(former)) {
        logLine(
            QStringLiteral("### MISMATCH, but referencedPath still exists, removing pops %1 (%2)").arg(path, stored));
        tm_removeBacklinks(item);
        return;
    }
    logMismatch(path, stored);
    if (!pathIsPlainBook(item)) return tm_adjustLinksAndBacklinksAfterRenameFrom(item, former);
    const auto [oldFolder, newFolder] = changedFolders(former, item);
    if (oldFolder.size() > root.size() && newFolder.size() > root.size())
        tm_renameAllLinksFrom(root, oldFolder, newFolder);
    tm_setProperty(item, path, referencedKey);
}

} // namespace tomelet
