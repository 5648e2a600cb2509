// SPDX-License-Identifier: GPL-3.0-or-later
// The list of documents: a click on a task's ring, or the space bar, takes it one state on.
#pragma once

#include <QListView>

namespace tomelet::desktop {

class DocumentListView final : public QListView
{
    Q_OBJECT

public:
    explicit DocumentListView(QWidget *parent = nullptr);

    /// Selects the row and nothing else, even while the keys of a command are still down.
    void selectOnly(const QModelIndex &index);

Q_SIGNALS:
    void toggleWanted(const QStringList &paths);
    /// Return was pressed on a row.
    void openWanted(const QModelIndex &index);
    /// The middle button was pressed on a row.
    void newTabWanted(const QModelIndex &index);
    /// Backspace was pressed.
    void enclosingWanted();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    [[nodiscard]] QModelIndex taskRingAt(const QPoint &position) const;

    QPersistentModelIndex m_pressed; // the row whose ring the button went down on
};

} // namespace tomelet::desktop
