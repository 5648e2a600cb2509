// SPDX-License-Identifier: GPL-3.0-or-later
// The tree of books as an item model. The tree tells of its changes; the model passes them on to the view.
#pragma once

#include "library/OutlineItem.h"

#include <QAbstractItemModel>

namespace tomelet::desktop {

class ItemActions;
class OutlineBadges;

class OutlineModel final : public QAbstractItemModel, public OutlineObserver
{
    Q_OBJECT

public:
    /// The counts of a row: what is open or waits in it, and how much of that is overdue.
    enum Role { TotalRole = Qt::UserRole + 1, DueRole };

    OutlineModel(ItemActions &actions, QObject *parent);
    ~OutlineModel() override;

    [[nodiscard]] static TMLTOutlineItem *itemAt(const QModelIndex &index);
    [[nodiscard]] QModelIndex indexOf(const TMLTOutlineItem *item) const;
    [[nodiscard]] OutlineBadges *badges() { return m_badges; }
    /// Without a root there is no row at all, whatever the tree still holds.
    void setRootAvailable(bool available);

    // QAbstractItemModel
    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex &parent) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex &child) const override;
    [[nodiscard]] int rowCount(const QModelIndex &parent) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex &parent) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QStringList mimeTypes() const override;
    [[nodiscard]] QMimeData *mimeData(const QModelIndexList &indexes) const override;
    [[nodiscard]] Qt::DropActions supportedDropActions() const override;
    [[nodiscard]] bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                                       const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    // OutlineObserver
    void aboutToInsert(TMLTOutlineItem *parent, qsizetype first, qsizetype last) override;
    void inserted() override;
    void aboutToRemove(TMLTOutlineItem *parent, qsizetype first, qsizetype last) override;
    void removed() override;
    void aboutToReorder() override;
    void reordered() override;
    void changed(TMLTOutlineItem *item) override;

private:
    bool reorderBooks(const QStringList &paths, TMLTOutlineItem *book, int row);

    ItemActions &m_actions;
    OutlineBadges *m_badges;
    bool m_rootAvailable = true;
    QList<TMLTOutlineItem *> m_persistentItems; // what the view holds on to while the tree is put in order
};

} // namespace tomelet::desktop
