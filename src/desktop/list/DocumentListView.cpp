// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/list/DocumentListView.h"

#include "desktop/QuietSelection.h"
#include "desktop/list/DocumentDelegate.h"
#include "desktop/list/DocumentListModel.h"
#include "foundation/Localization.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace tomelet::desktop {

DocumentListView::DocumentListView(QWidget *parent)
    : QListView(parent)
{
    setItemDelegate(new DocumentDelegate(this));
    new QuietSelection(this);
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(localized(TOMELET_TEXT("Documents")));
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setUniformItemSizes(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
}

void DocumentListView::selectOnly(const QModelIndex &index)
{
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
}

QModelIndex DocumentListView::taskRingAt(const QPoint &position) const
{
    const QModelIndex index = indexAt(position);
    if (index.data(DocumentListModel::TaskIconRole).toString().isEmpty()) return {};
    const QRect ring = DocumentDelegate::iconArea(visualRect(index), layoutDirection()).adjusted(-4, -4, 4, 4);
    return ring.contains(position) ? index : QModelIndex();
}

// A press on the ring selects nothing: the document on display stays there.
void DocumentListView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton) {
        if (const QModelIndex index = indexAt(event->pos()); index.isValid()) Q_EMIT newTabWanted(index);
        return;
    }
    m_pressed = event->button() == Qt::LeftButton ? taskRingAt(event->pos()) : QModelIndex();
    if (!m_pressed.isValid()) QListView::mousePressEvent(event);
}

void DocumentListView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed.isValid()) QListView::mouseMoveEvent(event);
}

void DocumentListView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (taskRingAt(event->pos()).isValid()) mousePressEvent(event);
    else QListView::mouseDoubleClickEvent(event);
}

void DocumentListView::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_pressed.isValid()) return QListView::mouseReleaseEvent(event);
    const QModelIndex released = taskRingAt(event->pos());
    if (released == m_pressed) Q_EMIT toggleWanted({released.data(DocumentListModel::PathRole).toString()});
    m_pressed = QModelIndex();
}

void DocumentListView::keyPressEvent(QKeyEvent *event)
{
    const bool plain = event->modifiers() == Qt::NoModifier;
    if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && state() != EditingState) {
        if (currentIndex().isValid()) Q_EMIT openWanted(currentIndex());
        return;
    }
    if (plain && event->key() == Qt::Key_Backspace && state() != EditingState) return Q_EMIT enclosingWanted();
    if (!plain || event->key() != Qt::Key_Space) return QListView::keyPressEvent(event);
    QStringList tasks;
    for (const QModelIndex &index : selectionModel()->selectedRows())
        if (!index.data(DocumentListModel::TaskIconRole).toString().isEmpty())
            tasks.append(index.data(DocumentListModel::PathRole).toString());
    if (!tasks.isEmpty()) Q_EMIT toggleWanted(tasks);
}

} // namespace tomelet::desktop
