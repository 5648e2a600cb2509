// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Lines.h"

#include "engine/Chars.h"
#include "engine/Engine.h"
#include "engine/Scanners.h"

namespace tomelet::engine {

namespace {

// What the tests on one line need.
struct line_view
{
    mmd_engine *engine;
    token *line;
    token *first;       ///< the token that decides
    const char *source; ///< of the document

    [[nodiscard]] bool has(uint32_t extension) const { return (engine->extensions & extension) != 0; }
    [[nodiscard]] const char *text() const { return source + first->start; }
    /// How many bytes of the line stand from the deciding token on.
    [[nodiscard]] size_t len() const { return token_end(line) - first->start; }
    /// How many bytes of the document do.
    [[nodiscard]] size_t rest() const { return engine->dstr->currentStringLength - first->start; }
};

bool is_line_end(const token *t)
{
    return t->type == TEXT_NL || t->type == TEXT_LINEBREAK;
}

uint16_t plain_or_table(const line_view &v, uint16_t type)
{
    if (type != LINE_PLAIN || v.has(EXT_COMPATIBILITY)) return type;
    for (const token *t = v.line->child; t; t = t->next)
        if (t->type == PIPE) return scan_table_separator(v.text(), v.len()) ? LINE_TABLE_SEPARATOR : LINE_TABLE;
    return LINE_PLAIN;
}

// From the end on, since a deeply nested line is looked at once a level: its last token of text is near.
bool is_blank_line(const line_view &v)
{
    const token *t = v.line->child->tail;
    while (t && (token_is_indent(t) || is_line_end(t))) t = t->prev;
    return !t;
}

uint16_t indented_line(const line_view &v)
{
    if (is_blank_line(v)) {
        v.engine->allow_meta = false;
        return LINE_EMPTY;
    }
    return v.first->type == INDENT_TAB ? LINE_INDENTED_TAB : LINE_INDENTED_SPACE;
}

uint16_t heading_line(const line_view &v)
{
    const uint16_t first_type = v.first->type;
    const bool again = first_type >= MARKER_H1 && first_type <= MARKER_H6;
    const auto level = static_cast<uint16_t>(first_type - (again ? MARKER_H1 : HASH1));
    if (!scan_atx(v.text(), v.len())) return LINE_PLAIN;
    v.first->type = static_cast<uint16_t>(MARKER_H1 + level);
    token *t = v.line->child->tail;
    while (t && (token_is_indent(t) || is_line_end(t))) t = t->prev;
    if (t && t->type >= HASH1 && t->type <= HASH6) t->type = static_cast<uint16_t>(t->type + 7);
    return static_cast<uint16_t>(LINE_ATX_1 + level);
}

uint16_t fence_line(const line_view &v)
{
    if (v.has(EXT_COMPATIBILITY)) return LINE_PLAIN;
    const size_t longer = v.first->len < 5 ? v.first->len - 3 : 2;
    if (scan_fence_end(v.text(), v.len())) return static_cast<uint16_t>(LINE_FENCE_BACKTICK_3 + longer);
    if (scan_fence_start(v.text(), v.len())) return static_cast<uint16_t>(LINE_FENCE_BACKTICK_START_3 + longer);
    return LINE_PLAIN;
}

uint16_t comment_line(const line_view &v, uint16_t type)
{
    const token *behind = v.first->next;
    return !behind || !behind->next ? type : uint16_t{LINE_PLAIN};
}

uint16_t table_line(const line_view &v)
{
    if (v.has(EXT_COMPATIBILITY)) return LINE_PLAIN;
    return scan_table_separator(v.text(), v.len()) ? LINE_TABLE_SEPARATOR : LINE_TABLE;
}

uint16_t colon_line(const line_view &v)
{
    if (v.has(EXT_COMPATIBILITY)) return LINE_PLAIN;
    // An alignment row may begin with a colon: ":--|--:" is no definition.
    if (scan_table_separator(v.text(), v.len())) return LINE_TABLE_SEPARATOR;
    return scan_definition(v.text(), v.len()) ? LINE_DEFINITION : LINE_PLAIN;
}

// How many marks of a rule stand on the line: 0 when anything else does.
size_t count_rule_marks(const line_view &v)
{
    const uint16_t mark = v.first->type;
    size_t count = v.first->len;
    for (const token *t = v.first->next; t && !is_line_end(t); t = t->next) {
        if (t->type == mark) count += t->len;
        else if (!token_is_indent(t) && !token_is_one_blank(t, v.source)) return 0;
    }
    return count;
}

// Cuts the blanks behind a list's marker.
void clean_up_behind_marker(const line_view &v)
{
    token *t = v.first->next;
    if (t && t->type == TEXT_PLAIN) {
        token_trim_leading_whitespace(t, v.source);
        if (t->len == 0) tokens_prune(t, t);
        return;
    }
    while (t && token_is_indent(t)) {
        token *behind = t->next;
        tokens_prune(t, t);
        t = behind;
    }
}

bool blank_follows(const line_view &v)
{
    return v.first->next && char_is_whitespace(v.source[v.first->next->start]);
}

uint16_t bullet_line(const line_view &v)
{
    if (!blank_follows(v)) return LINE_PLAIN;
    v.first->type = MARKER_LIST_BULLET;
    clean_up_behind_marker(v);
    return LINE_LIST_BULLETED;
}

uint16_t rule_or_bullet_line(const line_view &v)
{
    if (count_rule_marks(v) >= 3) return LINE_HR;
    if (v.first->type == UL || v.first->len > 1) return LINE_PLAIN;
    return bullet_line(v);
}

uint16_t dash_line(const line_view &v)
{
    return scan_setext(v.text(), v.len()) ? uint16_t{LINE_SETEXT_2} : rule_or_bullet_line(v);
}

uint16_t numbered_line(const line_view &v)
{
    if (v.first->next && !blank_follows(v)) {
        v.first->type = TEXT_PLAIN;
        return LINE_PLAIN;
    }
    v.first->type = MARKER_LIST_ENUMERATOR;
    clean_up_behind_marker(v);
    return LINE_LIST_ENUMERATED;
}

uint16_t link_definition_line(const line_view &v)
{
    const bool found =
        v.has(EXT_COMPATIBILITY) ? scan_ref_link_no_attributes(v.text(), v.rest()) : scan_ref_link(v.text(), v.rest());
    return found ? LINE_DEF_LINK : LINE_PLAIN;
}

uint16_t note_definition_line(const line_view &v, size_t (*scan)(const char *, size_t), uint16_t type)
{
    if (v.has(EXT_NOTES)) return scan(v.text(), v.len()) ? type : uint16_t{LINE_PLAIN};
    return scan_ref_link_no_attributes(v.text(), v.rest()) ? LINE_DEF_LINK : LINE_PLAIN;
}

uint16_t text_line(const line_view &v)
{
    if (!v.engine->allow_meta || v.has(EXT_COMPATIBILITY) || *v.text() == ' ') return LINE_PLAIN;
    if (scan_url(v.text(), v.len())) return LINE_PLAIN;
    return scan_meta_line(v.text(), v.len()) ? LINE_META : LINE_PLAIN;
}

uint16_t line_type(const line_view &v)
{
    switch (v.first->type) {
    case INDENT_TAB:
    case INDENT_SPACE: return indented_line(v);
    case TEXT_LINEBREAK:
    case TEXT_NL: v.engine->allow_meta = false; return LINE_EMPTY;
    case ANGLE_RIGHT:
    case MARKER_BLOCKQUOTE: v.first->type = MARKER_BLOCKQUOTE; return LINE_BLOCKQUOTE;
    case ANGLE_LEFT: return scan_html_block(v.text(), v.len()) ? LINE_HTML : LINE_PLAIN;
    case HASH1:
    case HASH2:
    case HASH3:
    case HASH4:
    case HASH5:
    case HASH6:
    case MARKER_H1:
    case MARKER_H2:
    case MARKER_H3:
    case MARKER_H4:
    case MARKER_H5:
    case MARKER_H6: return heading_line(v);
    case BACKTICK: return v.first->len < 3 ? uint16_t{LINE_PLAIN} : fence_line(v);
    case HTML_COMMENT_START: return comment_line(v, LINE_START_COMMENT);
    case HTML_COMMENT_STOP: return comment_line(v, LINE_STOP_COMMENT);
    case COLON: return colon_line(v);
    case EQUAL: return scan_setext(v.text(), v.len()) ? LINE_SETEXT_1 : LINE_PLAIN;
    case DASH_M:
    case DASH_N: return dash_line(v);
    case STAR:
    case UL: return rule_or_bullet_line(v);
    case PLUS: return bullet_line(v);
    case MARKER_LIST_BULLET: return LINE_LIST_BULLETED;
    case MARKER_LIST_ENUMERATOR: return LINE_LIST_ENUMERATED;
    case TEXT_NUMBER_POSS_LIST: return numbered_line(v);
    case BRACKET_LEFT: return link_definition_line(v);
    case BRACKET_ABBREVIATION_LEFT: return note_definition_line(v, scan_ref_abbreviation, LINE_DEF_ABBREVIATION);
    case BRACKET_FOOTNOTE_LEFT: return note_definition_line(v, scan_ref_foot, LINE_DEF_FOOTNOTE);
    case BRACKET_GLOSSARY_LEFT: return note_definition_line(v, scan_ref_glossary, LINE_DEF_GLOSSARY);
    case BRACKET_CITATION_LEFT: return note_definition_line(v, scan_ref_citation, LINE_DEF_CITATION);
    case PIPE: return table_line(v);
    case TOC:
    case TOC_SINGLE:
    case TOC_RANGE: return v.has(EXT_COMPATIBILITY) ? LINE_PLAIN : LINE_TOC;
    case TEXT_PLAIN: return text_line(v);
    default: return LINE_PLAIN;
    }
}

// Whether metadata may go on behind this line: they begin on the first line, perhaps with dashes above them,
// and end with the first line that neither is metadata nor goes on with a value.
void follow_metadata(const line_reader &reader, token *line)
{
    bool &allowed = reader.engine->allow_meta;
    if (!allowed) return;
    if (reader.is_first && line->type == LINE_SETEXT_2) {
        line->type = LINE_YAML;
        return;
    }
    const bool begun = !reader.is_first && reader.previous_type != LINE_YAML;
    const bool goes_on = line->type == LINE_PLAIN || line->type == LINE_TABLE || line->type == LINE_TABLE_SEPARATOR ||
                         line->type == LINE_INDENTED_TAB || line->type == LINE_INDENTED_SPACE;
    allowed = line->type == LINE_META || (begun && goes_on);
}

token *close_line(line_reader &reader, token *line)
{
    mmd_assign_line_type(reader.engine, line);
    follow_metadata(reader, line);
    reader.is_first = false;
    reader.previous_type = line->type;
    return line;
}

void append_to_line(const line_reader &reader, token *line, uint16_t type, size_t start, size_t end)
{
    reader.engine->passes |= reader.engine->passes_of[type];
    token_append_child(line, token_new(reader.engine->arena, type, start, end - start));
}

// Some tokens matter only where nothing but blanks and marks stands before them on the line. Behind visible
// text they are written as they stand, whatever follows: there they stay part of the plain text round them,
// which saves a record for each. What stands from `last`, where the last token ended, to `at` is text
// already.
bool stays_text(const mmd_engine *engine, uint16_t type, size_t last, size_t at)
{
    if (at == last || char_is_whitespace(engine->dstr->str[at - 1])) return false;
    switch (type) {
    case SLASH:
    case PLUS:
    case EQUAL:
    case COLON:
    case TEXT_PERCENT:
    case TEXT_HASH:
    case TEXT_BACKSLASH:
    case TEXT_NUMBER_POSS_LIST: return true;
    case DASH_N:
    case DASH_M:
    case ELLIPSIS: return !(engine->extensions & EXT_SMART);
    default: return false;
    }
}

} // namespace

bool token_is_indent(const token *t)
{
    return t->type == INDENT_TAB || t->type == INDENT_SPACE || t->type == NON_INDENT_SPACE;
}

bool token_is_one_blank(const token *t, const char *source)
{
    return t->type == TEXT_PLAIN && t->len == 1 && source[t->start] == ' ';
}

void mmd_assign_line_type(mmd_engine *engine, token *line)
{
    const char *source = engine->dstr->str;
    token *first = line->child;
    if (first && (first->type == NON_INDENT_SPACE || token_is_one_blank(first, source))) first = first->next;
    if (!first) {
        line->type = LINE_EMPTY;
        return;
    }
    const line_view v{engine, line, first, source};
    line->type = plain_or_table(v, line_type(v));
}

line_reader line_reader_over(mmd_engine *engine, size_t start, size_t len)
{
    engine->allow_meta = !(engine->extensions & (EXT_COMPATIBILITY | EXT_NO_METADATA));
    return {engine, lexer_over(engine->dstr->str, start, len), start, start + len, false, true, 0};
}

token *read_line(line_reader &reader)
{
    const char *source = reader.engine->dstr->str;
    token *line = token_new(reader.engine->arena, 0, reader.last, 0);
    size_t last = reader.last;
    if (reader.blank_is_due) append_to_line(reader, line, NON_INDENT_SPACE, last, last + 1);
    if (reader.blank_is_due) ++last;
    reader.blank_is_due = false;
    while (uint16_t type = lexer_next(reader.lex)) {
        const auto at = static_cast<size_t>(reader.lex.start - source);
        auto end = static_cast<size_t>(reader.lex.cur - source);
        if (stays_text(reader.engine, type, last, at)) continue;
        if (at > last) append_to_line(reader, line, TEXT_PLAIN, last, at);
        if (type == TEXT_NL_SP || type == TEXT_LINEBREAK_SP) {
            --type;
            --end;
            reader.blank_is_due = true;
        }
        append_to_line(reader, line, type, at, end);
        last = end;
        if (type != TEXT_NL && type != TEXT_LINEBREAK) continue;
        reader.last = end;
        return close_line(reader, line);
    }
    if (last < reader.end) append_to_line(reader, line, TEXT_PLAIN, last, reader.end);
    reader.last = reader.end;
    if (line->child) return close_line(reader, line);
    token_free(line);
    reader.engine->allow_meta = false;
    return nullptr;
}

token *mmd_tokenize_string(mmd_engine *engine, size_t start, size_t len, bool stop_on_empty_line)
{
    token *root = token_new(engine->arena, DOC_START_TOKEN, start, 0);
    line_reader reader = line_reader_over(engine, start, len);
    while (token *line = read_line(reader)) {
        token_append_child(root, line);
        if (stop_on_empty_line && line->type == LINE_EMPTY) break;
    }
    engine->allow_meta = false;
    return root;
}

} // namespace tomelet::engine
