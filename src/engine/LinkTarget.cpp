// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Chars.h"
#include "engine/References.h"

#include <algorithm>
#include <optional>

namespace tomelet::engine {

namespace {

// Reads a text from its beginning on.
struct reader
{
    std::string_view text;
    size_t at = 0;

    [[nodiscard]] bool done() const { return at >= text.size(); }
    [[nodiscard]] char peek() const { return done() ? '\0' : text[at]; }
    [[nodiscard]] bool on_blank() const { return !done() && char_is_whitespace_or_line_ending(text[at]); }
    void skip_blanks()
    {
        while (on_blank()) ++at;
    }
};

struct entity
{
    std::string_view text;
    char byte;
};

// The entities that a URL or title holds where its writer thought of HTML: they are written again on output.
constexpr entity entities[] = {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}};

const entity *entity_at(std::string_view text)
{
    for (const entity &e : entities)
        if (text.starts_with(e.text)) return &e;
    return nullptr;
}

std::string unescaped(std::string_view text)
{
    if (std::ranges::none_of(text, [](char c) { return c == '\\' || c == '&'; })) return std::string(text);
    std::string plain;
    plain.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size() && char_is_punctuation(text[i + 1])) {
            plain += text[++i];
        } else if (const entity *e = text[i] == '&' ? entity_at(text.substr(i)) : nullptr) {
            plain += e->byte;
            i += e->text.size() - 1;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

// What stands up to an unescaped `closer`, behind the opener that `r` is at; moves behind the closer.
std::optional<std::string_view> read_enclosed(reader &r, char closer)
{
    const size_t start = r.at + 1;
    for (size_t i = start; i < r.text.size(); ++i) {
        if (r.text[i] == '\\') ++i;
        else if (r.text[i] == closer) {
            r.at = i + 1;
            return r.text.substr(start, i - start);
        }
    }
    return std::nullopt;
}

bool read_destination(reader &r, link &result)
{
    if (r.peek() == '<') {
        const auto inside = read_enclosed(r, '>');
        if (inside) result.url = unescaped(*inside);
        return inside.has_value();
    }
    const size_t start = r.at;
    while (!r.done() && !r.on_blank()) ++r.at;
    result.url = unescaped(r.text.substr(start, r.at - start));
    return true;
}

void read_title(reader &r, link &result)
{
    const char opener = r.peek();
    if (opener != '"' && opener != '\'' && opener != '(') return;
    if (const auto title = read_enclosed(r, opener == '(' ? ')' : opener)) result.title = unescaped(*title);
}

bool is_key_byte(char c)
{
    return char_is_alphanumeric(c) || c == '-' || c == '_' || c == ':' || c == '.';
}

// One `key=value` or `key="value"`; stays where it is when there is none.
bool read_attribute(reader &r, link &result)
{
    reader ahead = r;
    while (is_key_byte(ahead.peek())) ++ahead.at;
    if (ahead.at == r.at || ahead.peek() != '=') return false;
    const std::string key(r.text.substr(r.at, ahead.at - r.at));
    ++ahead.at;
    const size_t start = ahead.at;
    std::string_view value;
    if (ahead.peek() == '"') {
        const auto inside = read_enclosed(ahead, '"');
        if (!inside) return false;
        value = *inside;
    } else {
        while (!ahead.done() && !ahead.on_blank()) ++ahead.at;
        value = r.text.substr(start, ahead.at - start);
    }
    result.attributes.push_back({key, std::string(value)});
    r = ahead;
    return true;
}

} // namespace

size_t parse_link_target(std::string_view text, link &result)
{
    reader r{text};
    r.skip_blanks();
    if (!read_destination(r, result)) return std::string_view::npos;
    if (r.on_blank()) {
        r.skip_blanks();
        read_title(r, result);
        r.skip_blanks();
        while (read_attribute(r, result)) r.skip_blanks();
    }
    return r.at;
}

} // namespace tomelet::engine
