// SPDX-License-Identifier: GPL-3.0-or-later
// Draws a row of the outline with its counts at the end: overdue tasks in their colour, then all open ones.
#pragma once

#include <QStyledItemDelegate>

namespace tomelet::desktop {

class OutlineDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

} // namespace tomelet::desktop
