// SPDX-License-Identifier: GPL-3.0-or-later
// The metadata at a document's beginning: lines of "key: value", perhaps between dashes. Keys are kept in
// label form, so that "Base Header Level" and "baseheaderlevel" are one key; white space within a value folds
// to one blank, except that a line that ends in a backslash keeps its end.
#pragma once

#include "engine/Token.h"

#include <string>

namespace tomelet::engine {

struct mmd_engine;

/// One entry. A key seen twice is there twice; look-ups find the first.
struct meta
{
    std::string key;   ///< label form
    std::string value; ///< cleaned
    size_t start;      ///< offset of the key in the source
};

/// Stores the entries of a metadata block of lines.
void strip_line_tokens_from_metadata(mmd_engine *engine, token *block);

} // namespace tomelet::engine
