// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/document/DocumentDesk.h"

#include "desktop/document/DocumentPane.h"
#include "desktop/document/DocumentTabs.h"
#include "foundation/Folder.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>

namespace tomelet::desktop {

DocumentDesk::DocumentDesk(ItemActions &actions, bool isOfMainWindow, QWidget *parent)
    : QSplitter(parent)
    , m_actions(actions)
    , m_isOfMainWindow(isOfMainWindow)
    , m_first(makeSide())
    , m_active(m_first)
{
    setHandleWidth(1);
    setChildrenCollapsible(false);
    setFocusProxy(m_first);
    connect(qApp, &QApplication::focusChanged, this, &DocumentDesk::focusMoved);
}

// The keys move about while the sides go.
DocumentDesk::~DocumentDesk()
{
    disconnect(qApp, nullptr, this, nullptr);
}

DocumentTabs *DocumentDesk::makeSide()
{
    auto *side = new DocumentTabs(m_actions, m_isOfMainWindow);
    addWidget(side);
    connect(side, &DocumentTabs::currentChanged, this, [this, side] {
        if (side == m_active) Q_EMIT currentChanged();
    });
    connect(side, &DocumentTabs::emptied, this, [this, side] { sideEmptied(side); });
    return side;
}

// -- what is there ----------------------------------------------------------------------------------------------------

DocumentPane *DocumentDesk::current() const
{
    return m_active->current();
}

bool DocumentDesk::isSplit() const
{
    return m_second;
}

DocumentTabs *DocumentDesk::otherSide() const
{
    return m_active == m_first ? m_second : m_first;
}

QList<DocumentTabs *> DocumentDesk::sides() const
{
    return m_second ? QList{m_first, m_second} : QList{m_first};
}

QList<DocumentPane *> DocumentDesk::visiblePanes() const
{
    QList<DocumentPane *> panes;
    for (const DocumentTabs *side : sides()) panes.append(side->current());
    return panes;
}

QList<DocumentPane *> DocumentDesk::panes() const
{
    QList<DocumentPane *> panes;
    for (const DocumentTabs *side : sides()) panes.append(side->panes());
    return panes;
}

// -- the side with the keys -------------------------------------------------------------------------------------------

static DocumentPane *paneAround(QWidget *widget)
{
    while (widget && !qobject_cast<DocumentPane *>(widget)) widget = widget->parentWidget();
    return qobject_cast<DocumentPane *>(widget);
}

// What was typed is in the file before anything is typed on another view of it.
void DocumentDesk::focusMoved(QWidget *from, QWidget *to)
{
    DocumentPane *left = paneAround(from);
    if (left && isAncestorOf(left) && left != paneAround(to))
        QTimer::singleShot(0, left, [left] { left->saveTyping(); });
    for (DocumentTabs *side : sides())
        if (to && (side == to || side->isAncestorOf(to))) activate(side);
}

void DocumentDesk::activate(DocumentTabs *side)
{
    setFocusProxy(side);
    if (std::exchange(m_active, side) != side) Q_EMIT currentChanged();
}

// -- two sides --------------------------------------------------------------------------------------------------------

void DocumentDesk::addSecondSide()
{
    m_second = makeSide();
    setSizes({width() / 2, width() / 2});
    Q_EMIT splitChanged(true);
}

void DocumentDesk::setSplit(bool split)
{
    if (split == isSplit()) return;
    if (split) {
        const QString path = current()->path();
        addSecondSide();
        return m_second->current()->showDocument(path);
    }
    const QStringList paths = m_second->paths();
    if (!m_second->closeAll()) return;
    for (const QString &path : paths)
        if (!path.isEmpty() && !m_first->paths().contains(path)) m_first->addTab(path, false);
    takeAway(m_second);
}

// The keys of a side that goes belong to the one that stays.
void DocumentDesk::takeAway(DocumentTabs *side)
{
    const bool hadKeys = side->isAncestorOf(QApplication::focusWidget());
    if (side == m_first) m_first = m_second;
    m_second = nullptr;
    side->hide();
    side->deleteLater();
    activate(m_first);
    if (hadKeys) current()->shownWidget()->setFocus(Qt::OtherFocusReason);
    Q_EMIT splitChanged(false);
}

void DocumentDesk::sideEmptied(DocumentTabs *side)
{
    if (isSplit()) takeAway(side);
    else Q_EMIT emptied();
}

// -- opening and closing ----------------------------------------------------------------------------------------------

void DocumentDesk::openInNewTab(const QString &path, bool comesToFront)
{
    m_active->addTab(path, comesToFront);
}

void DocumentDesk::openBeside(const QString &path)
{
    if (!isSplit()) addSecondSide();
    DocumentTabs *side = otherSide();
    side->current()->showDocument(path);
    side->current()->shownWidget()->setFocus(Qt::OtherFocusReason);
    activate(side);
}

void DocumentDesk::closeTab()
{
    m_active->closeTab(m_active->currentIndex());
}

bool DocumentDesk::closeAll()
{
    setSplit(false);
    return !isSplit() && m_first->closeAll();
}

// -- sessions ---------------------------------------------------------------------------------------------------------

QList<WindowEntry> DocumentDesk::entries(const QString &group) const
{
    QList<WindowEntry> entries;
    for (const DocumentTabs *side : sides()) {
        for (WindowEntry entry : side->entries()) {
            entry.tab = group;
            if (side == m_second) entry.side = QStringLiteral("1");
            entries.append(entry);
        }
    }
    return entries;
}

void DocumentDesk::restore(const QList<WindowEntry> &entries)
{
    QList<WindowEntry> left;
    QList<WindowEntry> right;
    for (const WindowEntry &entry : entries)
        if (itemExists(entry.path)) (entry.side == u"1" ? right : left).append(entry);
    if (!left.isEmpty()) m_first->restore(left);
    if (right.isEmpty()) return;
    addSecondSide();
    m_second->restore(right);
}

} // namespace tomelet::desktop
