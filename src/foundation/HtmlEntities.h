// SPDX-License-Identifier: GPL-3.0-or-later
// Character references of HTML (HTML 4.01, section 24) as characters.
#pragma once

#include <QString>

namespace tomelet {

/// Replaces named, decimal and hexadecimal references by their characters; what is none stays as it is.
[[nodiscard]] QString withEntitiesResolved(const QString &text);

} // namespace tomelet
