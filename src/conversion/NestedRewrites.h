// SPDX-License-Identifier: GPL-3.0-or-later
// Rewrites that look again from the top after each replacement, in forms whose cost grows with the text.
#pragma once

#include "conversion/Patterns.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace tomelet {

/// What takes the place of a match; `text` is the text that its ranges belong to.
using MatchReplacement = std::function<QString(const PatternMatch &match, const QString &text)>;

/// Replaces the first match again and again until there is none. Every match begins with `opener` (after blanks that
/// it may take in front) and holds `closer`, so that nothing in front of a replacement can begin to match by it.
[[nodiscard]] QString replaceFirstMatches(QString text, const QString &pattern, int options, const QString &opener,
                                          const QString &closer, const MatchReplacement &replacement);

/// Elements of which the innermost goes first: an opening tag, and behind it no other opening tag up to the closing
/// one of the same name. The replacement gets name and content, and gives a text without opening tags.
///
/// The result is that of replacing the first match of "<(name)>((?:(?!<name)[\s\S])*?)</\1>" until there is none.
[[nodiscard]] QString
replaceInnermost(const QString &text, const QStringList &names,
                 const std::function<QString(const QString &name, const QString &content)> &replacement);

} // namespace tomelet
