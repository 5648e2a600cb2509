// SPDX-License-Identifier: GPL-3.0-or-later
// Wiki links as Markdown links.
#pragma once

#include <QString>

namespace tomelet {

/// "[[Book/Other Note.md | other]]" becomes "[ other](Book/Other%20Note.md)"; without a second part the visible text
/// is the name without extension. Links in code stay.
[[nodiscard]] QString tm_makeWikiLinksMarkdownLinks(const QString &text);

} // namespace tomelet
