// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/outline/OutlineModel.h"

#include "desktop/Icons.h"
#include "desktop/actions/DragData.h"
#include "desktop/actions/ItemActions.h"
#include "desktop/outline/OutlineBadges.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "library/ItemPath.h"
#include "library/Properties.h"

#include <QFont>
#include <QMimeData>

#include <algorithm>

namespace tomelet::desktop {

OutlineModel::OutlineModel(ItemActions &actions, QObject *parent)
    : QAbstractItemModel(parent)
    , m_actions(actions)
    , m_badges(new OutlineBadges(this))
{
    TMLTOutlineItem::rootItem()->children();
    TMLTOutlineItem::smartBooksItem()->children();
    TMLTOutlineItem::booksItem()->children();
    TMLTOutlineItem::setObserver(this);
}

OutlineModel::~OutlineModel()
{
    TMLTOutlineItem::setObserver(nullptr);
}

void OutlineModel::setRootAvailable(bool available)
{
    if (available == m_rootAvailable) return;
    beginResetModel();
    m_rootAvailable = available;
    endResetModel();
}

TMLTOutlineItem *OutlineModel::itemAt(const QModelIndex &index)
{
    return index.isValid() ? static_cast<TMLTOutlineItem *>(index.internalPointer()) : TMLTOutlineItem::rootItem();
}

QModelIndex OutlineModel::indexOf(const TMLTOutlineItem *item) const
{
    if (!m_rootAvailable || !item || !item->parent()) return {};
    const auto row = item->parent()->indexOfChild(item);
    return row ? createIndex(int(*row), 0, const_cast<TMLTOutlineItem *>(item)) : QModelIndex();
}

QModelIndex OutlineModel::index(int row, int column, const QModelIndex &parent) const
{
    TMLTOutlineItem *item = itemAt(parent);
    if (!m_rootAvailable || column != 0 || row < 0 || row >= item->numberOfChildren()) return {};
    return createIndex(row, 0, item->childAtIndex(row));
}

QModelIndex OutlineModel::parent(const QModelIndex &child) const
{
    return child.isValid() ? indexOf(itemAt(child)->parent()) : QModelIndex();
}

int OutlineModel::rowCount(const QModelIndex &parent) const
{
    return m_rootAvailable ? int(itemAt(parent)->numberOfChildren()) : 0;
}

int OutlineModel::columnCount(const QModelIndex &) const
{
    return 1;
}

bool OutlineModel::hasChildren(const QModelIndex &parent) const
{
    return m_rootAvailable && itemAt(parent)->mayHaveChildren();
}

bool OutlineModel::canFetchMore(const QModelIndex &parent) const
{
    return m_rootAvailable && !itemAt(parent)->isLoaded();
}

void OutlineModel::fetchMore(const QModelIndex &parent)
{
    itemAt(parent)->children();
}

QVariant OutlineModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid()) return {};
    const TMLTOutlineItem *item = itemAt(index);
    switch (role) {
    case Qt::DisplayRole: return item->title();
    case Qt::EditRole:
        return item->smartBookType() == ContextBook ? item->relativePath() : lastPathComponent(item->relativePath());
    case Qt::DecorationRole:
        return item->isGroupItem() ? QVariant()
                                   : QVariant(outlineIcon(item->smartBookType(), m_badges->badgeOf(*item)));
    case TotalRole: return m_badges->badgeOf(*item).total;
    case DueRole: return m_badges->badgeOf(*item).due;
    case Qt::ToolTipRole: return item->isGroupItem() ? QVariant() : QVariant(item->title());
    case Qt::AccessibleDescriptionRole: return describeBadge(item->smartBookType(), m_badges->badgeOf(*item));
    case Qt::FontRole: {
        QFont font;
        if (item->isGroupItem()) {
            font.setPointSizeF(font.pointSizeF() * 0.85);
            font.setWeight(QFont::DemiBold);
        }
        return font;
    }
    default: return {};
    }
}

bool OutlineModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !index.isValid()) return false;
    const TMLTOutlineItem *item = itemAt(index);
    if (item->smartBookType() != ContextBook) return m_actions.rename(item->fullPath(), value.toString());
    m_actions.renameContext(item->relativePath(), value.toString());
    return true;
}

static bool isBookRow(const TMLTOutlineItem *item)
{
    return !item->isGroupItem() && item->smartBookType() == OrdinaryBook;
}

