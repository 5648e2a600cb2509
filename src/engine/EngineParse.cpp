// SPDX-License-Identifier: GPL-3.0-or-later
// An engine's life, and the road from the source to the tree.
#include "engine/Blocks.h"
#include "engine/Engine.h"
#include "engine/Inlines.h"
#include "engine/Labels.h"
#include "engine/Metadata.h"
#include "engine/Pairs.h"
#include "engine/References.h"

#include "engine/Assets.h"

#include <chrono>

namespace tomelet::engine {

namespace {

// Differs from run to run and from engine to engine.
uint64_t fresh_seed(const mmd_engine *engine)
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    return static_cast<uint64_t>(now) ^ reinterpret_cast<uintptr_t>(engine);
}

template <typename Record>
void free_records(stack *s)
{
    while (s->size > 0) delete static_cast<Record *>(stack_pop(s));
}

} // namespace

mmd_engine *mmd_engine_create(d_string *source, uint32_t extensions)
{
    auto *engine = new mmd_engine{};
    engine->dstr = source;
    engine->extensions = extensions;
    for (token_pair_engine **pairings :
         {&engine->pairings1, &engine->pairings2, &engine->pairings3, &engine->pairings4})
        *pairings = token_pair_engine_new();
    register_pairings(engine);
    for (stack **s : {&engine->abbreviation_stack, &engine->citation_stack, &engine->definition_stack,
                      &engine->footnote_stack, &engine->glossary_stack, &engine->header_stack, &engine->link_stack,
                      &engine->metadata_stack, &engine->table_stack})
        *s = stack_new(0);
    engine->arena = token_arena_new();
    engine->openers = stack_new(0);
    engine->random = fresh_seed(engine);
    if (extensions & EXT_RANDOM_LABELS)
        engine->random_seed_base_labels = static_cast<uint32_t>(next_random(engine->random) % 32000);
    return engine;
}

void mmd_engine_set_language(mmd_engine *engine, uint16_t language)
{
    static constexpr uint16_t quotes[] = {QUOTES_ENGLISH, QUOTES_SPANISH, QUOTES_GERMAN,
                                          QUOTES_FRENCH,  QUOTES_DUTCH,   QUOTES_SWEDISH};
    engine->language = language;
    engine->quotes_lang = language <= LANG_SV ? quotes[language] : uint16_t{QUOTES_ENGLISH};
}

void mmd_engine_reset(mmd_engine *engine)
{
    token_arena_reset(engine->arena);
    engine->root = nullptr;
    for (stack *notes :
         {engine->abbreviation_stack, engine->citation_stack, engine->footnote_stack, engine->glossary_stack})
        free_records<footnote>(notes);
    free_records<link>(engine->link_stack);
    free_records<meta>(engine->metadata_stack);
    for (stack *blocks : {engine->definition_stack, engine->header_stack, engine->table_stack}) blocks->size = 0;
}

void mmd_engine_free(mmd_engine *engine, bool free_source)
{
    if (!engine) return;
    mmd_engine_reset(engine);
    for (token_pair_engine *pairings : {engine->pairings1, engine->pairings2, engine->pairings3, engine->pairings4})
        token_pair_engine_free(pairings);
    for (stack *s : {engine->abbreviation_stack, engine->citation_stack, engine->definition_stack,
                     engine->footnote_stack, engine->glossary_stack, engine->header_stack, engine->link_stack,
                     engine->metadata_stack, engine->table_stack})
        stack_free(s);
    stack_free(engine->openers);
    token_arena_free(engine->arena);
    asset_table_free(engine->asset_hash);
    if (free_source) d_string_free(engine->dstr, true);
    delete engine;
}

token *mmd_engine_parse_substring(mmd_engine *engine, size_t start, size_t len)
{
    mmd_engine_reset(engine);
    const uint32_t extensions = engine->extensions;
    const size_t length = engine->dstr->currentStringLength;
    if (start > length) start = length;
    if (len > length - start) len = length - start;
    if (start != 0) engine->extensions |= EXT_NO_METADATA;
    engine->recurse_depth = 0;
    engine->passes = 0;
    engine->root = parse_document(engine, start, len);
    engine->extensions = extensions;
    return engine->root;
}

} // namespace tomelet::engine
