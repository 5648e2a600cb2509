// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/html/Html.h"

#include "engine/Labels.h"
#include "engine/Limits.h"
#include "engine/ScratchPad.h"

#include <array>
#include <charconv>

namespace tomelet::engine {

namespace {

std::string_view entity_for(char byte)
{
    switch (byte) {
    case '"': return "&quot;";
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    default: return {};
    }
}

constexpr std::array<bool, 256> make_escaped()
{
    std::array<bool, 256> table{};
    for (const char c : {'"', '&', '<', '>'}) table[static_cast<unsigned char>(c)] = true;
    return table;
}

constexpr std::array<bool, 256> escaped = make_escaped();

void print_escaped(d_string *out, std::string_view text)
{
    size_t done = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (!escaped[static_cast<unsigned char>(text[i])]) continue;
        print(out, text.substr(done, i - done));
        print(out, entity_for(text[i]));
        done = i + 1;
    }
    print(out, text.substr(done));
}

// By quotes_style.
constexpr std::string_view left_single[] = {"&#8216;", "&#8216;", "&#39;", "&#8218;", "&#8250;", "&#8216;", "&#8217;"};
constexpr std::string_view right_single[] = {"&#8217;", "&#8217;", "&#8217;", "&#8216;",
                                             "&#8249;", "&#8217;", "&#8217;"};
constexpr std::string_view left_double[] = {"&#8220;", "&#8222;", "&#171;", "&#8222;", "&#187;", "&#171;", "&#8221;"};
constexpr std::string_view right_double[] = {"&#8221;", "&#8221;", "&#187;", "&#8220;", "&#171;", "&#187;", "&#8221;"};

} // namespace

static void print_reference(d_string *out, unsigned char byte, bool hexadecimal)
{
    char digits[4];
    const auto end = std::to_chars(digits, digits + sizeof digits, byte, hexadecimal ? 16 : 10).ptr;
    print(out, hexadecimal ? "&#x" : "&#");
    print(out, {digits, static_cast<size_t>(end - digits)});
    print(out, ";");
}

void mmd_print_char_html(d_string *out, char byte, uint64_t *obfuscate, bool line_breaks)
{
    if (line_breaks && (byte == '\n' || byte == '\r')) print(out, "<br/>\n");
    else if (const std::string_view entity = entity_for(byte); !entity.empty()) print(out, entity);
    else if (obfuscate && static_cast<unsigned char>(byte) < 0x80)
        print_reference(out, static_cast<unsigned char>(byte), next_random(*obfuscate) % 2);
    else print(out, {&byte, 1});
}

void mmd_print_string_html(d_string *out, std::string_view text, uint64_t *obfuscate, bool line_breaks)
{
    if (!obfuscate && !line_breaks) {
        print_escaped(out, text);
        return;
    }
    for (const char byte : text) mmd_print_char_html(out, byte, obfuscate, line_breaks);
}

void mmd_print_localized_char_html(d_string *out, uint16_t type, const scratch_pad &scratch)
{
    const size_t style = scratch.quotes_lang <= QUOTES_SWEDISH ? scratch.quotes_lang : size_t{QUOTES_ENGLISH};
    switch (type) {
    case APOSTROPHE: return print(out, "&#8217;");
    case DASH_M: return print(out, "&#8212;");
    case DASH_N: return print(out, "&#8211;");
    case ELLIPSIS: return print(out, "&#8230;");
    case QUOTE_LEFT_SINGLE: return print(out, left_single[style]);
    case QUOTE_RIGHT_SINGLE: return print(out, right_single[style]);
    case QUOTE_LEFT_DOUBLE: return print(out, left_double[style]);
    case QUOTE_RIGHT_DOUBLE: return print(out, right_double[style]);
    default: return;
    }
}

void print_number(d_string *out, int number)
{
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    print(out, {digits, static_cast<size_t>(end - digits)});
}

static bool is_mark_of_markup(const token *t)
{
    switch (t->type) {
    case TEXT_EMPTY:
    case MANUAL_LABEL:
    case EMPH_START:
    case EMPH_STOP:
    case STRONG_START:
    case STRONG_STOP: return true;
    case BACKTICK:
    case SUPERSCRIPT:
    case SUBSCRIPT: return t->mate != nullptr;
    default: return false;
    }
}

static void print_plain_token(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    const std::string_view text = token_text(source, t);
    if (is_mark_of_markup(t)) return;
    if (t->child) print_plain_text_html(out, source, t->child, scratch);
    else if (t->type == ESCAPED_CHARACTER) mmd_print_string_html(out, text.substr(1), nullptr, false);
    else if (t->type == HTML_ENTITY || t->type == AMPERSAND_LONG) print(out, text);
    else if (t->type == TEXT_NL || t->type == TEXT_LINEBREAK) print(out, t->next ? "\n" : "");
    else mmd_print_string_html(out, text, nullptr, false);
}

void print_plain_text_html(d_string *out, const char *source, const token *t, scratch_pad &scratch)
{
    if (scratch.recurse_depth >= kMaxDepth) return;
    ++scratch.recurse_depth;
    for (; t; t = t->next) print_plain_token(out, source, t, scratch);
    --scratch.recurse_depth;
}

} // namespace tomelet::engine
