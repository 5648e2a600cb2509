// SPDX-License-Identifier: GPL-3.0-or-later
// Spelling dictionaries for pages. The web engine has a form of its own for them (".bdic"), in which no package of the
// system brings any: they are made out of the Hunspell dictionaries of the machine where the engine's converter is
// installed, and kept in the cache.
#pragma once

#include <QStringList>

#include <functional>

namespace tomelet::desktop {

/// Tells the engine where its dictionaries lie, unless the environment does; before the application is made.
void namePageDictionaries();

/// Those of the person's languages, and English, that the engine finds: "de-DE".
[[nodiscard]] QStringList pageDictionaries();

/// Makes those that are missing or older than what they are made of, beside everything else; `made` is called after
/// each one. Nothing happens without a converter.
void makePageDictionaries(const std::function<void()> &made);

} // namespace tomelet::desktop
