// SPDX-License-Identifier: GPL-3.0-or-later
// The frame of a document.
#include "engine/html/Html.h"

#include "engine/Assets.h"
#include "engine/ScratchPad.h"

#include <algorithm>
#include <string_view>

namespace tomelet::engine {

namespace {

std::string_view language_code(uint16_t language)
{
    static constexpr std::string_view codes[] = {"en", "es", "de", "fr", "nl", "sv", "he"};
    return language <= LANG_HE ? codes[language] : codes[LANG_EN];
}

bool is_silent_key(std::string_view key)
{
    static constexpr std::string_view keys[] = {
        "baseheaderlevel",  "bibliostyle", "bibtex",         "htmlfooter",     "htmlheaderlevel",
        "language",         "latexbegin",  "latexconfig",    "latexfooter",    "latexheader",
        "latexheaderlevel", "latexinput",  "latexleader",    "latexmode",      "mmdfooter",
        "mmdheader",        "odfheader",   "quoteslanguage", "transcludebase", "xhtmlheaderlevel"};
    return std::find(std::begin(keys), std::end(keys), key) != std::end(keys);
}

void print_style_sheet(d_string *out, std::string_view url, scratch_pad &scratch)
{
    print(out, "\t<link type=\"text/css\" rel=\"stylesheet\" href=\"");
    if (scratch.store_assets) {
        if (!scratch.asset_hash) scratch.asset_hash = new asset_table;
        print(out, "assets/");
        print(out, asset_for_url(*scratch.asset_hash, url, scratch.engine->random).asset_path);
    } else {
        mmd_print_string_html(out, url, nullptr, false);
    }
    print(out, "\"/>\n");
}

void print_head_entry(d_string *out, const meta &entry, scratch_pad &scratch)
{
    const std::string_view key = entry.key;
    if (is_silent_key(key)) return;
    if (key == "css") return print_style_sheet(out, entry.value, scratch);
    if (key == "htmlheader" || key == "xhtmlheader") {
        print(out, entry.value);
        return print(out, "\n");
    }
    if (key == "title") {
        print(out, "\t<title>");
        mmd_print_string_html(out, entry.value, nullptr, true);
        return print(out, "</title>\n");
    }
    print(out, "\t<meta name=\"");
    mmd_print_string_html(out, key, nullptr, false);
    print(out, "\" content=\"");
    mmd_print_string_html(out, entry.value, nullptr, false);
    print(out, "\"/>\n");
}

const meta &entry_at(const scratch_pad &scratch, size_t index)
{
    return *static_cast<const meta *>(stack_peek_index(scratch.engine->metadata_stack, index));
}

} // namespace

void mmd_start_complete_html(d_string *out, const char *, scratch_pad &scratch)
{
    const char *language = extract_metadata(scratch, "language");
    print(out, "<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"");
    mmd_print_string_html(out, language ? language : language_code(scratch.language), nullptr, false);
    print(out, "\">\n<head>\n\t<meta charset=\"utf-8\"/>\n");
    for (size_t i = 0; i < scratch.engine->metadata_stack->size; ++i)
        print_head_entry(out, entry_at(scratch, i), scratch);
    print(out, "</head>\n<body>\n\n");
}

void mmd_end_complete_html(d_string *out, const char *, scratch_pad &scratch)
{
    for (size_t i = 0; i < scratch.engine->metadata_stack->size; ++i) {
        const meta &entry = entry_at(scratch, i);
        if (entry.key != "htmlfooter") continue;
        print(out, entry.value);
        print(out, "\n");
    }
    print(out, "\n\n</body>\n</html>\n");
}

void mmd_export_html(d_string *out, const char *source, token *tree, scratch_pad &scratch)
{
    if (scratch.has(EXT_COMPLETE)) mmd_start_complete_html(out, source, scratch);
    mmd_export_token_tree_html(out, source, tree, scratch);
    mmd_export_footnote_list_html(out, source, scratch);
    mmd_export_glossary_list_html(out, source, scratch);
    mmd_export_citation_list_html(out, source, scratch);
    if (scratch.has(EXT_COMPLETE)) mmd_end_complete_html(out, source, scratch);
}

} // namespace tomelet::engine
