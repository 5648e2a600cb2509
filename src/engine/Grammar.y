// SPDX-License-Identifier: GPL-3.0-or-later
//
// The block grammar, made into a parser by lemon at build time (cmake/Lemon.cmake). It reads the types of lines and
// nothing else; what a rule does to the line tokens is in Blocks.h.
//
// The grammar is ambiguous on purpose and the parser generator settles it: lists, quotes, definitions, tables, fences and
// empty lines take all that they can get (shift before reduce), and a table separator at the beginning of a block opens
// a table's header rather than being a row of its body (the earlier rule first). A line type that a state knows no
// action for is tried again as its fallback, and only then the state's default reduction holds; so the parser must be
// generated with compressed tables.

%name Parse
%token_type {token *}
%default_type {token *}
%extra_context {mmd_engine *engine}
%stack_size 100
%start_symbol doc

%include {
#include "engine/Blocks.h"
#include "engine/Engine.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>

using namespace tomelet::engine;
}

// In the order of token_types, from 1.
%token LINE_HR LINE_SETEXT_1 LINE_SETEXT_2 LINE_YAML LINE_CONTINUATION LINE_PLAIN LINE_INDENTED_TAB
       LINE_INDENTED_SPACE LINE_TABLE LINE_TABLE_SEPARATOR LINE_FALLBACK LINE_HTML LINE_ATX_1 LINE_ATX_2 LINE_ATX_3
       LINE_ATX_4 LINE_ATX_5 LINE_ATX_6 LINE_BLOCKQUOTE LINE_LIST_BULLETED LINE_LIST_ENUMERATED
       LINE_DEF_ABBREVIATION LINE_DEF_CITATION LINE_DEF_FOOTNOTE LINE_DEF_GLOSSARY LINE_DEF_LINK LINE_TOC
       LINE_DEFINITION LINE_META LINE_BACKTICK LINE_FENCE_BACKTICK_3 LINE_FENCE_BACKTICK_4 LINE_FENCE_BACKTICK_5
       LINE_FENCE_BACKTICK_START_3 LINE_FENCE_BACKTICK_START_4 LINE_FENCE_BACKTICK_START_5 LINE_STOP_COMMENT
       LINE_EMPTY LINE_START_COMMENT.

%fallback LINE_HR LINE_SETEXT_1 LINE_SETEXT_2 LINE_YAML.
%fallback LINE_CONTINUATION LINE_PLAIN LINE_INDENTED_TAB LINE_INDENTED_SPACE LINE_TABLE LINE_TABLE_SEPARATOR.
%fallback LINE_FALLBACK LINE_HTML LINE_ATX_1 LINE_ATX_2 LINE_ATX_3 LINE_ATX_4 LINE_ATX_5 LINE_ATX_6 LINE_BLOCKQUOTE
          LINE_LIST_BULLETED LINE_LIST_ENUMERATED LINE_DEF_ABBREVIATION LINE_DEF_CITATION LINE_DEF_FOOTNOTE
          LINE_DEF_GLOSSARY LINE_DEF_LINK LINE_TOC LINE_DEFINITION LINE_META.
%fallback LINE_BACKTICK LINE_FENCE_BACKTICK_3 LINE_FENCE_BACKTICK_4 LINE_FENCE_BACKTICK_5
          LINE_FENCE_BACKTICK_START_3 LINE_FENCE_BACKTICK_START_4 LINE_FENCE_BACKTICK_START_5.

// The document: a chain of blocks.

doc ::= blocks(B).                      { engine->root = B; }

blocks(A) ::= blocks(B) block(C).       { finish_block(engine, C); A = chain(B, C); }
blocks(A) ::= block(B).                 { engine->root = B; finish_block(engine, B); A = B; }

