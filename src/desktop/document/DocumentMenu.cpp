// SPDX-License-Identifier: GPL-3.0-or-later
// The menu of commands about the document as a whole: new, finding, printing, looks.
#include "desktop/MenuCommands.h"

#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"

#include <QMainWindow>
#include <QMenuBar>

namespace tomelet::desktop {

// A setting that is off has no entry.
static void addLook(QMenu *menu, DocumentDesk *desk, const char *text, const QString &key)
{
    QAction *action = menu->addAction(localized(text));
    action->setCheckable(true);
    action->setChecked(settings().integer(key) == 1);
    QObject::connect(action, &QAction::toggled, desk, [desk, key](bool on) {
        if (on) settings().setObject(key, qlonglong(1));
        else settings().remove(key);
        for (DocumentPane *pane : desk->panes()) pane->applyViewSettings();
    });
}

void addDocumentMenu(QMainWindow *window, DocumentDesk *desk, const WindowCommands &commands)
{
    QMenu *menu = window->menuBar()->addMenu(localized(TOMELET_TEXT("&Document")));
    const auto add = [menu, desk](const char *text, const QKeySequence &keys, std::function<void()> action) {
        addCommand(menu, text, keys, desk, std::move(action));
    };
    add(TOMELET_TEXT("New &Text"), QKeySequence(QStringLiteral("Ctrl+Alt+N")),
        [commands] { commands.createDocument(QStringLiteral("md")); });
    add(TOMELET_TEXT("New Formatted &Document"), QKeySequence(QStringLiteral("Ctrl+Alt+Shift+N")),
        [commands] { commands.createDocument(QStringLiteral("html")); });
    add(TOMELET_TEXT("Name after Fi&rst Line"), QKeySequence(QStringLiteral("Shift+F2")),
        [desk] { desk->current()->renameToFirstLine(); });
    menu->addSeparator();
    add(TOMELET_TEXT("&Back"), QKeySequence::Back, [desk] { desk->current()->goBack(); });
    add(TOMELET_TEXT("F&orward"), QKeySequence::Forward, [desk] { desk->current()->goForward(); });
    menu->addSeparator();
    add(TOMELET_TEXT("&Find..."), QKeySequence::Find, [desk] { desk->current()->openFind(false); });
    add(TOMELET_TEXT("Find and &Replace..."), QKeySequence(QStringLiteral("Ctrl+H")),
        [desk] { desk->current()->openFind(true); });
    add(TOMELET_TEXT("Find &Next"), QKeySequence(Qt::Key_F3), [desk] { desk->current()->find(false, false); });
    add(TOMELET_TEXT("Find Pre&vious"), QKeySequence(QStringLiteral("Shift+F3")),
        [desk] { desk->current()->find(true, false); });
    menu->addSeparator();
    addLook(menu, desk, TOMELET_TEXT("&Line Numbers"), QStringLiteral("showLineNumbers"));
    addLook(menu, desk, TOMELET_TEXT("Mark the &Current Line"), QStringLiteral("highlightCurrentLine"));
    addLook(menu, desk, TOMELET_TEXT("T&ypewriter Scrolling"), QStringLiteral("centerCurrentLine"));
    addLook(menu, desk, TOMELET_TEXT("Check &Spelling"), QStringLiteral("continuousSpellChecking"));
    add(TOMELET_TEXT("F&ull Screen"), QKeySequence(Qt::Key_F11), commands.toggleFullScreen);
    menu->addSeparator();
    add(TOMELET_TEXT("&Print..."), QKeySequence::Print, [desk] { desk->current()->print(); });
    add(TOMELET_TEXT("Save as P&DF..."), QKeySequence(QStringLiteral("Ctrl+Alt+P")),
        [desk] { desk->current()->printToPdf(); });
}

} // namespace tomelet::desktop
