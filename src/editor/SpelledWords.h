// SPDX-License-Identifier: GPL-3.0-or-later
// Which parts of a text are words whose spelling means something.
#pragma once

#include "foundation/Range.h"

#include <QStringView>

#include <vector>

namespace tomelet {

/// The words of one line, in UTF-16 units: runs of letters with apostrophes inside. Addresses, code in back
/// ticks, tags and whatever holds digits or signs of a program are none.
///   "It's `code` at a@b.c" → "It's", "at"
[[nodiscard]] std::vector<Range> spelledWords(QStringView line);

} // namespace tomelet
