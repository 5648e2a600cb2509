// SPDX-License-Identifier: GPL-3.0-or-later
// The surroundings in which pages are shown and printed: no script, nothing from the network, nothing kept.
#pragma once

class QWebEngineProfile;

namespace tomelet::desktop {

/// The one profile of the program; lives as long as the application.
[[nodiscard]] QWebEngineProfile *pageProfile();

} // namespace tomelet::desktop
