// SPDX-License-Identifier: GPL-3.0-or-later
// Screenplays of Final Draft (fdx): XML that a style sheet turns into a page when it is shown.
#pragma once

#include <QString>

namespace tomelet {

/// The document with the style sheet inside of it and its scenes numbered.
[[nodiscard]] QString pageOfFdx(const QString &document);

} // namespace tomelet