Qt::ItemFlags OutlineModel::flags(const QModelIndex &index) const
{
    if (!index.isValid()) return Qt::NoItemFlags;
    const TMLTOutlineItem *item = itemAt(index);
    if (item->groupItemType() == SmartBooksGroup) return Qt::ItemIsEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const bool isContext = item->smartBookType() == ContextBook;
    if (item->groupItemType() == BooksGroup || item->smartBookType() == InboxBook || isBookRow(item) || isContext)
        flags |= Qt::ItemIsDropEnabled;
    if (isContext) flags |= Qt::ItemIsEditable;
    if (isBookRow(item)) flags |= Qt::ItemIsDragEnabled | Qt::ItemIsEditable;
    return flags;
}

// -- drag and drop ----------------------------------------------------------------------------------------------------

QStringList OutlineModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

QMimeData *OutlineModel::mimeData(const QModelIndexList &indexes) const
{
    QStringList paths;
    for (const QModelIndex &index : indexes) paths.append(itemAt(index)->fullPath());
    return dragDataFor(paths);
}

Qt::DropActions OutlineModel::supportedDropActions() const
{
    return Qt::MoveAction | Qt::CopyAction;
}

bool OutlineModel::canDropMimeData(const QMimeData *data, Qt::DropAction, int, int, const QModelIndex &parent) const
{
    if (!parent.isValid() || !(flags(parent) & Qt::ItemIsDropEnabled)) return false;
    const QStringList paths = pathsIn(data);
    if (itemAt(parent)->smartBookType() == ContextBook) return !paths.isEmpty();
    const QString book = itemAt(parent)->fullPath();
    return !paths.isEmpty() && std::ranges::none_of(paths, [&](const QString &path) {
        return book == path || book.startsWith(path + u'/');
    });
}

bool OutlineModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int, const QModelIndex &parent)
{
    TMLTOutlineItem *book = itemAt(parent);
    const QStringList paths = pathsIn(data);
    if (book->smartBookType() == ContextBook) {
        m_actions.addContext(paths, book->relativePath());
        return false;
    }
    if (row >= 0 && reorderBooks(paths, book, row)) return true;
    // The actions remove what moved; the view must not.
    m_actions.drop(paths, book->fullPath(), action == Qt::CopyAction);
    return false;
}

// Books dropped between their siblings take that place in a custom order.
bool OutlineModel::reorderBooks(const QStringList &paths, TMLTOutlineItem *book, int row)
{
    const QString folder = book->fullPath();
    if (!std::ranges::all_of(paths, [&](const QString &path) { return parentPath(path) == folder; })) return false;
    QStringList names = book->titlesOfChildren();
    QStringList moved;
    for (const QString &path : paths) {
        const qsizetype at = names.indexOf(lastPathComponent(path));
        if (at < 0) return false;
        moved.append(names.takeAt(at));
        if (at < row) --row;
    }
    for (qsizetype i = 0; i < moved.size(); ++i) names.insert(row + i, moved[i]);
    m_actions.setBookOrder(folder, names);
    return true;
}

// -- changes of the tree ----------------------------------------------------------------------------------------------

void OutlineModel::aboutToInsert(TMLTOutlineItem *parent, qsizetype first, qsizetype last)
{
    if (m_rootAvailable) beginInsertRows(indexOf(parent), int(first), int(last));
}

void OutlineModel::inserted()
{
    if (m_rootAvailable) endInsertRows();
}

void OutlineModel::aboutToRemove(TMLTOutlineItem *parent, qsizetype first, qsizetype last)
{
    if (m_rootAvailable) beginRemoveRows(indexOf(parent), int(first), int(last));
}

void OutlineModel::removed()
{
    if (m_rootAvailable) endRemoveRows();
}

void OutlineModel::aboutToReorder()
{
    if (!m_rootAvailable) return;
    Q_EMIT layoutAboutToBeChanged();
    m_persistentItems.clear();
    for (const QModelIndex &index : persistentIndexList()) m_persistentItems.append(itemAt(index));
}

void OutlineModel::reordered()
{
    if (!m_rootAvailable) return;
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const TMLTOutlineItem *item : m_persistentItems) after.append(indexOf(item));
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged();
}

void OutlineModel::changed(TMLTOutlineItem *item)
{
    const QModelIndex index = indexOf(item);
    if (index.isValid()) Q_EMIT dataChanged(index, index);
}

} // namespace tomelet::desktop
