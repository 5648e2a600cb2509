// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/outline/OutlineDelegate.h"

#include "desktop/QuietSelection.h"
#include "desktop/outline/BadgePills.h"
#include "desktop/outline/OutlineModel.h"

#include <QApplication>
#include <QPainter>

namespace tomelet::desktop {

constexpr int gap = 6;

// The style takes the icon for highlighted rows wherever a row is selected.
static QIcon asUsual(const QIcon &icon, QSize size, qreal ratio)
{
    const QPixmap pixmap = icon.pixmap(size, ratio);
    QIcon usual(pixmap);
    usual.addPixmap(pixmap, QIcon::Selected);
    return usual;
}

void OutlineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const BadgePills pills(option, index.data(OutlineModel::TotalRole).toLongLong(),
                           index.data(OutlineModel::DueRole).toLongLong());
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    if (!isHighlighted(row)) row.icon = asUsual(row.icon, row.decorationSize, painter->device()->devicePixelRatioF());
    const int textWidth = row.rect.width() - row.decorationSize.width() - 3 * gap - pills.width();
    row.text = QFontMetrics(row.font).elidedText(row.text, Qt::ElideRight, std::max(0, textWidth));
    const QWidget *widget = option.widget;
    (widget ? widget->style() : QApplication::style())->drawControl(QStyle::CE_ItemViewItem, &row, painter, widget);
    pills.paint(painter);
}

} // namespace tomelet::desktop
