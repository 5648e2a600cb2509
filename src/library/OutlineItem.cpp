// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/OutlineItem.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/Extensions.h"
#include "library/ItemDictionary.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"
#include "library/Properties.h"

#include <QFileInfo>

#include <algorithm>

namespace tomelet {

static OutlineObserver *observer = nullptr;

void TMLTOutlineItem::setObserver(OutlineObserver *newObserver)
{
    observer = newObserver;
}

// A context and what has no parent stand for themselves, and so do the rows below Favorites and All Task Lists,
// which show items from anywhere.
static bool keepsWholePath(const TMLTOutlineItem *parent)
{
    if (!parent) return true;
    const SmartBookType type = parent->smartBookType();
    return type == ContextsBook || type == FavoritesBook || type == AllTaskListsBook;
}

TMLTOutlineItem::TMLTOutlineItem(const QString &path, TMLTOutlineItem *parent, bool isBook)
    : m_relativePath(keepsWholePath(parent) ? path : lastPathComponent(path))
    , m_document(!isBook)
    , m_parent(parent)
{
}

TMLTOutlineItem::TMLTOutlineItem(const QString &text, TMLTOutlineItem *parent, SmartBookType type)
    : m_relativePath(type == ContextBook || !parent ? text : lastPathComponent(text))
    , m_parent(parent)
    , m_smartBookType(type)
{
}

// -- the tree as a whole ----------------------------------------------------------------------------------------------

TMLTOutlineItem *TMLTOutlineItem::rootItem()
{
    static TMLTOutlineItem root(QStringLiteral("/"), nullptr, true);
    return &root;
}

static TMLTOutlineItem *group(GroupItemType type)
{
    for (const auto &child : *TMLTOutlineItem::rootItem()->children())
        if (child->groupItemType() == type) return child.get();
    return nullptr;
}

TMLTOutlineItem *TMLTOutlineItem::booksItem()
{
    return group(BooksGroup);
}

TMLTOutlineItem *TMLTOutlineItem::smartBooksItem()
{
    return group(SmartBooksGroup);
}

TMLTOutlineItem *TMLTOutlineItem::smartBookOfType(int type)
{
    for (const auto &child : *smartBooksItem()->children())
        if (child->m_smartBookType == type) return child.get();
    return nullptr;
}

TMLTOutlineItem *TMLTOutlineItem::insertSmartChildOfType(int type)
{
    TMLTOutlineItem *smartBooks = smartBooksItem();
    smartBooks->children();
    return smartBooks->addChild(std::make_unique<TMLTOutlineItem>(titleForSmartBookOfType(type), smartBooks,
                                                                  SmartBookType(type)));
}

QString TMLTOutlineItem::titleForSmartBookOfType(int type)
{
    static const char *const titles[] = {
        TOMELET_TEXT("Context"),          TOMELET_TEXT("Search Results"),    TOMELET_TEXT("Due Tasks"),
        TOMELET_TEXT("Favorites"),        TOMELET_TEXT("Inbox"),             TOMELET_TEXT("All Task Lists"),
        TOMELET_TEXT("Recent Items"),     TOMELET_TEXT("Recently Modified"), TOMELET_TEXT("Hidden Items"),
        TOMELET_TEXT("Contexts"),         TOMELET_TEXT("iCloud Conflicts"),
    };
    if (type < ContextBook || type > ConflictsBook) return localized(TOMELET_TEXT("UNTITLED SMART BOOK"));
    return localized(titles[type - 1]);
}

TMLTOutlineItem *TMLTOutlineItem::childAtPath(const QString &path)
{
    const QString root = tomeletRoot();
    const QString full = tm_itemIsChildOfTomelet(path, root) ? path : fullPathOf(path, root);
    const QStringList parts = tm_normalizedPath(full, root).split(u'/', Qt::SkipEmptyParts);
    TMLTOutlineItem *item = booksItem();
    if (parts.isEmpty()) {
        const QString books = item->fullPath();
        return localizedCompare(books, full.size() > 1 && full.endsWith(u'/') ? full.chopped(1) : full) == 0 ? item
                                                                                                              : nullptr;
    }
    for (const QString &part : parts)
        if (item) item = item->childWithTitle(part);
    return item;
}

TMLTOutlineItem *TMLTOutlineItem::insertChildAtPath(const QString &path)
{
    const QString parentFolder = parentPath(path);
    TMLTOutlineItem *parentItem = childAtPath(parentFolder);
    if (!parentItem) {
        if (parentFolder.size() <= tomeletRoot().size()) return nullptr;
        parentItem = insertChildAtPath(parentFolder);
    }
    if (!parentItem) return nullptr;
    // Reading the parent's folder for the first time may have found the book already.
    if (TMLTOutlineItem *present = parentItem->childWithTitle(lastPathComponent(path))) return present;
    return parentItem->addChildWithTitle(lastPathComponent(path));
}

// -- children ---------------------------------------------------------------------------------------------------------

bool TMLTOutlineItem::holdsBooks() const
{
    return m_groupItemType == BooksGroup || (m_groupItemType == NoGroup && m_parent);
}

TMLTOutlineItem::Children *TMLTOutlineItem::children()
{
    if (m_loaded) return m_children ? &*m_children : nullptr;
    m_loaded = true;
    const bool isBook = holdsBooks() && m_smartBookType != ContextsBook && m_smartBookType != FavoritesBook &&
                        m_smartBookType != AllTaskListsBook;
    if (m_smartBookType == RecentItemsBook || m_smartBookType == ContextBook) return nullptr;
    if (isBook && (packageExtensions().contains(pathExtension(fullPath())) || !isFolder(fullPath()))) return nullptr;

    Children found = readChildren();
    if (observer && !found.empty()) observer->aboutToInsert(this, 0, qsizetype(found.size()) - 1);
    m_children = std::move(found);
    if (observer && !m_children->empty()) observer->inserted();
    return &*m_children;
}

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
        return values.boolean(QStringLiteral("smartBookAllTaskLists")) &&
               !organiser().tasklists().isEmpty();
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
            found.push_back(std::make_unique<TMLTOutlineItem>(titleForSmartBookOfType(type), this,
                                                              SmartBookType(type)));
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

qsizetype TMLTOutlineItem::numberOfChildren() const
{
    return m_children ? qsizetype(m_children->size()) : 0;
}

TMLTOutlineItem *TMLTOutlineItem::childAtIndex(qsizetype index)
{
    Children *list = children();
    return list && index >= 0 && index < qsizetype(list->size()) ? (*list)[size_t(index)].get() : nullptr;
}

std::optional<qsizetype> TMLTOutlineItem::indexOfChildWithTitle(const QString &title)
{
    const Children *list = children();
    if (!list) return std::nullopt;
    // The very name goes first: names that only compare equal may stand side by side on disk.
    for (const auto &same : {+[](const QString &a, const QString &b) { return a == b; },
                             +[](const QString &a, const QString &b) { return localizedCompare(a, b) == 0; }})
        for (size_t i = 0; i < list->size(); ++i)
            if (same((*list)[i]->m_relativePath, title)) return qsizetype(i);
    return std::nullopt;
}

std::optional<qsizetype> TMLTOutlineItem::indexOfChild(const TMLTOutlineItem *child) const
{
    if (!m_children) return std::nullopt;
    const auto found = std::ranges::find(*m_children, child, &std::unique_ptr<TMLTOutlineItem>::get);
    if (found == m_children->end()) return std::nullopt;
    return found - m_children->begin();
}

TMLTOutlineItem *TMLTOutlineItem::childWithTitle(const QString &title)
{
    const auto index = indexOfChildWithTitle(title);
    return index ? childAtIndex(*index) : nullptr;
}

QStringList TMLTOutlineItem::titlesOfChildren()
{
    QStringList titles;
    if (const Children *list = children())
        for (const auto &child : *list) titles.append(child->m_relativePath);
    return titles;
}

// -- changes ----------------------------------------------------------------------------------------------------------

void TMLTOutlineItem::insertAt(qsizetype index, std::unique_ptr<TMLTOutlineItem> child)
{
    if (!m_children) m_children.emplace();
    m_loaded = true;
    if (observer) observer->aboutToInsert(this, index, index);
    child->m_parent = this;
    m_children->insert(m_children->begin() + index, std::move(child));
    if (observer) observer->inserted();
}

TMLTOutlineItem *TMLTOutlineItem::addChild(std::unique_ptr<TMLTOutlineItem> child)
{
    TMLTOutlineItem *added = child.get();
    insertAt(numberOfChildren(), std::move(child));
    sortChildren();
    return added;
}

TMLTOutlineItem *TMLTOutlineItem::addChildWithTitle(const QString &title)
{
    const QString path = joinPath(fullPath(), title);
    const bool isBook = !itemExists(path) || pathIsPlainBook(path);
    return addChild(std::make_unique<TMLTOutlineItem>(title, this, isBook));
}

std::unique_ptr<TMLTOutlineItem> TMLTOutlineItem::takeChild(TMLTOutlineItem *child)
{
    const auto index = indexOfChild(child);
    if (!index) return nullptr;
    if (observer) observer->aboutToRemove(this, *index, *index);
    auto taken = std::move((*m_children)[size_t(*index)]);
    m_children->erase(m_children->begin() + *index);
    if (observer) observer->removed();
    return taken;
}

void TMLTOutlineItem::removeChild(TMLTOutlineItem *child)
{
    takeChild(child);
}

void TMLTOutlineItem::removeChildWithTitle(const QString &title)
{
    if (TMLTOutlineItem *child = childWithTitle(title)) takeChild(child);
}

void TMLTOutlineItem::moveToParent(TMLTOutlineItem *newParent)
{
    if (!m_parent) return;
    newParent->children();
    if (auto self = m_parent->takeChild(this)) newParent->addChild(std::move(self));
}

void TMLTOutlineItem::changeRelativePath(const QString &name)
{
    m_relativePath = name;
    if (m_parent) m_parent->sortChildren();
    refresh();
}

void TMLTOutlineItem::refresh()
{
    if (observer) observer->changed(this);
}

void TMLTOutlineItem::resetAllChildren()
{
    if (m_children && !m_children->empty()) {
        if (observer) observer->aboutToRemove(this, 0, numberOfChildren() - 1);
        m_children->clear();
        if (observer) observer->removed();
    }
    m_children.reset();
    m_loaded = false;
}

// -- order ------------------------------------------------------------------------------------------------------------

namespace {

struct Order
{
    QString parameter;
    bool descending = false;
};

Order orderOf(const TMLTOutlineItem &item)
{
    const auto fromSettings = [](const QString &prefix) {
        return Order{settings().string(prefix + QStringLiteral("SortOrder")),
                     settings().boolean(prefix + QStringLiteral("SortDescending"))};
    };
    if (item.smartBookType() == ContextsBook) return fromSettings(QStringLiteral("contexts"));
    if (item.smartBookType() == FavoritesBook) return fromSettings(QStringLiteral("favorites"));
    const QVariantMap properties = readDictionary(bookPropertiesPath(item.fullPath()));
    return {properties.value(QStringLiteral("sortOrderForNotes")).toString(),
            properties.value(QStringLiteral("sortNotesDescending")).toString() == u"YES"};
}

QDateTime dateOf(const TMLTOutlineItem &item, bool created)
{
    const QString path = item.fullPath();
    return created ? fileCreationDate(path) : QFileInfo(path).lastModified().toUTC();
}

// Sorts by a key that is made once an item.
template <typename KeyOf>
void sortByKey(TMLTOutlineItem::Children &list, const KeyOf &keyOf, bool descending)
{
    using Key = decltype(keyOf(*list.front()));
    std::vector<std::pair<Key, std::unique_ptr<TMLTOutlineItem>>> keyed;
    keyed.reserve(list.size());
    for (auto &item : list) {
        Key key = keyOf(*item);
        keyed.emplace_back(std::move(key), std::move(item));
    }
    std::stable_sort(keyed.begin(), keyed.end(), [descending](const auto &a, const auto &b) {
        return descending ? b.first < a.first : a.first < b.first;
    });
    for (size_t i = 0; i < list.size(); ++i) list[i] = std::move(keyed[i].second);
}

} // namespace

void TMLTOutlineItem::sortChildren()
{
    if (!m_children || m_children->empty()) {
        m_customSortSelected = false;
        return;
    }
    if (observer) observer->aboutToReorder();
    sortList(*m_children);
    if (observer) observer->reordered();
}

void TMLTOutlineItem::reassignCustomSortOrder()
{
    if (m_children) reassignCustomSortOrder(*m_children);
}

void TMLTOutlineItem::reassignCustomSortOrder(Children &list)
{
    const LocalizedIndex order(m_smartBookType == ContextsBook
                                   ? readStringArray(miscFile(QStringLiteral("AvailableTags.txt")))
                                   : readDictionary(bookPropertiesPath(fullPath())).value(QStringLiteral("Books"))
                                         .toStringList());
    for (const auto &item : list) {
        const auto index = order.find(item->m_relativePath);
        item->m_sequenceNumber = index.value_or(0);
        item->m_listedInOrder = index.has_value();
    }
}

void TMLTOutlineItem::sortList(Children &list)
{
    m_customSortSelected = false;
    if (list.empty()) return;
    if (m_groupItemType == SmartBooksGroup)
        return sortByKey(list, [](const TMLTOutlineItem &item) { return int(item.m_smartBookType); }, false);

    const bool numeric = settings().boolean(QStringLiteral("useNumericOrder"));
    const auto [parameter, descending] = orderOf(*this);
    const auto byTitle = [&](bool reversed) {
        sortByKey(list, [&](const TMLTOutlineItem &item) { return nameSortKey(item.title(), numeric); }, reversed);
        sortByKey(list, [](const TMLTOutlineItem &item) { return item.m_document; }, false);
    };
    if (parameter == u"custom") {
        byTitle(false);
        reassignCustomSortOrder(list);
        m_customSortSelected = true;
        // An unlisted child is level with the first listed one and stands before it.
        return sortByKey(list, [](const TMLTOutlineItem &item) {
            return std::pair(item.m_sequenceNumber, item.m_listedInOrder);
        }, false);
    }
    if (parameter == u"modDate" || parameter == u"creationDate")
        return sortByKey(
            list, [created = parameter == u"creationDate"](const TMLTOutlineItem &item) { return dateOf(item, created); },
            descending);
    byTitle(descending);
}

// -- title and path ---------------------------------------------------------------------------------------------------

QString TMLTOutlineItem::title() const
{
    if (m_groupItemType == BooksGroup) return localized(TOMELET_TEXT("Books"));
    if (m_groupItemType == SmartBooksGroup) return localized(TOMELET_TEXT("Smart Books"));
    if (m_smartBookType == ContextBook) return m_relativePath;
    const QString name = lastPathComponent(m_relativePath);
    if (!m_document || settings().boolean(QStringLiteral("showFileExtensions"))) return name;
    return pathWithoutExtension(name);
}

QString TMLTOutlineItem::fullPath() const
{
    const auto inbox = [] { return fullPathOf(settings().string(QStringLiteral("defaultInbox"))); };
    if (m_smartBookType == InboxBook) return inbox();
    if (m_parent && m_parent->m_smartBookType == InboxBook) return joinPath(inbox(), m_relativePath);
    // The groups stand below the root item without being folders in it.
    if (m_groupItemType == NoGroup && m_parent && m_parent->m_smartBookType == OrdinaryBook &&
        m_parent->m_groupItemType != SmartBooksGroup)
        return joinPath(m_parent->fullPath(), m_relativePath);
    return m_relativePath;
}

// -- listings ---------------------------------------------------------------------------------------------------------

QStringList tm_listOfBooksAtPath(const QString &path)
{
    QStringList names;
    for (const FolderEntry &entry : listFolder(path).value_or(std::vector<FolderEntry>())) {
        // The test sees the bare name: hidden folders above do not matter here.
        if ((entry.exists && !entry.isFolder) || tm_pathIsExcludedFromDisplay(entry.name)) continue;
        if (tm_isProtected(joinPath(path, entry.name))) logLine(QStringLiteral("skipping protected item"));
        else names.append(entry.name);
    }
    std::ranges::stable_sort(names, {}, [](const QString &name) { return std::pair(standardSortKey(name), name); });
    return names;
}

QStringList tm_sortedListOfAllItemsInHierarchy(const QString &book)
{
    const QVariantMap properties = readDictionary(bookPropertiesPath(book));
    const LocalizedIndex pinned(properties.value(QStringLiteral("Pinned")).toStringList());
    const RowSources documentSources{LocalizedIndex(properties.value(QStringLiteral("Notes")).toStringList()), pinned};
    const RowSources bookSources{LocalizedIndex(properties.value(QStringLiteral("Books")).toStringList()), pinned};

    QList<QVariantMap> documents;
    QList<QVariantMap> books;
    for (const FolderEntry &entry : listFolder(book).value_or(std::vector<FolderEntry>())) {
        const QString path = joinPath(book, entry.name);
        if (tm_pathIsExcludedFromDisplay(path)) continue;
        const bool isBook = entry.isFolder && !hasPackageExtension(path);
        (isBook ? books : documents).append(itemRow(path, false, {}, isBook ? bookSources : documentSources));
    }
    const QString order = properties.value(QStringLiteral("sortOrderForNotes")).toString();
    const bool descending = properties.value(QStringLiteral("sortNotesDescending")).toString() == u"YES";
    sortRows(documents, order, descending);
    sortRows(books, order, descending);

    QStringList paths;
    for (const QVariantMap &row : documents) paths.append(row.value(QStringLiteral("path")).toString());
    for (const QVariantMap &row : books)
        paths.append(tm_sortedListOfAllItemsInHierarchy(row.value(QStringLiteral("path")).toString()));
    return paths;
}

} // namespace tomelet
