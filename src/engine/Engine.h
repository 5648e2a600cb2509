// SPDX-License-Identifier: GPL-3.0-or-later
// The Markdown engine: from the bytes of a document to the bytes of an output format.
//
//     d_string *source = d_string_new("Hello *world*");
//     d_string *html = mmd_d_string_convert(source, EXT_NOTES, FORMAT_HTML, LANG_EN, "");
//     // html->str is "<p>Hello <em>world</em></p>\n"
//
// The text is UTF-8; positions and lengths are in bytes. No text is an error: every byte string gives a
// document. An engine and all that hangs on it is used by one thread at a time; engines share nothing that
// changes.
#pragma once

#include "engine/DString.h"
#include "engine/Stack.h"
#include "engine/Token.h"

#include <cstdint>

namespace tomelet::engine {

struct token_pair_engine;
struct asset_table;

/// Extensions, the bits of one set.
enum parser_extensions : uint32_t {
    EXT_COMPATIBILITY = 1,     ///< plain Markdown: no metadata, tables, fences, math and so on
    EXT_COMPLETE = 2,          ///< write a complete document, with a head
    EXT_SNIPPET = 4,           ///< write a snippet whatever the metadata
    EXT_SMART = 8,             ///< smart typography
    EXT_NOTES = 16,            ///< footnotes, citations, glossary, abbreviations
    EXT_NO_LABELS = 32,        ///< no ids on headings
    EXT_PROCESS_HTML = 64,     ///< accepted; without effect
    EXT_NO_METADATA = 128,     ///< metadata is text
    EXT_OBFUSCATE = 256,       ///< mask the addresses of mailto: links (bare addresses are masked always)
    EXT_CRITIC = 512,          ///< CriticMarkup
    EXT_CRITIC_ACCEPT = 1024,  ///< write it with all changes accepted
    EXT_CRITIC_REJECT = 2048,  ///< write it with all changes rejected
    EXT_RANDOM_FOOT = 4096,    ///< random numbers in the anchors of footnotes
    EXT_TRANSCLUDE = 8192,     ///< for callers: transclude the source before it is parsed (Transclude.h)
    EXT_PARSE_OPML = 16384,    ///< the source is OPML
    EXT_PARSE_ITMZ = 32768,    ///< the source is ITMZ
    EXT_RANDOM_LABELS = 65536, ///< random labels of headings
};

enum output_format : uint16_t {
    FORMAT_HTML,
    FORMAT_EPUB,
    FORMAT_LATEX,
    FORMAT_BEAMER,
    FORMAT_MEMOIR,
    FORMAT_FODT,
    FORMAT_ODT,
    FORMAT_TEXTBUNDLE,
    FORMAT_TEXTBUNDLE_COMPRESSED,
    FORMAT_OPML,
    FORMAT_ITMZ,
    FORMAT_MMD
};

enum output_language : uint16_t { LANG_EN, LANG_ES, LANG_DE, LANG_FR, LANG_NL, LANG_SV, LANG_HE };

enum quotes_style : uint16_t {
    QUOTES_ENGLISH,
    QUOTES_DUTCH,
    QUOTES_FRENCH,
    QUOTES_GERMAN,
    QUOTES_GERMAN_GUILLEMETS,
    QUOTES_SPANISH,
    QUOTES_SWEDISH
};

struct mmd_engine
{
    d_string *dstr; ///< the source
    token *root;    ///< the tree
    uint32_t extensions;
    uint16_t recurse_depth; ///< of block parses
    bool allow_meta;        ///< the next line may still be metadata

    token_pair_engine *pairings1; ///< CriticMarkup
    token_pair_engine *pairings2; ///< comments
    token_pair_engine *pairings3; ///< brackets, code, math
    token_pair_engine *pairings4; ///< emphasis, quotes, super- and subscripts

    stack *abbreviation_stack; ///< of footnote
    stack *citation_stack;     ///< of footnote
    stack *definition_stack;   ///< of definition blocks
    stack *footnote_stack;     ///< of footnote
    stack *glossary_stack;     ///< of footnote
    stack *header_stack;       ///< of heading blocks
    stack *link_stack;         ///< of link
    stack *metadata_stack;     ///< of meta
    stack *table_stack;        ///< of tables

    uint16_t language;    ///< output_language
    uint16_t quotes_lang; ///< quotes_style

    asset_table *asset_hash; ///< what the last export stored; null before
    uint32_t random_seed_base_labels;

    token_arena *arena;                ///< all tokens of the tree
    stack *openers;                    ///< of the pairing under way
    uint8_t passes_of[kMaxTokenTypes]; ///< by inline token type: a bit for each pairing pass that knows it
    uint8_t passes;                    ///< the passes that something read so far is for; the others are left out
    uint64_t random;                   ///< state of the engine's own generator
};

/// A new engine. The source is taken over, and freed with the engine only on request.
[[nodiscard]] mmd_engine *mmd_engine_create(d_string *source, uint32_t extensions);
/// Sets the language and the quotes that go with it.
void mmd_engine_set_language(mmd_engine *engine, uint16_t language);
/// Frees the tree and all that was collected from it.
void mmd_engine_reset(mmd_engine *engine);
void mmd_engine_free(mmd_engine *engine, bool free_source);

/// Parses a range of the source; a length of to_the_end means all from the start on. The tree belongs to the
/// engine.
token *mmd_engine_parse_substring(mmd_engine *engine, size_t start, size_t len);
/// Appends the parsed document in the format. False when there is no writer for it.
bool mmd_engine_export(d_string *output, mmd_engine *engine, uint16_t format);
/// Parses, exports and packs; the caller owns the result. `directory` is where a package's files are looked
/// for. Null when there is no writer for the format.
[[nodiscard]] d_string *mmd_engine_convert(mmd_engine *engine, uint16_t format, const char *directory);
/// The whole way in one call. The source stays the caller's.
[[nodiscard]] d_string *mmd_d_string_convert(d_string *source, uint32_t extensions, uint16_t format, uint16_t language,
                                             const char *directory);

/// True when the document can be written in the format.
[[nodiscard]] bool mmd_format_is_available(uint16_t format);

/// True when the source begins with metadata; `end` (may be null) is where they end, 0 without.
bool mmd_engine_has_metadata(mmd_engine *engine, size_t *end);
bool mmd_d_string_has_metadata(d_string *source, size_t *end);
/// The value of a key, or null; of equal keys the first. The key may stand in any spelling that has the same
/// label form. The text belongs to the engine.
[[nodiscard]] const char *mmd_engine_metavalue_for_key(mmd_engine *engine, const char *key);
/// The same; the caller owns the text and frees it with std::free.
[[nodiscard]] char *mmd_d_string_metavalue_for_key(d_string *source, const char *key);

} // namespace tomelet::engine
