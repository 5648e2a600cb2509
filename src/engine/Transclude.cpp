// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Transclude.h"

#include "engine/Engine.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tomelet::engine {

namespace {

constexpr size_t longest_name = 997;
constexpr size_t block_size = 4096;

using paths = std::vector<std::string>;

struct string_deleter
{
    void operator()(d_string *s) const { d_string_free(s, true); }
};
using owned_string = std::unique_ptr<d_string, string_deleter>;

bool is_absolute(std::string_view path)
{
    return path.starts_with('/');
}

std::string joined(std::string_view folder, std::string_view name)
{
    std::string path(folder);
    if (!path.empty() && path.back() != '/') path += '/';
    return path.append(name);
}

std::string folder_of(std::string_view path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return ".";
    return std::string(path.substr(0, slash == 0 ? 1 : slash));
}

std::string_view suffix(uint16_t format)
{
    switch (format) {
    case FORMAT_HTML:
    case FORMAT_EPUB: return ".html";
    case FORMAT_LATEX:
    case FORMAT_BEAMER:
    case FORMAT_MEMOIR: return ".tex";
    case FORMAT_FODT:
    case FORMAT_ODT: return ".fodt";
    default: return ".txt";
    }
}

std::string path_for(std::string_view name, const std::string &folder, uint16_t format)
{
    std::string path = is_absolute(name) ? std::string(name) : joined(folder, name);
    if (format != FORMAT_MMD && path.ends_with(".*")) {
        path.resize(path.size() - 2);
        path += suffix(format);
    }
    return path;
}

// Where a source's text begins behind its metadata, and what these say of the folder.
struct head
{
    size_t end = 0;
    std::string base;
};

head read_head(d_string *source)
{
    head result;
    mmd_engine *engine = mmd_engine_create(source, EXT_TRANSCLUDE);
    if (mmd_engine_has_metadata(engine, &result.end)) {
        if (const char *base = mmd_engine_metavalue_for_key(engine, "transclude base")) result.base = base;
    } else {
        result.end = 0;
    }
    mmd_engine_free(engine, false);
    return result;
}

std::string search_folder(const char *search_path, const char *source_path, const std::string &base)
{
    std::string folder = search_path ? search_path : "";
    if (source_path && *source_path && !is_absolute(folder)) folder = joined(folder_of(source_path), folder);
    if (base.empty()) return folder;
    if (is_absolute(base)) return base;
    return source_path && *source_path ? joined(folder_of(source_path), base) : base;
}

void note_in_manifest(stack *manifest, const std::string &path)
{
    if (!manifest) return;
    for (size_t i = 0; i < manifest->size; ++i)
        if (path == static_cast<const char *>(stack_peek_index(manifest, i))) return;
    stack_push(manifest, strdup(path.c_str()));
}

bool is_in(const stack *parsed, const std::string &path)
{
    for (size_t i = 0; i < parsed->size; ++i)
        if (path == static_cast<const char *>(stack_peek_index(parsed, i))) return true;
    return false;
}

// A file's text with all that it includes, without its metadata; null when there is none.
owned_string included_text(std::string &path, const std::string &folder, uint16_t format, stack *parsed,
                           stack *manifest)
{
    if (is_in(parsed, path)) return nullptr;
    note_in_manifest(manifest, path);
    owned_string text(scan_file(path.c_str()));
    if (!text) return nullptr;
    stack_push(parsed, path.data());
    mmd_transclude_source(text.get(), folder.c_str(), nullptr, format, parsed, manifest);
    stack_pop(parsed);
    size_t end = 0;
    if (mmd_d_string_has_metadata(text.get(), &end)) d_string_erase(text.get(), 0, end);
    return text;
}

// The name of the marker that begins at `at`; `behind` becomes where the marker ends. Empty when there is no
// marker.
std::string_view marker_name(std::string_view text, size_t at, size_t &behind)
{
    const std::string_view reach = text.substr(at + 2, longest_name + 2);
    const size_t stop = reach.find("}}");
    if (stop == std::string_view::npos) return {};
    behind = at + 2 + stop + 2;
    return reach.substr(0, stop);
}

std::string transcluded(std::string_view text, size_t from, const std::string &folder, uint16_t format, stack *parsed,
                        stack *manifest)
{
    std::string result(text.substr(0, from));
    size_t done = from;
    size_t at = from;
    while ((at = text.find("{{", at)) != std::string_view::npos) {
        size_t behind = at + 2;
        const std::string_view name = marker_name(text, at, behind);
        owned_string included;
        if (!name.empty() && name != "TOC") {
            std::string path = path_for(name, folder, format);
            included = included_text(path, folder, format, parsed, manifest);
            if (!included) behind = at + 2;
        }
        if (included) {
            result.append(text.substr(done, at - done));
            result.append(included->str, included->currentStringLength);
            done = behind;
        }
        at = behind;
    }
    return result.append(text.substr(done));
}

} // namespace

void mmd_transclude_source(d_string *source, const char *search_path, const char *source_path, uint16_t format,
                           stack *parsed, stack *manifest)
{
    const std::string_view text(source->str, source->currentStringLength);
    if (text.find("{{") == std::string_view::npos) return;
    const head metadata = read_head(source);
    const std::string folder = search_folder(search_path, source_path, metadata.base);
    if (folder.empty()) return;
    stack *chain = parsed ? parsed : stack_new(0);
    std::string own_path = source_path ? source_path : "";
    if (!parsed && !own_path.empty()) stack_push(chain, own_path.data());
    const std::string result = transcluded(text, metadata.end, folder, format, chain, manifest);
    if (!parsed) stack_free(chain);
    d_string_erase(source, 0, to_the_end);
    d_string_append_c_array(source, result.data(), result.size());
}

d_string *scan_file(const char *path)
{
    std::FILE *file = std::fopen(path, "rb");
    if (!file) return nullptr;
    d_string *text = d_string_new("");
    char block[block_size];
    while (const size_t count = std::fread(block, 1, sizeof block, file)) d_string_append_c_array(text, block, count);
    std::fclose(file);
    if (std::string_view(text->str, text->currentStringLength).starts_with("\xEF\xBB\xBF")) d_string_erase(text, 0, 3);
    return text;
}

} // namespace tomelet::engine
