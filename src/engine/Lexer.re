// SPDX-License-Identifier: GPL-3.0-or-later
// The lexer, made by re2c from Lexer.re. Runs that could be looked through again and again (blanks, digits) are scanned
// by hand; all else is one automaton.
#include "engine/Lexer.h"

#include "engine/Chars.h"
#include "engine/TokenTypes.h"

#include <array>
#include <string_view>

namespace tomelet::engine {

namespace {

bool is_line_end(char c)
{
    return c == '\n' || c == '\r';
}

bool is_no_break_space(const char *p)
{
    return p[0] == '\xC2' && p[1] == '\xA0';
}

// Whether a token may begin is asked of three bytes, its own and its neighbours, by bits that they must share: each bit is
// one rule. So no branch is taken inside a run of text.
enum : unsigned char {
    ALWAYS = 1,
    BEFORE_BLANK = 2,    ///< a blank beside blanks or at a line's end
    BEFORE_PERIOD = 4,   ///< "..." and ". . ."
    BEFORE_BRACKET = 8,  ///< "!["
    BEFORE_NO_BREAK = 16, ///< the second byte of a no-break space
    BEFORE_SAME = 32,    ///< "++}" and "==}"
    BEHIND_BLANK = 64,   ///< what is text behind visible text in any case
};

using byte_table = std::array<unsigned char, 256>;

constexpr byte_table make_beginnings()
{
    byte_table table{};
    const auto set = [&table](std::string_view bytes, unsigned char rules) {
        for (const char c : bytes) table[static_cast<unsigned char>(c)] = rules;
    };
    for (int c = '!'; c <= '~'; ++c)
        if (char_is_punctuation(static_cast<char>(c))) table[static_cast<size_t>(c)] = ALWAYS;
    set(std::string_view("\0\t\n\r", 4), ALWAYS);
    set(",;?@", 0);
    set("0123456789", ALWAYS);
    set("/:%", BEHIND_BLANK);
    set("+=", BEFORE_SAME | BEHIND_BLANK);
    set(" ", BEFORE_BLANK);
    set(".", BEFORE_PERIOD);
    set("!", BEFORE_BRACKET);
    set("\xC2", BEFORE_NO_BREAK);
    return table;
}

constexpr byte_table make_followers()
{
    byte_table table{};
    const auto add = [&table](std::string_view bytes, unsigned char rule) {
        for (const char c : bytes) table[static_cast<unsigned char>(c)] |= rule;
    };
    for (auto &rules : table) rules = ALWAYS | BEHIND_BLANK;
    add(" \t\n\r\xC2", BEFORE_BLANK);
    add(". ", BEFORE_PERIOD);
    add("[", BEFORE_BRACKET);
    add("\xA0", BEFORE_NO_BREAK);
    add("+=", BEFORE_SAME);
    return table;
}

constexpr byte_table make_predecessors()
{
    byte_table table{};
    for (size_t c = 0; c < table.size(); ++c)
        table[c] = char_is_whitespace(static_cast<char>(c)) ? 0xFF : 0xFF & ~BEHIND_BLANK;
    return table;
}

constexpr byte_table beginnings = make_beginnings();
constexpr byte_table followers = make_followers();
constexpr byte_table predecessors = make_predecessors();

bool may_begin(const char *p)
{
    return (beginnings[static_cast<unsigned char>(p[0])] & followers[static_cast<unsigned char>(p[1])]) != 0;
}

// True when the bytes are a whole UTF-8 character that is no blank and no line end.
bool is_visible_character(const char *p, const char *limit)
{
    const auto lead = static_cast<unsigned char>(*p);
    if (p >= limit || char_is_whitespace_or_line_ending(*p)) return false;
    if (lead < 0x80) return true;
    const int length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || limit - p < length) return false;
    for (int i = 1; i < length; ++i)
        if ((static_cast<unsigned char>(p[i]) & 0xC0) != 0x80) return false;
    return true;
}

// Takes the line end at `p` and, when exactly one blank stands before the next line's text, that blank: the type is then
// the `_SP` form, which is one higher.
uint16_t line_end(lexer &l, const char *p, uint16_t type)
{
    p += p[0] == '\r' && p[1] == '\n' && p + 1 < l.limit ? 2 : 1;
    const bool blank = p < l.limit && *p == ' ' && is_visible_character(p + 1, l.limit);
    l.cur = p + (blank ? 1 : 0);
    return static_cast<uint16_t>(type + (blank ? 1 : 0));
}

// Blanks (and no-break spaces) from l.cur on. Gives 0 when they are plain text.
uint16_t blanks(lexer &l)
{
    const char *p = l.cur;
    if (p >= l.no_break_before) {
        int count = 0;
        for (; p < l.limit; ++count) {
            if (*p == ' ') ++p;
            else if (is_no_break_space(p) && p + 1 < l.limit) p += 2;
            else break;
        }
        if (p < l.limit && is_line_end(*p)) {
            if (count > 1) return line_end(l, p, TEXT_LINEBREAK);
            if (*l.cur == ' ') return line_end(l, p, TEXT_NL);
        }
        l.no_break_before = p;
    }
    if (*l.cur != ' ') return 0;
    int count = 1;
    while (count < 4 && l.cur + count < l.limit && l.cur[count] == ' ') ++count;
    if (count == 1 && (l.cur + 1 >= l.limit || l.cur[1] != '\t')) return 0;
    l.cur += count;
    return count == 4 ? INDENT_SPACE : NON_INDENT_SPACE;
}

// Digits, a period, and a blank or an end behind it; otherwise skips the digits and gives 0.
uint16_t number(lexer &l)
{
    const char *p = l.cur;
    while (p < l.limit && char_is_digit(*p)) ++p;
    const char *behind = p + 1;
    const bool ends = p < l.limit && *p == '.' &&
                      (behind >= l.limit || char_is_whitespace_or_line_ending(*behind) || is_no_break_space(behind));
    l.cur = ends ? behind : p;
    return ends ? TEXT_NUMBER_POSS_LIST : 0;
}

// A run of hashes ending at l.cur. Blanks behind it belong to it unless they run to the line's end.
uint16_t hashes(lexer &l)
{
    const auto count = l.cur - l.start;
    const char *p = l.cur;
    if (count > 6) return TEXT_HASH;
    if (p < l.limit && !char_is_whitespace_or_line_ending(*p) && !is_no_break_space(p)) return TEXT_HASH;
    while (p < l.limit && char_is_whitespace(*p)) ++p;
    if (p < l.limit && !char_is_line_ending(*p)) l.cur = p;
    return static_cast<uint16_t>(HASH1 + count - 1);
}

// The token at l.cur; 0 with l.cur moved when there is plain text only.
uint16_t token_here(lexer &l)
{
    const char *YYMARKER;
/*!re2c
    re2c:yyfill:enable = 0;
    re2c:define:YYCTYPE = "unsigned char";
    re2c:define:YYCURSOR = "l.cur";

    nl = "\r\n" | "\n" | "\r";
    punctuation = [!-/:-@[-`{-~];

    nl              { return line_end(l, l.start, TEXT_NL); }
    "\\" nl         { return line_end(l, l.start + 1, TEXT_LINEBREAK); }
    "\t"            { return INDENT_TAB; }
    ["]             { return QUOTE_DOUBLE; }
    "'"             { return QUOTE_SINGLE; }
    "''"            { return QUOTE_RIGHT_ALT; }
    "#"+            { return hashes(l); }
    "$"             { return MATH_DOLLAR_SINGLE; }
    "$$"            { return MATH_DOLLAR_DOUBLE; }
    "%"             { return TEXT_PERCENT; }
    '&amp;'         { return AMPERSAND_LONG; }
    "&" ( "#" [0-9]+ | "#x" [0-9A-F]+ | [a-zA-Z0-9]+ ) ";" { return HTML_ENTITY; }
    "&"             { return AMPERSAND; }
    "("             { return PAREN_LEFT; }
    ")"             { return PAREN_RIGHT; }
    "*"             { return STAR; }
    "_"             { return UL; }
    "+"             { return PLUS; }
    "++}"           { return CRITIC_ADD_CLOSE; }
    "-" | "--"      { return DASH_N; }
    "---"           { return DASH_M; }
    "-->"           { return HTML_COMMENT_STOP; }
    "--}"           { return CRITIC_DEL_CLOSE; }
    "..." | ". . ." { return ELLIPSIS; }
    "/"             { return SLASH; }
    ":"             { return COLON; }
    "<"             { return ANGLE_LEFT; }
    "<!--"          { return HTML_COMMENT_START; }
    "<<}"           { return CRITIC_COM_CLOSE; }
    "="             { return EQUAL; }
    "==}"           { return CRITIC_HI_CLOSE; }
    ">"             { return ANGLE_RIGHT; }
    "["             { return BRACKET_LEFT; }
    "[>"            { return BRACKET_ABBREVIATION_LEFT; }
    "[^"            { return BRACKET_FOOTNOTE_LEFT; }
    "[?"            { return BRACKET_GLOSSARY_LEFT; }
    "[#"            { return BRACKET_CITATION_LEFT; }
    "[%"            { return BRACKET_VARIABLE_LEFT; }
    "!["            { return BRACKET_IMAGE_LEFT; }
    "]"             { return BRACKET_RIGHT; }
    "\\\\("         { return MATH_PAREN_OPEN; }
    "\\\\)"         { return MATH_PAREN_CLOSE; }
    "\\\\["         { return MATH_BRACKET_OPEN; }
    "\\\\]"         { return MATH_BRACKET_CLOSE; }
    "\\" ( " " | punctuation ) { return ESCAPED_CHARACTER; }
    "\\"            { return TEXT_BACKSLASH; }
    "^"             { return SUPERSCRIPT; }
    "~"             { return SUBSCRIPT; }
    "~>"            { return CRITIC_SUB_DIV; }
    "~~}"           { return CRITIC_SUB_CLOSE; }
    "`"+            { return BACKTICK; }
    "|"+            { return PIPE; }
    "{"             { return TEXT_BRACE_LEFT; }
    "}"             { return TEXT_BRACE_RIGHT; }
    "{{"            { return BRACE_DOUBLE_LEFT; }
    "}}"            { return BRACE_DOUBLE_RIGHT; }
    "{{TOC}}"       { return TOC; }
    "{{TOC:" [0-9] "}}"           { return TOC_SINGLE; }
    "{{TOC:" [0-9] "-" [0-9] "}}" { return TOC_RANGE; }
    "{="            { return RAW_FILTER_LEFT; }
    "{++"           { return CRITIC_ADD_OPEN; }
    "{--"           { return CRITIC_DEL_OPEN; }
    "{>>"           { return CRITIC_COM_OPEN; }
    "{~~"           { return CRITIC_SUB_OPEN; }
    "{=="           { return CRITIC_HI_OPEN; }
    *               { return 0; }
*/
}

// Skips text up to bytes at which a token may begin. The first byte stands behind a token and not behind text.
void skip_plain(lexer &l)
{
    const char *p = l.cur;
    if (p >= l.limit || may_begin(p)) return;
    do ++p;
    while (p < l.limit && !(beginnings[static_cast<unsigned char>(p[0])] & followers[static_cast<unsigned char>(p[1])] &
                            predecessors[static_cast<unsigned char>(p[-1])]));
    l.cur = p;
}

} // namespace

lexer lexer_over(const char *source, size_t start, size_t len)
{
    return {source + start, source + start, source + start + len, source + start};
}

uint16_t lexer_next(lexer &l)
{
    for (;;) {
        skip_plain(l);
        l.start = l.cur;
        if (l.cur >= l.limit || *l.cur == '\0') return 0;
        const char c = *l.cur;
        const bool blank = c == ' ' || is_no_break_space(l.cur);
        const uint16_t type = blank ? blanks(l) : char_is_digit(c) ? number(l) : token_here(l);
        if (l.cur > l.limit) l.cur = l.limit;
        if (type != 0) return type;
        if (l.cur == l.start) ++l.cur; // plain text: a lone blank, half a no-break space
    }
}

} // namespace tomelet::engine