block(A) ::= LINE_ATX_1(B).             { A = heading_block(engine, B, BLOCK_H1); }
block(A) ::= LINE_ATX_2(B).             { A = heading_block(engine, B, BLOCK_H2); }
block(A) ::= LINE_ATX_3(B).             { A = heading_block(engine, B, BLOCK_H3); }
block(A) ::= LINE_ATX_4(B).             { A = heading_block(engine, B, BLOCK_H4); }
block(A) ::= LINE_ATX_5(B).             { A = heading_block(engine, B, BLOCK_H5); }
block(A) ::= LINE_ATX_6(B).             { A = heading_block(engine, B, BLOCK_H6); }
block(A) ::= LINE_HR(B).                { A = new_block(engine, B, BLOCK_HR); }
block(A) ::= LINE_YAML(B).              { A = new_block(engine, B, BLOCK_HR); }
block(A) ::= LINE_TOC(B).               { A = new_block(engine, B, BLOCK_TOC); }
block(A) ::= blockquote(B).             { A = blockquote_block(engine, B); }
block(A) ::= def_abbreviation(B).       { A = definition_block(engine, B, BLOCK_DEF_ABBREVIATION); }
block(A) ::= def_citation(B).           { A = definition_block(engine, B, BLOCK_DEF_CITATION); }
block(A) ::= def_footnote(B).           { A = note_block(engine, B, BLOCK_DEF_FOOTNOTE); }
block(A) ::= def_glossary(B).           { A = note_block(engine, B, BLOCK_DEF_GLOSSARY); }
block(A) ::= def_link(B).               { A = definition_block(engine, B, BLOCK_DEF_LINK); }
block(A) ::= definition_block(B).       { A = new_block(engine, B, BLOCK_DEFLIST); }
block(A) ::= empty(B).                  { A = new_block(engine, B, BLOCK_EMPTY); }
block(A) ::= fenced_block(B).           { A = fenced_code_block(engine, B); }
block(A) ::= html_block(B).             { A = new_block(engine, B, BLOCK_HTML); }
block(A) ::= html_com_block(B).         { A = new_block(engine, B, BLOCK_HTML); }
block(A) ::= indented_code(B).          { A = new_block(engine, B, BLOCK_CODE_INDENTED); }
block(A) ::= list_bullet(B).            { A = list_block(engine, B, BLOCK_LIST_BULLETED); }
block(A) ::= list_enum(B).              { A = list_block(engine, B, BLOCK_LIST_ENUMERATED); }
block(A) ::= meta_block(B).             { A = new_block(engine, B, BLOCK_META); }
block(A) ::= meta_block(B) LINE_SETEXT_2(C). { A = new_block(engine, B, BLOCK_META); token_append_child(A, C); }
block(A) ::= para(B).                   { A = paragraph_block(engine, B); }
block(A) ::= setext_1(B).               { A = heading_block(engine, B, BLOCK_SETEXT_1); }
block(A) ::= setext_2(B).               { A = heading_block(engine, B, BLOCK_SETEXT_2); }
block(A) ::= table(B).                  { A = table_block(engine, B); }

// Lines that go on with what stands above them, directly or indented behind empty lines.

chunk(A) ::= chunk(B) chunk_line(C).    { A = chain(B, C); }
chunk(A) ::= chunk_line(B).             { A = B; }

nested_chunks(A) ::= nested_chunks(B) nested_chunk(C). { A = chain(B, C); }
nested_chunks(A) ::= nested_chunk(B).   { A = B; }

nested_chunk(A) ::= empty(B) indented_line(C) chunk(D). { C->type = LINE_CONTINUATION; A = chain(chain(B, C), D); }
nested_chunk(A) ::= empty(B) indented_line(C). { C->type = LINE_CONTINUATION; A = chain(B, C); }
nested_chunk(A) ::= empty(B).           { A = B; }

ext_chunk(A) ::= chunk(B) nested_chunks(C). { A = chain(B, C); }

opt_ext_chunk(A) ::= chunk(B) nested_chunks(C). { A = chain(B, C); }
opt_ext_chunk(A) ::= chunk(B).          { A = B; }

// Quotes and definitions.

blockquote(A) ::= blockquote(B) quote_line(C). { A = chain(B, C); }
blockquote(A) ::= LINE_BLOCKQUOTE(B).   { A = B; }

