// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/html/Html.h"

#include "engine/Chars.h"
#include "engine/Labels.h"
#include "engine/Limits.h"
#include "engine/ScratchPad.h"

#include <cstdio>

namespace tomelet::engine {

namespace {

bool opens(const token *t)
{
    return t->mate && t->mate->start > t->start;
}

bool is_blank_token(const token *t)
{
    return t->type == TEXT_NL || t->type == TEXT_LINEBREAK || t->type == INDENT_TAB || t->type == INDENT_SPACE ||
           t->type == NON_INDENT_SPACE;
}

void trim_trailing_whitespace(const char *source, token *t)
{
    while (t->len > 0 && char_is_whitespace(source[token_end(t) - 1])) --t->len;
}

// Cuts the blanks inside the delimiters of a code span.
void trim_code_span(const char *source, token *span)
{
    token *first = span->child->next;
    token *last = span->child->tail->prev;
    if (!first || first == span->child->tail) return;
    if (is_blank_token(first)) first->type = TEXT_EMPTY;
    else if (first->type == TEXT_PLAIN) token_trim_leading_whitespace(first, source);
    if (is_blank_token(last)) last->type = TEXT_EMPTY;
    else if (last->type == TEXT_PLAIN) trim_trailing_whitespace(source, last);
}

void export_code_span(d_string *out, const char *source, token *t, scratch_pad &scratch)
{
    trim_code_span(source, t);
    empty_delimiters(t);
    const token *filter = t->next && t->next->type == PAIR_RAW_FILTER ? t->next : nullptr;
    if (!filter) {
        print(out, "<code>");
        mmd_export_token_tree_html_raw(out, source, t->child, scratch);
        print(out, "</code>");
        return;
    }
    scratch.skip_token = 1;
    if (!raw_filter_text_matches(text_inside_pair(source, filter), scratch.output_format)) return;
    for (const token *part = t->child; part; part = part->next)
        if (part->type != TEXT_EMPTY) print(out, token_text(source, part));
}

void export_backtick(d_string *out, const char *source, const token *t, const scratch_pad &scratch)
{
    if (t->mate && scratch.has(EXT_SMART)) mmd_print_localized_char_html(out, QUOTE_LEFT_DOUBLE, scratch);
    else print(out, token_text(source, t));
}

struct quote_forms
{
    uint16_t left, right;
    std::string_view plain;
};

void export_quote(d_string *out, const token *t, const quote_forms &forms, const scratch_pad &scratch)
{
    if (t->mate && scratch.has(EXT_SMART))
        mmd_print_localized_char_html(out, opens(t) ? forms.left : forms.right, scratch);
    else print(out, forms.plain);
}

void export_smart(d_string *out, const char *source, const token *t, const scratch_pad &scratch)
{
    if (scratch.has(EXT_SMART)) mmd_print_localized_char_html(out, t->type, scratch);
    else print(out, token_text(source, t));
}

void export_escaped(d_string *out, const char *source, const token *t, const scratch_pad &scratch)
{
    const char byte = source[t->start + 1];
    if (byte == ' ' && !scratch.is_compatible()) print(out, "&nbsp;");
    else mmd_print_char_html(out, byte, nullptr, false);
}

void export_math(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    print(out, "<span class=\"math\">");
    mmd_export_token_tree_html_math(out, source, t->child, scratch);
    print(out, "</span>");
}

void export_script(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    const bool super = t->type == SUPERSCRIPT;
    if (t->child) {
        print(out, super ? "<sup>" : "<sub>");
        mmd_export_token_tree_html(out, source, t->child, scratch);
        print(out, super ? "</sup>" : "</sub>");
    } else if (!t->mate) {
        print(out, token_text(source, t));
    } else if (opens(t)) {
        print(out, super ? "<sup>" : "<sub>");
    } else {
        print(out, super ? "</sup>" : "</sub>");
    }
}

void export_variable(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    const char *value = extract_metadata(scratch, label_from_string(text_inside_pair(source, t)));
    if (value) mmd_print_string_html(out, value, nullptr, true);
    else mmd_export_token_tree_html(out, source, t->child, scratch);
}

void export_line_break(d_string *out, const token *t, scratch_pad &scratch)
{
    if (!t->next) return;
    print(out, "<br />\n");
    scratch.padded = 1;
}

} // namespace

void empty_delimiters(token *pair)
{
    if (!pair->child) return;
    pair->child->type = TEXT_EMPTY;
    pair->child->tail->type = TEXT_EMPTY;
}

bool export_inline_html(d_string *out, const char *source, token *t, scratch_pad &scratch)
{
    switch (t->type) {
    case TEXT_EMPTY:
    case MANUAL_LABEL:
    case TABLE_DIVIDER:
    case CODE_FENCE:
    case MARKER_BLOCKQUOTE:
    case MARKER_H1:
    case MARKER_H2:
    case MARKER_H3:
    case MARKER_H4:
    case MARKER_H5:
    case MARKER_H6:
    case MARKER_LIST_BULLET:
    case MARKER_LIST_ENUMERATOR: return true;
    case EMPH_START: print(out, "<em>"); return true;
    case EMPH_STOP: print(out, "</em>"); return true;
    case STRONG_START: print(out, "<strong>"); return true;
    case STRONG_STOP: print(out, "</strong>"); return true;
    case PAIR_BACKTICK: export_code_span(out, source, t, scratch); return true;
    case PAIR_ANGLE: export_angle_html(out, source, t, scratch); return true;
    case PAIR_BRACKET: export_bracket_html(out, source, t, scratch); return true;
    case PAIR_BRACKET_IMAGE: export_image_bracket_html(out, source, t, scratch); return true;
    case PAIR_BRACKET_FOOTNOTE: export_footnote_html(out, source, t, scratch); return true;
    case PAIR_BRACKET_CITATION: export_citation_html(out, source, t, nullptr, scratch); return true;
    case PAIR_BRACKET_GLOSSARY: export_glossary_html(out, source, t, scratch); return true;
    case PAIR_BRACKET_ABBREVIATION: export_abbreviation_html(out, source, t, scratch); return true;
    case PAIR_BRACKET_VARIABLE: export_variable(out, source, t, scratch); return true;
    case PAIR_HTML_COMMENT: print(out, token_text(source, t)); return true;
    case PAIR_MATH: export_math(out, source, t, scratch); return true;
    case BACKTICK: export_backtick(out, source, t, scratch); return true;
    case QUOTE_SINGLE: export_quote(out, t, {QUOTE_LEFT_SINGLE, QUOTE_RIGHT_SINGLE, "'"}, scratch); return true;
    case QUOTE_DOUBLE: export_quote(out, t, {QUOTE_LEFT_DOUBLE, QUOTE_RIGHT_DOUBLE, "&quot;"}, scratch); return true;
    case QUOTE_RIGHT_ALT: export_quote(out, t, {QUOTE_LEFT_DOUBLE, QUOTE_RIGHT_DOUBLE, "''"}, scratch); return true;
    case APOSTROPHE:
    case DASH_M:
    case DASH_N:
    case ELLIPSIS: export_smart(out, source, t, scratch); return true;
    case ESCAPED_CHARACTER: export_escaped(out, source, t, scratch); return true;
    case ANGLE_LEFT: print(out, "&lt;"); return true;
    case ANGLE_RIGHT: print(out, "&gt;"); return true;
    case AMPERSAND:
    case AMPERSAND_LONG: print(out, "&amp;"); return true;
    case HTML_COMMENT_START: print(out, scratch.has(EXT_SMART) ? "&lt;!&#8211;" : "&lt;!--"); return true;
    case HTML_COMMENT_STOP: print(out, "--&gt;"); return true;
    case SUPERSCRIPT:
    case SUBSCRIPT: export_script(out, source, t, scratch); return true;
    case INDENT_TAB: print(out, "\t"); return true;
    case INDENT_SPACE:
    case NON_INDENT_SPACE: print(out, " "); return true;
    case TEXT_LINEBREAK: export_line_break(out, t, scratch); return true;
    case TEXT_NL: print(out, t->next ? "\n" : ""); return true;
    default: return false;
    }
}

static void report_unknown(const char *source, const token *t)
{
    std::fprintf(stderr, "Unknown token type: %d (%lu:%lu)\n", t->type, static_cast<unsigned long>(t->start),
                 static_cast<unsigned long>(t->len));
    token_tree_describe(t, source);
}

void mmd_export_token_html(d_string *out, const char *source, token *t, scratch_pad &scratch)
{
    if (t->type == TEXT_PLAIN) return print(out, token_text(source, t));
    if (t->type > MANUAL_LABEL) return report_unknown(source, t);
    if (export_inline_html(out, source, t, scratch) || export_block_html(out, source, t, scratch) ||
        export_critic_html(out, source, t, scratch))
        return;
    if (t->child) mmd_export_token_tree_html(out, source, t->child, scratch);
    else if (t->type > BLOCK_TOC) print(out, token_text(source, t));
}

void mmd_export_token_tree_html(d_string *out, const char *source, token *t, scratch_pad &scratch)
{
    if (scratch.recurse_depth >= kMaxDepth) return;
    ++scratch.recurse_depth;
    for (; t; t = t->next) {
        if (scratch.skip_token > 0) --scratch.skip_token;
        else mmd_export_token_html(out, source, t, scratch);
    }
    --scratch.recurse_depth;
}

} // namespace tomelet::engine
