// SPDX-License-Identifier: GPL-3.0-or-later
// All documents of a window: tabs, and a second row of tabs beside the first when two documents are to be seen at once.
// Commands go to the side that had the keys last.
#pragma once

#include "library/AppState.h"

#include <QSplitter>

namespace tomelet::desktop {

class DocumentPane;
class DocumentTabs;
class ItemActions;

class DocumentDesk final : public QSplitter
{
    Q_OBJECT

public:
    DocumentDesk(ItemActions &actions, bool isOfMainWindow, QWidget *parent = nullptr);
    ~DocumentDesk() override;

    [[nodiscard]] DocumentPane *current() const;
    [[nodiscard]] DocumentTabs *tabs() const { return m_active; }
    /// What is to be seen, from left to right.
    [[nodiscard]] QList<DocumentPane *> visiblePanes() const;
    [[nodiscard]] QList<DocumentPane *> panes() const;
    [[nodiscard]] bool isSplit() const;
    /// A second side comes with the document in front, or goes with its tabs moved to the first.
    void setSplit(bool split);
    void openInNewTab(const QString &path, bool comesToFront);
    /// On the other side, which comes if it is not there.
    void openBeside(const QString &path);
    void closeTab();
    /// False when a document cannot be saved and stays.
    bool closeAll();

    /// The tabs as the next session gets them back, all with this number of their group.
    [[nodiscard]] QList<WindowEntry> entries(const QString &group) const;
    /// A document that is open already keeps its pane.
    void restore(const QList<WindowEntry> &entries);

Q_SIGNALS:
    /// Another document has the commands now.
    void currentChanged();
    void splitChanged(bool split);
    /// The last tab was closed.
    void emptied();

private:
    DocumentTabs *makeSide();
    [[nodiscard]] DocumentTabs *otherSide() const;
    [[nodiscard]] QList<DocumentTabs *> sides() const;
    void focusMoved(QWidget *from, QWidget *to);
    void addSecondSide();
    void sideEmptied(DocumentTabs *side);
    void activate(DocumentTabs *side);
    void takeAway(DocumentTabs *side);

    ItemActions &m_actions;
    bool m_isOfMainWindow;
    DocumentTabs *m_first;
    DocumentTabs *m_second = nullptr;
    DocumentTabs *m_active;
};

} // namespace tomelet::desktop
