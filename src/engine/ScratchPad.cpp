// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/ScratchPad.h"

#include "engine/Chars.h"
#include "engine/Labels.h"
#include "engine/Scanners.h"

#include <algorithm>

namespace tomelet::engine {

namespace {

template <typename Record>
void add_under_both_texts(string_table<Record> &table, const stack *records)
{
    if (records->size > 0) table.reserve(2 * records->size);
    for (size_t i = 0; i < records->size; ++i) {
        auto *record = static_cast<Record *>(stack_peek_index(records, i));
        table.emplace(record->clean_text, record);
        table.emplace(record->label_text, record);
    }
}

// Notes are looked up by their lowered text, which a glossary's clean text and an abbreviation's label are
// not.
void add_notes(note_list &notes, const stack *records)
{
    add_under_both_texts(notes.hash, records);
}

uint32_t seed_if(bool wanted, mmd_engine *engine)
{
    return wanted ? static_cast<uint32_t>(next_random(engine->random) % 32000) : 0;
}

} // namespace

scratch_pad scratch_pad_for(mmd_engine *engine, uint16_t format)
{
    scratch_pad scratch{};
    scratch.engine = engine;
    scratch.extensions = engine->extensions;
    scratch.output_format = format;
    scratch.language = engine->language;
    scratch.quotes_lang = engine->quotes_lang;
    scratch.header_stack = engine->header_stack;
    scratch.asset_hash = engine->asset_hash;
    scratch.random_seed_base = seed_if(scratch.has(EXT_RANDOM_FOOT), engine);
    scratch.random_seed_base_labels = engine->random_seed_base_labels;
    add_under_both_texts(scratch.link_hash, engine->link_stack);
    add_notes(scratch.citations, engine->citation_stack);
    add_notes(scratch.footnotes, engine->footnote_stack);
    add_notes(scratch.glossary, engine->glossary_stack);
    add_notes(scratch.abbreviations, engine->abbreviation_stack);
    for (size_t i = 0; i < engine->metadata_stack->size; ++i) {
        const auto *entry = static_cast<const meta *>(stack_peek_index(engine->metadata_stack, i));
        scratch.meta_hash.emplace(entry->key, entry);
    }
    return scratch;
}

const char *extract_metadata(const scratch_pad &scratch, std::string_view key)
{
    const meta *entry = find_record(scratch.meta_hash, key);
    return entry ? entry->value.c_str() : nullptr;
}

void pad(d_string *out, int count, scratch_pad &scratch)
{
    for (; scratch.padded < count; ++scratch.padded) d_string_append_c(out, '\n');
}

// The heading's number in the document; the stack is in the order of the text.
static size_t header_index(const token *header, const scratch_pad &scratch)
{
    void **first = scratch.header_stack->element;
    void **found = std::lower_bound(first, first + scratch.header_stack->size, header->start,
                                    [](void *h, size_t start) { return static_cast<token *>(h)->start < start; });
    return static_cast<size_t>(found - first);
}

std::string header_label(const char *source, token *header, const scratch_pad &scratch)
{
    const size_t index = scratch.has(EXT_RANDOM_LABELS) ? header_index(header, scratch) : 0;
    return label_from_header(source, header, scratch.extensions, scratch.random_seed_base_labels, index);
}

int footnote_anchor(const scratch_pad &scratch, int number)
{
    if (!scratch.has(EXT_RANDOM_FOOT)) return number;
    return random_number_for_seed(scratch.random_seed_base + static_cast<uint64_t>(number));
}

void read_table_column_alignments(const char *source, const token *table, scratch_pad &scratch)
{
    static constexpr char letters[] = {'n', 'l', 'r', 'n', 'c', 'n', 'n', 'n', 'N', 'L', 'R', 'n', 'C'};
    scratch.table_alignment.clear();
    const token *header = table->child;
    while (header && header->type != BLOCK_TABLE_HEADER) header = header->next;
    if (!header || !header->child) return;
    const token *separator = header->child->tail;
    for (const token *cell = separator->child; cell; cell = cell->next)
        if (cell->type == TABLE_CELL)
            scratch.table_alignment +=
                letters[scan_alignment_string(source + cell->start, token_end(separator) - cell->start)];
}

bool raw_filter_text_matches(std::string_view filter, uint16_t format)
{
    const auto names = [filter](std::string_view name) { return filter.find(name) != std::string_view::npos; };
    if (filter == "*" || filter == "{=*}") return true;
    switch (format) {
    case FORMAT_HTML: return names("html");
    case FORMAT_EPUB: return names("epub");
    case FORMAT_LATEX:
    case FORMAT_BEAMER:
    case FORMAT_MEMOIR: return names("latex");
    case FORMAT_FODT:
    case FORMAT_ODT: return names("odt");
    default: return false;
    }
}

static const token *opening_fence(const token *block)
{
    const token *t = block->child;
    while (t && t->type != CODE_FENCE) t = t->next;
    return t;
}

std::string_view fence_info(const char *source, const token *block)
{
    const token *fence = opening_fence(block);
    if (!fence) return {};
    std::string_view line = token_text(source, fence);
    const auto is_mark = [](char c) { return char_is_whitespace_or_line_ending(c); };
    while (!line.empty() && is_mark(line.front())) line.remove_prefix(1);
    while (!line.empty() && line.front() == '`') line.remove_prefix(1);
    while (!line.empty() && is_mark(line.front())) line.remove_prefix(1);
    while (!line.empty() && is_mark(line.back())) line.remove_suffix(1);
    return line;
}

bool fence_is_closed(const token *block)
{
    const token *fence = opening_fence(block);
    return fence && fence != block->child->tail && block->child->tail->type == CODE_FENCE;
}

std::string_view fenced_text(const char *source, const token *block)
{
    const token *fence = opening_fence(block);
    if (!fence) return {};
    const size_t start = token_end(fence);
    const token *last = block->child->tail;
    const size_t end = fence_is_closed(block) ? last->start : token_end(last);
    return {source + start, end - start};
}

} // namespace tomelet::engine
