// SPDX-License-Identifier: GPL-3.0-or-later
// The selection of a list that the keys do not go to is grey, so that one sees where they go.
#pragma once

#include <QObject>

class QAbstractItemView;
class QStyleOptionViewItem;

namespace tomelet::desktop {

class QuietSelection final : public QObject
{
    Q_OBJECT

public:
    /// Follows the focus of the view, which owns it.
    explicit QuietSelection(QAbstractItemView *view);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void show(bool focused);

    QAbstractItemView *m_view;
};

/// The row is selected in a view that the keys go to: it is drawn in the colours of the highlight.
[[nodiscard]] bool isHighlighted(const QStyleOptionViewItem &option);

} // namespace tomelet::desktop
