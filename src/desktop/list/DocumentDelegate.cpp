// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/list/DocumentDelegate.h"

#include "desktop/Icons.h"
#include "desktop/QuietSelection.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/outline/BadgePills.h"
#include "organising/tasks/Tasks.h"

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

QRect DocumentDelegate::iconArea(const QRect &row, Qt::LayoutDirection direction)
{
    const int left = direction == Qt::RightToLeft ? row.right() - margin - iconSize + 1 : row.left() + margin;
    return {left, row.top() + 8, iconSize, iconSize};
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

namespace {

// One row: what stands where, by the direction of the text.
class RowPainter
{
public:
    RowPainter(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index)
        : m_painter(painter)
        , m_option(option)
        , m_index(index)
        , m_selected(isHighlighted(option))
        , m_rightToLeft(option.direction == Qt::RightToLeft)
        , m_inner(option.rect.adjusted(margin, 8, -margin, -8))
        , m_text(m_inner.adjusted(m_rightToLeft ? 0 : iconSize + 8, 0, m_rightToLeft ? -iconSize - 8 : 0, 0))
    {}

    void paint()
    {
        if (m_index.data(DocumentListModel::LeadsOnRole).toBool()) return paintBook();
        const QRect area = DocumentDelegate::iconArea(m_option.rect, m_option.direction);
        m_index.data(Qt::DecorationRole).value<QIcon>().paint(m_painter, area, Qt::AlignCenter, mode());
        drawSigns();
        drawTitle();
        drawSecondLine();
    }

private:
    // One line in the middle of the row, with the counts at its end.
    void paintBook()
    {
        const BadgePills pills(m_option, m_index.data(DocumentListModel::TotalRole).toLongLong(),
                               m_index.data(DocumentListModel::DueRole).toLongLong());
        QRect icon = DocumentDelegate::iconArea(m_option.rect, m_option.direction);
        icon.moveTop(m_option.rect.center().y() - icon.height() / 2);
        m_index.data(Qt::DecorationRole).value<QIcon>().paint(m_painter, icon, Qt::AlignCenter, mode());
        m_text.setHeight(QFontMetrics(m_option.font).height());
        m_text.moveTop(m_option.rect.center().y() - m_text.height() / 2);
        if (m_rightToLeft) m_text.adjust(pills.width(), 0, 0, 0);
        else m_text.adjust(0, 0, -pills.width(), 0);
        drawTitle();
        pills.paint(m_painter);
    }

    [[nodiscard]] QIcon::Mode mode() const { return m_selected ? QIcon::Selected : QIcon::Normal; }
    [[nodiscard]] int alignment() const
    {
        return int(Qt::AlignTop | Qt::AlignAbsolute | (m_rightToLeft ? Qt::AlignRight : Qt::AlignLeft)) |
               Qt::TextSingleLine;
    }
    [[nodiscard]] QRect nextSign()
    {
        const int x = m_rightToLeft ? m_inner.left() : m_inner.right() - iconSize + 1;
        const QRect area(x, m_inner.top(), iconSize, iconSize);
        return area.translated((m_rightToLeft ? 1 : -1) * (iconSize + 2) * m_signs++, 0);
    }

    void drawSigns()
    {
        if (const QColor color = labelColor(m_index.data(DocumentListModel::ColorRole).toString()); color.isValid()) {
            QRect dot(0, 0, dotSize, dotSize);
            dot.moveCenter(nextSign().center());
            m_painter->setBrush(color);
            m_painter->setPen(QPen(m_option.palette.color(QPalette::Base), 1));
            m_painter->drawEllipse(dot);
        }
        drawSign(DocumentListModel::PinnedRole, QStringLiteral("pin"));
        drawSign(DocumentListModel::FavoriteRole, QStringLiteral("star"));
    }

    void drawSign(int role, const QString &icon)
    {
        if (m_index.data(role).toBool())
            bundledIcon(icon).paint(m_painter, nextSign().adjusted(2, 2, -2, -2), Qt::AlignCenter, mode());
    }

    void drawTitle()
    {
        const int reserved = m_signs * (iconSize + 2);
        const QRect area = m_rightToLeft ? m_text.adjusted(reserved, 0, 0, 0) : m_text.adjusted(0, 0, -reserved, 0);
        const bool finished = tm_taskIsDoneOrCanceled(m_index.data(DocumentListModel::TaskIconRole).toString());
        m_painter->setPen(finished ? dimmed(m_option.palette, m_selected)
                                   : m_option.palette.color(m_selected ? QPalette::HighlightedText : QPalette::Text));
        m_painter->setFont(m_option.font);
        const QString title = m_index.data().toString();
        m_painter->drawText(area, alignment(),
                            QFontMetrics(m_option.font).elidedText(title, Qt::ElideRight, area.width()));
    }

    void drawSecondLine()
    {
        QRect area = m_text.adjusted(0, QFontMetrics(m_option.font).height() + 2, 0, 0);
        const QFont font = smaller(m_option.font);
        const QFontMetrics metrics(font);
        m_painter->setFont(font);
        m_painter->setPen(dimmed(m_option.palette, m_selected));
        if (const qlonglong open = m_index.data(DocumentListModel::ChecklistRole).toLongLong(); open > 0) {
            const QString count = QStringLiteral("☐ %1").arg(open);
            const int width = metrics.horizontalAdvance(count);
            const int side = m_rightToLeft ? area.left() : area.right() - width;
            m_painter->drawText(QRect(side, area.top(), width + 1, area.height()), int(Qt::AlignTop), count);
            area.adjust(m_rightToLeft ? width + 8 : 0, 0, m_rightToLeft ? 0 : -width - 8, 0);
        }
        if (m_index.data(DocumentListModel::RepeatsRole).toBool()) {
            const int size = metrics.height() - 2;
            const QRect sign(m_rightToLeft ? area.right() - size : area.left(), area.top() + 1, size, size);
            bundledIcon(QStringLiteral("repeat")).paint(m_painter, sign, Qt::AlignCenter, mode());
            area.adjust(m_rightToLeft ? 0 : size + 4, 0, m_rightToLeft ? -size - 4 : 0, 0);
        }
        const QString date = m_index.data(DocumentListModel::TaskDateRole).toString();
        const bool overdue = m_index.data(DocumentListModel::OverdueRole).toBool();
        if (overdue && !m_selected) m_painter->setPen(overdueColor(m_option.palette));
        const QDateTime shown = m_index.data(DocumentListModel::DateRole).toDateTime();
        const QString text = date.isEmpty() ? QLocale().toString(shown, QLocale::ShortFormat) : date;
        m_painter->drawText(area, alignment(), metrics.elidedText(text, Qt::ElideRight, area.width()));
    }

    QPainter *m_painter;
    const QStyleOptionViewItem &m_option;
    const QModelIndex &m_index;
    bool m_selected;
    bool m_rightToLeft;
    QRect m_inner;
    QRect m_text;
    int m_signs = 0;
};

} // namespace

void DocumentDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem background = option;
    background.text.clear();
    background.icon = {};
    QApplication::style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &background, painter, option.widget);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    RowPainter(painter, option, index).paint();
    painter->restore();
}

} // namespace tomelet::desktop
