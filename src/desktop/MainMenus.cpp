// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's menus and keys.
#include "desktop/MainWindow.h"

#include "desktop/MenuCommands.h"
#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/document/InfoPanel.h"
#include "desktop/list/DocumentDelegate.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/list/DocumentListView.h"
#include "desktop/outline/OutlinePane.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/Properties.h"
#include "library/SetUp.h"
#include "library/StorageLocations.h"

#include <QActionGroup>
#include <QApplication>
#include <QDesktopServices>
#include <QLineEdit>
#include <QMenuBar>
#include <QPixmap>
#include <QUrl>

namespace tomelet::desktop {

QAction *MainWindow::add(QMenu *menu, const char *text, const QKeySequence &keys, std::function<void()> action)
{
    return addCommand(menu, text, keys, this, std::move(action));
}

void MainWindow::makeActions()
{
    makeBookMenu();
    makeEditMenu();
    addTextMenu(this, m_desk);
    addDocumentMenu(this, m_desk,
                    {[this](const QString &extension) { createDocument(extension); }, [this] { toggleFullScreen(); }});
    makeArchiveCommand(menuBar()->actions().last()->menu());
    makeViewMenu();
    makeOrganiseMenu();
    makeTaskMenu();
    makeStorageMenu();
    makeHelpMenu();
}

void MainWindow::makeBookMenu()
{
    QMenu *menu = menuBar()->addMenu(localized(TOMELET_TEXT("&File")));
    add(menu, TOMELET_TEXT("&New Document"), QKeySequence::New, [this] { createDocument({}); });
    add(menu, TOMELET_TEXT("New &Book"), QKeySequence(QStringLiteral("Ctrl+Shift+N")), [this] { newBook(); });
    add(menu, TOMELET_TEXT("Open in New &Tab"), QKeySequence(QStringLiteral("Ctrl+Shift+T")),
        [this] { openSelectionInTabs(); });
    add(menu, TOMELET_TEXT("Open Bes&ide"), QKeySequence(QStringLiteral("Ctrl+Shift+Return")), [this] {
        const QStringList paths = selectedDocuments();
        if (!paths.isEmpty()) m_desk->openBeside(paths.first());
    });
    add(menu, TOMELET_TEXT("Open in E&xtra Window"), QKeySequence(QStringLiteral("Ctrl+Return")), [this] {
        for (const QString &path : selectedDocuments()) Q_EMIT extraWindowWanted(path);
    });
    add(menu, TOMELET_TEXT("&Close Tab"), QKeySequence(QStringLiteral("Ctrl+W")), [this] { m_desk->closeTab(); });
    add(menu, TOMELET_TEXT("Open in Other &Program"), QKeySequence(QStringLiteral("Ctrl+Shift+O")), [this] {
        forSelection([](const QStringList &paths) {
            for (const QString &path : paths) QDesktopServices::openUrl(QUrl::fromLocalFile(path));
        });
    });
    makeImportCommand(menu);
    menu->addSeparator();
    add(menu, TOMELET_TEXT("&Rename..."), QKeySequence(Qt::Key_F2), [this] { renameSelection(); });
    add(menu, TOMELET_TEXT("D&uplicate"), QKeySequence(QStringLiteral("Ctrl+D")),
        [this] { forSelection([this](const QStringList &paths) { m_actions.duplicate(paths); }); });
    makeArchiveCommand(menu);
    add(menu, TOMELET_TEXT("&Delete"), QKeySequence::Delete, [this] { deleteSelection(); });
    add(menu, TOMELET_TEXT("Delete &Permanently..."), QKeySequence(QStringLiteral("Shift+Del")),
        [this] { forSelection([this](const QStringList &paths) { m_actions.deletePermanently(paths); }); });
    menu->addSeparator();
    add(menu, TOMELET_TEXT("&Pin to Top"), QKeySequence(QStringLiteral("Ctrl+Shift+P")), [this] {
        for (const QString &path : selectedDocuments()) tm_pinToTop(path);
    });
    add(menu, TOMELET_TEXT("&Favorite"), QKeySequence(QStringLiteral("Ctrl+Shift+D")), [this] {
        for (const QString &path : selectedDocuments()) {
            tm_toggleFavorite(path);
            notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), propertyFileOf(path));
        }
        notifications().post(QStringLiteral("BookViewShouldUpdateFavoritesNotification"));
    });
    makeLabelMenu(menu->addMenu(localized(TOMELET_TEXT("&Label"))));
    menu->addSeparator();
    add(menu, TOMELET_TEXT("&Quit"), QKeySequence::Quit, [this] { Q_EMIT quitWanted(); });
}

void MainWindow::makeLabelMenu(QMenu *menu)
{
    const std::pair<const char *, const char *> labels[] = {
        {TOMELET_TEXT("None"), "Auto"},     {TOMELET_TEXT("Red"), "red"},     {TOMELET_TEXT("Orange"), "orange"},
        {TOMELET_TEXT("Yellow"), "yellow"}, {TOMELET_TEXT("Green"), "green"}, {TOMELET_TEXT("Blue"), "blue"},
        {TOMELET_TEXT("Purple"), "purple"}, {TOMELET_TEXT("Gray"), "gray"},   {TOMELET_TEXT("Beige"), "beige"},
    };
    for (const auto &[text, name] : labels) {
        const QString color = QString::fromLatin1(name);
        QAction *action = add(menu, text, {}, [this, color] {
            for (const QString &path : selectedDocuments()) {
                tm_setColorLabel(path, color);
                notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), propertyFileOf(path));
            }
        });
        QPixmap swatch(16, 16);
        swatch.fill(labelColor(color).isValid() ? labelColor(color) : QColor(Qt::transparent));
        action->setIcon(swatch);
    }
}

