// SPDX-License-Identifier: GPL-3.0-or-later
// Icons: the desktop's own by their freedesktop names, the bundled set behind them, drawn in the text's colour.
#pragma once

#include <QIcon>
#include <QString>

namespace tomelet {
class TMLTOutlineItem;
}

namespace tomelet::desktop {

/// The bundled icon of that name ("book", "pin") in the colour of the window's text.
[[nodiscard]] QIcon bundledIcon(const QString &name);
/// The theme's icon, or the bundled one where the theme has none.
[[nodiscard]] QIcon themedIcon(const QString &freedesktopName, const QString &bundledName);
[[nodiscard]] QIcon outlineIcon(const TMLTOutlineItem &item);
[[nodiscard]] QIcon documentIcon(const QString &path);
/// Forgets what was drawn, after the palette changed.
void clearIconCache();

} // namespace tomelet::desktop
