// SPDX-License-Identifier: GPL-3.0-or-later
// A page and the part of it that is edited.
#pragma once

#include <QString>

namespace tomelet {

/// The page with another inside of its body; everything in front of that stays as it is, also where the page
/// is not ours. A source without a body tag keeps its head, or is the body alone.
///   "<html><body class='a'>old</body></html>", "new" → "<html><body class='a'>new</body></html>"
[[nodiscard]] QString pageWithBody(const QString &source, const QString &body);
/// What is between the tags of the head, "" without one.
[[nodiscard]] QString headOfPage(const QString &page);

} // namespace tomelet
