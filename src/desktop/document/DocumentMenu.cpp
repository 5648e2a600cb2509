// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's commands about the document as a whole: new, finding, printing, looks.
#include "desktop/MainWindow.h"

#include "desktop/document/DocumentPane.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/outline/OutlinePane.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"

#include <QMenuBar>

namespace tomelet::desktop {

void MainWindow::makeDocumentMenu()
{
    QMenu *menu = menuBar()->addMenu(localized(TOMELET_TEXT("&Document")));
    add(menu, TOMELET_TEXT("New &Text"), QKeySequence(QStringLiteral("Ctrl+Alt+N")),
        [this] { createDocument(QStringLiteral("md")); });
    add(menu, TOMELET_TEXT("New Formatted &Document"), QKeySequence(QStringLiteral("Ctrl+Alt+Shift+N")),
        [this] { createDocument(QStringLiteral("html")); });
    menu->addSeparator();
    add(menu, TOMELET_TEXT("&Find..."), QKeySequence::Find, [this] { m_document->openFind(false); });
    add(menu, TOMELET_TEXT("Find and &Replace..."), QKeySequence(QStringLiteral("Ctrl+H")),
        [this] { m_document->openFind(true); });
    add(menu, TOMELET_TEXT("Find &Next"), QKeySequence(Qt::Key_F3),
        [this] { m_document->find(false, false); });
    add(menu, TOMELET_TEXT("Find Pre&vious"), QKeySequence(QStringLiteral("Shift+F3")),
        [this] { m_document->find(true, false); });
    menu->addSeparator();
    addLook(menu, TOMELET_TEXT("&Line Numbers"), QStringLiteral("showLineNumbers"), 1);
    addLook(menu, TOMELET_TEXT("Mark the &Current Line"), QStringLiteral("highlightCurrentLine"), 1);
    addLook(menu, TOMELET_TEXT("T&ypewriter Scrolling"), QStringLiteral("centerCurrentLine"), 1);
    addLook(menu, TOMELET_TEXT("Check &Spelling"), QStringLiteral("continuousSpellChecking"), 1);
    add(menu, TOMELET_TEXT("F&ull Screen"), QKeySequence(Qt::Key_F11), [this] { toggleFullScreen(); });
    menu->addSeparator();
    add(menu, TOMELET_TEXT("&Print..."), QKeySequence::Print, [this] { m_document->print(); });
    add(menu, TOMELET_TEXT("Save as P&DF..."), QKeySequence(QStringLiteral("Ctrl+Alt+P")),
        [this] { m_document->printToPdf(); });
}

// A setting that is off has no entry.
void MainWindow::addLook(QMenu *menu, const char *text, const QString &key, qlonglong whenOn)
{
    QAction *action = menu->addAction(localized(text));
    action->setCheckable(true);
    action->setChecked(settings().integer(key) == whenOn);
    connect(action, &QAction::toggled, this, [this, key, whenOn](bool on) {
        if (on)
            settings().setObject(key, whenOn);
        else
            settings().remove(key);
        m_document->applyViewSettings();
    });
}

void MainWindow::createDocument(const QString &extension)
{
    m_document->createDocument(extension, m_listModel->controller().source().book);
}

// The document alone, its text in a column that the eye can follow.
void MainWindow::toggleFullScreen()
{
    const bool full = !isFullScreen();
    if (full)
        showFullScreen();
    else
        showNormal();
    m_outline->setVisible(!full);
    m_listSide->setVisible(!full);
    m_document->setFullScreen(full);
}

} // namespace tomelet::desktop
