// SPDX-License-Identifier: GPL-3.0-or-later
// The routing of reported changes: what a path that changed, went or moved means for the tree, the lists and the
// stores. Every branch may run twice for one change, since the program's own work is reported as well.
#include "library/OutlineController.h"

#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/EmbeddedPhotos.h"
#include "library/Extensions.h"
#include "library/ItemOperations.h"
#include "library/ItemPath.h"
#include "library/LocationSettings.h"
#include "library/Organiser.h"
#include "library/Properties.h"

#include <QFileInfo>

namespace tomelet {

using namespace std::chrono_literals;

static const QString modifiedName = QStringLiteral("TMLTFileModifiedOnDiskNotification");
static const QString storeName = QStringLiteral("TMTasklistDetails.plist");

static void postModified(const QString &path)
{
    notifications().postPath(modifiedName, path);
}

void TMLTOutlineController::subItemDidChange(const QString &path)
{
    presentedSubitemDidChangeAtURL(path);
}

void TMLTOutlineController::presentedSubitemDidChangeAtURL(const QString &path)
{
    const QString root = tomeletRoot();
    const QString below = tm_normalizedPath(path, root);
    if (tm_pathIsDotFile(below) || path == miscFile(QStringLiteral("RecentItems.txt"))) return;
    // A root that went away has deleted nothing.
    if (!isFolder(root)) return;
    const Existence now = tm_fileExistsAtPathIsDirectory(path);
    if (now.exists) routeExisting(path, now.isFolder);
    else routeGone(path);
}

void TMLTOutlineController::scheduleReloadParents(const QString &path)
{
    platform().delayedCalls.schedule(QStringLiteral("reloadParents:"), path, 300ms,
                                     [this, path] { reloadParents({path}); });
}

void TMLTOutlineController::scheduleTaskStoreChanged(const QString &store)
{
    platform().delayedCalls.schedule(QStringLiteral("tm_taskPlistChangedAtPath:"), store, 300ms,
                                     [store] { organiser().taskStoreChanged(store); });
}

// -- a path that exists -----------------------------------------------------------------------------------------------

// The files of `TMResources` that belong to the library as a whole; true when the event ends here.
bool TMLTOutlineController::routeLibraryFiles(const QString &path)
{
    if (path == miscFile(QStringLiteral("AvailableTags.txt"))) {
        if (!m_renamingBook.isEmpty()) return true;
        organiser().contextListChanged();
        notifications().post(QStringLiteral("TMLTReloadContextSmartBook"));
        return true;
    }
    if (path == miscFile(QStringLiteral("Settings.txt"))) {
        tm_readLocationSpecificSettings();
        return true;
    }
    if (!tm_pathIsExcludedFromDisplay(path) || path.endsWith(u".plist")) return false;
    if (path.contains(u"/TMImages/")) postModified(path);
    logLine(QStringLiteral("ignoring change: %1").arg(path));
    return true;
}

void TMLTOutlineController::routeTaskStore(const QString &path)
{
    const bool active = path.endsWith(storeName);
    const QString book = parentPath(path);
    organiser().tasklistsChanged(active ? book : QString(), active ? QString() : book);
    notifications().post(QStringLiteral("TMLTUpdateAllTaskLists"));
    scheduleTaskStoreChanged(path);
}

void TMLTOutlineController::routePropertyFile(const QString &path)
{
    organiser().propertyFileChanged(path);
    if (settings().boolean(QStringLiteral("hideSystemFiles"))) tm_hideItemInFinder(path);
    if (lastPathComponent(path) != u"BookProperties.plist") return;
    if (TMLTOutlineItem *book = loadedItem(parentPath(path))) {
        book->refresh();
        moveChildrenToNewPositionsForItem(book);
    }
}

// The tree's node, without building levels that nobody has looked at; they are read when they are opened.
TMLTOutlineItem *TMLTOutlineController::loadedItem(const QString &path) const
{
    const QString root = tomeletRoot();
    if (!tm_itemIsChildOfTomelet(path, root)) return nullptr;
    TMLTOutlineItem *item = TMLTOutlineItem::booksItem();
    for (const QString &part : tm_normalizedPath(path, root).split(u'/', Qt::SkipEmptyParts)) {
        if (!item || !item->isLoaded()) return nullptr;
        item = item->childWithTitle(part);
    }
    return item;
}

// A fresh file, or one whose change has settled: what lies between is a file that is being written.
static bool countsAsChangedInBook(const QString &path)
{
    const QDateTime now = platform().clock.now();
    const QDateTime created = fileCreationDate(path);
    return created.msecsTo(now) < 2000 || QFileInfo(path).lastModified().msecsTo(now) > 2000;
}

void TMLTOutlineController::routeExisting(const QString &path, bool isBook)
{
    if (isBook && path.contains(u"TMResources")) return;
    if (isBook && hasPackageExtension(path)) return postModified(path);
    if (routeLibraryFiles(path)) return;

    logLine(QStringLiteral("Changed: %1").arg(path));
    const bool isPlist = path.endsWith(u".plist");
    if (tm_pathIsTaskPlist(path)) routeTaskStore(path);
    else if (isBook && organiser().bookIsTasklist(path)) organiser().verifyTasklists();
    if (isPlist) routePropertyFile(path);
    postModified(path);
    if (isBook) {
        TMLTOutlineItem *parentItem = loadedItem(parentPath(path));
        if (parentItem && parentItem->isLoaded() && !parentItem->childWithTitle(lastPathComponent(path)))
            parentItem->addChildWithTitle(lastPathComponent(path));
    }
    if (!m_renamingBook.isEmpty() && path == m_renamingBook)
        return logLine(QStringLiteral("renaming changed item, ignore notification"));
    if (!isPlist && (isBook || countsAsChangedInBook(path))) scheduleReloadParents(path);
    updateDisclosureVisibilityForPath(path, isBook, false);
}

// -- a path that is gone ----------------------------------------------------------------------------------------------

void TMLTOutlineController::routeGone(const QString &path)
{
    logLine(QStringLiteral("DELETED: %1").arg(path));
    const bool isPlist = path.endsWith(u".plist");
    const bool hasExtension = !pathExtension(path).isEmpty();
    if (path.endsWith(storeName)) scheduleTaskStoreChanged(path);
    if (hasExtension && !isPlist) {
        organiser().contextsFollow(path, {});
        const QString book = parentPath(path);
        if (organiser().bookIsTasklist(book)) scheduleTaskStoreChanged(joinPath(book, storeName));
    }
    // A book's name may hold a point, so the tree is asked as well.
    const bool wasBook = !hasExtension || loadedItem(path) != nullptr;
    if (wasBook) {
        removeFolderWithPath(path);
        organiser().verifyTasklists();
    }
    notifications().postPath(QStringLiteral("TMLTFileDeletedFromDiskNotification"), path);
    if (!m_renamingBook.isEmpty() && path == m_renamingBook)
        return logLine(QStringLiteral("renaming changed item, ignore notification"));
    if (!isPlist) scheduleReloadParents(path);
    updateDisclosureVisibilityForPath(path, wasBook, true);
}

void TMLTOutlineController::removeFolderWithPath(const QString &path)
{
    TMLTOutlineItem *item = loadedItem(path);
    if (item && item->parent()) item->parent()->removeChild(item);
    else logLine(QStringLiteral("child not found in index"));
}

void TMLTOutlineController::updateDisclosureVisibilityForPath(const QString &path, bool isBook, bool wasDeleted)
{
    TMLTOutlineItem *parentItem = isBook ? loadedItem(parentPath(path)) : nullptr;
    if (!parentItem) return;
    const qsizetype count = parentItem->numberOfChildren();
    const bool lastWent = wasDeleted && count == 0;
    const bool firstCame = !wasDeleted && count <= 1;
    if (lastWent || firstCame) parentItem->refresh();
}

void TMLTOutlineController::reloadParents(const QStringList &paths)
{
    const QString root = tomeletRoot();
    QList<TMLTOutlineItem *> rows;
    for (const QString &path : paths) {
        QString at = path;
        while (tm_itemIsChildOfTomelet(at, root) && at.size() > root.size()) {
            if (TMLTOutlineItem *item = loadedItem(at); item && !rows.contains(item)) rows.append(item);
            at = parentPath(at);
        }
    }
    if (TMLTOutlineItem *inbox = TMLTOutlineItem::smartBookOfType(InboxBook)) rows.append(inbox);
    for (TMLTOutlineItem *row : rows) row->refresh();
    updateSmartBookOfType(DueTasksBook);
}

void TMLTOutlineController::moveChildrenToNewPositionsForItem(TMLTOutlineItem *item)
{
    if (item->isLoaded()) item->sortChildren();
}

// -- moves ------------------------------------------------------------------------------------------------------------

void TMLTOutlineController::presentedSubitemAtURL(const QString &path, const QString &newPath)
{
    // Programs save by writing a hidden file and giving it the name: nothing that anyone knew has moved.
    if (tm_pathIsDotFile(tm_normalizedPath(path))) return presentedSubitemDidChangeAtURL(newPath);
    logLine(QStringLiteral("item moved: %1 %2").arg(path, newPath));
    if (tm_pathIsTaskPlist(path) || tm_pathIsTaskPlist(newPath)) {
        organiser().tasklistsChanged(newPath.endsWith(storeName) ? parentPath(newPath) : QString(),
                                     path.endsWith(storeName) ? parentPath(path) : QString());
        notifications().post(QStringLiteral("TMLTUpdateAllTaskLists"));
    }
    notifications().post(QStringLiteral("TMLTFileMovedNotification"),
                         {{QStringLiteral("originalPath"), path},
                          {QStringLiteral("newPath"), newPath},
                          {QStringLiteral("silentReload"), QStringLiteral("1")}});
    followInbox(path, newPath);

    const bool intoLibrary = tm_itemIsChildOfTomelet(newPath) && !tm_itemIsTrashed(newPath);
    if (pathIsPlainBook(newPath)) routeMovedBook(path, newPath, intoLibrary);
    else routeMovedDocument(path, newPath, intoLibrary);
}

void TMLTOutlineController::routeMovedDocument(const QString &path, const QString &newPath, bool intoLibrary)
{
    if (!itemExists(tm_plistPath(newPath)) && itemExists(tm_plistPath(path)))
        platform().delayedCalls.schedule(QStringLiteral("tryToMovePlistAlong:"), newPath, 500ms,
                                         [this, path, newPath] { tryToMovePlistAlong(path, newPath); });
    const QString book = parentPath(path);
    if (intoLibrary) {
        organiser().contextsFollow(path, newPath);
        if (organiser().bookIsTasklist(book)) organiser().taskFollows(path, newPath);
        tm_changeSortOrderToPath(path, newPath);
    } else {
        organiser().contextsFollow(path, {});
        if (organiser().bookIsTasklist(book)) scheduleTaskStoreChanged(joinPath(book, storeName));
    }
    // Lists show what lies in a book now; the old name is told as gone by the move itself.
    for (const QString &parent : {book, parentPath(newPath)})
        if (TMLTOutlineItem *item = loadedItem(parent)) item->refresh();
}

void TMLTOutlineController::tryToMovePlistAlong(const QString &path, const QString &newPath)
{
    const QString from = tm_plistPath(path);
    const QString to = tm_plistPath(newPath);
    if (itemExists(path) || !itemExists(newPath) || itemExists(to) || !itemExists(from)) return;
    (void)moveItem(from, to);
    tm_copyEmbeddedPhotosToPath(path, newPath);
}

void TMLTOutlineController::routeMovedBook(const QString &path, const QString &newPath, bool intoLibrary)
{
    organiser().verifyTasklists();
    if (intoLibrary) {
        organiser().contextsFollow(path, newPath);
        tm_changeSortOrderToPath(path, newPath);
    }
    if (!moveRow(path, newPath)) return;
    followListOnDisplay(path, newPath);
    reloadParents({parentPath(path), parentPath(newPath)});
}

// Tree surgery; false when the rows could not be found and the view is left alone until the next reload.
bool TMLTOutlineController::moveRow(const QString &path, const QString &newPath)
{
    TMLTOutlineItem *oldParent = loadedItem(parentPath(path));
    TMLTOutlineItem *newParent = loadedItem(parentPath(newPath));
    TMLTOutlineItem *item =
        oldParent && oldParent->isLoaded() ? oldParent->childWithTitle(lastPathComponent(path)) : nullptr;
    const QString name = lastPathComponent(newPath);
    if (oldParent && oldParent == newParent) {
        if (!item && oldParent->isLoaded() && !oldParent->childWithTitle(name)) {
            logLine(QStringLiteral("CATCH Exception while moving entry %1 to %2 (%3 to %4)")
                        .arg(path, newPath)
                        .arg(notFoundIndex)
                        .arg(notFoundIndex));
            return false;
        }
        if (item && item->relativePath() != name) item->changeRelativePath(name);
        return true;
    }
    const bool shownBelowNew = newParent && newParent->isLoaded();
    if (item && shownBelowNew) {
        // Set first and without sorting the old level, which the item leaves.
        if (TMLTOutlineItem *present = newParent->childWithTitle(name)) newParent->removeChild(present);
        item->moveToParent(newParent);
        item->changeRelativePath(name);
    } else if (item) {
        oldParent->removeChild(item);
    } else if (shownBelowNew && !newParent->childWithTitle(name)) {
        newParent->addChildWithTitle(name);
    }
    if (oldParent && oldParent->isLoaded() && oldParent->numberOfChildren() == 0) {
        m_view.collapse(oldParent);
        oldParent->refresh();
    }
    if (newParent) newParent->refresh();
    return true;
}

void TMLTOutlineController::followListOnDisplay(const QString &path, const QString &newPath)
{
    const QString shown = m_view.bookOnDisplay();
    if (shown != path && !shown.startsWith(path + u'/')) return;
    const QString now = newPath + shown.mid(path.size());
    notifications().postPath(QStringLiteral("TMLTNewBookSelectedNotification"), now);
    if (!settings().boolean(QStringLiteral("outlineIsCollapsed"))) expandPathToItem(now);
}

} // namespace tomelet
