// SPDX-License-Identifier: GPL-3.0-or-later
// The plain text editor's commands by name: a text and a selection in, a text and a selection out.
#pragma once

#include "editor/EditedText.h"
#include "editor/EditorSettings.h"

#include <QStringList>
#include <QVariantList>

#include <optional>

namespace tomelet {

enum class EditorCommand {
    NewLine,
    ShiftNewLine,
    Type, ///< takes what is typed
    DeleteBackward,
    Tab,
    ShiftTab,
    ToggleList,
    ToggleComment,
    SortLines,
    MoveLineDown,
    MoveLineUp,
    SmartReplace, ///< takes the string
    Markdown,     ///< takes the opening and the closing mark
    Heading,      ///< takes the level
};

struct EditorArguments
{
    QString first;
    QString second;
    int level = 0;
};

/// Carries out the command with all that follows from it. True: a rule of the command applied. False: the plain edit
/// was made (new line, typing, deleting), or nothing at all.
bool applyEditorCommand(EditedText &edited, EditorCommand command, const EditorArguments &arguments,
                        const EditorSettings &settings);

/// "newline", "shiftNewline", "type" and so on; nothing for another name.
[[nodiscard]] std::optional<EditorCommand> editorCommandNamed(const QString &name);
[[nodiscard]] QStringList editorCommandNames();

} // namespace tomelet
