// SPDX-License-Identifier: GPL-3.0-or-later
// From the tree to the output.
#include "engine/Engine.h"
#include "engine/ScratchPad.h"
#include "engine/Writers.h"
#include "engine/html/Html.h"

namespace tomelet::engine {

std::span<const writer> writers()
{
    static constexpr writer table[] = {
        {FORMAT_HTML, mmd_export_html},
    };
    return table;
}

const writer *writer_for_format(uint16_t format)
{
    for (const writer &w : writers())
        if (w.format == format) return &w;
    return nullptr;
}

bool mmd_format_is_available(uint16_t format)
{
    return format == FORMAT_MMD || writer_for_format(format) != nullptr;
}

static void collect(mmd_engine *engine)
{
    process_definitions(engine);
    if (!(engine->extensions & EXT_NO_LABELS)) store_header_labels(engine);
    store_table_labels(engine);
}

bool mmd_engine_export(d_string *output, mmd_engine *engine, uint16_t format)
{
    if (!writer_for_format(format)) return false;
    collect(engine);
    scratch_pad scratch = scratch_pad_for(engine, format);
    apply_metadata_settings(scratch);
    search_terms(engine, scratch);
    // Metadata may have asked for a kin of the format, which has a writer of its own.
    const writer *w = writer_for_format(scratch.output_format);
    if (w) w->write(output, engine->dstr->str, engine->root, scratch);
    engine->asset_hash = scratch.asset_hash;
    engine->random_seed_base_labels = scratch.random_seed_base_labels;
    return w != nullptr;
}

d_string *mmd_engine_convert(mmd_engine *engine, uint16_t format, const char *)
{
    d_string *output = d_string_new("");
    d_string_ensure(output, engine->dstr->currentStringLength + engine->dstr->currentStringLength / 4);
    if (format == FORMAT_MMD) {
        d_string_append_c_array(output, engine->dstr->str, engine->dstr->currentStringLength);
        return output;
    }
    mmd_engine_parse_substring(engine, 0, to_the_end);
    if (!mmd_engine_export(output, engine, format)) {
        d_string_free(output, true);
        return nullptr;
    }
    d_string_append_c(output, '\n');
    return output;
}

d_string *mmd_d_string_convert(d_string *source, uint32_t extensions, uint16_t format, uint16_t language,
                               const char *directory)
{
    mmd_engine *engine = mmd_engine_create(source, extensions);
    mmd_engine_set_language(engine, language);
    d_string *result = mmd_engine_convert(engine, format, directory);
    mmd_engine_free(engine, false);
    return result;
}

} // namespace tomelet::engine
