// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/DocumentDelegate.h"

#include "desktop/DocumentListModel.h"
#include "desktop/Icons.h"

#include <QApplication>
#include <QDateTime>
#include <QLocale>
#include <QPainter>

namespace tomelet::desktop {

namespace {

constexpr int margin = 10;
constexpr int iconSize = 20;
constexpr int dotSize = 9;

QFont smaller(QFont font)
{
    font.setPointSizeF(font.pointSizeF() * 0.87);
    return font;
}

QColor dimmed(const QPalette &palette, bool selected)
{
    QColor color = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    color.setAlphaF(selected ? 0.85F : 0.62F);
    return color;
}

} // namespace

QColor labelColor(const QString &name)
{
    static const QHash<QString, QColor> colors{
        {QStringLiteral("red"), QColor(0xd9, 0x4c, 0x43)},    {QStringLiteral("orange"), QColor(0xe0, 0x8a, 0x2e)},
        {QStringLiteral("yellow"), QColor(0xd9, 0xb4, 0x2c)}, {QStringLiteral("green"), QColor(0x5a, 0x9e, 0x4a)},
        {QStringLiteral("blue"), QColor(0x3f, 0x7f, 0xc4)},   {QStringLiteral("purple"), QColor(0x8e, 0x5f, 0xb5)},
        {QStringLiteral("gray"), QColor(0x8a, 0x8f, 0x96)},   {QStringLiteral("beige"), QColor(0xc2, 0xab, 0x85)},
    };
    return colors.value(name);
}

QSize DocumentDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const int lines = QFontMetrics(option.font).height() + QFontMetrics(smaller(option.font)).height();
    return {120, lines + 18};
}

void DocumentDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                            const QModelIndex &) const
{
    constexpr int beside = margin + iconSize + 4;
    QRect area = option.direction == Qt::RightToLeft ? option.rect.adjusted(4, 2, -beside, 0)
                                                     : option.rect.adjusted(beside, 2, -4, 0);
    area.setHeight(editor->sizeHint().height());
    editor->setGeometry(area);
}

void DocumentDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool selected = option.state & QStyle::State_Selected;
    const bool rightToLeft = option.direction == Qt::RightToLeft;
    QStyleOptionViewItem background = option;
    background.text.clear();
    background.icon = {};
    QApplication::style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &background, painter, option.widget);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect inner = option.rect.adjusted(margin, 8, -margin, -8);
    QRect iconArea(inner.left(), inner.top(), iconSize, iconSize);
    QRect textArea = inner.adjusted(iconSize + 8, 0, 0, 0);
    QRect signArea(inner.right() - iconSize + 1, inner.top(), iconSize, iconSize);
    if (rightToLeft) {
        std::swap(iconArea, signArea);
        textArea = inner.adjusted(0, 0, -iconSize - 8, 0);
    }
    const QIcon::Mode mode = selected ? QIcon::Selected : QIcon::Normal;
    index.data(Qt::DecorationRole).value<QIcon>().paint(painter, iconArea, Qt::AlignCenter, mode);

    int signs = 0;
    const auto nextSign = [&] { return signArea.translated((rightToLeft ? 1 : -1) * (iconSize + 2) * signs++, 0); };
    if (const QColor color = labelColor(index.data(DocumentListModel::ColorRole).toString()); color.isValid()) {
        QRect dot(0, 0, dotSize, dotSize);
        dot.moveCenter(nextSign().center());
        painter->setBrush(color);
        painter->setPen(QPen(option.palette.color(QPalette::Base), 1));
        painter->drawEllipse(dot);
    }
    if (index.data(DocumentListModel::PinnedRole).toBool())
        bundledIcon(QStringLiteral("pin")).paint(painter, nextSign().adjusted(2, 2, -2, -2), Qt::AlignCenter, mode);
    if (index.data(DocumentListModel::FavoriteRole).toBool())
        bundledIcon(QStringLiteral("star")).paint(painter, nextSign().adjusted(2, 2, -2, -2), Qt::AlignCenter, mode);

    const int reserved = signs * (iconSize + 2);
    const QRect titleArea = rightToLeft ? textArea.adjusted(reserved, 0, 0, 0) : textArea.adjusted(0, 0, -reserved, 0);
    const Qt::Alignment alignment = Qt::AlignTop | Qt::AlignAbsolute | (rightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    painter->setPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->setFont(option.font);
    const QFontMetrics metrics(option.font);
    painter->drawText(titleArea, int(alignment) | Qt::TextSingleLine,
                      metrics.elidedText(index.data().toString(), Qt::ElideRight, titleArea.width()));
    painter->setFont(smaller(option.font));
    painter->setPen(dimmed(option.palette, selected));
    painter->drawText(textArea.adjusted(0, metrics.height() + 2, 0, 0), int(alignment) | Qt::TextSingleLine,
                      QLocale().toString(index.data(DocumentListModel::DateRole).toDateTime(), QLocale::ShortFormat));
    painter->restore();
}

} // namespace tomelet::desktop
