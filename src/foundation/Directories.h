// SPDX-License-Identifier: GPL-3.0-or-later
// The program's own folders by the XDG Base Directory Specification, read from the environment at each call so that
// a test can run in a world of its own.
#pragma once

#include <QString>

namespace tomelet {

/// The name of the program's folder in each base directory.
inline const QString bundleIdentifier = QStringLiteral("org.tomelet.app");

/// $XDG_CONFIG_HOME/org.tomelet.app (default ~/.config); none of these folders is made by asking for its name.
[[nodiscard]] QString configDirectory();
/// $XDG_DATA_HOME/org.tomelet.app (default ~/.local/share): state of the libraries.
[[nodiscard]] QString dataDirectory();
/// $XDG_CACHE_HOME/org.tomelet.app (default ~/.cache): what can be thrown away at any time.
[[nodiscard]] QString cacheDirectory();
/// The working folder: $XDG_RUNTIME_DIR/org.tomelet.app, else a folder of the user's own below the temporary one.
[[nodiscard]] QString workingDirectory();
/// $HOME, or the home folder of the user data base.
[[nodiscard]] QString homeDirectory();

} // namespace tomelet
