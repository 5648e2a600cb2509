// SPDX-License-Identifier: GPL-3.0-or-later
// Links, images and what stands in angle brackets.
#include "engine/html/Html.h"

#include "engine/Assets.h"
#include "engine/Chars.h"
#include "engine/Labels.h"
#include "engine/Scanners.h"
#include "engine/ScratchPad.h"

#include <string>

namespace tomelet::engine {

namespace {

uint64_t *generator(const scratch_pad &scratch)
{
    return &scratch.engine->random;
}

void print_attribute(d_string *out, std::string_view key, std::string_view value)
{
    print(out, " ");
    print(out, key);
    print(out, "=\"");
    mmd_print_string_html(out, value, nullptr, false);
    print(out, "\"");
}

// The bracket becomes the text of its link. What stands behind the bracket itself in an opener such as "[#"
// or "[^" is text then.
void make_link_text(token *bracket)
{
    token *opener = bracket->child;
    bracket->child->tail->type = TEXT_EMPTY;
    if (opener->len == 1) {
        if (opener->type == BRACKET_LEFT) opener->type = TEXT_EMPTY;
        return; // or it was cut before: a heading is written in the contents too
    }
    opener->type = opener->type == BRACKET_ABBREVIATION_LEFT ? ANGLE_RIGHT : TEXT_PLAIN;
    ++opener->start;
    --opener->len;
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && char_is_whitespace_or_line_ending(text.front())) text.remove_prefix(1);
    while (!text.empty() && char_is_whitespace_or_line_ending(text.back())) text.remove_suffix(1);
    return text;
}

bool is_mail_address(std::string_view text)
{
    return text.starts_with("mailto:") || scan_email(text.data(), text.size()) == text.size();
}

void export_autolink(d_string *out, std::string_view address, scratch_pad &scratch)
{
    uint64_t *mask = is_mail_address(address) ? generator(scratch) : nullptr;
    print(out, "<a href=\"");
    if (mask && !address.starts_with("mailto:")) mmd_print_string_html(out, "mailto:", mask, false);
    mmd_print_string_html(out, address, mask, false);
    print(out, "\">");
    mmd_print_string_html(out, address, mask, false);
    print(out, "</a>");
}

// The digits of "50" or "50px"; empty for any other size.
std::string_view pixels(std::string_view size)
{
    size_t digits = 0;
    while (digits < size.size() && char_is_digit(size[digits])) ++digits;
    const std::string_view unit = size.substr(digits);
    return unit.empty() || unit == "px" ? size.substr(0, digits) : std::string_view{};
}

bool is_size(const link_attribute &attribute)
{
    return attribute.key == "width" || attribute.key == "height";
}

void print_style_of(d_string *out, const link &target, std::string_view key)
{
    for (const link_attribute &a : target.attributes) {
        if (a.key != key || !pixels(a.value).empty()) continue;
        print(out, key);
        print(out, ":");
        mmd_print_string_html(out, a.value, nullptr, false);
        print(out, ";");
    }
}

void print_image_attributes(d_string *out, const link &target)
{
    bool styled = false;
    for (const link_attribute &a : target.attributes) {
        if (!is_size(a)) continue;
        const std::string_view digits = pixels(a.value);
        if (digits.empty()) styled = true;
        else print_attribute(out, a.key, digits);
    }
    if (styled) {
        print(out, " style=\"");
        print_style_of(out, target, "height");
        print_style_of(out, target, "width");
        print(out, "\"");
    }
    for (const link_attribute &a : target.attributes)
        if (!is_size(a)) print_attribute(out, a.key, a.value);
}

void print_image_url(d_string *out, const link &target, scratch_pad &scratch)
{
    print(out, "<img src=\"");
    if ((scratch.store_assets || scratch.remember_assets) && !target.url.empty()) {
        if (!scratch.asset_hash) scratch.asset_hash = new asset_table;
        const asset &stored = asset_for_url(*scratch.asset_hash, target.url, *generator(scratch));
        if (scratch.store_assets) {
            print(out, "assets/");
            print(out, stored.asset_path);
            return print(out, "\"");
        }
    }
    mmd_print_string_html(out, target.url, nullptr, false);
    print(out, "\"");
}

// A figure takes the place of the paragraph that was opened for it.
void begin_figure(d_string *out, scratch_pad &scratch)
{
    const std::string_view written(out->str, out->currentStringLength);
    if (written.ends_with("<p>") && !scratch.list_is_tight) {
        d_string_erase(out, out->currentStringLength - 3, 3);
        scratch.close_para = false;
    }
    print(out, "<figure>\n");
}

// True for an image that is all of its paragraph.
bool stands_alone(const token *bracket, const link_use &use, const scratch_pad &scratch)
{
    if (!scratch.open_para || scratch.open_para->child != bracket) return false;
    const token *behind = use.skip ? bracket->next->next : bracket->next;
    return !behind || (!behind->next && (behind->type == TEXT_NL || behind->type == TEXT_LINEBREAK));
}

bool has_label(const token *bracket)
{
    return bracket->child && bracket->child->next != bracket->child->tail;
}

} // namespace

