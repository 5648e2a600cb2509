// SPDX-License-Identifier: GPL-3.0-or-later
// What stands below a row of the tree: groups, smart books, and books read from their folder.
#include "library/OutlineItem.h"

#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"

#include <algorithm>

namespace tomelet {

TMLTOutlineItem::Children TMLTOutlineItem::readChildren()
{
    if (!m_parent) return readGroups();
    if (m_groupItemType == SmartBooksGroup) return readSmartBooks();
    switch (m_smartBookType) {
    case ContextsBook: return readContexts();
    case FavoritesBook: return readFavorites();
    case AllTaskListsBook: return readTaskLists();
    default: return readBooks();
    }
}

TMLTOutlineItem::Children TMLTOutlineItem::readGroups()
{
    Children groups;
    // Groups are made by hand: their texts are no paths below the root item.
    auto smart = std::make_unique<TMLTOutlineItem>(QStringLiteral("Smart Books"), this, true);
    smart->m_groupItemType = SmartBooksGroup;
    auto books = std::make_unique<TMLTOutlineItem>(QString(), this, true);
    books->m_groupItemType = BooksGroup;
    books->m_relativePath = tomeletRoot();
    groups.push_back(std::move(smart));
    groups.push_back(std::move(books));
    return groups;
}

bool smartBookShouldExist(int type)
{
    const Settings &values = settings();
    switch (type) {
    case DueTasksBook: return organiser().hasDueTasks();
    case FavoritesBook: return !organiser().itemsWithContext(QStringLiteral("_TMFAV")).isEmpty();
    case InboxBook: {
        const QString inbox = values.string(QStringLiteral("defaultInbox"));
        return values.boolean(QStringLiteral("showInboxAsSmartBook")) && !inbox.isEmpty() &&
               isFolder(fullPathOf(inbox));
    }
    case AllTaskListsBook:
        return values.boolean(QStringLiteral("smartBookAllTaskLists")) && !organiser().tasklists().isEmpty();
    case RecentItemsBook:
    case RecentlyModifiedBook: return true;
    case ContextsBook: return values.boolean(QStringLiteral("contextsEnabled"));
    case ConflictsBook: return !values.stringList(QStringLiteral("iCloudArrayOfUnresolvedConflicts")).isEmpty();
    default: return false;
    }
}

TMLTOutlineItem::Children TMLTOutlineItem::readSmartBooks()
{
    Children found;
    for (int type = DueTasksBook; type <= ConflictsBook; ++type)
        if (smartBookShouldExist(type))
            found.push_back(
                std::make_unique<TMLTOutlineItem>(titleForSmartBookOfType(type), this, SmartBookType(type)));
    return found;
}

TMLTOutlineItem::Children TMLTOutlineItem::readContexts()
{
    Children found;
    for (const QString &context : organiser().availableContexts())
        if (context != u"_TMFAV") found.push_back(std::make_unique<TMLTOutlineItem>(context, this, ContextBook));
    sortList(found);
    return found;
}

TMLTOutlineItem::Children TMLTOutlineItem::readFavorites()
{
    Children found;
    for (const QString &path : organiser().itemsWithContext(QStringLiteral("_TMFAV")))
        if (pathIsPlainBook(path)) found.push_back(std::make_unique<TMLTOutlineItem>(path, this, true));
    sortList(found);
    return found;
}

TMLTOutlineItem::Children TMLTOutlineItem::readTaskLists()
{
    const QString root = tomeletRoot();
    Children found;
    for (const QString &normalized : organiser().tasklists()) {
        const QString path = fullPathOf(normalized, root);
        if (organiser().bookIsTasklist(path)) found.push_back(std::make_unique<TMLTOutlineItem>(path, this, true));
    }
    sortList(found);
    return found;
}

// The test of the tree is not that of the lists: only these names are left out, and the extension counts as spelled.
static bool showsInTree(const QString &folder, const FolderEntry &entry)
{
    if (!entry.isFolder || entry.name == u"TMImages" || entry.name == u"TMResources") return false;
    const QString extension = pathExtension(entry.name);
    return extension != u"plist" && !packageExtensions().contains(extension) &&
           !tm_pathIsDotFile(joinPath(folder, entry.name));
}

TMLTOutlineItem::Children TMLTOutlineItem::readBooks()
{
    Children found;
    const QString folder = fullPath();
    const auto entries = listFolder(folder);
    if (!entries) return found;
    for (const FolderEntry &entry : *entries)
        if (showsInTree(folder, entry)) found.push_back(std::make_unique<TMLTOutlineItem>(entry.name, this, true));
    sortList(found);
    return found;
}

bool TMLTOutlineItem::mayHaveChildren() const
{
    if (m_loaded) return m_children && !m_children->empty();
    if (!m_parent || m_groupItemType == SmartBooksGroup) return true;
    switch (m_smartBookType) {
    case ContextBook:
    case SearchResultsBook:
    case DueTasksBook:
    case RecentItemsBook:
    case RecentlyModifiedBook:
    case ConflictsBook: return false;
    case ContextsBook:
    case FavoritesBook:
    case AllTaskListsBook: return true;
    default: break;
    }
    const QString folder = fullPath();
    const auto entries = listFolder(folder);
    return entries && std::ranges::any_of(*entries, [&](const auto &entry) { return showsInTree(folder, entry); });
}

} // namespace tomelet
