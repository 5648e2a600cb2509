// SPDX-License-Identifier: GPL-3.0-or-later
// What a star, an underscore, a quote, a dollar may be: an opener, a closer, both or neither. The bytes
// before and behind a token decide. A run of stars and underscores is looked at once, and the answer kept for
// the other tokens of the run: tokens come in the order of the text.
#include "engine/Chars.h"
#include "engine/Engine.h"
#include "engine/Inlines.h"
#include "engine/Limits.h"

namespace tomelet::engine {

namespace {

bool is_emphasis_mark(char c)
{
    return c == '*' || c == '_';
}

// The longest run of stars and underscores round a place, and what it stands between.
struct mark_run
{
    size_t start = 0;
    size_t end = 0;
};

// What the counts round a run of stars say of each of its stars.
struct star_run
{
    size_t start = 0;
    size_t end = 0;
    bool clears_open = false;
    bool clears_close = false;
};

struct direction_pass
{
    mmd_engine *engine;
    const char *source;
    size_t length; ///< of the source; the byte there is NUL
    mark_run marks{};
    star_run stars{};

    [[nodiscard]] bool has(uint32_t extension) const { return (engine->extensions & extension) != 0; }
    /// The byte before a place; NUL, a line ending, before the first.
    [[nodiscard]] char before(size_t at) const { return at == 0 ? '\0' : source[at - 1]; }
    [[nodiscard]] char at(size_t place) const { return place < length ? source[place] : '\0'; }
};

void clear_open_if(token *t, bool condition)
{
    if (condition) t->can_open = 0;
}

void clear_close_if(token *t, bool condition)
{
    if (condition) t->can_close = 0;
}

void find_marks(direction_pass &pass, const token *t)
{
    if (t->start >= pass.marks.start && t->start < pass.marks.end) return;
    size_t start = t->start;
    size_t end = token_end(t);
    while (is_emphasis_mark(pass.before(start))) --start;
    while (is_emphasis_mark(pass.at(end))) ++end;
    pass.marks = {start, end};
}

size_t stars_before(const direction_pass &pass, size_t place)
{
    size_t count = 0;
    while (pass.before(place - count) == '*') ++count;
    return count;
}

size_t stars_behind(const direction_pass &pass, size_t place)
{
    size_t count = 0;
    while (pass.at(place + count) == '*') ++count;
    return count;
}

// Stars within a word: h of them here, l before the word's part on the left, r behind its part on the right.
void count_stars(direction_pass &pass, const token *t)
{
    if (t->start >= pass.stars.start && t->start < pass.stars.end) return;
    star_run run{t->start - stars_before(pass, t->start), t->start + stars_behind(pass, t->start)};
    size_t left = run.start;
    while (!char_is_whitespace_or_line_ending_or_punctuation(pass.before(left))) --left;
    size_t right = run.end;
    while (!char_is_whitespace_or_line_ending_or_punctuation(pass.at(right))) ++right;
    const size_t h = run.end - run.start;
    const size_t l = stars_before(pass, left);
    const size_t r = stars_behind(pass, right);
    if (l + r == 0) {
    } else if (h == l + r) {
        run.clears_open = l == r || r == 0;
        run.clears_close = l == r || l == 0;
    } else if (h + r == l) {
        run.clears_open = true;
    } else if (h + l == r) {
        run.clears_close = true;
    } else {
        run.clears_close = h != l;
        run.clears_open = h != r;
    }
    pass.stars = run;
}

void direct_star(direction_pass &pass, token *t)
{
    find_marks(pass, t);
    clear_close_if(t, char_is_whitespace_or_line_ending(pass.before(pass.marks.start)));
    clear_open_if(t, char_is_whitespace_or_line_ending(pass.at(pass.marks.end)));
    if (!t->can_open || !t->can_close) return;
    count_stars(pass, t);
    clear_open_if(t, pass.stars.clears_open);
    clear_close_if(t, pass.stars.clears_close);
}

void direct_underscore(direction_pass &pass, token *t)
{
    find_marks(pass, t);
    const char before = pass.before(pass.marks.start);
    const char behind = pass.at(pass.marks.end);
    clear_close_if(t, char_is_whitespace_or_line_ending(before) || char_is_alphanumeric(behind));
    clear_open_if(t, char_is_whitespace_or_line_ending(behind) || char_is_alphanumeric(before));
}

void direct_hyphen(const direction_pass &pass, token *t)
{
    if (!pass.has(EXT_SMART) || t->len != 1) return;
    const bool between_digits = char_is_digit(pass.before(t->start)) && char_is_digit(pass.at(token_end(t)));
    if (!between_digits) t->type = TEXT_PLAIN;
}

void direct_dollar(const direction_pass &pass, token *t)
{
    if (pass.has(EXT_COMPATIBILITY)) return;
    const char before = pass.before(t->start);
    if (t->start == 0 || char_is_whitespace_or_line_ending(before)) t->can_close = 0;
    else clear_open_if(t, !char_is_punctuation(before));
    const char behind = pass.at(token_end(t));
    if (char_is_whitespace_or_line_ending(behind)) t->can_open = 0;
    else clear_close_if(t, !char_is_punctuation(behind));
}

bool stands_earlier(const direction_pass &pass, size_t place, char mark)
{
    for (; !char_is_whitespace_or_line_ending(pass.before(place)); --place)
        if (pass.before(place) == mark) return true;
    return false;
}

bool stands_later(const direction_pass &pass, size_t place, char mark)
{
    for (; !char_is_whitespace_or_line_ending(pass.at(place)); ++place)
        if (pass.at(place) == mark) return true;
    return false;
}

// Lets go of the tokens behind t that lie before `end`; one that reaches beyond is cut short.
void swallow(token *t, size_t end)
{
    while (t->next && token_end(t->next) <= end) tokens_prune(t->next, t->next);
    token *reaches = t->next;
    if (!reaches || reaches->start >= end) return;
    reaches->len = token_end(reaches) - end;
    reaches->start = end;
}

// x^2: a mark without a mate takes what follows it, up to a blank or punctuation, as its text.
void extend_script(const direction_pass &pass, token *t)
{
    const size_t start = token_end(t);
    size_t end = start;
    while (!char_is_whitespace_or_line_ending_or_punctuation(pass.at(end))) ++end;
    if (end == start) return;
    swallow(t, end);
    t->len = end - t->start;
    t->child = token_new(pass.engine->arena, TEXT_PLAIN, start, end - start);
}

void direct_script(const direction_pass &pass, token *t)
{
    if (pass.has(EXT_COMPATIBILITY)) {
        t->type = TEXT_PLAIN;
        return;
    }
    const char mark = pass.source[t->start];
    const size_t behind = token_end(t);
    clear_close_if(t, char_is_whitespace_or_line_ending(pass.before(t->start)));
    clear_open_if(t, char_is_whitespace_or_line_ending(pass.at(behind)));
    const bool could_open = t->can_open;
    if (t->can_close) clear_close_if(t, !stands_earlier(pass, t->start, mark));
    if (t->can_open) clear_open_if(t, !stands_later(pass, behind, mark));
    if (could_open && !t->can_open && !t->can_close) extend_script(pass, t);
}

void direct_quote(const direction_pass &pass, token *t)
{
    clear_close_if(t, char_is_whitespace_or_line_ending(pass.before(t->start)));
    clear_open_if(t, char_is_whitespace_or_line_ending(pass.at(token_end(t))));
}

bool is_apostrophe(const direction_pass &pass, const token *t)
{
    if (t->start == 0) return false;
    const char before = pass.before(t->start);
    const char behind = pass.at(token_end(t));
    if (!char_is_whitespace_or_line_ending_or_punctuation(before) &&
        !char_is_whitespace_or_line_ending_or_punctuation(behind))
        return true;
    return char_is_punctuation(before) && (behind == 's' || behind == 'S') &&
           char_is_whitespace_or_line_ending_or_punctuation(pass.at(token_end(t) + 1));
}

void split_substitution(token *t)
{
    t->type = CRITIC_SUB_DIV_A;
    token_split(t, t->start + 1, 1, CRITIC_SUB_DIV_B);
}

void walk(direction_pass &pass, token *block, int depth);

void direct(direction_pass &pass, token *t, int depth)
{
    if (holds_running_text[t->type]) return walk(pass, t, depth);
    switch (t->type) {
    case BLOCK_META:
        if (!pass.has(EXT_COMPATIBILITY | EXT_NO_METADATA)) break;
        t->type = BLOCK_PARA;
        walk(pass, t, depth);
        break;
    case BLOCK_DEF_ABBREVIATION: walk(pass, t, depth); break;
    case CRITIC_SUB_DIV: split_substitution(t); break;
    case STAR: direct_star(pass, t); break;
    case UL: direct_underscore(pass, t); break;
    case BACKTICK:
        // Two backticks that begin the text are an opening quote; anywhere else they may be either.
        clear_close_if(t, t->len == 2 && t->start == 0);
        break;
    case DASH_N: direct_hyphen(pass, t); break;
    case MATH_DOLLAR_SINGLE:
    case MATH_DOLLAR_DOUBLE: direct_dollar(pass, t); break;
    case SUPERSCRIPT:
    case SUBSCRIPT: direct_script(pass, t); break;
    case QUOTE_SINGLE:
        if (is_apostrophe(pass, t)) t->type = APOSTROPHE;
        else direct_quote(pass, t);
        break;
    case QUOTE_DOUBLE: direct_quote(pass, t); break;
    default: break;
    }
}

void walk(direction_pass &pass, token *block, int depth)
{
    if (depth >= kMaxDepth) return;
    for (token *t = block->child; t; t = t->next) {
        direct(pass, t, depth + 1);
        if (!t->next) block->child->tail = t; // a token may have been split
    }
}

} // namespace

void mmd_assign_ambidextrous_tokens_in_block(mmd_engine *engine, token *block, size_t offset)
{
    direction_pass pass{engine, engine->dstr->str + offset, engine->dstr->currentStringLength - offset};
    direct(pass, block, 0);
}

} // namespace tomelet::engine
