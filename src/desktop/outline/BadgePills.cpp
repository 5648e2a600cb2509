// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/outline/BadgePills.h"

#include "desktop/Icons.h"
#include "desktop/QuietSelection.h"

#include <QLocale>
#include <QPainter>

#include <algorithm>

namespace tomelet::desktop {

constexpr int gap = 6;

static QFont pillFont(QFont font)
{
    font.setPointSizeF(font.pointSizeF() * 0.82);
    font.setWeight(QFont::DemiBold);
    return font;
}

BadgePills::BadgePills(const QStyleOptionViewItem &option, qlonglong total, qlonglong due)
    : m_option(option)
    , m_font(pillFont(option.font))
    , m_metrics(m_font)
{
    const QPalette &palette = option.palette;
    QColor quiet = palette.color(QPalette::WindowText);
    quiet.setAlphaF(0.16F);
    add(total, quiet, palette.color(QPalette::WindowText));
    add(due, overdueColor(palette), palette.color(QPalette::Base));
}

void BadgePills::add(qlonglong count, const QColor &fill, const QColor &ink)
{
    if (count <= 0) return;
    const QString text = QLocale().toString(count);
    m_pills.append({text, fill, ink, std::max(m_metrics.horizontalAdvance(text) + 10, m_metrics.height() + 2)});
}

int BadgePills::width() const
{
    int width = m_pills.isEmpty() ? 0 : gap;
    for (const Pill &pill : m_pills) width += pill.width + gap;
    return width;
}

void BadgePills::paint(QPainter *painter) const
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(m_font);
    const bool selected = isHighlighted(m_option);
    const bool rightToLeft = m_option.direction == Qt::RightToLeft;
    QRect area = m_option.rect.adjusted(gap, 0, -gap, 0);
    for (const Pill &pill : m_pills) {
        QRect shape(0, 0, pill.width, m_metrics.height() + 2);
        shape.moveCenter(area.center());
        if (rightToLeft) shape.moveLeft(area.left());
        else shape.moveRight(area.right());
        painter->setPen(Qt::NoPen);
        painter->setBrush(selected ? m_option.palette.color(QPalette::HighlightedText) : pill.fill);
        painter->drawRoundedRect(shape, shape.height() / 2.0, shape.height() / 2.0);
        painter->setPen(selected ? m_option.palette.color(QPalette::Highlight) : pill.ink);
        painter->drawText(shape, Qt::AlignCenter, pill.text);
        const int used = pill.width + gap;
        area.adjust(rightToLeft ? used : 0, 0, rightToLeft ? 0 : -used, 0);
    }
    painter->restore();
}

} // namespace tomelet::desktop
