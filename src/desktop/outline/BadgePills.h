// SPDX-License-Identifier: GPL-3.0-or-later
// The counts at the end of a row, each in a pill: how many, and how many of them are overdue.
#pragma once

#include <QColor>
#include <QFont>
#include <QFontMetrics>
#include <QList>
#include <QString>
#include <QStyleOptionViewItem>

class QPainter;

namespace tomelet::desktop {

class BadgePills
{
public:
    BadgePills(const QStyleOptionViewItem &option, qlonglong total, qlonglong due);
    /// What they take of the row's width, with the gaps between them; 0 where there is nothing to count.
    [[nodiscard]] int width() const;
    /// Draws them at the end of the row by the direction of its text.
    void paint(QPainter *painter) const;

private:
    struct Pill
    {
        QString text;
        QColor fill;
        QColor ink;
        int width = 0;
    };
    void add(qlonglong count, const QColor &fill, const QColor &ink);

    const QStyleOptionViewItem &m_option;
    QFont m_font;
    QFontMetrics m_metrics;
    QList<Pill> m_pills; // from the end of the row inwards
};

} // namespace tomelet::desktop
