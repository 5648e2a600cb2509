// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorSettings.h"

#include "foundation/Platform.h"

namespace tomelet {

EditorSettings editorSettings()
{
    const Settings &stored = settings();
    return {stored.boolean(QStringLiteral("AutoIndentLists")),
            stored.boolean(QStringLiteral("IndentWithTabs")),
            stored.boolean(QStringLiteral("insertClosingCharacters")),
            stored.boolean(QStringLiteral("useUnderscoreToEmphasizeMD")),
            stored.boolean(QStringLiteral("SortLinesCaseSensitive")),
            stored.boolean(QStringLiteral("SortLinesDescending")),
            stored.string(QStringLiteral("markTaskWithCharacter"))};
}

} // namespace tomelet
