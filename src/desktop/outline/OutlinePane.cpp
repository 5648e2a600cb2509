// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/outline/OutlinePane.h"

#include "desktop/LauncherBadge.h"
#include "desktop/QuietSelection.h"
#include "desktop/actions/ItemActions.h"
#include "desktop/outline/OutlineBadges.h"
#include "desktop/outline/OutlineDelegate.h"
#include "desktop/outline/OutlineModel.h"
#include "foundation/Localization.h"
#include "library/Root.h"

#include <QDropEvent>

namespace tomelet::desktop {

OutlinePane::OutlinePane(ItemActions &actions, QWidget *parent)
    : QTreeView(parent)
    , m_model(new OutlineModel(actions, this))
{
    setModel(m_model);
    setItemDelegate(new OutlineDelegate(this));
    connect(m_model->badges(), &OutlineBadges::changed, viewport(), qOverload<>(&QWidget::update));
    connect(m_model->badges(), &OutlineBadges::overdueChanged, this, showLauncherBadge);
    new QuietSelection(this);
    setHeaderHidden(true);
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(localized(TOMELET_TEXT("Books")));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);
    viewport()->setBackgroundRole(QPalette::Window);
    setIndentation(16);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setIconSize({18, 18});
    setDragEnabled(true);
    setAcceptDrops(true);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setAutoExpandDelay(600);
    setEditTriggers(QAbstractItemView::EditKeyPressed);
    setContextMenuPolicy(Qt::CustomContextMenu);
    QTreeView::expand(m_model->indexOf(TMLTOutlineItem::smartBooksItem()));
    QTreeView::expand(m_model->indexOf(TMLTOutlineItem::booksItem()));
}

QStringList OutlinePane::selectedPaths() const
{
    QStringList paths;
    for (const QModelIndex &index : selectionModel()->selectedRows()) {
        const TMLTOutlineItem *item = OutlineModel::itemAt(index);
        if (!item->isGroupItem() && item->smartBookType() == OrdinaryBook) paths.append(item->fullPath());
    }
    return paths;
}

QStringList OutlinePane::selectedContexts() const
{
    QStringList words;
    for (const QModelIndex &index : selectionModel()->selectedRows())
        if (OutlineModel::itemAt(index)->smartBookType() == ContextBook)
            words.append(OutlineModel::itemAt(index)->relativePath());
    return words;
}

void OutlinePane::editName(const QString &path)
{
    TMLTOutlineItem *item = TMLTOutlineItem::childAtPath(path);
    if (!item || item->isGroupItem()) return;
    QTreeView::expand(m_model->indexOf(item->parent()));
    const QModelIndex index = m_model->indexOf(item);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    edit(index);
}

OutlineBadges *OutlinePane::badges()
{
    return m_model->badges();
}

void OutlinePane::recount()
{
    m_model->badges()->recount();
}

// -- what the controller asks -----------------------------------------------------------------------------------------

bool OutlinePane::isExpanded(TMLTOutlineItem *item)
{
    return QTreeView::isExpanded(m_model->indexOf(item));
}

void OutlinePane::expand(TMLTOutlineItem *item)
{
    item->children();
    QTreeView::expand(m_model->indexOf(item));
}

void OutlinePane::collapse(TMLTOutlineItem *item)
{
    QTreeView::collapse(m_model->indexOf(item));
}

void OutlinePane::select(TMLTOutlineItem *item, bool silently)
{
    m_selectRowSilently = silently;
    // The keys of the command that asks for it may still be down, and add to a selection.
    if (item) selectionModel()->setCurrentIndex(m_model->indexOf(item), QItemSelectionModel::ClearAndSelect);
    else selectionModel()->clearSelection();
    m_selectRowSilently = false;
}

TMLTOutlineItem *OutlinePane::selectedItem()
{
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? nullptr : OutlineModel::itemAt(rows.first());
}

QList<TMLTOutlineItem *> OutlinePane::expandedItems()
{
    QList<TMLTOutlineItem *> items;
    for (QModelIndex index = m_model->index(0, 0, {}); index.isValid(); index = indexBelow(index))
        if (QTreeView::isExpanded(index)) items.append(OutlineModel::itemAt(index));
    return items;
}

void OutlinePane::rootAvailabilityChanged(bool available)
{
    m_model->setRootAvailable(available);
    if (!available && !tomeletRoot().isEmpty()) Q_EMIT rootVanished();
}

// -- selection and drops ----------------------------------------------------------------------------------------------

void OutlinePane::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QTreeView::selectionChanged(selected, deselected);
    if (!m_selectRowSilently) showSelection();
}

// A row that goes hands its selection to a neighbour, which nobody asked for: the list follows the item, if it moved.
void OutlinePane::rowsAboutToBeRemoved(const QModelIndex &parent, int first, int last)
{
    m_selectRowSilently = true;
    QTreeView::rowsAboutToBeRemoved(parent, first, last);
    m_selectRowSilently = false;
}

// While a name is being edited its editor keeps what was typed.
void OutlinePane::dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight, const QList<int> &roles)
{
    if (state() == EditingState) viewport()->update();
    else QTreeView::dataChanged(topLeft, bottomRight, roles);
}

void OutlinePane::showSelection()
{
    const TMLTOutlineItem *item = selectedItem();
    if (!item || item->groupItemType() == SmartBooksGroup) return;
    ListSource source;
    source.smartType = item->smartBookType();
    if (source.smartType == OrdinaryBook) source.book = item->fullPath();
    if (source.smartType == ContextBook) source.contexts = selectedContexts();
    Q_EMIT sourceSelected(source);
}

void OutlinePane::dropEvent(QDropEvent *event)
{
    // Items of the notebook move unless the person holds the key for copying; files from outside are copied.
    if (event->source() && !(event->modifiers() & Qt::ControlModifier)) event->setDropAction(Qt::MoveAction);
    QTreeView::dropEvent(event);
}

} // namespace tomelet::desktop
