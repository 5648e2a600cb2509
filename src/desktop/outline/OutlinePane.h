// SPDX-License-Identifier: GPL-3.0-or-later
// The left-hand pane: the tree of books with its view logic for the outline's controller.
#pragma once

#include "library/OutlineController.h"
#include "organising/lists/DocumentList.h"

#include <QTreeView>

namespace tomelet::desktop {

class ItemActions;
class OutlineBadges;
class OutlineModel;

class OutlinePane final : public QTreeView, public OutlineView
{
    Q_OBJECT

public:
    explicit OutlinePane(ItemActions &actions, QWidget *parent = nullptr);

    [[nodiscard]] QStringList selectedPaths() const;
    [[nodiscard]] QStringList selectedContexts() const;
    /// Starts the editing of a book's name.
    void editName(const QString &path);
    /// Shows what is selected as if it had been selected just now.
    void showSelection();
    /// Counts the badges anew.
    void recount();
    [[nodiscard]] OutlineBadges *badges();
    void setBookOnDisplay(const QString &path) { m_bookOnDisplay = path; }

    // OutlineView
    [[nodiscard]] bool isExpanded(TMLTOutlineItem *item) override;
    void expand(TMLTOutlineItem *item) override;
    void collapse(TMLTOutlineItem *item) override;
    void select(TMLTOutlineItem *item, bool silently) override;
    [[nodiscard]] TMLTOutlineItem *selectedItem() override;
    [[nodiscard]] QList<TMLTOutlineItem *> expandedItems() override;
    [[nodiscard]] QString bookOnDisplay() override { return m_bookOnDisplay; }
    void rootAvailabilityChanged(bool available) override;

Q_SIGNALS:
    void sourceSelected(const ListSource &source);
    void rootVanished();

protected:
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles) override;
    void rowsAboutToBeRemoved(const QModelIndex &parent, int first, int last) override;
    void dropEvent(QDropEvent *event) override;

private:
    OutlineModel *m_model;
    QString m_bookOnDisplay;
    bool m_selectRowSilently = false;
};

} // namespace tomelet::desktop