def_citation(A) ::= LINE_DEF_CITATION(B) tail(C). { A = chain(B, C); }
def_citation(A) ::= LINE_DEF_CITATION(B). { A = B; }

def_footnote(A) ::= LINE_DEF_FOOTNOTE(B) tail(C). { A = chain(B, C); }
def_footnote(A) ::= LINE_DEF_FOOTNOTE(B). { A = B; }

def_glossary(A) ::= LINE_DEF_GLOSSARY(B) tail(C). { A = chain(B, C); }
def_glossary(A) ::= LINE_DEF_GLOSSARY(B). { A = B; }

def_link(A) ::= LINE_DEF_LINK(B) chunk(C). { A = chain(B, C); }
def_link(A) ::= LINE_DEF_LINK(B).       { A = B; }

def_abbreviation(A) ::= LINE_DEF_ABBREVIATION(B) chunk(C). { A = chain(B, C); }
def_abbreviation(A) ::= LINE_DEF_ABBREVIATION(B). { A = B; }

definition_block(A) ::= para(B) defs(C). { A = terms_and_definitions(B, C); }

defs(A) ::= defs(B) def(C).             { A = chain(B, C); }
defs(A) ::= def(B).                     { A = B; }

def(A) ::= LINE_DEFINITION(B) tail(C).  { A = long_definition(engine, B, C); }
def(A) ::= LINE_DEFINITION(B).          { A = new_block(engine, B, BLOCK_DEFINITION); }

empty(A) ::= empty(B) LINE_EMPTY(C).    { A = chain(B, C); }
empty(A) ::= LINE_EMPTY(B).             { A = B; }

// Code and HTML. A fence closes on one that is as long or longer; shorter ones within are code.

fenced_block(A) ::= fenced_3(B) LINE_FENCE_BACKTICK_3(C). { A = closed_fence(B, C); }
fenced_block(A) ::= fenced_3(B) LINE_FENCE_BACKTICK_4(C). { A = closed_fence(B, C); }
fenced_block(A) ::= fenced_3(B) LINE_FENCE_BACKTICK_5(C). { A = closed_fence(B, C); }
fenced_block(A) ::= fenced_4(B) LINE_FENCE_BACKTICK_4(C). { A = closed_fence(B, C); }
fenced_block(A) ::= fenced_4(B) LINE_FENCE_BACKTICK_5(C). { A = closed_fence(B, C); }
fenced_block(A) ::= fenced_5(B) LINE_FENCE_BACKTICK_5(C). { A = closed_fence(B, C); }
fenced_block(A) ::= fenced_3(B).        { A = B; }
fenced_block(A) ::= fenced_4(B).        { A = B; }
fenced_block(A) ::= fenced_5(B).        { A = B; }

fenced_3(A) ::= fenced_3(B) fenced_line(C). { A = chain(B, C); }
fenced_3(A) ::= LINE_FENCE_BACKTICK_3(B). { A = B; }
fenced_3(A) ::= LINE_FENCE_BACKTICK_START_3(B). { A = B; }

fenced_4(A) ::= fenced_4(B) fenced_line(C). { A = chain(B, C); }
fenced_4(A) ::= fenced_4(B) LINE_FENCE_BACKTICK_3(C). { A = chain(B, C); }
fenced_4(A) ::= fenced_4(B) LINE_FENCE_BACKTICK_START_3(C). { A = chain(B, C); }
fenced_4(A) ::= LINE_FENCE_BACKTICK_4(B). { A = B; }
fenced_4(A) ::= LINE_FENCE_BACKTICK_START_4(B). { A = B; }

fenced_5(A) ::= fenced_5(B) fenced_line(C). { A = chain(B, C); }
fenced_5(A) ::= fenced_5(B) LINE_FENCE_BACKTICK_3(C). { A = chain(B, C); }
fenced_5(A) ::= fenced_5(B) LINE_FENCE_BACKTICK_START_3(C). { A = chain(B, C); }
fenced_5(A) ::= fenced_5(B) LINE_FENCE_BACKTICK_4(C). { A = chain(B, C); }
fenced_5(A) ::= fenced_5(B) LINE_FENCE_BACKTICK_START_4(C). { A = chain(B, C); }
fenced_5(A) ::= LINE_FENCE_BACKTICK_5(B). { A = B; }
fenced_5(A) ::= LINE_FENCE_BACKTICK_START_5(B). { A = B; }

