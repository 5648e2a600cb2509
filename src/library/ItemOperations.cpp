// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/ItemOperations.h"

#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/EmbeddedPhotos.h"
#include "library/ItemPath.h"
#include "library/LocationSettings.h"
#include "library/Organiser.h"
#include "library/PathForms.h"
#include "library/Properties.h"

#include <QDir>

namespace tomelet {

// Written anew rather than moved, so that its fresh date shows it as changed; before the old one goes, so that
// nothing is lost in between. One that cannot be read moves as it is.
static void movePropertyFile(const QString &path, const QString &target)
{
    const QString from = tm_plistPath(path);
    const QString to = tm_plistPath(target);
    if (!itemExists(from) || from == to) return;
    const QVariantMap properties = readDictionary(from);
    const bool written = !properties.isEmpty() && writeStore(to, properties);
    if (written) (void)removeItem(from);
    else (void)moveItem(from, to);
}

bool tm_moveItemToPath(const QString &path, const QString &target)
{
    const QString root = tomeletRoot();
    if (path.isEmpty() || target.isEmpty() || path == root) return false;
    if (const FileResult moved = moveItem(path, target); !moved) {
        logLine(QStringLiteral("Move failed: %1").arg(moved.message));
        return false;
    }
    Organiser &others = organiser();
    const bool isBook = pathIsPlainBook(target);
    movePropertyFile(path, target);
    others.contextsFollow(path, target);
    if (others.bookIsTasklist(parentPath(path))) others.taskFollows(path, target);
    if (isBook) others.verifyTasklists();
    tm_changeSortOrderToPath(path, target);
    if (!isBook) tm_copyEmbeddedPhotosToPath(path, target);
    if (settings().boolean(QStringLiteral("manageLinks")) && !tm_itemIsTrashed(target))
        others.linksFollow(path, target);
    followInbox(path, target);
    return true;
}

void tm_moveItemToPathAsync(const QString &path, const QString &target)
{
    platform().delayedCalls.schedule(QStringLiteral("tm_moveItemToPathAsync"), path, std::chrono::milliseconds(0),
                                     [path, target] {
                                         if (!tm_moveItemToPath(path, target))
                                             logLine(QStringLiteral("..Move not allowed: %1").arg(path));
                                     });
}

bool tm_copyItemToPath(const QString &path, const QString &target)
{
    if (const FileResult copied = copyItem(path, target); !copied) {
        logLine(QStringLiteral("Copy failed: %1").arg(copied.message));
        return false;
    }
    const QString root = tomeletRoot();
    if (tm_itemIsChildOfTomelet(path, root) && tm_itemIsChildOfTomelet(target, root) && !isFolder(target)) {
        if (itemExists(tm_plistPath(path))) (void)copyItem(tm_plistPath(path), tm_plistPath(target));
        tm_copyEmbeddedPhotosToPath(path, target);
    }
    organiser().taskIsCopied(path, target);
    if (pathIsPlainBook(target)) organiser().verifyTasklists();
    notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), target);
    return true;
}

QString pathForDuplicate(const QString &path)
{
    const QString copy = u' ' + localized(TOMELET_TEXT("copy"));
    const QString extension = isFolder(path) ? QString() : pathExtension(path);
    const QString name = lastPathComponent(path);
    if (extension.isEmpty()) return tm_uniqueNameForFileatPath(name + copy, parentPath(path));
    return tm_uniqueNameForFileatPath(pathWithoutExtension(name) + copy + u'.' + extension, parentPath(path));
}

// What belongs to the source alone, and the date that puts the copy next to it.
static void setApart(const QString &copy, const QStringList &keys, const QDateTime &sourceDate)
{
    changeDictionary(propertyFileOf(copy), [&](QVariantMap &properties) {
        const QVariantMap before = properties;
        for (const QString &key : keys) properties.remove(key);
        return properties != before;
    });
    if (sourceDate.isValid()) tm_setCreationDate(copy, sourceDate.addSecs(1));
}

bool tm_duplicateItemAtPath(const QString &path)
{
    const QString target = pathForDuplicate(path);
    const QDateTime date = tm_creationDate(path);
    if (!tm_copyItemToPath(path, target)) return false;
    setApart(target, {QStringLiteral("Print"), QStringLiteral("PrivateProperties"), QStringLiteral("Backlinks")}, date);
    return true;
}

void tm_finishDuplicateTo(const QString &path, const QString &target)
{
    const QString source = tm_plistPath(path);
    if (itemExists(source)) {
        const QDateTime date = tm_creationDate(path);
        const QVariantMap properties = readDictionary(source);
        if (!properties.isEmpty()) writeStore(tm_plistPath(target), properties);
        setApart(target,
                 {QStringLiteral("Markdown"), QStringLiteral("TOC"), QStringLiteral("Print"),
                  QStringLiteral("PrivateProperties"), QStringLiteral("Backlinks")},
                 date);
    }
    organiser().taskIsCopied(path, target);
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), target);
}

bool tm_deleteItemAtPath(const QString &path)
{
    if (path.isEmpty() || path == tomeletRoot() || !removeItem(path)) return false;
    if (itemExists(tm_plistPath(path))) (void)removeItem(tm_plistPath(path));
    return true;
}

QString makeNewBook(const QString &parent, const QString &name)
{
    const QString folder = parent.isEmpty() ? tomeletRoot() : parent;
    const QString wanted = name.isEmpty() ? localized(TOMELET_TEXT("Untitled")) : name;
    if (!isFolder(folder)) return {};
    const QString path = tm_uniqueNameForFileatPath(wanted, folder);
    return QDir().mkdir(path) ? path : QString();
}

static bool isAtOrBelow(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder + u'/');
}

bool followInbox(const QString &path, const QString &target)
{
    const QString key = QStringLiteral("defaultInbox");
    const QString normalizedInbox = settings().string(key);
    if (normalizedInbox.isEmpty()) return false;
    const QString root = tomeletRoot();
    const QString inbox = fullPathOf(normalizedInbox, root);
    bool concerned = isAtOrBelow(path, inbox) || isAtOrBelow(target, inbox);
    if (isAtOrBelow(inbox, path)) {
        concerned = true;
        if (target.isEmpty() || tm_itemIsTrashed(target)) settings().remove(key);
        else settings().setObject(key, tm_normalizedPath(target + inbox.mid(path.size()), root));
    }
    tm_writeLocationSpecificSettings();
    if (concerned) notifications().post(QStringLiteral("TMLTUpdateDefaultInbox"));
    return concerned;
}

} // namespace tomelet
