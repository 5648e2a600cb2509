// SPDX-License-Identifier: GPL-3.0-or-later
// Code and formulas: the source's bytes, escaped.
#include "engine/html/Html.h"

#include "engine/Chars.h"
#include "engine/Labels.h"
#include "engine/Limits.h"
#include "engine/ScratchPad.h"

namespace tomelet::engine {

namespace {

// A marker with the blanks that were cut off behind it.
std::string_view marker_and_blanks(const char *source, const token *t)
{
    size_t end = token_end(t);
    const size_t limit = t->next ? t->next->start : end;
    while (end < limit && char_is_whitespace(source[end])) ++end;
    return {source + t->start, end - t->start};
}

void export_escape_raw(d_string *out, const char *source, const token *t)
{
    const char byte = source[t->start + 1];
    print(out, "\\");
    if (byte == ' ' && t->prev && t->prev->type == TEXT_EMPTY) return;
    mmd_print_char_html(out, byte, nullptr, false);
}

std::string_view math_delimiter(const token *t)
{
    const bool opens = t->mate && t->mate->start > t->start;
    switch (t->type) {
    case MATH_PAREN_OPEN: return t->mate ? "\\(" : "";
    case MATH_PAREN_CLOSE: return t->mate ? "\\)" : "";
    case MATH_BRACKET_OPEN: return t->mate ? "\\[" : "";
    case MATH_BRACKET_CLOSE: return t->mate ? "\\]" : "";
    case MATH_DOLLAR_SINGLE: return !t->mate ? "" : opens ? "\\(" : "\\)";
    case MATH_DOLLAR_DOUBLE: return !t->mate ? "" : opens ? "\\[" : "\\]";
    default: return {};
    }
}

} // namespace

void mmd_export_token_html_raw(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    switch (t->type) {
    case TEXT_EMPTY: break;
    case ESCAPED_CHARACTER: export_escape_raw(out, source, t); break;
    case MARKER_LIST_BULLET:
    case MARKER_LIST_ENUMERATOR: mmd_print_string_html(out, marker_and_blanks(source, t), nullptr, false); break;
    case SUPERSCRIPT:
    case SUBSCRIPT:
        mmd_print_string_html(out, token_text(source, t), nullptr, false); // its text too, if it has any
        break;
    default:
        if (t->child) mmd_export_token_tree_html_raw(out, source, t->child, scratch);
        else mmd_print_string_html(out, token_text(source, t), nullptr, false);
    }
}

void mmd_export_token_tree_html_raw(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    if (scratch.recurse_depth >= kMaxDepth) return;
    ++scratch.recurse_depth;
    for (; t; t = t->next) mmd_export_token_html_raw(out, source, t, scratch);
    --scratch.recurse_depth;
}

void mmd_export_token_html_math(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    const std::string_view delimiter = math_delimiter(t);
    if (!delimiter.empty()) print(out, delimiter);
    else mmd_export_token_html_raw(out, source, t, scratch);
}

void mmd_export_token_tree_html_math(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    for (; t; t = t->next) mmd_export_token_html_math(out, source, t, scratch);
}

} // namespace tomelet::engine
