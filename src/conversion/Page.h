// SPDX-License-Identifier: GPL-3.0-or-later
// Documents as complete pages: what the formatted view shows.
#pragma once

#include <QString>

namespace tomelet {

/// The complete page of any document: Markdown, HTML, mails, plain text, pictures, and a card for what cannot be shown.
[[nodiscard]] QString pageForItem(const QString &path);

} // namespace tomelet
