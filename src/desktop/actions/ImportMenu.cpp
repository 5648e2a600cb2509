// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's commands for files of other programs.
#include "desktop/MainWindow.h"

#include "desktop/ProgressPanel.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/list/DocumentListModel.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "import/Imports.h"
#include "import/WebArchive.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"

#include <QAction>
#include <QFileDialog>
#include <QMenu>

namespace tomelet::desktop {

void MainWindow::makeArchiveCommand(QMenu *menu)
{
    QAction *action = add(menu, TOMELET_TEXT("Save as For&matted Document"), {}, [this] { saveArchives(); });
    const auto update = [this, action] { action->setEnabled(!archivesInFront().isEmpty()); };
    connect(menu, &QMenu::aboutToShow, action, update);
}

void MainWindow::makeImportCommand(QMenu *menu)
{
    add(menu, TOMELET_TEXT("Imp&ort..."), {}, [this] {
        const QString kinds = QStringLiteral("*.") + importableExtensions().join(QStringLiteral(" *."));
        importFiles(QFileDialog::getOpenFileNames(this, localized(TOMELET_TEXT("Import")), {},
                                                  localized(TOMELET_TEXT("Files of other programs (%1)")).arg(kinds)));
    });
}

// Those that are selected, else the document on display.
QStringList MainWindow::archivesInFront() const
{
    QStringList paths = selectedDocuments();
    if (paths.isEmpty()) paths.append(document()->path());
    paths.removeIf([](const QString &path) { return lowerExtension(path) != u"webarchive"; });
    return paths;
}

void MainWindow::saveArchives()
{
    for (const QString &path : archivesInFront()) {
        const QString saved = tm_saveWebarchiveAsHTML(path);
        if (saved.isEmpty())
            return showMessage(localized(TOMELET_TEXT("The web archive could not be saved as a document.")),
                               localized(TOMELET_TEXT("\"%1\" stays as it is.")).arg(lastPathComponent(path)));
        m_actions.noteCreation(localized(TOMELET_TEXT("Save as Formatted Document")), saved);
        showNew(saved);
    }
}

void MainWindow::importFiles(const QStringList &files)
{
    const QString shown = m_listModel->controller().source().book;
    const QString book = pathIsPlainBook(shown) ? shown : tomeletRoot();
    for (const QString &file : files) {
        if (lowerExtension(file) == u"enex") importNotes(file, book);
        else importDocument(file, book);
    }
}

void MainWindow::importDocument(const QString &file, const QString &book)
{
    const Imported imported = importFile(file, book);
    if (imported.documents.isEmpty())
        return showMessage(localized(TOMELET_TEXT("The file was not imported.")), imported.fault);
    m_actions.noteCreation(localized(TOMELET_TEXT("Import")), imported.documents.last());
    showNew(imported.documents.last());
}

// Notes so far stay, so that there is nothing to be taken back.
void MainWindow::importNotes(const QString &file, const QString &book)
{
    Imported imported;
    runWithProgress(this, localized(TOMELET_TEXT("Importing Notes...")),
                    [&](const Progress &progress) { imported = importFile(file, book, progress); });
    reloadRows();
    const QString count = imported.documents.size() == 1
                              ? localized(TOMELET_TEXT("1 note imported."))
                              : localized(TOMELET_TEXT("%1 notes imported.")).arg(imported.documents.size());
    const QString fault = imported.fault.isEmpty() ? QString() : QString(u'\n' + imported.fault);
    showMessage(localized(TOMELET_TEXT("Import Finished")), count + fault);
}

void MainWindow::offerImport(const QString &file)
{
    const int answer =
        askQuestion({localized(TOMELET_TEXT("Import Evernote Notes?")),
                     localized(TOMELET_TEXT("The notes contained in this file will be added to the book")),
                     {localized(TOMELET_TEXT("Import")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer == 0) importNotes(file, parentPath(file));
}

// A list learns of a new document only after a moment.
void MainWindow::showNew(const QString &path)
{
    reloadRows();
    showItem(path);
}

} // namespace tomelet::desktop
