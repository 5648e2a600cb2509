// SPDX-License-Identifier: GPL-3.0-or-later
// Footnotes, citations, glossary entries and abbreviations: their marks in the text and their lists at its
// end.
#include "engine/html/Html.h"

#include "engine/Labels.h"
#include "engine/ScratchPad.h"

namespace tomelet::engine {

namespace {

void children(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    mmd_export_token_tree_html(out, source, t->child, scratch);
}

// The tag of a link to note number `anchor`; the place of its first use can be linked back to.
void open_note_link(d_string *out, std::string_view prefix, int anchor, bool first, std::string_view title,
                    std::string_view css_class)
{
    print(out, "<a href=\"#");
    print(out, prefix);
    print(out, ":");
    print_number(out, anchor);
    if (first) {
        print(out, "\" id=\"");
        print(out, prefix);
        print(out, "ref:");
        print_number(out, anchor);
    }
    print(out, "\" title=\"");
    print(out, title);
    print(out, "\" class=\"");
    print(out, css_class);
    print(out, "\">");
}

// The last paragraph that stands directly in the note: it takes the link back.
const token *last_paragraph(const token *content)
{
    const token *last = nullptr;
    for (; content; content = content->next)
        if (content->type == BLOCK_PARA) last = content;
    return last;
}

struct note_list_form
{
    std::string_view open;
    std::string_view prefix;
    bool shows_term;
};

// A note may use others while it is written, so the list may grow.
void export_note_list(d_string *out, const char *source, scratch_pad &scratch, note_list &notes,
                      const note_list_form &form)
{
    if (notes.used.empty()) return;
    const bool is_footnote = &notes == &scratch.footnotes;
    pad(out, 2, scratch);
    print(out, form.open);
    scratch.padded = 0;
    for (size_t i = 0; i < notes.used.size(); ++i) {
        const footnote *note = notes.used[i];
        const int number = static_cast<int>(i + 1);
        pad(out, 2, scratch);
        print(out, "<li id=\"");
        print(out, form.prefix);
        print(out, ":");
        print_number(out, is_footnote ? footnote_anchor(scratch, number) : number);
        print(out, "\">\n");
        scratch.padded = 6;
        if (form.shows_term) {
            mmd_print_string_html(out, note->clean_text, nullptr, false);
            print(out, ": ");
        }
        notes.being_printed = number;
        scratch.back_link_para = last_paragraph(note->content);
        mmd_export_token_tree_html(out, source, note->content, scratch);
        pad(out, 1, scratch);
        print(out, "</li>");
        scratch.padded = 0;
    }
    notes.being_printed = 0;
    scratch.back_link_para = nullptr;
    pad(out, 2, scratch);
    print(out, "</ol>\n</div>");
    scratch.padded = 0;
}

void print_back_link(d_string *out, std::string_view prefix, int anchor, std::string_view css_class)
{
    print(out, " <a href=\"#");
    print(out, prefix);
    print(out, "ref:");
    print_number(out, anchor);
    print(out, "\" title=\"return to body\" class=\"");
    print(out, css_class);
    print(out, "\">&#160;&#8617;&#xfe0e;</a>");
}

void print_citation(d_string *out, const char *source, const note_use &use, const token *locator, scratch_pad &scratch)
{
    open_note_link(out, "cn", use.number, use.first, "see citation", "citation");
    print(out, "(");
    if (locator) {
        children(out, source, locator, scratch);
        print(out, ", ");
    }
    print_number(out, use.number);
    print(out, ")</a>");
}

} // namespace

void export_footnote_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch)
{
    const note_use use = footnote_from_bracket(source, scratch, bracket);
    open_note_link(out, "fn", footnote_anchor(scratch, use.number), use.first, "see footnote", "footnote");
    print(out, "<sup>");
    print_number(out, use.number);
    print(out, "</sup></a>");
}

void export_citation_html(d_string *out, const char *source, token *bracket, token *locator, scratch_pad &scratch)
{
    const note_use use = citation_from_bracket(source, scratch, bracket);
    if (locator) scratch.skip_token = 0;
    if (!use.note) {
        if (locator) children(out, source, locator, scratch);
        children(out, source, bracket, scratch);
    } else {
        const bool silent = locator && label_from_string(text_inside_pair(source, locator)) == "notcited";
        if (locator) empty_delimiters(locator);
        if (!silent) print_citation(out, source, use, locator, scratch);
    }
    if (locator) scratch.skip_token = 1;
}

void export_glossary_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch)
{
    const note_use use = glossary_from_bracket(source, scratch, bracket);
    if (!use.note) return children(out, source, bracket, scratch);
    open_note_link(out, "gn", use.number, use.first, "see glossary", "glossary");
    mmd_print_string_html(out, use.note->clean_text, nullptr, false);
    print(out, "</a>");
}

void export_abbreviation_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch)
{
    const note_use use = abbreviation_from_bracket(source, scratch, bracket);
    if (!use.note) return children(out, source, bracket, scratch);
    const std::string &expansion = use.note->expansion;
    if (use.first) {
        mmd_print_string_html(out, expansion, nullptr, false);
        print(out, " (");
    }
    print(out, "<abbr title=\"");
    mmd_print_string_html(out, expansion, nullptr, false);
    print(out, "\">");
    mmd_print_string_html(out, use.note->label_text, nullptr, false);
    print(out, use.first ? "</abbr>)" : "</abbr>");
}

void export_back_link_html(d_string *out, const scratch_pad &scratch)
{
    if (const int number = scratch.footnotes.being_printed)
        print_back_link(out, "fn", footnote_anchor(scratch, number), "reversefootnote");
    if (const int number = scratch.glossary.being_printed) print_back_link(out, "gn", number, "reverseglossary");
    if (const int number = scratch.citations.being_printed) print_back_link(out, "cn", number, "reversecitation");
}

void mmd_export_footnote_list_html(d_string *out, const char *source, scratch_pad &scratch)
{
    export_note_list(out, source, scratch, scratch.footnotes, {"<div class=\"footnotes\">\n<hr />\n<ol>", "fn", false});
}

void mmd_export_glossary_list_html(d_string *out, const char *source, scratch_pad &scratch)
{
    export_note_list(out, source, scratch, scratch.glossary, {"<div class=\"glossary\">\n<hr />\n<ol>", "gn", true});
}

void mmd_export_citation_list_html(d_string *out, const char *source, scratch_pad &scratch)
{
    export_note_list(out, source, scratch, scratch.citations, {"<div class=\"citations\">\n<hr />\n<ol>", "cn", false});
}

} // namespace tomelet::engine
