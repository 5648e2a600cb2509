// SPDX-License-Identifier: GPL-3.0-or-later
// The commands of editing. In a text they are the text's own, elsewhere undo takes back what was done to items.
#include "desktop/MenuCommands.h"

#include "desktop/page/TMLTWebView.h"
#include "foundation/Localization.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QUndoStack>

namespace tomelet::desktop {

namespace {

bool isPageBeingEdited(QWidget *focus)
{
    for (; focus; focus = focus->parentWidget())
        if (const auto *view = qobject_cast<TMLTWebView *>(focus)) return view->isEditing();
    return false;
}

bool takesText(QWidget *focus)
{
    return qobject_cast<QLineEdit *>(focus) || qobject_cast<QPlainTextEdit *>(focus) || isPageBeingEdited(focus);
}

// Texts and pages know these commands by their keys.
void press(QKeySequence::StandardKey command, QWidget *focus)
{
    const QKeySequence keys(command);
    if (!focus || keys.isEmpty()) return;
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, keys[0].key(), keys[0].keyboardModifiers());
        QApplication::sendEvent(focus, &event);
    }
}

struct UndoCommand
{
    QAction *action;
    QString text;
    QUndoStack &items;
    bool isRedo;

    [[nodiscard]] bool isPossible() const { return isRedo ? items.canRedo() : items.canUndo(); }
    // Without a menu on display the keys have to work, whatever has the focus then.
    void show(bool inText) const
    {
        const QString step = inText ? QString() : isRedo ? items.redoText() : items.undoText();
        action->setText(step.isEmpty() ? text : QString(text + u' ' + step));
        action->setEnabled(inText || isPossible());
    }
    void hide() const { action->setEnabled(true); }
};

void addUndo(QMenu *menu, QMainWindow *window, QUndoStack &items, bool isRedo)
{
    const auto keys = isRedo ? QKeySequence::Redo : QKeySequence::Undo;
    QAction *action = addCommand(menu, isRedo ? TOMELET_TEXT("&Redo") : TOMELET_TEXT("&Undo"), keys, window,
                                 [window, &items, isRedo, keys] {
                                     QWidget *focus = window->focusWidget();
                                     if (takesText(focus)) press(keys, focus);
                                     else if (isRedo) items.redo();
                                     else items.undo();
                                 });
    const UndoCommand command{action, action->text(), items, isRedo};
    QObject::connect(menu, &QMenu::aboutToShow, action,
                     [command, window] { command.show(takesText(window->focusWidget())); });
    QObject::connect(menu, &QMenu::aboutToHide, action, [command] { command.hide(); });
}

} // namespace

QMenu *addEditMenu(QMainWindow *window, QUndoStack &items)
{
    QMenu *menu = window->menuBar()->addMenu(localized(TOMELET_TEXT("&Edit")));
    addUndo(menu, window, items, false);
    addUndo(menu, window, items, true);
    menu->addSeparator();
    const std::pair<const char *, QKeySequence::StandardKey> commands[] = {
        {TOMELET_TEXT("Cu&t"), QKeySequence::Cut},
        {TOMELET_TEXT("&Copy"), QKeySequence::Copy},
        {TOMELET_TEXT("&Paste"), QKeySequence::Paste},
        {TOMELET_TEXT("Select &All"), QKeySequence::SelectAll},
    };
    for (const auto &[text, keys] : commands)
        addCommand(menu, text, keys, window, [window, command = keys] { press(command, window->focusWidget()); });
    return menu;
}

} // namespace tomelet::desktop
