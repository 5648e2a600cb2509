// SPDX-License-Identifier: GPL-3.0-or-later
// Icons: the desktop's own by their freedesktop names, the bundled set behind them, drawn in the text's colour.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

class QPalette;

namespace tomelet::desktop {

struct Badge;

/// The bundled icon of that name ("book", "pin") in the colour of the window's text.
[[nodiscard]] QIcon bundledIcon(const QString &name);
/// The theme's icon, or the bundled one where the theme has none.
[[nodiscard]] QIcon themedIcon(const QString &freedesktopName, const QString &bundledName);
/// A tasklist has another icon than a book, and one in the colour for it while a task is overdue.
[[nodiscard]] QIcon outlineIcon(int smartType, const Badge &badge);
/// The same in the colour of what is overdue.
[[nodiscard]] QIcon overdueIcon(const QString &name);
/// The ring for a task icon ("task-open", "task-started-due"): overdue in the colour for that, finished dimmed.
[[nodiscard]] QIcon taskStateIcon(const QString &icon);
/// The colour of what is overdue, as text on the palette's base.
[[nodiscard]] QColor overdueColor(const QPalette &palette);
[[nodiscard]] QIcon documentIcon(const QString &path);
/// Forgets what was drawn, after the palette changed.
void clearIconCache();

} // namespace tomelet::desktop
