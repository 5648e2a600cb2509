// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of the left-hand pane: the books of the library, built one level at a time when first asked for, beside
// a group of computed smart books. It holds no documents and nothing that cannot be read again.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace tomelet {

enum SmartBookType : int {
    OrdinaryBook = 0,
    ContextBook = 1,
    SearchResultsBook = 2,
    DueTasksBook = 3,
    FavoritesBook = 4,
    InboxBook = 5,
    AllTaskListsBook = 6,
    RecentItemsBook = 7,
    RecentlyModifiedBook = 8,
    HiddenItemsBook = 9,
    ContextsBook = 10,
    ConflictsBook = 11,
};

enum GroupItemType : int { NoGroup = 0, SmartBooksGroup = 1, BooksGroup = 2 };

class TMLTOutlineItem;

/// Told of every change of the tree, before and after, in the manner of an item model. All indices are those of
/// the parent's children.
class OutlineObserver
{
public:
    virtual ~OutlineObserver() = default;
    virtual void aboutToInsert(TMLTOutlineItem *parent, qsizetype first, qsizetype last) = 0;
    virtual void inserted() = 0;
    virtual void aboutToRemove(TMLTOutlineItem *parent, qsizetype first, qsizetype last) = 0;
    virtual void removed() = 0;
    virtual void aboutToReorder() = 0;
    virtual void reordered() = 0;
    virtual void changed(TMLTOutlineItem *item) = 0;
};

class TMLTOutlineItem
{
public:
    using Children = std::vector<std::unique_ptr<TMLTOutlineItem>>;

    /// A book or document below the parent.
    TMLTOutlineItem(const QString &path, TMLTOutlineItem *parent, bool isBook);
    /// A smart book, or one context below Contexts.
    TMLTOutlineItem(const QString &text, TMLTOutlineItem *parent, SmartBookType type);

    // -- the tree as a whole; every one of these runs on the main thread
    static TMLTOutlineItem *rootItem();
    static TMLTOutlineItem *booksItem();
    static TMLTOutlineItem *smartBooksItem();
    /// Null when the tree has none of that type.
    static TMLTOutlineItem *smartBookOfType(int type);
    static TMLTOutlineItem *insertSmartChildOfType(int type);
    /// The display title; "UNTITLED SMART BOOK" for a number that is no type.
    static QString titleForSmartBookOfType(int type);
    /// The book at the path, building the levels on the way; null when there is none.
    static TMLTOutlineItem *childAtPath(const QString &path);
    /// Inserts the book with those of its parents that are missing.
    static TMLTOutlineItem *insertChildAtPath(const QString &path);
    static void setObserver(OutlineObserver *observer);

    // -- one item
    /// The children, read from the folder at the first call. Null for what has none: packages, vanished folders,
    /// and smart books without a level below.
    Children *children();
    /// 0 while the children have not been asked for.
    [[nodiscard]] qsizetype numberOfChildren() const;
    /// Whether children() has been called since the last reset.
    [[nodiscard]] bool isLoaded() const { return m_loaded; }
    /// Whether children() would give any, found out with one look at the folder.
    [[nodiscard]] bool mayHaveChildren() const;
    TMLTOutlineItem *childAtIndex(qsizetype index);
    TMLTOutlineItem *childWithTitle(const QString &title);
    std::optional<qsizetype> indexOfChildWithTitle(const QString &title);
    [[nodiscard]] std::optional<qsizetype> indexOfChild(const TMLTOutlineItem *child) const;
    QStringList titlesOfChildren();

    TMLTOutlineItem *addChild(std::unique_ptr<TMLTOutlineItem> child);
    /// Adds a book or document by its name and sorts it in.
    TMLTOutlineItem *addChildWithTitle(const QString &title);
    void removeChild(TMLTOutlineItem *child);
    void removeChildWithTitle(const QString &title);
    void moveToParent(TMLTOutlineItem *newParent);
    /// Stores the new name and has the parent sort anew.
    void changeRelativePath(const QString &name);
    void sortChildren();
    void reassignCustomSortOrder();
    /// Forgets the children, so that the next request reads them again.
    void resetAllChildren();
    /// Tells the observer that the row is to be drawn anew.
    void refresh();

    [[nodiscard]] QString title() const;
    [[nodiscard]] QString fullPath() const;
    [[nodiscard]] const QString &relativePath() const { return m_relativePath; }
    [[nodiscard]] bool isGroupItem() const { return m_groupItemType != NoGroup; }
    [[nodiscard]] GroupItemType groupItemType() const { return m_groupItemType; }
    [[nodiscard]] SmartBookType smartBookType() const { return m_smartBookType; }
    [[nodiscard]] bool isDocument() const { return m_document; }
    [[nodiscard]] bool customSortSelected() const { return m_customSortSelected; }
    [[nodiscard]] TMLTOutlineItem *parent() const { return m_parent; }
    [[nodiscard]] qlonglong sequenceNumber() const { return m_sequenceNumber; }

    QDateTime clickDate; ///< when the row was last clicked, for the timing of click to rename

private:
    void insertAt(qsizetype index, std::unique_ptr<TMLTOutlineItem> child);
    std::unique_ptr<TMLTOutlineItem> takeChild(TMLTOutlineItem *child);
    Children readChildren();
    Children readGroups();
    Children readSmartBooks();
    Children readFavorites();
    Children readTaskLists();
    Children readContexts();
    Children readBooks();
    [[nodiscard]] bool holdsBooks() const;
    void sortList(Children &list);
    void reassignCustomSortOrder(Children &list);

    inline static OutlineObserver *s_observer = nullptr;

    QString m_relativePath;
    std::optional<Children> m_children;
    bool m_loaded = false;
    GroupItemType m_groupItemType = NoGroup;
    bool m_document = false;
    bool m_customSortSelected = false;
    TMLTOutlineItem *m_parent = nullptr;
    SmartBookType m_smartBookType = OrdinaryBook;
    qlonglong m_sequenceNumber = 0;
    bool m_listedInOrder = false;
};

/// The condition under which a smart book of the type stands in the tree.
[[nodiscard]] bool smartBookShouldExist(int type);

/// Names of the visible child folders that are not protected, in the platform's standard order.
[[nodiscard]] QStringList tm_listOfBooksAtPath(const QString &path);
/// The paths of all documents of the book in its order, then those of each sub-book in order.
[[nodiscard]] QStringList tm_sortedListOfAllItemsInHierarchy(const QString &book);

} // namespace tomelet
