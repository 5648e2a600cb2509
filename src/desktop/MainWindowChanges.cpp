// SPDX-License-Identifier: GPL-3.0-or-later
// The main window: what it does about changes that it is told of.
#include "desktop/MainWindow.h"

#include "desktop/document/DocumentDesk.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/outline/OutlinePane.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/OutlineItem.h"
#include "library/Root.h"
#include "organising/dates/Reminders.h"

#include <QStatusBar>

namespace tomelet::desktop {

using namespace std::chrono_literals;

// What is due changed, or the days of which one looks ahead.
void MainWindow::dueTasksChanged()
{
    m_outlineController.updateSmartBookOfType(DueTasksBook);
    m_outline->recount();
    const TMLTDocumentListViewController &list = m_listModel->controller();
    if (list.source().smartType == DueTasksBook || !list.smartBooksList.isEmpty()) reloadListSoon();
}

void MainWindow::reloadListFor(const QString &path)
{
    const ListSource &source = m_listModel->controller().source();
    const bool concerned = source.smartType != OrdinaryBook || parentPath(path) == source.book;
    if (concerned) reloadListSoon();
}

// The nearest book above takes its place.
void MainWindow::leaveVanishedBook()
{
    const ListSource &source = m_listModel->controller().source();
    if (source.smartType != OrdinaryBook || itemExists(source.book)) return;
    QString there = source.book;
    while (!itemExists(there) && tm_itemIsChildOfTomelet(there)) there = parentPath(there);
    if (tm_itemIsChildOfTomelet(there)) showItem(there);
}

// A moment later, so that a thousand changes are one reload.
void MainWindow::reloadListSoon()
{
    platform().delayedCalls.schedule(QStringLiteral("reloadBook"), {}, 100ms, [this] { readRowsAnew(); });
}

void MainWindow::observe()
{
    const auto onPath = [this](const char *name, const char *key, std::function<void(const QString &)> handler) {
        m_subscriptions.push_back(notifications().observe(
            QString::fromLatin1(name), [key, handler = std::move(handler)](const QVariantMap &payload) {
                handler(payload.value(QLatin1StringView(key)).toString());
            }));
    };
    const auto reload = [this](const QString &path) { reloadListFor(path); };
    onPath("TMLTFileModifiedOnDiskNotification", "path", reload);
    onPath("TMLTFileDeletedFromDiskNotification", "path", reload);
    onPath("TMLTFileMovedNotification", "newPath", reload);
    onPath("TMLTFileMovedNotification", "originalPath", reload);
    onPath("TMLTFileDeletedFromDiskNotification", "path", [this](const QString &) { leaveVanishedBook(); });
    m_subscriptions.push_back(
        notifications().observe(QStringLiteral("TMLTFileMovedNotification"), [this](const QVariantMap &payload) {
            m_listModel->follow(payload.value(QStringLiteral("originalPath")).toString(),
                                payload.value(QStringLiteral("newPath")).toString());
        }));
    onPath("TMUpdateTaskIconNotification", "path", reload);
    m_subscriptions.push_back(
        notifications().observe(remindersRebuiltNotification, [this](const QVariantMap &) { dueTasksChanged(); }));
    onPath("TMLTShowItemAtPathNotification", "path", [this](const QString &path) { showItem(path); });
    onPath("TMLTOpenItemsInNewTabNotification", "path",
           [this](const QString &path) { m_desk->openInNewTab(path, true); });
    onPath("TMLTOpenItemsInNewWindowNotification", "path",
           [this](const QString &path) { Q_EMIT extraWindowWanted(path); });
    onPath("TMLTNewBookSelectedNotification", "path", [this](const QString &path) {
        showSource({path, OrdinaryBook, {}});
        m_outlineController.expandPathToItem(path);
    });
    onPath("TMLTImportExportedNotes", "path", [this](const QString &path) { offerImport(path); });
    onPath("TMLTReloadCurrentBook", "path", [this](const QString &) { readRowsAnew(); });
    onPath("TMLTNewTomeletRootSelected", "path", [this](const QString &) { newRoot(); });
}

// A disk may be put in again: then the notebook goes on where it was.
void MainWindow::waitForRoot()
{
    statusBar()->showMessage(localized(TOMELET_TEXT("The notebook's folder is not there any more.")));
    reloadRows();
    if (m_rootTimer) return;
    m_rootTimer = new QTimer(this);
    connect(m_rootTimer, &QTimer::timeout, this, [this] {
        if (!rootIsInForce() || rootLooksUnmounted()) return;
        m_rootTimer->deleteLater();
        statusBar()->clearMessage();
        newRoot();
    });
    m_rootTimer->start(1s);
}

void MainWindow::newRoot()
{
    m_desk->closeAll();
    m_actions.undoStack().clear();
    presentIndex();
    const QString report = m_outlineController.newRootSelected();
    showSource({tomeletRoot(), OrdinaryBook, {}});
    m_application->showFirstDocument();
    if (!report.isEmpty()) showMessage(localized(TOMELET_TEXT("Settings of this Notebook")), report);
}

} // namespace tomelet::desktop
