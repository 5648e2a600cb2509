// SPDX-License-Identifier: GPL-3.0-or-later
// The menu of what is done to the text of a document.
#include "desktop/MenuCommands.h"

#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "foundation/Localization.h"

#include <QMainWindow>
#include <QMenuBar>

namespace tomelet::desktop {

void addTextMenu(QMainWindow *window, DocumentDesk *desk)
{
    QMenu *menu = window->menuBar()->addMenu(localized(TOMELET_TEXT("Te&xt")));
    addCommand(menu, TOMELET_TEXT("Switch between &Text and Page"), QKeySequence(QStringLiteral("Ctrl+E")), desk,
               [desk] { desk->current()->toggleView(); });
    menu->addSeparator();
    const auto command = [desk, menu](const char *text, const QString &keys, EditorCommand kind,
                                      const EditorArguments &arguments = {}) {
        addCommand(menu, text, QKeySequence(keys), desk,
                   [desk, kind, arguments] { desk->current()->applyToText(kind, arguments); });
    };
    const auto marks = [](const QString &mark) { return EditorArguments{mark, mark, 0}; };
    command(TOMELET_TEXT("&Bold"), QStringLiteral("Ctrl+B"), EditorCommand::Markdown, marks(QStringLiteral("**")));
    command(TOMELET_TEXT("&Italic"), QStringLiteral("Ctrl+I"), EditorCommand::Markdown, marks(QStringLiteral("*")));
    command(TOMELET_TEXT("St&ruck Out"), QStringLiteral("Ctrl+Shift+X"), EditorCommand::Markdown,
            marks(QStringLiteral("~~")));
    command(TOMELET_TEXT("C&ode"), QStringLiteral("Ctrl+Shift+C"), EditorCommand::Markdown, marks(QStringLiteral("`")));
    menu->addSeparator();
    for (int level = 0; level <= 3; ++level) {
        static constexpr const char *names[] = {TOMELET_TEXT("No Heading"), TOMELET_TEXT("Heading &1"),
                                                TOMELET_TEXT("Heading &2"), TOMELET_TEXT("Heading &3")};
        command(names[level], QStringLiteral("Ctrl+Shift+%1").arg(level), EditorCommand::Heading, {{}, {}, level});
    }
    menu->addSeparator();
    command(TOMELET_TEXT("&List"), QStringLiteral("Ctrl+L"), EditorCommand::ToggleList);
    command(TOMELET_TEXT("&Comment"), QStringLiteral("Ctrl+/"), EditorCommand::ToggleComment);
    command(TOMELET_TEXT("&Sort Lines"), {}, EditorCommand::SortLines);
    command(TOMELET_TEXT("Move Line &Up"), QStringLiteral("Alt+Up"), EditorCommand::MoveLineUp);
    command(TOMELET_TEXT("Move Line &Down"), QStringLiteral("Alt+Down"), EditorCommand::MoveLineDown);
}

} // namespace tomelet::desktop