void mmd_export_link_html(d_string *out, const char *source, token *bracket, const link &target, scratch_pad &scratch)
{
    const bool mask = scratch.has(EXT_OBFUSCATE) && target.url.starts_with("mailto:");
    print(out, "<a href=\"");
    mmd_print_string_html(out, target.url, mask ? generator(scratch) : nullptr, false);
    print(out, "\"");
    if (!target.title.empty()) print_attribute(out, "title", target.title);
    for (const link_attribute &a : target.attributes) print_attribute(out, a.key, a.value);
    print(out, ">");
    make_link_text(bracket);
    mmd_export_token_tree_html(out, source, bracket->child, scratch);
    print(out, "</a>");
}

void mmd_export_image_html(d_string *out, const char *source, token *bracket, const link &target, scratch_pad &scratch,
                           bool is_figure)
{
    if (is_figure) begin_figure(out, scratch);
    print_image_url(out, target, scratch);
    if (has_label(bracket)) {
        print(out, " alt=\"");
        print_plain_text_html(out, source, bracket->child, scratch);
        print(out, "\"");
    }
    if (target.label && !scratch.is_compatible()) print_attribute(out, "id", target.label_text);
    if (!target.title.empty()) print_attribute(out, "title", target.title);
    print_image_attributes(out, target);
    print(out, " />");
    if (!is_figure) return;
    if (has_label(bracket)) {
        print(out, "\n<figcaption>");
        mmd_export_token_tree_html(out, source, bracket->child, scratch);
        print(out, "</figcaption>");
    }
    print(out, "\n</figure>");
}

void export_bracket_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch)
{
    token *next = bracket->next;
    if (next && next->type == PAIR_BRACKET_CITATION) {
        export_citation_html(out, source, next, bracket, scratch);
        return;
    }
    const link_use use = mmd_parse_brackets(source, scratch, bracket);
    if (!use.target) {
        mmd_export_token_tree_html(out, source, bracket->child, scratch);
        return;
    }
    mmd_export_link_html(out, source, bracket, *use.target, scratch);
    scratch.skip_token = use.skip;
}

void export_image_bracket_html(d_string *out, const char *source, token *bracket, scratch_pad &scratch)
{
    const link_use use = mmd_parse_brackets(source, scratch, bracket);
    if (!use.target) {
        mmd_export_token_tree_html(out, source, bracket->child, scratch);
        return;
    }
    const bool is_figure = !scratch.is_compatible() && stands_alone(bracket, use, scratch);
    empty_delimiters(bracket);
    mmd_export_image_html(out, source, bracket, *use.target, scratch, is_figure);
    scratch.skip_token = use.skip;
}

void export_angle_html(d_string *out, const char *source, token *angle, scratch_pad &scratch)
{
    const std::string_view address = trimmed(text_inside_pair(source, angle));
    if (!address.empty() && scan_url(address.data(), address.size()) == address.size())
        export_autolink(out, address, scratch);
    else if (scan_html(source + angle->start, angle->len) == angle->len) print(out, token_text(source, angle));
    else if (!address.empty() && scan_uri(address.data(), address.size()) == address.size())
        export_autolink(out, address, scratch);
    else mmd_export_token_tree_html(out, source, angle->child, scratch);
}

} // namespace tomelet::engine
