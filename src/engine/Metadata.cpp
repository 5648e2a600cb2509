// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Metadata.h"

#include "engine/Blocks.h"
#include "engine/Chars.h"
#include "engine/Engine.h"
#include "engine/Labels.h"
#include "engine/Lines.h"
#include "engine/Scanners.h"

#include <cstdio>
#include <cstring>
#include <string_view>

namespace tomelet::engine {

namespace {

std::string_view without_line_end(std::string_view line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
    return line;
}

meta *begin_entry(mmd_engine *engine, const token *line, std::string &value)
{
    const std::string_view text(engine->dstr->str + line->start, line->len);
    const size_t key_len = scan_meta_key(text.data(), text.size());
    auto *entry = new meta{label_from_string(text.substr(0, key_len)), {}, line->start};
    stack_push(engine->metadata_stack, entry);
    value = without_line_end(text.substr(key_len + 1));
    return entry;
}

void continue_value(const mmd_engine *engine, const token *line, std::string &value)
{
    std::string_view text(engine->dstr->str + line->start, line->len);
    if (line->type == LINE_INDENTED_TAB || line->type == LINE_INDENTED_SPACE)
        while (!text.empty() && char_is_whitespace(text.front())) text.remove_prefix(1);
    value += '\n';
    value += without_line_end(text);
}

bool starts_entry(const mmd_engine *engine, const token *line)
{
    if (line->type == LINE_META) return true;
    return line->type == LINE_TABLE && scan_meta_line(engine->dstr->str + line->start, line->len);
}

bool continues_entry(const token *line)
{
    return line->type == LINE_PLAIN || line->type == LINE_TABLE || line->type == LINE_TABLE_SEPARATOR ||
           line->type == LINE_INDENTED_TAB || line->type == LINE_INDENTED_SPACE;
}

void finish_entry(meta *entry, const std::string &value)
{
    if (entry) entry->value = clean_string(value, false);
}

} // namespace

void strip_line_tokens_from_metadata(mmd_engine *engine, token *block)
{
    std::string value;
    meta *entry = nullptr;
    for (token *line = block->child; line; line = line->next) {
        if (line->type == LINE_SETEXT_2 || line->type == LINE_YAML) continue;
        if (starts_entry(engine, line)) {
            finish_entry(entry, value);
            entry = begin_entry(engine, line, value);
        } else if (continues_entry(line)) {
            continue_value(engine, line, value);
        } else {
            std::fputs("ERROR!\n", stderr);
            token_tree_describe(line, engine->dstr->str);
        }
    }
    finish_entry(entry, value);
}

bool mmd_engine_has_metadata(mmd_engine *engine, size_t *end)
{
    const d_string *source = engine->dstr;
    if (end) *end = 0;
    if (engine->extensions & (EXT_COMPATIBILITY | EXT_NO_METADATA)) return false;
    if (!scan_meta_line(source->str, source->currentStringLength)) return false;

    token *old_root = engine->root;
    const size_t headers = engine->header_stack->size;
    const size_t definitions = engine->definition_stack->size;
    const size_t tables = engine->table_stack->size;
    token *document = mmd_tokenize_string(engine, 0, source->currentStringLength, true);
    mmd_parse_token_chain(engine, document);
    const token *first = document->child;
    const bool found = first && first->type == BLOCK_META;
    if (found && end) *end = first->len;
    token_tree_free(document);
    engine->root = old_root;
    engine->header_stack->size = headers;
    engine->definition_stack->size = definitions;
    engine->table_stack->size = tables;
    return found;
}

bool mmd_d_string_has_metadata(d_string *source, size_t *end)
{
    mmd_engine *engine = mmd_engine_create(source, 0);
    const bool found = mmd_engine_has_metadata(engine, end);
    mmd_engine_free(engine, false);
    return found;
}

const char *mmd_engine_metavalue_for_key(mmd_engine *engine, const char *key)
{
    if (engine->metadata_stack->size == 0) mmd_engine_has_metadata(engine, nullptr);
    const std::string label = label_from_string(key);
    for (size_t i = 0; i < engine->metadata_stack->size; ++i) {
        const auto *entry = static_cast<const meta *>(stack_peek_index(engine->metadata_stack, i));
        if (entry->key == label) return entry->value.c_str();
    }
    return nullptr;
}

char *mmd_d_string_metavalue_for_key(d_string *source, const char *key)
{
    mmd_engine *engine = mmd_engine_create(source, 0);
    const char *value = mmd_engine_metavalue_for_key(engine, key);
    char *copy = value ? strdup(value) : nullptr;
    mmd_engine_free(engine, false);
    return copy;
}

} // namespace tomelet::engine