void MainWindow::makeEditMenu()
{
    QMenu *menu = addEditMenu(this, m_actions.undoStack());
    menu->addSeparator();
    add(menu, TOMELET_TEXT("&Search the Notebook"), QKeySequence(QStringLiteral("Ctrl+Shift+F")), [this] {
        m_filter->setFocus();
        m_filter->selectAll();
    });
    menu->addSeparator();
    add(menu, TOMELET_TEXT("&Preferences..."), QKeySequence(QStringLiteral("Ctrl+,")),
        [this] { Q_EMIT preferencesWanted(); });
}

void MainWindow::makeViewMenu()
{
    QMenu *menu = menuBar()->addMenu(localized(TOMELET_TEXT("&View")));
    m_sortActions = new QActionGroup(this);
    const std::pair<const char *, int> orders[] = {{TOMELET_TEXT("Sort by &Title"), 0},
                                                   {TOMELET_TEXT("Sort by &Creation Date"), 1},
                                                   {TOMELET_TEXT("Sort by &Modification Date"), 2},
                                                   {TOMELET_TEXT("C&ustom Order"), 3}};
    for (const auto &[text, index] : orders) {
        QAction *action = add(menu, text, {}, [this, choice = index] {
            m_listModel->selectSortOrder(choice);
            updateListTexts();
        });
        action->setCheckable(true);
        m_sortActions->addAction(action);
    }
    m_descending = add(menu, TOMELET_TEXT("&Descending"), {}, [this] {
        m_listModel->selectSortOrder(m_descending->isChecked() ? 4 : 5);
        updateListTexts();
    });
    m_descending->setCheckable(true);
    makeSmartBookCommands(menu);
    menu->addSeparator();
    add(menu, TOMELET_TEXT("Show &Books"), QKeySequence(QStringLiteral("Ctrl+Alt+1")),
        [this] { showOutline(!m_outline->isVisible()); });
    add(menu, TOMELET_TEXT("Show D&ocuments"), QKeySequence(QStringLiteral("Ctrl+Alt+2")),
        [this] { m_listSide->setVisible(!m_listSide->isVisible()); });
    menu->addSeparator();
    add(menu, TOMELET_TEXT("Go to B&ooks"), QKeySequence(QStringLiteral("Ctrl+1")), [this] { m_outline->setFocus(); });
    add(menu, TOMELET_TEXT("Go to &Enclosing Book"), QKeySequence(QStringLiteral("Ctrl+Alt+Up")),
        [this] { showEnclosing(); });
    add(menu, TOMELET_TEXT("Go to &List"), QKeySequence(QStringLiteral("Ctrl+2")), [this] { focusList(); });
    add(menu, TOMELET_TEXT("Go to Docu&ment"), QKeySequence(QStringLiteral("Ctrl+3")),
        [this] { document()->shownWidget()->setFocus(); });
    add(menu, TOMELET_TEXT("&Next Pane"), QKeySequence(Qt::Key_F6), [this] { focusNextPane(1); });
    add(menu, TOMELET_TEXT("&Previous Pane"), QKeySequence(QStringLiteral("Shift+F6")), [this] { focusNextPane(-1); });
    menu->addSeparator();
    QAction *info = m_info->toggleViewAction();
    info->setShortcut(QKeySequence(QStringLiteral("Ctrl+Alt+I"))); // italics have the shorter one
    menu->addAction(info);
    menu->addSeparator();
    addTabCommands(menu, m_desk);
    menu->addSeparator();
    addZoomCommands(menu, m_desk);
}

void MainWindow::makeStorageMenu()
{
    QMenu *menu = menuBar()->addMenu(localized(TOMELET_TEXT("&Notebook")));
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { fillStorageMenu(menu); });
}

void MainWindow::makeHelpMenu()
{
    QMenu *menu = menuBar()->addMenu(localized(TOMELET_TEXT("&Help")));
    add(menu, TOMELET_TEXT("&Handbook"), QKeySequence(QKeySequence::HelpContents), [this] {
        if (const QString path = handbook(); !path.isEmpty()) showItem(path);
    });
    add(menu, TOMELET_TEXT("&About Tomelet"), {}, [this] {
        showMessage(QStringLiteral("Tomelet ") + shortVersion,
                    localized(TOMELET_TEXT("A notebook of ordinary files. License: GNU GPL, version 3 or later.")));
    });
}

// Made anew each time that it opens: folders come and go.
void MainWindow::fillStorageMenu(QMenu *menu)
{
    menu->clear();
    for (const StorageLocation &place : storageLocations()) {
        if (place.kind == StorageLocation::Separator) {
            menu->addSeparator();
            continue;
        }
        QAction *action =
            menu->addAction(QString(place.title.folders + place.title.name).replace(u'&', QStringLiteral("&&")));
        action->setCheckable(place.kind == StorageLocation::Folder);
        action->setChecked(place.isCurrent);
        connect(action, &QAction::triggered, this, [this, place] {
            if (place.kind == StorageLocation::SelectNew) m_application->selectNewHomeFolder();
            else if (place.kind == StorageLocation::ClearRecent) clearPreviouslySelectedHomes();
            else m_application->tm_switchStorageLocation(place.path);
        });
    }
}

void MainWindow::showListMenu(const QPoint &position)
{
    menuBar()->actions().first()->menu()->popup(m_list->viewport()->mapToGlobal(position));
}

void MainWindow::showOutlineMenu(const QPoint &position)
{
    m_outline->setFocus();
    menuBar()->actions().first()->menu()->popup(m_outline->viewport()->mapToGlobal(position));
}

} // namespace tomelet::desktop
