// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/DocumentWindow.h"

#include "desktop/MenuCommands.h"
#include "desktop/actions/ItemActions.h"
#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/document/DocumentTabs.h"
#include "desktop/page/TMLTWebView.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"

#include <QCloseEvent>
#include <QMenuBar>

namespace tomelet::desktop {

namespace {

QString frameText(const QRect &frame)
{
    return QStringLiteral("{{%1, %2}, {%3, %4}}").arg(frame.x()).arg(frame.y()).arg(frame.width()).arg(frame.height());
}

QRect frameFrom(const QString &text)
{
    QString numbers = text;
    const QStringList parts = numbers.remove(u'{').remove(u'}').split(u',');
    if (parts.size() != 4) return {};
    return {int(parts[0].toDouble()), int(parts[1].toDouble()), int(parts[2].toDouble()), int(parts[3].toDouble())};
}

} // namespace

DocumentWindow::DocumentWindow(ItemActions &actions, const QList<WindowEntry> &entries)
    : m_desk(new DocumentDesk(actions, false))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setCentralWidget(m_desk);
    makeMenus(actions);
    resize(820, 900);
    if (const QRect frame = frameFrom(entries.value(0).frame); frame.isValid()) setGeometry(frame);
    connect(m_desk, &DocumentDesk::currentChanged, this, &DocumentWindow::updateTitle);
    connect(m_desk, &DocumentDesk::emptied, this, &QWidget::close);
    m_desk->restore(entries);
    updateTitle();
    m_desk->current()->shownWidget()->setFocus();
}

void DocumentWindow::makeMenus(ItemActions &actions)
{
    QMenu *file = menuBar()->addMenu(localized(TOMELET_TEXT("&File")));
    addCommand(file, TOMELET_TEXT("New Ta&b"), QKeySequence(QStringLiteral("Ctrl+Shift+T")), this,
               [this] { m_desk->openInNewTab(m_desk->current()->path(), true); });
    addCommand(file, TOMELET_TEXT("&Close Tab"), QKeySequence(QStringLiteral("Ctrl+W")), this,
               [this] { m_desk->closeTab(); });
    addCommand(file, TOMELET_TEXT("Close &Window"), QKeySequence(QStringLiteral("Ctrl+Shift+W")), this,
               [this] { close(); });
    file->addSeparator();
    addCommand(file, TOMELET_TEXT("&Quit"), QKeySequence::Quit, this, [this] { Q_EMIT quitWanted(); });
    addEditMenu(this, actions.undoStack());
    addTextMenu(this, m_desk);
    const auto create = [this](const QString &extension) {
        DocumentPane *pane = m_desk->current();
        pane->createDocument(extension, pane->path().isEmpty() ? QString() : parentPath(pane->path()));
    };
    addDocumentMenu(this, m_desk, {create, [this] { toggleFullScreen(); }});
    QMenu *view = menuBar()->addMenu(localized(TOMELET_TEXT("&View")));
    addTabCommands(view, m_desk);
    view->addSeparator();
    addZoomCommands(view, m_desk);
}

void DocumentWindow::updateTitle()
{
    const QString path = m_desk->current()->path();
    setWindowTitle(path.isEmpty() ? QStringLiteral("Tomelet") : lastPathComponent(path));
}

void DocumentWindow::toggleFullScreen()
{
    const bool full = !isFullScreen();
    if (full) showFullScreen();
    else showNormal();
    for (DocumentPane *pane : m_desk->panes()) pane->setFullScreen(full);
}

QList<WindowEntry> DocumentWindow::entries(const QString &group) const
{
    if (!isVisible() && !isMinimized()) return {};
    QList<WindowEntry> entries = m_desk->entries(group);
    for (WindowEntry &entry : entries) {
        entry.frame = frameText(isFullScreen() ? normalGeometry() : geometry());
        entry.minimized = isMinimized() ? QStringLiteral("1") : QStringLiteral("0");
    }
    return entries;
}

bool DocumentWindow::showOpenDocument(const QString &path, const QString &anchor)
{
    if (const qsizetype tab = m_desk->tabs()->paths().indexOf(path); tab >= 0) m_desk->tabs()->select(int(tab));
    for (DocumentPane *pane : m_desk->visiblePanes()) {
        if (pane->path() != path) continue;
        const QWidget *page = pane->view();
        if (!anchor.isEmpty() && pane->shownWidget() == page) pane->scrollToAnchor(anchor);
        return true;
    }
    return false;
}

void DocumentWindow::startNote()
{
    m_desk->current()->createDocument({}, {});
    m_desk->current()->shownWidget()->setFocus();
}

// A document that cannot be saved keeps its window.
void DocumentWindow::closeEvent(QCloseEvent *event)
{
    const QSignalBlocker quiet(m_desk);
    event->setAccepted(m_desk->closeAll());
}

} // namespace tomelet::desktop
