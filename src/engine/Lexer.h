// SPDX-License-Identifier: GPL-3.0-or-later
// The lexer: cuts a range of the source into inline tokens. It knows nothing of lines or blocks, only the
// bytes from the cursor on; what it skips before a token is plain text.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tomelet::engine {

struct lexer
{
    const char *start; ///< first byte of the token found last
    const char *cur;   ///< the first byte behind it
    const char *limit; ///< end of the range; the byte there can be read
    /// Blanks before this place are known not to run to a line's end, so that a long run is looked through
    /// once.
    const char *no_break_before;
};

/// Starts a lexer over a range of the source. The source ends in a NUL at or behind the limit.
[[nodiscard]] lexer lexer_over(const char *source, size_t start, size_t len);

/// The type of the next token, whose range is [l.start, l.cur); 0 at the limit or at a NUL.
[[nodiscard]] uint16_t lexer_next(lexer &l);

} // namespace tomelet::engine
