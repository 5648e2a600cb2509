// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's menu of what is done to the text of a document.
#include "desktop/MainWindow.h"

#include "desktop/document/DocumentPane.h"
#include "foundation/Localization.h"

#include <QMenuBar>

namespace tomelet::desktop {

void MainWindow::makeTextMenu()
{
    QMenu *menu = menuBar()->addMenu(localized(TOMELET_TEXT("Te&xt")));
    add(menu, TOMELET_TEXT("Switch between &Text and Page"), QKeySequence(QStringLiteral("Ctrl+E")),
        [this] { m_document->toggleView(); });
    menu->addSeparator();
    const auto command = [this, menu](const char *text, const QString &keys, EditorCommand kind,
                                      const EditorArguments &arguments = {}) {
        add(menu, text, QKeySequence(keys), [this, kind, arguments] { m_document->applyToText(kind, arguments); });
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
