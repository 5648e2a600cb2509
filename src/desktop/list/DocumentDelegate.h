// SPDX-License-Identifier: GPL-3.0-or-later
// Draws a document's row: icon, title, date below, with pin, star and label at the side.
#pragma once

#include <QStyledItemDelegate>

namespace tomelet::desktop {

class DocumentDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    /// Where the icon stands in a row's rectangle.
    [[nodiscard]] static QRect iconArea(const QRect &row, Qt::LayoutDirection direction);
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;
};

/// The colour of a label by its name; invalid for none.
[[nodiscard]] QColor labelColor(const QString &name);

} // namespace tomelet::desktop
