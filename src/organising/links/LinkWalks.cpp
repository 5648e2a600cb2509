// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/links/LinkWalks.h"

#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "organising/contexts/ContextStores.h"
#include "organising/links/Backlinks.h"
#include "organising/links/DocumentReferences.h"
#include "organising/links/LinkRewriting.h"

#include <QElapsedTimer>
#include <QFileInfo>

namespace tomelet {

namespace {

const QString backlinksKey = QStringLiteral("Backlinks");
const QString referencedKey = QStringLiteral("ReferencedPath");

bool isPassedOver(const QString &path)
{
    const QString name = lastPathComponent(path);
    return tm_pathIsExcludedFromDisplay(path) || path.contains(u"TMResources") || name == u"TMMacLog.txt" ||
           name == u"Dropbox Log.txt" || name.startsWith(localized(TOMELET_TEXT("Sync Report")));
}

double seconds(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.elapsed()) / 1000.0;
}

} // namespace

bool walkLinkedItems(const QString &folder, const std::function<bool(const QString &path, bool isBook)> &visit)
{
    for (const FolderEntry &entry : listFolder(folder).value_or(std::vector<FolderEntry>())) {
        const QString path = joinPath(folder, entry.name);
        if (isPassedOver(path)) continue;
        const bool isBook = entry.isFolder && !hasPackageExtension(path);
        if (!visit(path, isBook)) return false;
        if (isBook && !QFileInfo(path).isSymLink() && !walkLinkedItems(path, visit)) return false;
    }
    return true;
}

namespace {

/// Counts the items of a walk for whoever watches it.
class WalkProgress
{
public:
    WalkProgress(const QString &folder, const Progress &progress)
        : m_progress(progress)
    {
        if (progress) walkLinkedItems(folder, [this](const QString &, bool) { return ++m_all; });
    }
    /// One more is done; false when the work is to stop.
    bool advance() { return !m_progress || m_progress(++m_done, m_all); }

private:
    const Progress &m_progress;
    qsizetype m_done = 0;
    qsizetype m_all = 0;
};

} // namespace

// -- refresh ----------------------------------------------------------------------------------------------------------

QString RefreshedLinks::message() const
{
    QString text = links == 0 ? localized(TOMELET_TEXT("No links found"))
                   : links == 1
                       ? localized(TOMELET_TEXT("One link found"))
                       : localized(TOMELET_TEXT("Found %d Links")).replace(QLatin1String("%d"), QString::number(links));
    if (documents == 0) return localized(TOMELET_TEXT("No editable documents"));
    text += u' ';
    if (documents == 1) text += localized(TOMELET_TEXT("in one document"));
    else text += localized(TOMELET_TEXT("in %d Documents")).replace(QLatin1String("%d"), QString::number(documents));
    return text;
}

// A book that refers to itself by another path would be taken for one that somebody moved.
static void refreshBook(const QString &path, const QString &root)
{
    const QString stored = storedProperties(path).value(referencedKey).toString();
    const QString own = tm_normalizedPath(path, root);
    if (!stored.isEmpty() && stored != own) tm_setProperty(path, own, referencedKey);
}

RefreshedLinks tm_refreshAllBacklinksStartingAtReferenceDate(const QString &folder, bool sinceReferenceDate,
                                                             const Progress &progress)
{
    QElapsedTimer timer;
    timer.start();
    const QString root = tomeletRoot();
    const bool isRoot = folder == root;
    const QDateTime begin = platform().clock.now();
    const QDateTime reference = sinceReferenceDate && isRoot ? lastRefreshOfBacklinks() : farPast();
    RefreshedLinks found;
    // What is read below must be the texts with their links as they are meant.
    finishAbandonedMoves();
    platform().serialQueue.drain();
    BacklinksToAdd backlinks;
    WalkProgress walk(folder, progress);
    const bool walked = walkLinkedItems(folder, [&](const QString &path, bool isBook) {
        if (isBook) {
            refreshBook(path, root);
            // A whole second is all that the stored date knows.
        } else if (canHoldReferences(path) && QFileInfo(path).lastModified().addSecs(1) >= reference) {
            found.links += collectReferences(path, backlinks).size();
            ++found.documents;
        }
        return walk.advance();
    });
    const bool stored = storeBacklinks(backlinks, walked ? progress : Progress());
    if (isRoot && walked && stored) setLastRefreshOfBacklinks(begin);
    logLine(QStringLiteral("***** %1 items, %2 refs in %3").arg(found.documents).arg(found.links).arg(seconds(timer)));
    return found;
}

