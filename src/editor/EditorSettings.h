// SPDX-License-Identifier: GPL-3.0-or-later
// The settings that editing commands follow, read once a command.
#pragma once

#include <QString>

namespace tomelet {

struct EditorSettings
{
    bool autoIndentLists = false;
    bool indentWithTabs = false;
    bool insertClosingCharacters = false;
    bool useUnderscoreToEmphasizeMD = false;
    bool sortLinesCaseSensitive = false;
    bool sortLinesDescending = false;
    QString markTaskWithCharacter; ///< what begins a task line, "" for nothing
};

/// The settings as they stand.
[[nodiscard]] EditorSettings editorSettings();

} // namespace tomelet
