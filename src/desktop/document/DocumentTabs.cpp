// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/document/DocumentTabs.h"

#include "desktop/document/DocumentPane.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"

#include <QApplication>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>

namespace tomelet::desktop {

DocumentTabs::DocumentTabs(ItemActions &actions, bool isOfMainWindow, QWidget *parent)
    : QWidget(parent)
    , m_actions(actions)
    , m_isOfMainWindow(isOfMainWindow)
    , m_bar(new QTabBar)
    , m_stack(new QStackedWidget)
{
    m_bar->setAccessibleName(localized(TOMELET_TEXT("Open Documents")));
    m_bar->setDocumentMode(true);
    m_bar->setDrawBase(false);
    m_bar->setExpanding(false);
    m_bar->setMovable(true);
    m_bar->setTabsClosable(true);
    m_bar->setAutoHide(true);
    m_bar->setElideMode(Qt::ElideMiddle);
    m_bar->installEventFilter(this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_bar);
    layout->addWidget(m_stack, 1);
    connect(m_bar, &QTabBar::currentChanged, this, &DocumentTabs::bringToFront);
    connect(m_bar, &QTabBar::tabCloseRequested, this, &DocumentTabs::closeTab);
    connect(m_bar, &QTabBar::tabMoved, this, [this](int from, int to) { m_tabs.move(from, to); });
    insertTab(0, {});
    bringToFront(0);
}

// -- what is there ----------------------------------------------------------------------------------------------------

int DocumentTabs::currentIndex() const
{
    return m_bar->currentIndex();
}

DocumentPane *DocumentTabs::current() const
{
    return m_tabs[currentIndex()].pane;
}

QString DocumentTabs::pathOf(const Tab &tab) const
{
    return tab.pane ? tab.pane->path() : tab.path;
}

QStringList DocumentTabs::paths() const
{
    QStringList paths;
    for (const Tab &tab : m_tabs) paths.append(pathOf(tab));
    return paths;
}

QList<WindowEntry> DocumentTabs::entries() const
{
    QList<WindowEntry> entries;
    for (int i = 0; i < count(); ++i) {
        const Tab &tab = m_tabs[i];
        if (pathOf(tab).isEmpty()) continue;
        WindowEntry entry{pathOf(tab), {}, i == currentIndex(), {}, {}};
        entry.toggled = tab.pane ? tab.pane->controller().presentingToggledView() : tab.toggled;
        entries.append(entry);
    }
    return entries;
}

QList<DocumentPane *> DocumentTabs::panes() const
{
    QList<DocumentPane *> panes;
    for (const Tab &tab : m_tabs)
        if (tab.pane) panes.append(tab.pane);
    return panes;
}

// -- coming and going -------------------------------------------------------------------------------------------------

DocumentPane *DocumentTabs::makePane()
{
    auto *pane = new DocumentPane(m_actions, m_isOfMainWindow);
    connect(pane, &DocumentPane::titleChanged, this, [this, pane] { paneChanged(pane); });
    connect(pane, &DocumentPane::newTabWanted, this, [this](const QString &path) { addTab(path, false); });
    m_stack->addWidget(pane);
    return pane;
}

void DocumentTabs::insertTab(int index, const Tab &tab)
{
    m_tabs.insert(index, tab);
    const QSignalBlocker quiet(m_bar);
    m_bar->insertTab(index, {});
    updateText(index);
}

void DocumentTabs::addTab(const QString &path, bool comesToFront)
{
    const int index = currentIndex() + 1;
    insertTab(index, {nullptr, path, false});
    if (comesToFront) select(index);
}

void DocumentTabs::select(int index)
{
    if (index >= 0 && index < count()) m_bar->setCurrentIndex(index);
}

void DocumentTabs::step(int by)
{
    select((currentIndex() + by + count()) % count());
}

// Keys that went to the document in front go to the next one; those of the bar stay there.
void DocumentTabs::bringToFront(int index)
{
    if (index < 0 || index >= count()) return;
    const bool hadKeys = m_stack->isAncestorOf(QApplication::focusWidget());
    Tab &tab = m_tabs[index];
    const bool isFirstTime = !tab.pane;
    if (isFirstTime) tab.pane = makePane();
    m_stack->setCurrentWidget(tab.pane);
    if (isFirstTime && !tab.path.isEmpty()) tab.pane->showDocument(tab.path, {}, tab.toggled);
    if (hadKeys) tab.pane->shownWidget()->setFocus(Qt::OtherFocusReason);
    setFocusProxy(tab.pane);
    Q_EMIT currentChanged();
}

bool DocumentTabs::closeTab(int index)
{
    if (index < 0 || index >= count()) return false;
    DocumentPane *pane = m_tabs[index].pane;
    if (pane && !pane->closeDocument()) return false;
    if (count() == 1) {
        Q_EMIT emptied();
        return true;
    }
    const bool hadKeys = pane && pane->isAncestorOf(QApplication::focusWidget());
    const bool wasCurrent = index == currentIndex();
    m_tabs.removeAt(index);
    {
        const QSignalBlocker quiet(m_bar);
        m_bar->removeTab(index);
    }
    if (wasCurrent) bringToFront(currentIndex());
    if (hadKeys) current()->shownWidget()->setFocus(Qt::OtherFocusReason);
    if (pane) pane->deleteLater();
    return true;
}

bool DocumentTabs::closeAll()
{
    while (count() > 1)
        if (!closeTab(count() - 1)) return false;
    return current()->closeDocument();
}

// A document that came another way, such as by its address, stays in front of those that were open before.
void DocumentTabs::restore(const QList<WindowEntry> &entries)
{
    const QString open = current()->path();
    qsizetype known = -1;
    int selected = 0;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        if (known < 0 && entries[i].path == open) known = i;
        if (entries[i].selected) selected = int(i);
    }
    for (qsizetype i = 0; i < entries.size(); ++i)
        if (i != known) insertTab(i < known ? int(i) : count(), {nullptr, entries[i].path, entries[i].toggled});
    if (known >= 0 && entries[known].toggled) current()->showDocument(open, {}, true);
    if (!open.isEmpty()) return;
    select(selected + 1);
    closeTab(0);
}

// -- names ------------------------------------------------------------------------------------------------------------

void DocumentTabs::updateText(int index)
{
    const QString path = pathOf(m_tabs[index]);
    const QString name = path.isEmpty() ? localized(TOMELET_TEXT("Empty")) : lastPathComponent(path);
    m_bar->setTabText(index, QString(name).replace(u'&', QStringLiteral("&&")));
    m_bar->setTabToolTip(index, path);
    m_bar->setAccessibleTabName(index, name);
}

void DocumentTabs::paneChanged(const DocumentPane *pane)
{
    for (int i = 0; i < count(); ++i)
        if (m_tabs[i].pane == pane) updateText(i);
    if (pane == m_stack->currentWidget()) Q_EMIT currentChanged();
}

bool DocumentTabs::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() == Qt::MiddleButton) return closeTab(m_bar->tabAt(mouse->pos())), true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace tomelet::desktop