// -- check ------------------------------------------------------------------------------------------------------------

QString CheckedBacklinks::message() const
{
    const auto counted = [](const char *text, qsizetype count) {
        return localized(text).replace(QLatin1String("%d"), QString::number(count));
    };
    if (check == BacklinkCheck::Remove) {
        if (removed == 0) return localized(TOMELET_TEXT("No Backlinks to Remove"));
        if (removed == 1) return localized(TOMELET_TEXT("Removed Backlinks from One Document"));
        return counted(TOMELET_TEXT("Removed Backlinks from %d Documents"), removed);
    }
    const bool repair = check == BacklinkCheck::Repair;
    if (mismatches.isEmpty()) return localized(TOMELET_TEXT("No Broken Backlinks"));
    if (mismatches.size() == 1)
        return repair ? localized(TOMELET_TEXT("One Broken Backlink Repaired"))
                      : localized(TOMELET_TEXT("One Broken Backlink Found"));
    return repair ? counted(TOMELET_TEXT("%d Broken Backlinks Repaired"), mismatches.size())
                  : counted(TOMELET_TEXT("Found %d broken backlinks"), mismatches.size());
}

QString CheckedBacklinks::explanation() const
{
    QString text = localized(TOMELET_TEXT(
        "The paths of these documents differ from the backlinks used by other documents. Tomelet can repair these "
        "backlinks and make them point to the correct documents again."));
    for (qsizetype i = 0; i < mismatches.size(); ++i)
        text += u"\n\n" + tm_normalizedPath(mismatches[i], tomeletRoot()) + u"\n( " + stalePaths[i] + u" )";
    return text;
}

namespace {

// Nobody refers to it and it refers to nobody: only its own note of where it was is old.
bool needsNoRepair(const QString &item, const QVariantMap &properties)
{
    return properties.value(backlinksKey).toStringList().isEmpty() && !isFolder(item) &&
           referencesInDocument(item).isEmpty();
}

void checkItem(const QString &item, const QString &root, CheckedBacklinks &checked)
{
    const QVariantMap properties = storedProperties(item);
    const QString stored = properties.value(referencedKey).toString();
    if (stored.isEmpty()) return;
    ++checked.items;
    const QString own = tm_normalizedPath(item, root);
    if (stored == own) return;
    if (needsNoRepair(item, properties)) {
        tm_setProperty(item, own, referencedKey);
        return;
    }
    checked.mismatches.append(item);
    checked.stalePaths.append(stored);
}

} // namespace

CheckedBacklinks tm_findBrokenBacklinks(const QString &folder, BacklinkCheck check, const Progress &progress)
{
    QElapsedTimer timer;
    timer.start();
    const QString root = tomeletRoot();
    CheckedBacklinks checked;
    checked.check = check;
    WalkProgress walk(folder, progress);
    const bool walked = walkLinkedItems(folder, [&](const QString &path, bool) {
        if (check != BacklinkCheck::Remove) {
            checkItem(path, root, checked);
        } else if (tm_removeBacklinks(path)) {
            logLine(QStringLiteral("deleting backlink for: %1").arg(path));
            ++checked.removed;
        }
        return walk.advance();
    });
    // After the walk: a repair of one item may mend the paths of others, which are looked at anew.
    if (check == BacklinkCheck::Repair) finishAbandonedMoves();
    if (check == BacklinkCheck::Repair)
        for (const QString &item : checked.mismatches) tm_repairBrokenBacklink(item);
    if (folder == root && walked) setNumberOfDocumentsWithBacklinks(checked.items);
    logLine(QStringLiteral("***** backlink consistency check: %1 items, %2 mismatches, in %3")
                .arg(checked.items)
                .arg(checked.mismatches.size())
                .arg(seconds(timer)));
    return checked;
}

} // namespace tomelet