html_block(A) ::= html_block(B) html_line(C). { A = chain(B, C); }
html_block(A) ::= LINE_HTML(B).         { A = B; }

html_com_block(A) ::= html_comment(B) LINE_STOP_COMMENT(C). { A = chain(B, C); }
html_com_block(A) ::= html_comment(B).  { A = B; }

html_comment(A) ::= html_comment(B) comment_line(C). { A = chain(B, C); }
html_comment(A) ::= LINE_START_COMMENT(B). { A = B; }

indented_code(A) ::= indented_code(B) indented_line(C). { A = chain(B, C); }
indented_code(A) ::= indented_code(B) LINE_EMPTY(C). { A = chain(B, C); }
indented_code(A) ::= indented_line(B).  { A = B; }

// Lists.

list_bullet(A) ::= list_bullet(B) item_bullet(C). { A = chain(B, C); }
list_bullet(A) ::= item_bullet(B).      { A = B; }

item_bullet(A) ::= LINE_LIST_BULLETED(B) ext_chunk(C). { A = list_item(engine, B, C, BLOCK_LIST_ITEM); }
item_bullet(A) ::= LINE_LIST_BULLETED(B) chunk(C). { A = list_item(engine, B, C, BLOCK_LIST_ITEM_TIGHT); }
item_bullet(A) ::= LINE_LIST_BULLETED(B) nested_chunks(C). { A = list_item(engine, B, C, BLOCK_LIST_ITEM); }
item_bullet(A) ::= LINE_LIST_BULLETED(B). { A = short_list_item(engine, B); }

list_enum(A) ::= list_enum(B) item_enum(C). { A = chain(B, C); }
list_enum(A) ::= item_enum(B).          { A = B; }

item_enum(A) ::= LINE_LIST_ENUMERATED(B) ext_chunk(C). { A = list_item(engine, B, C, BLOCK_LIST_ITEM); }
item_enum(A) ::= LINE_LIST_ENUMERATED(B) chunk(C). { A = list_item(engine, B, C, BLOCK_LIST_ITEM_TIGHT); }
item_enum(A) ::= LINE_LIST_ENUMERATED(B) nested_chunks(C). { A = list_item(engine, B, C, BLOCK_LIST_ITEM); }
item_enum(A) ::= LINE_LIST_ENUMERATED(B). { A = short_list_item(engine, B); }

// Metadata, paragraphs, headings, tables.

meta_block(A) ::= meta_block(B) meta_line(C). { A = chain(B, C); }
meta_block(A) ::= LINE_YAML(B) LINE_META(C). { A = chain(B, C); }
meta_block(A) ::= LINE_META(B).         { A = B; }

para(A) ::= LINE_PLAIN(B) chunk(C).     { A = chain(B, C); }
para(A) ::= all_rows(B).                { A = B; }
para(A) ::= LINE_PLAIN(B).              { A = B; }
para(A) ::= LINE_STOP_COMMENT(B).       { A = B; }
para(A) ::= defs(B).                    { A = B; }

setext_1(A) ::= para(B) LINE_SETEXT_1(C). { A = chain(B, C); }
setext_2(A) ::= para(B) LINE_SETEXT_2(C). { A = chain(B, C); }

table(A) ::= table_header(B) table_body(C). { A = chain(B, C); }
table(A) ::= table_header(B).           { A = B; }

table_header(A) ::= header_rows(B) LINE_TABLE_SEPARATOR(C). { A = new_block(engine, chain(B, C), BLOCK_TABLE_HEADER); }
table_header(A) ::= LINE_TABLE_SEPARATOR(B). { A = new_block(engine, B, BLOCK_TABLE_HEADER); }

