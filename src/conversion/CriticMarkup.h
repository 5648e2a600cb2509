// SPDX-License-Identifier: GPL-3.0-or-later
// CriticMarkup in a source text.
#pragma once

#include <QString>

namespace tomelet {

/// The text with all changes accepted: additions and the new side of substitutions stay without their marks,
/// deletions and comments go, highlights lose their marks. Marks without a partner stay as they are.
[[nodiscard]] QString acceptCriticMarkup(const QString &text);

} // namespace tomelet
