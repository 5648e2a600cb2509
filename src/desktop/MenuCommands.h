// SPDX-License-Identifier: GPL-3.0-or-later
// Commands of menus, and the menus that every window with documents has.
#pragma once

#include <QKeySequence>

#include <functional>

class QAction;
class QMainWindow;
class QMenu;
class QObject;
class QString;
class QUndoStack;

namespace tomelet::desktop {

class DocumentDesk;

/// A command with its keys; the text is one for translation. It lives as long as the context.
QAction *addCommand(QMenu *menu, const char *text, const QKeySequence &keys, QObject *context,
                    std::function<void()> action);

/// Undo and the clipboard, for whatever has the keys.
QMenu *addEditMenu(QMainWindow *window, QUndoStack &items);

/// What is done to the text of the document in front.
void addTextMenu(QMainWindow *window, DocumentDesk *desk);

/// What only the window itself can do.
struct WindowCommands
{
    std::function<void(const QString &extension)> createDocument;
    std::function<void()> toggleFullScreen;
};
/// The document in front as a whole: new, finding, printing, looks.
void addDocumentMenu(QMainWindow *window, DocumentDesk *desk, const WindowCommands &commands);

/// Tabs, two sides, and the size of letters.
void addTabCommands(QMenu *menu, DocumentDesk *desk);
void addZoomCommands(QMenu *menu, DocumentDesk *desk);

} // namespace tomelet::desktop
