// SPDX-License-Identifier: GPL-3.0-or-later
// The recognisers, made by re2c from Scanners.re. The end of the range reads as NUL.
#include "engine/Scanners.h"

#include "engine/Chars.h"

#include <string_view>

namespace tomelet::engine {

namespace {

struct cursor
{
    const char *at;
    const char *limit;
    const char *marker = nullptr;
    const char *context = nullptr;

    [[nodiscard]] unsigned char peek() const { return at < limit ? static_cast<unsigned char>(*at) : '\0'; }
};

/*!re2c
    re2c:yyfill:enable = 0;
    re2c:flags:input = custom;
    re2c:api:style = free-form;
    re2c:define:YYCTYPE = "unsigned char";
    re2c:define:YYPEEK = "c.peek()";
    re2c:define:YYSKIP = "++c.at;";
    re2c:define:YYBACKUP = "c.marker = c.at;";
    re2c:define:YYRESTORE = "c.at = c.marker;";
    re2c:define:YYBACKUPCTX = "c.context = c.at;";
    re2c:define:YYRESTORECTX = "c.at = c.context;";

    nl = "\r\n" | "\n" | "\r";
    stop = nl | "\x00";
    blank = " " | "\xC2\xA0";
    lead = blank{0,3};
    space = [ \t];
    white = space | "\xC2\xA0";
    not_nl = [^\x00\r\n];
    tail = [\x80-\xBF];
    multibyte = [\xC2-\xDF] tail | "\xE0" [\xA0-\xBF] tail | [\xE1-\xEC\xEE\xEF] tail tail | "\xED" [\x80-\x9F] tail
              | "\xF0" [\x90-\xBF] tail tail | [\xF1-\xF3] tail tail tail | "\xF4" [\x80-\x8F] tail tail;
    utf8 = [\x01-\x09\x0B\x0C\x0E-\x7F] | multibyte;
    utf8_visible = [\x01-\x08\x0B\x0C\x0E-\x1F\x21-\x7F] | multibyte;

    meta_key = [A-Za-z0-9] ( [A-Za-z0-9_.\- \t] | "\xC2\xA0" )*;
    meta_line = meta_key ":" utf8*;

    separator = [\-+:=];

    label = ( [^\]\x00\r\n\\] | "\\" not_nl )+;
    gap = space* ( nl space* )?;
    destination = "<" [^<>\x00\r\n]* ">" | [^ \t\r\n\x00<] [^ \t\r\n\x00]*;
    title = ["] ( [^"\\\x00] | "\\" [^\x00] )* ["] | "'" ( [^'\\\x00] | "\\" [^\x00] )* "'"
          | "(" ( [^()\\\x00] | "\\" [^\x00] )* ")";
    attribute_value = ["] [^"\x00\r\n]* ["] | [^ \t\r\n\x00"=]+;
    attribute = [A-Za-z_:] [A-Za-z0-9_.:\-]* "=" attribute_value;
    attributes = attribute ( space+ ( nl space* )? attribute | nl space* attribute )*;

    html_space = [ \t\r\n\f\v];
    html_name = [A-Za-z] [A-Za-z0-9\-]*;
    html_attribute = html_space+ [A-Za-z_:] [A-Za-z0-9_.:\-]*
        ( html_space* "=" html_space* ( [^ \t\r\n\f\v"'=<>`\x00]+ | ["] [^"\x00]* ["] | "'" [^'\x00]* "'" ) )?;
    html_tag = "<" html_name html_attribute* html_space* "/"? ">" | "</" html_name html_space* ">";
    html_declaration = "<!" [A-Za-z] [^>\x00]* ">";
    block_name = 'address' | 'article' | 'aside' | 'base' | 'basefont' | 'blockquote' | 'body' | 'caption' | 'center'
        | 'col' | 'colgroup' | 'dd' | 'details' | 'dialog' | 'dir' | 'div' | 'dl' | 'dt' | 'fieldset' | 'figcaption'
        | 'figure' | 'footer' | 'form' | 'frame' | 'frameset' | 'h'[1-6] | 'head' | 'header' | 'hgroup' | 'hr' | 'html'
        | 'iframe' | 'legend' | 'li' | 'link' | 'main' | 'menu' | 'menuitem' | 'nav' | 'noframes' | 'noscript' | 'ol'
        | 'optgroup' | 'option' | 'p' | 'param' | 'pre' | 'script' | 'section' | 'style' | 'summary' | 'table'
        | 'tbody' | 'td' | 'textarea' | 'tfoot' | 'th' | 'thead' | 'title' | 'tr' | 'track' | 'ul';

    host_part = [A-Za-z0-9] ( [A-Za-z0-9\-]* [A-Za-z0-9] )?;
    email = [A-Za-z0-9.!#$%&'*+/=?^_`{|}~\-]+ "@" host_part ( "." host_part )+;
    url_text = [^\x00-\x20<>]+;
    scheme = [A-Za-z] [A-Za-z0-9+.\-]+;
    bare_scheme = 'mailto' | 'tel' | 'sms' | 'urn' | 'xmpp' | 'magnet';
*/

size_t found(const cursor &c, const char *text)
{
    return static_cast<size_t>(c.at - text);
}

// The length up to and with `stop`, searched behind `open`; 0 when the text does not begin with `open`.
size_t scan_enclosed(std::string_view text, std::string_view open, std::string_view stop)
{
    if (!text.starts_with(open)) return 0;
    const size_t at = text.find(stop, open.size());
    return at == std::string_view::npos ? 0 : at + stop.size();
}

size_t scan_html_tag(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    html_tag | html_declaration { return found(c, text); }
    *                           { return 0; }
*/
}

} // namespace

size_t scan_setext(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead ( "-"{2,} | "="{2,} ) / stop { return found(c, text); }
    *                                 { return 0; }
*/
}

size_t scan_atx(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    "#"+ white white* utf8_visible { return found(c, text); }
    *                              { return 0; }
*/
}

size_t scan_fence_start(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead "`"{3,} [^`\x00\r\n]* / stop { return found(c, text); }
    *                                 { return 0; }
*/
}

size_t scan_fence_end(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead "`"{3,} space* / stop { return found(c, text); }
    *                          { return 0; }
*/
}

size_t scan_definition(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead ":" not_nl { return found(c, text); }
    *               { return 0; }
*/
}

size_t scan_meta_key(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    meta_key { return found(c, text); }
    *        { return 0; }
*/
}

size_t scan_meta_line(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    meta_line / stop                          { return found(c, text); }
    lead "-"{3,} nl meta_line / stop { return found(c, text); }
    *                                         { return 0; }
*/
}

size_t scan_table_separator(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    ( "|" space* )? separator+ space* "|" ( separator | "|" | space )* / stop { return found(c, text); }
    *                                                                        { return 0; }
*/
}

int scan_alignment_string(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    end = space* ( [|] | stop );
    mark = [\-=]+;
    space* mark end             { return 0; }
    space* ":" mark end         { return 1; }
    space* mark ":" end         { return 2; }
    space* ":" mark ":" end     { return 4; }
    space* mark "+" end         { return 8; }
    space* ":" mark "+" end     { return 9; }
    space* mark ":+" end        { return 10; }
    space* ":" mark ":+" end    { return 12; }
    *                           { return 0; }
*/
}

size_t scan_ref_abbreviation(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead "[>" label "]:" not_nl { return found(c, text); }
    *                           { return 0; }
*/
}

size_t scan_ref_foot(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead "[^" label "]:" not_nl { return found(c, text); }
    *                           { return 0; }
*/
}

size_t scan_ref_glossary(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead "[?" label "]:" not_nl { return found(c, text); }
    *                           { return 0; }
*/
}

size_t scan_ref_citation(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead "[#" label "]:" not_nl { return found(c, text); }
    *                           { return 0; }
*/
}

size_t scan_ref_link(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead "[" label "]:" gap destination ( space+ title )? ( space+ attributes )? space* / stop { return found(c, text); }
    *                                                                                         { return 0; }
*/
}

size_t scan_ref_link_no_attributes(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    lead "[" label "]:" gap destination ( space+ title )? space* / stop { return found(c, text); }
    *                                                                  { return 0; }
*/
}

size_t scan_html_block(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    "<" "/"? block_name / ( html_space | "/"? ">" | "\x00" ) { return found(c, text); }
    *                                                        { return 0; }
*/
}

size_t scan_html(const char *text, size_t len)
{
    const std::string_view view(text, len);
    if (len < 3 || text[0] != '<') return 0;
    if (text[1] == '?') return scan_enclosed(view, "<?", "?>");
    if (const size_t comment = scan_enclosed(view, "<!--", "-->")) return comment;
    if (const size_t data = scan_enclosed(view, "<![CDATA[", "]]>")) return data;
    return scan_html_tag(text, len);
}

static bool line_ends_here(std::string_view text)
{
    size_t i = 0;
    while (i < text.size() && char_is_whitespace(text[i])) ++i;
    return i == text.size() || char_is_line_ending(text[i]);
}

size_t scan_html_line(const char *text, size_t len)
{
    const std::string_view view(text, len);
    size_t length = scan_enclosed(view, "<!--", "-->");
    if (length == 0) {
        const size_t line = view.substr(0, view.find_first_of("\r\n")).size();
        length = scan_html(text, line);
    }
    return length > 0 && line_ends_here(view.substr(length)) ? length : 0;
}

size_t scan_url(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    scheme "://" url_text | bare_scheme ":" url_text | email { return found(c, text); }
    *                                                        { return 0; }
*/
}

size_t scan_uri(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    scheme ":" url_text { return found(c, text); }
    *                   { return 0; }
*/
}

size_t scan_email(const char *text, size_t len)
{
    cursor c{text, text + len};
/*!re2c
    email { return found(c, text); }
    *     { return 0; }
*/
}

} // namespace tomelet::engine
