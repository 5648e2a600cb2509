// SPDX-License-Identifier: GPL-3.0-or-later
// Style sheets: which one an item has, its includes, its placeholders, and the themes that are laid over a page.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// The relative name of the item's sheet: "CSS/..." ships with the program, "TMResources/CSS/..." lies in the library.
[[nodiscard]] QString tm_applicableStyleSheet(const QString &path);
/// The `style` text for a page of the item: includes resolved, values put in, comments for authors dropped.
[[nodiscard]] QString tm_inheritedStyleSheet(const QString &path);
[[nodiscard]] QString tm_styleSheetWithResolvedIncludes(const QString &sheet);
/// The class names that the sheet offers for class blocks; "code" in the person's language stands first.
[[nodiscard]] QStringList tm_customClassesInStylesheet(const QString &sheet);
/// All sheets by their relative names: the program's, then the library's.
[[nodiscard]] QStringList availableStyleSheets();

/// A page as the theme in force shows it.
[[nodiscard]] QString tm_formattedDocAdjustedToColorTheme(const QString &page);
[[nodiscard]] QString tm_formattedDocAdjustedToDarkTheme(const QString &page);
[[nodiscard]] QString tm_formattedDocAdjustedToSolarizedTheme(const QString &page);

} // namespace tomelet
