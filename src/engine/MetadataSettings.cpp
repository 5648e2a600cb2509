// SPDX-License-Identifier: GPL-3.0-or-later
// What metadata say of the output.
#include "engine/ScratchPad.h"

#include <cstdlib>
#include <string_view>

namespace tomelet::engine {

namespace {

bool is_latex(uint16_t format)
{
    return format == FORMAT_LATEX || format == FORMAT_BEAMER || format == FORMAT_MEMOIR;
}

// True when the key sets the level of headings for one format; `applies` tells whether it is this one.
bool is_level_key(std::string_view key, uint16_t format, bool &applies)
{
    if (key == "epubheaderlevel") applies = format == FORMAT_EPUB;
    else if (key == "htmlheaderlevel" || key == "xhtmlheaderlevel") applies = format == FORMAT_HTML;
    else if (key == "latexheaderlevel") applies = is_latex(format);
    else if (key == "odfheaderlevel") applies = format == FORMAT_FODT || format == FORMAT_ODT;
    else return false;
    return true;
}

struct language_name
{
    std::string_view name;
    uint16_t language;
    uint16_t quotes;
};

void set_language(scratch_pad &scratch, std::string_view value)
{
    static constexpr language_name names[] = {{"de", LANG_DE, QUOTES_GERMAN}, {"es", LANG_ES, QUOTES_SPANISH},
                                              {"fr", LANG_FR, QUOTES_FRENCH}, {"he", LANG_HE, QUOTES_ENGLISH},
                                              {"nl", LANG_NL, QUOTES_DUTCH},  {"sv", LANG_SV, QUOTES_SWEDISH}};
    scratch.language = LANG_EN;
    scratch.quotes_lang = QUOTES_ENGLISH;
    for (const language_name &n : names) {
        if (value != n.name) continue;
        scratch.language = n.language;
        scratch.quotes_lang = n.quotes;
    }
}

struct quotes_name
{
    std::string_view name;
    uint16_t quotes;
};

void set_quotes(scratch_pad &scratch, std::string_view value)
{
    static constexpr quotes_name names[] = {{"dutch", QUOTES_DUTCH},
                                            {"nl", QUOTES_DUTCH},
                                            {"french", QUOTES_FRENCH},
                                            {"fr", QUOTES_FRENCH},
                                            {"german", QUOTES_GERMAN},
                                            {"de", QUOTES_GERMAN},
                                            {"spanish", QUOTES_SPANISH},
                                            {"es", QUOTES_SPANISH},
                                            {"swedish", QUOTES_SWEDISH},
                                            {"sv", QUOTES_SWEDISH},
                                            {"germanguillemets", QUOTES_GERMAN_GUILLEMETS}};
    scratch.quotes_lang = QUOTES_ENGLISH;
    for (const quotes_name &n : names)
        if (value == n.name) scratch.quotes_lang = n.quotes;
}

void set_latex_mode(scratch_pad &scratch, std::string_view value)
{
    if (scratch.output_format != FORMAT_LATEX) return;
    if (value == "beamer") scratch.output_format = FORMAT_BEAMER;
    else if (value == "memoir") scratch.output_format = FORMAT_MEMOIR;
}

} // namespace

void apply_metadata_settings(scratch_pad &scratch)
{
    if (scratch.has(EXT_COMPATIBILITY | EXT_NO_METADATA)) return;
    const stack *entries = scratch.engine->metadata_stack;
    bool level_is_for_format = false;
    for (size_t i = 0; i < entries->size; ++i) {
        const auto *entry = static_cast<const meta *>(stack_peek_index(entries, i));
        const std::string_view key = entry->key;
        bool applies = false;
        if (key == "baseheaderlevel") {
            if (!level_is_for_format) scratch.base_header_level = std::atoi(entry->value.c_str());
        } else if (is_level_key(key, scratch.output_format, applies)) {
            if (!applies) continue;
            scratch.base_header_level = std::atoi(entry->value.c_str());
            level_is_for_format = true;
        } else if (key == "language") {
            set_language(scratch, entry->value);
        } else if (key == "quoteslanguage") {
            set_quotes(scratch, entry->value);
        } else if (key == "latexmode") {
            set_latex_mode(scratch, entry->value);
        } else {
            if (key == "bibtex") scratch.bibtex_file = entry->value;
            if (!scratch.has(EXT_SNIPPET)) scratch.extensions |= EXT_COMPLETE;
        }
    }
}

} // namespace tomelet::engine