header_rows(A) ::= header_rows(B) LINE_TABLE(C). { A = chain(B, C); }
header_rows(A) ::= LINE_TABLE(B).       { A = B; }

table_body(A) ::= table_body(B) table_section(C). { A = chain(B, C); }
table_body(A) ::= table_section(B).     { A = B; }

table_section(A) ::= all_rows(B) LINE_EMPTY(C). { A = new_block(engine, chain(B, C), BLOCK_TABLE_SECTION); }
table_section(A) ::= all_rows(B).       { A = new_block(engine, B, BLOCK_TABLE_SECTION); }

all_rows(A) ::= all_rows(B) row(C).     { A = chain(B, C); }
all_rows(A) ::= row(B).                 { A = B; }

// Kinds of lines.

chunk_line(A) ::= LINE_CONTINUATION(B). { A = B; }
chunk_line(A) ::= LINE_STOP_COMMENT(B). { A = B; }

indented_line(A) ::= LINE_INDENTED_TAB(B). { A = B; }
indented_line(A) ::= LINE_INDENTED_SPACE(B). { A = B; }

tail(A) ::= opt_ext_chunk(B).           { A = B; }
tail(A) ::= nested_chunks(B).           { A = B; }

quote_line(A) ::= LINE_BLOCKQUOTE(B).   { A = B; }
quote_line(A) ::= LINE_CONTINUATION(B). { A = B; }

fenced_line(A) ::= LINE_CONTINUATION(B). { A = B; }
fenced_line(A) ::= LINE_EMPTY(B).       { A = B; }
fenced_line(A) ::= LINE_FALLBACK(B).    { A = B; }
fenced_line(A) ::= LINE_HR(B).          { A = B; }
fenced_line(A) ::= LINE_HTML(B).        { A = B; }
fenced_line(A) ::= LINE_START_COMMENT(B). { A = B; }
fenced_line(A) ::= LINE_STOP_COMMENT(B). { A = B; }

html_line(A) ::= LINE_CONTINUATION(B).  { A = B; }
html_line(A) ::= LINE_FALLBACK(B).      { A = B; }
html_line(A) ::= LINE_HR(B).            { A = B; }
html_line(A) ::= LINE_HTML(B).          { A = B; }

comment_line(A) ::= LINE_CONTINUATION(B). { A = B; }
comment_line(A) ::= LINE_EMPTY(B).      { A = B; }
comment_line(A) ::= LINE_FALLBACK(B).   { A = B; }
comment_line(A) ::= LINE_HR(B).         { A = B; }
comment_line(A) ::= LINE_HTML(B).       { A = B; }

meta_line(A) ::= LINE_META(B).          { A = B; }
meta_line(A) ::= LINE_CONTINUATION(B).  { A = B; }

row(A) ::= header_rows(B).              { A = B; }
row(A) ::= LINE_TABLE_SEPARATOR(B).     { A = B; }

// An error is a fault of the engine: with the fallbacks every sequence of lines is a document.

%syntax_error {
    std::fputs("Parser syntax error.\n", stderr);
    for (int code = 1; code < YYNTOKEN; ++code)
        if (yy_find_shift_action(static_cast<YYCODETYPE>(code), yypParser->yytos->stateno) != YY_ERROR_ACTION)
            std::fprintf(stderr, "expected token: %s\n", line_type_name(code));
}
%parse_failure { std::fputs("Parser failed to successfully parse.\n", stderr); }

%code {
namespace tomelet::engine {

token *parse_lines(mmd_engine *engine, token *(*next_line)(void *from), void *from)
{
    token *line = next_line(from);
    if (!line) return nullptr; // the parser would call it an error
    token *outer_root = engine->root;
    engine->root = nullptr;
    void *parser = ParseAlloc(std::malloc, engine);
    for (; line; line = next_line(from)) Parse(parser, line->type, line);
    Parse(parser, 0, nullptr);
    ParseFree(parser, std::free);
    token *blocks = engine->root;
    engine->root = outer_root;
    return blocks;
}

} // namespace tomelet::engine
}
