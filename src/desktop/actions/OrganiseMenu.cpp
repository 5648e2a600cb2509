// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's commands on contexts and links.
#include "desktop/MainWindow.h"
#include "desktop/ProgressPanel.h"
#include "desktop/document/ContextsField.h"
#include "desktop/document/DocumentHeader.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/outline/OutlinePane.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/ItemPath.h"
#include "organising/contexts/ContextStores.h"
#include "organising/contexts/Contexts.h"
#include "organising/links/Backlinks.h"
#include "organising/links/LinkWalks.h"

#include <QMenuBar>

#include <tuple>

namespace tomelet::desktop {

void MainWindow::makeOrganiseMenu()
{
    QMenu *menu = menuBar()->addMenu(localized(TOMELET_TEXT("&Organize")));
    makeContextCommands(menu);
    menu->addSeparator();
    for (const auto &[text, keys, step] : {std::tuple(TOMELET_TEXT("Move &Up in the List"), "Alt+Shift+Up", -1),
                                           std::tuple(TOMELET_TEXT("Move &Down in the List"), "Alt+Shift+Down", 1)})
        add(menu, text, QKeySequence(QString::fromLatin1(keys)), [this, by = step] {
            m_listModel->moveByOne(selectedDocuments(), by);
            updateListTexts();
        });
    menu->addSeparator();
    makeLinkCommands(menu);
}

// -- contexts ---------------------------------------------------------------------------------------------------------

void MainWindow::makeContextCommands(QMenu *menu)
{
    add(menu, TOMELET_TEXT("&Contexts of the Document"), QKeySequence(QStringLiteral("Ctrl+Shift+K")),
        [this] { document()->header()->contextsField()->setFocus(Qt::ShortcutFocusReason); });
    add(menu, TOMELET_TEXT("&Exclude Contexts..."), {}, [this] {
        if (const QStringList words = m_outline->selectedContexts(); !words.isEmpty()) m_actions.excludeContexts(words);
    });
    add(menu, TOMELET_TEXT("&Manage Excluded Contexts"), {}, [this] { manageExcludedContexts(); });
    add(menu, TOMELET_TEXT("&Refresh Contexts"), {}, [this] { refreshContexts(); });
    add(menu, TOMELET_TEXT("E&xtract Contexts from Documents..."), {}, [this] { extractContexts(); });
}

void MainWindow::deleteSelection()
{
    const QStringList words = m_outline->hasFocus() ? m_outline->selectedContexts() : QStringList();
    if (!words.isEmpty()) return m_actions.deleteContexts(words);
    forSelection([this](const QStringList &paths) { m_actions.moveToTrash(paths); });
}

void MainWindow::manageExcludedContexts()
{
    const QString file = excludedContextsFile();
    if (!itemExists(file) && (!makeFolder(parentPath(file)) || !writeFile(file, "\n"))) return;
    Q_EMIT extraWindowWanted(file);
    showMessage(localized(TOMELET_TEXT("Excluded Contexts")),
                localized(TOMELET_TEXT("Contexts listed in this document are excluded from automatic management.\n"
                                       "You can separate individual entries with newlines, spaces or commas.")));
}

void MainWindow::refreshContexts()
{
    runWithProgress(this, localized(TOMELET_TEXT("Refreshing Contexts")),
                    [](const Progress &progress) { tm_refreshContexts(progress); });
}

void MainWindow::extractContexts()
{
    const int answer =
        askQuestion({localized(TOMELET_TEXT("Extract context tags from existing documents")),
                     localized(TOMELET_TEXT(
                         "Tomelet will scan all editable documents to find embedded context tags. This may take a "
                         "little while.")),
                     {localized(TOMELET_TEXT("Extract")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer != 0) return;
    runWithProgress(this, localized(TOMELET_TEXT("Extracting contexts...")),
                    [](const Progress &progress) { extractContextsFromDocuments(progress); });
}

// -- links ------------------------------------------------------------------------------------------------------------

void MainWindow::makeLinkCommands(QMenu *menu)
{
    QAction *manage = menu->addAction(localized(TOMELET_TEXT("Manage &Backlinks")));
    manage->setCheckable(true);
    connect(menu, &QMenu::aboutToShow, manage,
            [manage] { manage->setChecked(settings().boolean(QStringLiteral("manageLinks"))); });
    connect(manage, &QAction::triggered, this,
            [](bool on) { settings().setObject(QStringLiteral("manageLinks"), on); });
    const QList<QAction *> commands{
        add(menu, TOMELET_TEXT("&Find Broken Backlinks"), {}, [this] { findBrokenBacklinks(); }),
        add(menu, TOMELET_TEXT("Refresh Back&links"), {}, [this] { refreshBacklinks(); }),
        add(menu, TOMELET_TEXT("Re&move Backlinks..."), {}, [this] { removeBacklinks(); }),
    };
    connect(menu, &QMenu::aboutToShow, this, [commands] {
        for (QAction *command : commands) command->setEnabled(settings().boolean(QStringLiteral("manageLinks")));
    });
}

// The document on display shows its backlinks, perhaps in its text as well.
static void backlinksChanged()
{
    if (settings().boolean(QStringLiteral("appendBacklinksToText")))
        notifications().post(QStringLiteral("TMLTReloadCurrentDocument"));
}

void MainWindow::findBrokenBacklinks()
{
    CheckedBacklinks checked;
    const bool finished =
        runWithProgress(this, localized(TOMELET_TEXT("Finding Broken Backlinks")), [&](const Progress &progress) {
            checked = tm_findBrokenBacklinks(tomeletRoot(), BacklinkCheck::Find, progress);
        });
    if (!finished) return;
    if (checked.mismatches.isEmpty()) return showMessage(checked.message(), {});
    const int answer = askQuestion({checked.message(),
                                    checked.explanation(),
                                    {localized(TOMELET_TEXT("Repair")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer != 0) return;
    for (const QString &item : checked.mismatches) tm_repairBrokenBacklink(item);
    backlinksChanged();
}

void MainWindow::refreshBacklinks()
{
    RefreshedLinks found;
    const bool finished =
        runWithProgress(this, localized(TOMELET_TEXT("Refreshing Backlinks")), [&](const Progress &progress) {
            found = tm_refreshAllBacklinksStartingAtReferenceDate(tomeletRoot(), false, progress);
        });
    if (finished) showMessage(found.message(), {});
    backlinksChanged();
}

void MainWindow::removeBacklinks()
{
    const int answer = askQuestion(
        {localized(TOMELET_TEXT("Remove Backlinks?")),
         localized(TOMELET_TEXT("The links in your documents stay. \"Refresh Backlinks\" brings the backlinks back.")),
         {localized(TOMELET_TEXT("Remove")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer != 0) return;
    CheckedBacklinks checked;
    const bool finished =
        runWithProgress(this, localized(TOMELET_TEXT("Removing Backlinks")), [&](const Progress &progress) {
            checked = tm_findBrokenBacklinks(tomeletRoot(), BacklinkCheck::Remove, progress);
        });
    if (finished) showMessage(checked.message(), {});
    backlinksChanged();
}

} // namespace tomelet::desktop
