// SPDX-License-Identifier: GPL-3.0-or-later
// The writers, one row a format. A writer appends the document to the output from the tree and the scratch
// pad; a format that comes in a package has a packer behind it, which turns that text into the package's
// bytes.
#pragma once

#include "engine/Engine.h"

#include <span>

namespace tomelet::engine {

struct scratch_pad;

struct writer
{
    uint16_t format;
    void (*write)(d_string *out, const char *source, token *tree, scratch_pad &scratch);
};

[[nodiscard]] std::span<const writer> writers();
/// The writer of a format, null when there is none.
[[nodiscard]] const writer *writer_for_format(uint16_t format);

} // namespace tomelet::engine
