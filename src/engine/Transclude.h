// SPDX-License-Identifier: GPL-3.0-or-later
// Pulls other files into a source where it says {{file}}, before anything is parsed: code is no exception.
#pragma once

#include "engine/DString.h"
#include "engine/Stack.h"

#include <cstdint>

namespace tomelet::engine {

/// Rewrites the source in place. Names are looked for in the folder `search_path`, taken from the folder of
/// the file `source_path` when that is given (null otherwise), or where the metadata key "transclude base"
/// says. A name that ends in ".*" takes the format's suffix. A file that cannot be read, or that would
/// include itself, leaves its marker as it stands. `parsed` holds the files that lead here (null at the top);
/// the paths of all files read are added to `manifest` (may be null), each once, as texts that the caller
/// frees with std::free.
void mmd_transclude_source(d_string *source, const char *search_path, const char *source_path, uint16_t format,
                           stack *parsed, stack *manifest);

/// A file's bytes, without a byte order mark; null when it cannot be read.
[[nodiscard]] d_string *scan_file(const char *path);

} // namespace tomelet::engine
