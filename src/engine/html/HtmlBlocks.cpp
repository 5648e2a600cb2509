// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/html/Html.h"

#include "engine/Chars.h"
#include "engine/Labels.h"
#include "engine/ScratchPad.h"

#include <string>

namespace tomelet::engine {

namespace {

void children(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    mmd_export_token_tree_html(out, source, t->child, scratch);
}

void export_blockquote(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    pad(out, 2, scratch);
    print(out, "<blockquote>\n");
    scratch.padded = 2;
    children(out, source, t, scratch);
    pad(out, 1, scratch);
    print(out, "</blockquote>");
    scratch.padded = 0;
}

void export_paragraph(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    pad(out, 2, scratch);
    if (!scratch.list_is_tight) print(out, "<p>");
    const token *outer = scratch.open_para;
    scratch.open_para = t;
    children(out, source, t, scratch);
    scratch.open_para = outer;
    if (t == scratch.back_link_para) export_back_link_html(out, scratch);
    if (!scratch.list_is_tight && scratch.close_para) print(out, "</p>");
    scratch.close_para = true;
    scratch.padded = 0;
}

void trim_trailing_whitespace(d_string *out)
{
    size_t length = out->currentStringLength;
    while (length > 0 && char_is_whitespace_or_line_ending(out->str[length - 1])) --length;
    d_string_erase(out, length, to_the_end);
}

void export_heading(d_string *out, const char *source, token *t, scratch_pad &scratch)
{
    const int level = header_level(t) + scratch.base_header_level - 1;
    pad(out, 2, scratch);
    print(out, "<h");
    print_number(out, level);
    if (!scratch.has(EXT_NO_LABELS)) {
        print(out, " id=\"");
        print(out, header_label(source, t, scratch));
        print(out, "\"");
    }
    print(out, ">");
    children(out, source, t, scratch);
    if (t->type <= BLOCK_H6) trim_trailing_whitespace(out);
    print(out, "</h");
    print_number(out, level);
    print(out, ">");
    scratch.padded = 0;
}

void export_list(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    const bool bulleted = t->type == BLOCK_LIST_BULLETED || t->type == BLOCK_LIST_BULLETED_LOOSE;
    const bool outer = scratch.list_is_tight;
    scratch.list_is_tight = t->type == BLOCK_LIST_BULLETED || t->type == BLOCK_LIST_ENUMERATED;
    pad(out, 2, scratch);
    print(out, bulleted ? "<ul>" : "<ol>");
    scratch.padded = 0;
    children(out, source, t, scratch);
    pad(out, 1, scratch);
    print(out, bulleted ? "</ul>" : "</ol>");
    scratch.padded = 0;
    scratch.list_is_tight = outer;
}

// An item of one line keeps that line; one of more lines holds blocks, which write their own paragraphs.
bool holds_a_line(const token *item)
{
    return item->child && (item->child->type == LINE_LIST_BULLETED || item->child->type == LINE_LIST_ENUMERATED);
}

void export_list_item(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    const bool own_paragraph = t->type == BLOCK_LIST_ITEM_TIGHT && !scratch.list_is_tight && holds_a_line(t);
    pad(out, 1, scratch);
    print(out, "<li>");
    if (own_paragraph) print(out, "<p>");
    scratch.padded = 2;
    children(out, source, t, scratch);
    if (own_paragraph) print(out, "</p>");
    print(out, "</li>");
    scratch.padded = 0;
}

void export_indented_code(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    const token *first = t->child;
    while (first && first->type != TEXT_PLAIN) first = first->next; // a list's marker
    pad(out, 2, scratch);
    print(out, "<pre><code>");
    mmd_export_token_tree_html_raw(out, source, first, scratch);
    print(out, "</code></pre>");
    scratch.padded = 0;
}

void export_raw_fence(d_string *out, const char *source, const token *t, std::string_view filter, scratch_pad &scratch)
{
    if (!raw_filter_text_matches(filter, scratch.output_format)) return;
    pad(out, 2, scratch);
    print(out, fenced_text(source, t));
    scratch.padded = fence_is_closed(t) ? 1 : 0;
}

void export_code_lines(d_string *out, const char *source, const token *t)
{
    for (const token *line = t->child; line; line = line->next)
        if (line->type == TEXT_PLAIN) mmd_print_string_html(out, token_text(source, line), nullptr, false);
}

void export_fenced_code(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    const std::string_view language = fence_info(source, t);
    if (language.starts_with("{=")) {
        export_raw_fence(out, source, t, language, scratch);
        return;
    }
    pad(out, 2, scratch);
    print(out, "<pre><code");
    if (!language.empty()) {
        print(out, " class=\"");
        mmd_print_string_html(out, language, nullptr, false);
        print(out, "\"");
    }
    print(out, ">");
    export_code_lines(out, source, t);
    print(out, "</code></pre>");
    scratch.padded = 0;
}

void export_html_block(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    pad(out, 2, scratch);
    for (const token *line = t->child; line; line = line->next)
        if (line->type == TEXT_PLAIN) print(out, token_text(source, line));
    scratch.padded = 1;
}

bool is_definition_list(const token *t)
{
    return t && t->type == BLOCK_DEFLIST;
}

void export_definition_list(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    pad(out, 2, scratch);
    if (!is_definition_list(t->prev)) print(out, "<dl>\n");
    scratch.padded = 2;
    children(out, source, t, scratch);
    pad(out, 1, scratch);
    if (!is_definition_list(t->next)) print(out, "</dl>\n");
    scratch.padded = 1;
}

bool is_tight_definition(const token *t)
{
    const token *first = t->child;
    if (!first || !first->next) return true;
    const token *second = first->next;
    return second->type != BLOCK_EMPTY || !second->next;
}

void export_definition(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    const bool outer = scratch.list_is_tight;
    scratch.list_is_tight = is_tight_definition(t);
    pad(out, 2, scratch);
    print(out, "<dd>");
    children(out, source, t, scratch);
    print(out, "</dd>");
    scratch.padded = 0;
    scratch.list_is_tight = outer;
}

void export_term(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    pad(out, 2, scratch);
    print(out, "<dt>");
    children(out, source, t, scratch);
    print(out, "</dt>\n");
    scratch.padded = 2;
}

void export_rule(d_string *out, scratch_pad &scratch)
{
    pad(out, 2, scratch);
    print(out, "<hr />");
    scratch.padded = 0;
}

void export_table_header(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    pad(out, 2, scratch);
    print(out, "<thead>\n");
    scratch.in_table_header = true;
    children(out, source, t, scratch);
    scratch.in_table_header = false;
    print(out, "</thead>\n");
    scratch.padded = 1;
}

void export_table_section(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    pad(out, 2, scratch);
    print(out, "<tbody>\n");
    scratch.padded = 2;
    children(out, source, t, scratch);
    print(out, "</tbody>");
    scratch.padded = 0;
}

} // namespace

bool export_block_html(d_string *out, const char *source, token *t, scratch_pad &scratch)
{
    switch (t->type) {
    case BLOCK_BLOCKQUOTE: export_blockquote(out, source, t, scratch); return true;
    case BLOCK_CODE_FENCED: export_fenced_code(out, source, t, scratch); return true;
    case BLOCK_CODE_INDENTED: export_indented_code(out, source, t, scratch); return true;
    case BLOCK_DEFLIST: export_definition_list(out, source, t, scratch); return true;
    case BLOCK_DEFINITION: export_definition(out, source, t, scratch); return true;
    case BLOCK_TERM: export_term(out, source, t, scratch); return true;
    case BLOCK_PARA:
    case BLOCK_DEF_FOOTNOTE:
    case BLOCK_DEF_GLOSSARY:
    case BLOCK_DEF_CITATION: export_paragraph(out, source, t, scratch); return true;
    case BLOCK_H1:
    case BLOCK_H2:
    case BLOCK_H3:
    case BLOCK_H4:
    case BLOCK_H5:
    case BLOCK_H6:
    case BLOCK_SETEXT_1:
    case BLOCK_SETEXT_2: export_heading(out, source, t, scratch); return true;
    case BLOCK_HR: export_rule(out, scratch); return true;
    case BLOCK_HTML: export_html_block(out, source, t, scratch); return true;
    case BLOCK_LIST_BULLETED:
    case BLOCK_LIST_BULLETED_LOOSE:
    case BLOCK_LIST_ENUMERATED:
    case BLOCK_LIST_ENUMERATED_LOOSE: export_list(out, source, t, scratch); return true;
    case BLOCK_LIST_ITEM:
    case BLOCK_LIST_ITEM_TIGHT: export_list_item(out, source, t, scratch); return true;
    case BLOCK_TABLE: export_table_html(out, source, t, scratch); return true;
    case BLOCK_TABLE_HEADER: export_table_header(out, source, t, scratch); return true;
    case BLOCK_TABLE_SECTION: export_table_section(out, source, t, scratch); return true;
    case TABLE_ROW: export_table_row_html(out, source, t, scratch); return true;
    case TABLE_CELL: export_table_cell_html(out, source, t, scratch); return true;
    case BLOCK_TOC: export_toc_html(out, source, t, scratch); return true;
    case BLOCK_EMPTY:
    case BLOCK_META:
    case BLOCK_DEF_ABBREVIATION:
    case BLOCK_DEF_LINK:
    case LINE_TABLE_SEPARATOR: return true;
    default: return false;
    }
}

} // namespace tomelet::engine
