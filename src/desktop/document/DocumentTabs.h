// SPDX-License-Identifier: GPL-3.0-or-later
// Documents behind each other: a bar of tabs as soon as there are two. One tab is always there, be it empty.
#pragma once

#include "library/AppState.h"

#include <QList>
#include <QStringList>
#include <QWidget>

class QStackedWidget;
class QTabBar;

namespace tomelet::desktop {

class DocumentPane;
class ItemActions;

class DocumentTabs final : public QWidget
{
    Q_OBJECT

public:
    DocumentTabs(ItemActions &actions, bool isOfMainWindow, QWidget *parent = nullptr);

    [[nodiscard]] DocumentPane *current() const;
    [[nodiscard]] int currentIndex() const;
    [[nodiscard]] int count() const { return int(m_tabs.size()); }
    /// The documents in the order of the tabs; "" for an empty tab.
    [[nodiscard]] QStringList paths() const;
    /// Path, selection and view of each tab that has a document.
    [[nodiscard]] QList<WindowEntry> entries() const;
    /// The panes of the tabs that were in front already; the others are made when they come there.
    [[nodiscard]] QList<DocumentPane *> panes() const;

    /// A tab behind the one in front; an empty path makes an empty one.
    void addTab(const QString &path, bool comesToFront);
    void select(int index);
    void step(int by);
    /// False when the document could not be saved and so stays open. The last tab is only emptied, which emptied tells.
    bool closeTab(int index);
    /// Closes all and leaves one empty tab. False when a document stays.
    bool closeAll();

    /// The tabs of the last session, in a row that has one tab so far; a document that it shows already keeps its pane.
    void restore(const QList<WindowEntry> &entries);

Q_SIGNALS:
    /// Another tab came to the front, or another document into it.
    void currentChanged();
    /// The last tab was closed.
    void emptied();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Tab
    {
        DocumentPane *pane = nullptr;
        // Of a tab that has no pane yet.
        QString path;
        bool toggled = false;
    };
    [[nodiscard]] QString pathOf(const Tab &tab) const;
    DocumentPane *makePane();
    void bringToFront(int index);
    void insertTab(int index, const Tab &tab);
    void updateText(int index);
    void paneChanged(const DocumentPane *pane);

    ItemActions &m_actions;
    bool m_isOfMainWindow;
    QTabBar *m_bar;
    QStackedWidget *m_stack;
    QList<Tab> m_tabs;
};

} // namespace tomelet::desktop
