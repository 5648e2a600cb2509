// SPDX-License-Identifier: GPL-3.0-or-later
// Tables and the contents list.
#include "engine/html/Html.h"

#include "engine/Labels.h"
#include "engine/ScratchPad.h"

#include <string>

namespace tomelet::engine {

namespace {

std::string_view column_tag(char alignment)
{
    switch (alignment) {
    case 'l': return "<col style=\"text-align:left;\"/>\n";
    case 'r': return "<col style=\"text-align:right;\"/>\n";
    case 'c': return "<col style=\"text-align:center;\"/>\n";
    case 'L':
    case 'N': return "<col style=\"text-align:left;\" class=\"extended\"/>\n";
    case 'R': return "<col style=\"text-align:right;\" class=\"extended\"/>\n";
    case 'C': return "<col style=\"text-align:center;\" class=\"extended\"/>\n";
    default: return "<col />\n";
    }
}

std::string_view cell_style(char alignment)
{
    switch (alignment) {
    case 'l':
    case 'L': return " style=\"text-align:left;\"";
    case 'r':
    case 'R': return " style=\"text-align:right;\"";
    case 'c':
    case 'C': return " style=\"text-align:center;\"";
    default: return "";
    }
}

void export_caption(d_string *out, const char *source, token *caption, const token *label, scratch_pad &scratch)
{
    print(out, " id=\"");
    print(out, label_from_string(text_inside_pair(source, label)));
    print(out, "\">\n<caption style=\"caption-side: bottom;\">");
    empty_delimiters(caption);
    mmd_export_token_tree_html(out, source, caption->child, scratch);
    print(out, "</caption>\n");
}

void export_columns(d_string *out, const scratch_pad &scratch)
{
    print(out, "<colgroup>\n");
    for (const char alignment : scratch.table_alignment) print(out, column_tag(alignment));
    print(out, "</colgroup>\n");
}

// How many columns the divider behind a cell makes it span.
size_t divider_len(const token *cell)
{
    return cell->next && cell->next->type == TABLE_DIVIDER ? cell->next->len : 1;
}

} // namespace

void export_table_html(d_string *out, const char *source, token *table, scratch_pad &scratch)
{
    token *label = nullptr;
    token *caption = table_caption(table, &label);
    pad(out, 2, scratch);
    print(out, "<table");
    if (caption) export_caption(out, source, caption, label, scratch);
    else print(out, ">\n");
    scratch.padded = 2;
    read_table_column_alignments(source, table, scratch);
    export_columns(out, scratch);
    scratch.padded = 1;
    mmd_export_token_tree_html(out, source, table->child, scratch);
    pad(out, 1, scratch);
    print(out, "</table>");
    scratch.padded = 0;
    scratch.skip_token = caption ? 1 : 0;
}

void export_table_row_html(d_string *out, const char *source, token *row, scratch_pad &scratch)
{
    print(out, "<tr>\n");
    scratch.table_cell_count = 0;
    mmd_export_token_tree_html(out, source, row->child, scratch);
    print(out, "</tr>\n");
}

void export_table_cell_html(d_string *out, const char *source, token *cell, scratch_pad &scratch)
{
    const bool in_header = scratch.in_table_header;
    const size_t column = scratch.table_cell_count;
    const size_t span = divider_len(cell);
    print(out, in_header ? "\t<th" : "\t<td");
    if (column < scratch.table_alignment.size()) print(out, cell_style(scratch.table_alignment[column]));
    if (span > 1) d_string_append_printf(out, " colspan=\"%d\"", static_cast<int>(span));
    print(out, ">");
    mmd_export_token_tree_html(out, source, cell->child, scratch);
    print(out, in_header ? "</th>\n" : "</td>\n");
    scratch.table_cell_count += span;
}

static token *header_at(const scratch_pad &scratch, size_t index)
{
    return static_cast<token *>(stack_peek_index(scratch.header_stack, index));
}

static bool is_in_range(const token *header, int min, int max)
{
    return header_level(header) >= min && header_level(header) <= max;
}

// The next heading of the contents from `index` on, or the end of the stack.
static size_t next_entry(const scratch_pad &scratch, size_t index, int min, int max)
{
    while (index < scratch.header_stack->size && !is_in_range(header_at(scratch, index), min, max)) ++index;
    return index;
}

static void trim_blanks(d_string *out)
{
    size_t length = out->currentStringLength;
    while (length > 0 && (out->str[length - 1] == ' ' || out->str[length - 1] == '\n')) --length;
    d_string_erase(out, length, to_the_end);
}

static void export_toc_link(d_string *out, const char *source, token *header, scratch_pad &scratch)
{
    print(out, "<li><a href=\"#");
    print(out, header_label(source, header, scratch));
    print(out, "\">");
    mmd_export_token_tree_html(out, source, header->child, scratch);
    trim_blanks(out);
    print(out, "</a>");
}

void mmd_export_toc_entry_html(d_string *out, const char *source, scratch_pad &scratch, size_t &counter, int level,
                               int min, int max)
{
    print(out, "\n<ul>\n");
    for (;;) {
        counter = next_entry(scratch, counter, min, max);
        token *header = header_at(scratch, counter);
        if (!header || header_level(header) < level) break;
        export_toc_link(out, source, header, scratch);
        counter = next_entry(scratch, counter + 1, min, max);
        const token *next = header_at(scratch, counter);
        if (next && header_level(next) > header_level(header))
            mmd_export_toc_entry_html(out, source, scratch, counter, header_level(header) + 1, min, max);
        print(out, "</li>\n");
    }
    print(out, "</ul>\n");
}

void export_toc_html(d_string *out, const char *source, const token *block, scratch_pad &scratch)
{
    if (scratch.output_format == FORMAT_EPUB) return;
    const token *toc = block->child;
    while (toc && toc->type != TOC && toc->type != TOC_SINGLE && toc->type != TOC_RANGE) toc = toc->next;
    int min = 1;
    int max = 6;
    if (toc && toc->type != TOC) {
        min = source[toc->start + 6] - '0';
        max = toc->type == TOC_RANGE ? source[toc->start + 8] - '0' : min;
    }
    pad(out, 2, scratch);
    print(out, "<div class=\"TOC\">\n");
    size_t counter = 0;
    mmd_export_toc_entry_html(out, source, scratch, counter, min, min, max);
    print(out, "</div>");
    scratch.padded = 0;
}

} // namespace tomelet::engine
