// SPDX-License-Identifier: GPL-3.0-or-later
#include "Peers.h"

#include "engine/Engine.h"

#include <cmark.h>
#include <md4c-html.h>

#include <cstdlib>

extern "C" {
#include <mkdio.h>
}

namespace tomelet::bench {

size_t convertWithEngine(const std::string &text)
{
    using namespace tomelet::engine;
    constexpr uint32_t extensions = EXT_TRANSCLUDE | EXT_CRITIC | EXT_NOTES;
    d_string *source = d_string_new("");
    d_string_append_c_array(source, text.data(), text.size());
    d_string *html = mmd_d_string_convert(source, extensions, FORMAT_HTML, LANG_EN, "");
    const size_t length = html->currentStringLength;
    d_string_free(html, true);
    d_string_free(source, true);
    return length;
}

size_t convertWithCmark(const std::string &text)
{
    char *html = cmark_markdown_to_html(text.data(), text.size(), CMARK_OPT_UNSAFE);
    const size_t length = std::char_traits<char>::length(html);
    std::free(html);
    return length;
}

static void collect(const MD_CHAR *bytes, MD_SIZE size, void *html)
{
    static_cast<std::string *>(html)->append(bytes, size);
}

size_t convertWithMd4c(const std::string &text)
{
    std::string html;
    html.reserve(text.size() + text.size() / 4);
    md_html(text.data(), static_cast<MD_SIZE>(text.size()), collect, &html, 0, 0);
    return html.size();
}

size_t convertWithDiscount(const std::string &text)
{
    MMIOT *document = mkd_string(text.data(), static_cast<int>(text.size()), 0);
    mkd_compile(document, 0);
    char *html = nullptr;
    const int length = mkd_document(document, &html);
    mkd_cleanup(document);
    return length > 0 ? static_cast<size_t>(length) : 0;
}

} // namespace tomelet::bench
