// SPDX-License-Identifier: GPL-3.0-or-later
// The surroundings in which pages are shown and printed: no script, nothing kept, and nothing from the network for the
// pages of the notebook.
#pragma once

#include <QPageLayout>

class QWebEngineProfile;

namespace tomelet::desktop {

/// For the pages of the notebook, which load files and nothing else. Lives as long as the application.
[[nodiscard]] QWebEngineProfile *pageProfile();

/// For a page that an address in the notebook names, which loads from the web and nothing else. Lives as long.
[[nodiscard]] QWebEngineProfile *webProfile();

/// The paper that is usual where the person lives, with margins.
[[nodiscard]] QPageLayout paperForPages();

/// Marks misspelled words on pages that are edited, as soon as there are dictionaries (see PageDictionaries.h).
void checkSpellingOfPages(bool on);

} // namespace tomelet::desktop
