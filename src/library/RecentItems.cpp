// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/RecentItems.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemPath.h"

namespace tomelet {

static QString recentItemsFile()
{
    return miscFile(QStringLiteral("RecentItems.txt"));
}

QStringList storedRecentItems()
{
    return readStringArray(recentItemsFile());
}

void restoreRecentItems(const QStringList &items)
{
    if (storedRecentItems() == items || !makeMiscFolder()) return;
    writeStore(recentItemsFile(), QVariantList(items.begin(), items.end()));
}

void clearRecentItems()
{
    restoreRecentItems({});
}

static bool isNeverRecent(const QString &path)
{
    if (path.isEmpty() || lastPathComponent(path).startsWith(u"__NewNoteTmp")) return true;
    for (const auto &name :
         {QStringLiteral("AvailableTags.txt"), QStringLiteral("ExcludedTags.txt"), QStringLiteral("Settings.txt")})
        if (path == miscFile(name)) return true;
    return false;
}

void tm_addToRecentItems(const QString &path)
{
    if (isNeverRecent(path)) return;
    const QString normalized = tm_normalizedPath(path);
    QStringList items = storedRecentItems();
    if (!items.isEmpty() && items.first() == normalized) return;
    if (const auto earlier = tm_localizedIndexOfObject(items, normalized)) items.removeAt(*earlier);
    const qlonglong kept = settings().integer(QStringLiteral("recentItemCount")) * 20 + 20;
    items.prepend(normalized);
    if (items.size() > kept) items.resize(std::max<qlonglong>(kept, 1));
    restoreRecentItems(items);
}

QStringList verifiedListOfRecentItems()
{
    const QString root = tomeletRoot();
    const QStringList stored = storedRecentItems();
    QStringList items;
    for (const QString &item : stored)
        if (itemExists(fullPathOf(item, root))) items.append(item);
    if (items.size() != stored.size() && !rootLooksUnmounted()) restoreRecentItems(items);
    // One fewer than the limit when there are more: as lists have always shown it.
    const qlonglong limit = settings().integer(QStringLiteral("recentItemCount")) * 10 + 10;
    if (items.size() > limit) items.resize(std::max<qlonglong>(limit - 1, 0));
    return items;
}

QString mostRecentDocument(const QStringList &excludedPaths)
{
    const QString root = tomeletRoot();
    for (const QString &item : storedRecentItems()) {
        const QString path = fullPathOf(item, root);
        if (itemExists(path) && !excludedPaths.contains(path)) return path;
    }
    return {};
}

} // namespace tomelet
