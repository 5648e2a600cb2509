// SPDX-License-Identifier: GPL-3.0-or-later
// Keeps the tree of books and everything that hangs on it true while items change underneath: the routing of
// reported changes, the expansion of the tree, the switch to another root.
#pragma once

#include "foundation/FilePresenter.h"
#include "foundation/NotificationCenter.h"
#include "library/OutlineItem.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace tomelet {

/// What the controller needs of the widget that shows the tree. The base class is a tree that nobody looks at.
class OutlineView
{
public:
    virtual ~OutlineView() = default;
    [[nodiscard]] virtual bool isExpanded(TMLTOutlineItem *) { return false; }
    virtual void expand(TMLTOutlineItem *) {}
    virtual void collapse(TMLTOutlineItem *) {}
    /// Selects the row, or none for null. Silently: the selection opens nothing.
    virtual void select(TMLTOutlineItem *, bool silently) { (void)silently; }
    [[nodiscard]] virtual TMLTOutlineItem *selectedItem() { return nullptr; }
    /// The expanded rows in the order on screen.
    [[nodiscard]] virtual QList<TMLTOutlineItem *> expandedItems() { return {}; }
    /// The book that the list shows.
    [[nodiscard]] virtual QString bookOnDisplay() { return {}; }
    /// The root is gone or is back.
    virtual void rootAvailabilityChanged(bool available) { (void)available; }
};

class TMLTOutlineController
{
public:
    explicit TMLTOutlineController(OutlineView &view);
    ~TMLTOutlineController();

    /// Follows the root from now on (or nothing, without one) and gathers the task lists.
    void initFileCoordinationAndTaskLists();
    /// Drops the tree and builds the one of the root in force; the lines of a report on settings that the new root
    /// brought with it, "" when none changed.
    [[nodiscard]] QString newRootSelected();
    /// Waits until everything that happened on disk so far has been routed.
    void settle();

    // Expansion and selection
    void tm_saveExpandedPaths();
    void tm_expandSavedPaths();
    /// Shows an item or, with a type of 1 or more, a smart book: expands the way to it and selects it silently.
    void expandPathToItem(const QString &path, int smartType = 0);

    // Routing of changes
    void presentedSubitemDidChangeAtURL(const QString &path);
    void presentedSubitemAtURL(const QString &path, const QString &newPath);
    /// Treats a change of the program's own like a reported one, at once.
    void subItemDidChange(const QString &path);
    void reloadParents(const QStringList &paths);
    void removeFolderWithPath(const QString &path);
    /// Sorts the children anew after the book's order changed.
    void moveChildrenToNewPositionsForItem(TMLTOutlineItem *item);
    void updateDisclosureVisibilityForPath(const QString &path, bool isBook, bool wasDeleted);
    void tryToMovePlistAlong(const QString &path, const QString &newPath);

    /// Inserts, refreshes or removes a smart book as its condition tells.
    void updateSmartBookOfType(int type);

    /// While a book is being renamed by the person, its own events pass by.
    void setRenamingBook(const QString &path) { m_renamingBook = path; }

private:
    void routeExisting(const QString &path, bool isBook);
    void routeGone(const QString &path);
    bool routeLibraryFiles(const QString &path);
    void routeTaskStore(const QString &path);
    void routePropertyFile(const QString &path);
    void scheduleReloadParents(const QString &path);
    void scheduleTaskStoreChanged(const QString &store);
    void routeMovedDocument(const QString &path, const QString &newPath, bool intoLibrary);
    void routeMovedBook(const QString &path, const QString &newPath, bool intoLibrary);
    bool moveRow(const QString &path, const QString &newPath);
    void followListOnDisplay(const QString &path, const QString &newPath);
    TMLTOutlineItem *loadedItem(const QString &path) const;

    OutlineView &m_view;
    std::unique_ptr<FilePresenter> m_presenter;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
    QString m_renamingBook;
};

} // namespace tomelet
