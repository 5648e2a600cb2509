// SPDX-License-Identifier: GPL-3.0-or-later
// From the source to line tokens: each line holds its inline tokens as children, its end included, and has
// one of the LINE_ types, which are all that the block grammar sees.
#pragma once

#include "engine/Lexer.h"
#include "engine/Token.h"

namespace tomelet::engine {

struct mmd_engine;

/// Reads lines one by one, so that a line can be parsed before the next is made.
struct line_reader
{
    mmd_engine *engine;
    lexer lex;
    size_t last;            ///< where the token read last ended
    size_t end;             ///< of the range
    bool blank_is_due;      ///< the next line begins with the one blank that its forerunner's end took
    bool is_first;          ///< no line was read yet
    uint16_t previous_type; ///< of the line before
};

/// Starts a reader over a range of the source.
[[nodiscard]] line_reader line_reader_over(mmd_engine *engine, size_t start, size_t len);
/// The next line, classified and belonging to the caller; null at the end.
[[nodiscard]] token *read_line(line_reader &reader);

/// Cuts a range of the source into lines. The result is a DOC_START_TOKEN over them. With stop_on_empty_line
/// the first empty line is the last.
[[nodiscard]] token *mmd_tokenize_string(mmd_engine *engine, size_t start, size_t len, bool stop_on_empty_line);

/// Gives a line its type by its first tokens; turns these into markers, and cuts blanks behind a list's
/// marker.
void mmd_assign_line_type(mmd_engine *engine, token *line);

/// True for a token of blanks at a line's beginning or end: an indent, or plain text that is one blank.
[[nodiscard]] bool token_is_indent(const token *t);
[[nodiscard]] bool token_is_one_blank(const token *t, const char *source);

} // namespace tomelet::engine
