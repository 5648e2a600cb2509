// SPDX-License-Identifier: GPL-3.0-or-later
// Searches of the command line, however they are asked for.
#pragma once

#include "organising/search/Query.h"

#include <QString>

namespace tomelet::cli {

struct Invocation;

/// Searches below the folder and prints the rows of what was found, which becomes the search results; without terms
/// nothing is searched and the last results stay.
void searchAndPrint(const Invocation &call, const QString &text, SearchMode mode, const QString &scope);

} // namespace tomelet::cli
