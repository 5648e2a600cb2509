// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/OutlineItem.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"

#include <algorithm>

namespace tomelet {

void TMLTOutlineItem::setObserver(OutlineObserver *newObserver)
{
    s_observer = newObserver;
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
{}

TMLTOutlineItem::TMLTOutlineItem(const QString &text, TMLTOutlineItem *parent, SmartBookType type)
    : m_relativePath(type == ContextBook || !parent ? text : lastPathComponent(text))
    , m_parent(parent)
    , m_smartBookType(type)
{}

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
    return smartBooks->addChild(
        std::make_unique<TMLTOutlineItem>(titleForSmartBookOfType(type), smartBooks, SmartBookType(type)));
}

QString TMLTOutlineItem::titleForSmartBookOfType(int type)
{
    static const char *const titles[] = {
        TOMELET_TEXT("Context"),
        TOMELET_TEXT("Search Results"),
        TOMELET_TEXT("Due Tasks"),
        TOMELET_TEXT("Favorites"),
        TOMELET_TEXT("Inbox"),
        TOMELET_TEXT("All Task Lists"),
        TOMELET_TEXT("Recent Items"),
        TOMELET_TEXT("Recently Modified"),
        TOMELET_TEXT("Hidden Items"),
        TOMELET_TEXT("Contexts"),
        TOMELET_TEXT("iCloud Conflicts"),
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
    if (s_observer && !found.empty()) s_observer->aboutToInsert(this, 0, qsizetype(found.size()) - 1);
    m_children = std::move(found);
    if (s_observer && !m_children->empty()) s_observer->inserted();
    return &*m_children;
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
    if (s_observer) s_observer->aboutToInsert(this, index, index);
    child->m_parent = this;
    m_children->insert(m_children->begin() + index, std::move(child));
    if (s_observer) s_observer->inserted();
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
    if (s_observer) s_observer->aboutToRemove(this, *index, *index);
    auto taken = std::move((*m_children)[size_t(*index)]);
    m_children->erase(m_children->begin() + *index);
    if (s_observer) s_observer->removed();
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
    if (s_observer) s_observer->changed(this);
}

void TMLTOutlineItem::resetAllChildren()
{
    if (m_children && !m_children->empty()) {
        if (s_observer) s_observer->aboutToRemove(this, 0, numberOfChildren() - 1);
        m_children->clear();
        if (s_observer) s_observer->removed();
    }
    m_children.reset();
    m_loaded = false;
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

} // namespace tomelet
