// SPDX-License-Identifier: GPL-3.0-or-later
// The first four bytes choose extensions and language; the rest is a document that goes through every writer
// there is, whole, and once more from a place within it.
#include "engine/Engine.h"
#include "engine/Writers.h"

#include <cstdint>
#include <cstring>

using namespace tomelet::engine;

static void convert(d_string *source, uint32_t extensions, uint16_t language)
{
    for (const writer &w : writers()) {
        mmd_engine *engine = mmd_engine_create(source, extensions);
        mmd_engine_set_language(engine, language);
        d_string_free(mmd_engine_convert(engine, w.format, ""), true);
        mmd_engine_parse_substring(engine, source->currentStringLength / 3, source->currentStringLength / 2);
        d_string *output = d_string_new("");
        mmd_engine_export(output, engine, w.format);
        d_string_free(output, true);
        mmd_engine_free(engine, false);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    uint32_t options = 0;
    if (size < sizeof options) return 0;
    std::memcpy(&options, data, sizeof options);
    // What reads other formats than Markdown is not for this target.
    const uint32_t extensions = options & ~static_cast<uint32_t>(EXT_PARSE_OPML | EXT_PARSE_ITMZ);
    d_string *source = d_string_new("");
    d_string_append_c_array(source, reinterpret_cast<const char *>(data) + sizeof options, size - sizeof options);
    convert(source, extensions, static_cast<uint16_t>(options >> 24) % 7);
    d_string_free(source, true);
    return 0;
}
