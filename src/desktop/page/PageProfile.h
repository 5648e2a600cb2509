// SPDX-License-Identifier: GPL-3.0-or-later
// The surroundings in which pages are shown and printed: no script, nothing from the network, nothing kept.
#pragma once

#include <QPageLayout>

class QWebEngineProfile;

namespace tomelet::desktop {

/// The one profile of the program; lives as long as the application.
[[nodiscard]] QWebEngineProfile *pageProfile();

/// The paper that is usual where the person lives, with margins.
[[nodiscard]] QPageLayout paperForPages();

/// Marks misspelled words on pages that are edited, as soon as there are dictionaries (see PageDictionaries.h).
void checkSpellingOfPages(bool on);

} // namespace tomelet::desktop
