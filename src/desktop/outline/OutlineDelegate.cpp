// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/outline/OutlineDelegate.h"

#include "desktop/Icons.h"
#include "desktop/outline/OutlineModel.h"

#include <QApplication>
#include <QPainter>

namespace tomelet::desktop {

namespace {

constexpr int gap = 6;

struct Pill
{
    QString text;
    QColor fill;
    QColor ink;
    int width = 0;
};

QFont pillFont(QFont font)
{
    font.setPointSizeF(font.pointSizeF() * 0.82);
    font.setWeight(QFont::DemiBold);
    return font;
}

// From the end of the row inwards.
QList<Pill> pillsOf(const QModelIndex &index, const QPalette &palette, const QFontMetrics &metrics)
{
    QColor quiet = palette.color(QPalette::WindowText);
    quiet.setAlphaF(0.16F);
    const QColor overdue = overdueColor(palette);
    QList<Pill> pills;
    const auto add = [&](int role, const QColor &fill, const QColor &ink) {
        const qlonglong count = index.data(role).toLongLong();
        if (count <= 0) return;
        const QString text = QLocale().toString(count);
        pills.append({text, fill, ink, std::max(metrics.horizontalAdvance(text) + 10, metrics.height() + 2)});
    };
    add(OutlineModel::TotalRole, quiet, palette.color(QPalette::WindowText));
    add(OutlineModel::DueRole, overdue, palette.color(QPalette::Base));
    return pills;
}

} // namespace

void OutlineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    const QFont font = pillFont(option.font);
    const QFontMetrics metrics(font);
    const QList<Pill> pills = pillsOf(index, option.palette, metrics);
    int reserved = pills.isEmpty() ? 0 : gap;
    for (const Pill &pill : pills)
        reserved += pill.width + gap;

    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const int textWidth = row.rect.width() - row.decorationSize.width() - 3 * gap - reserved;
    row.text = QFontMetrics(row.font).elidedText(row.text, Qt::ElideRight, std::max(0, textWidth));
    const QWidget *widget = option.widget;
    (widget ? widget->style() : QApplication::style())
        ->drawControl(QStyle::CE_ItemViewItem, &row, painter, widget);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(font);
    const bool selected = option.state & QStyle::State_Selected;
    QRect area = option.rect.adjusted(gap, 0, -gap, 0);
    for (const Pill &pill : pills) {
        QRect shape(0, 0, pill.width, metrics.height() + 2);
        shape.moveCenter(area.center());
        if (option.direction == Qt::RightToLeft)
            shape.moveLeft(area.left());
        else
            shape.moveRight(area.right());
        painter->setPen(Qt::NoPen);
        painter->setBrush(selected ? option.palette.color(QPalette::HighlightedText) : pill.fill);
        painter->drawRoundedRect(shape, shape.height() / 2.0, shape.height() / 2.0);
        painter->setPen(selected ? option.palette.color(QPalette::Highlight) : pill.ink);
        painter->drawText(shape, Qt::AlignCenter, pill.text);
        const int used = pill.width + gap;
        area.adjust(option.direction == Qt::RightToLeft ? used : 0, 0,
                    option.direction == Qt::RightToLeft ? 0 : -used, 0);
    }
    painter->restore();
}

} // namespace tomelet::desktop
