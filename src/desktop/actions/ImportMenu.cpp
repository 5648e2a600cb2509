// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's commands for files of other programs.
#include "desktop/MainWindow.h"

#include "desktop/document/DocumentPane.h"
#include "desktop/list/DocumentListModel.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
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
    add(menu, TOMELET_TEXT("&Import..."), {}, [this] {
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
        showItem(saved);
    }
}

void MainWindow::importFiles(const QStringList &files)
{
    const QString book = m_listModel->controller().source().book;
    QString last;
    for (const QString &file : files) {
        const Imported imported = importFile(file, pathIsPlainBook(book) ? book : tomeletRoot());
        if (!imported.fault.isEmpty())
            showMessage(localized(TOMELET_TEXT("The file was not imported.")), imported.fault);
        for (const QString &path : imported.documents) m_actions.noteCreation(localized(TOMELET_TEXT("Import")), path);
        if (!imported.documents.isEmpty()) last = imported.documents.last();
    }
    if (!last.isEmpty()) showItem(last);
}

} // namespace tomelet::desktop
