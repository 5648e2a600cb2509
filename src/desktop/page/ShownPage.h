// SPDX-License-Identifier: GPL-3.0-or-later
// A document's page with what is needed to show it. Nothing of this goes into a file.
#pragma once

#include <QPalette>
#include <QString>
#include <QUrl>

namespace tomelet::desktop {

/// The address that references of the page are resolved against; the base is a path or an address.
[[nodiscard]] QUrl addressOf(const QString &base);
/// The page at its address, in the colours of the palette.
[[nodiscard]] QString pageToShow(const QString &html, const QUrl &address, const QPalette &palette);
/// What is not to be seen of the page is not laid out until `longPageScript` has taken that back.
[[nodiscard]] QString withLongPageRule(QString page);
[[nodiscard]] QString longPageScript();
/// Puts the page in the place of another that has the same address, without a flicker and at a fraction of the time.
[[nodiscard]] QString scriptForContent(const QString &page, bool keepsPlace);
/// The head but for the title, which follows the text.
[[nodiscard]] QString lookOf(const QString &page);

} // namespace tomelet::desktop
