// SPDX-License-Identifier: GPL-3.0-or-later
// Small recognisers: does this stand at the beginning of `text`? Each takes the bytes from a token's start
// and how many of them it may look at, and gives the length of what it found, 0 for none. They change and
// allocate nothing.
#pragma once

#include <cstddef>

namespace tomelet::engine {

/// The underline of a heading: two or more "=" or "-" and nothing else on the line.
[[nodiscard]] size_t scan_setext(const char *text, size_t len);
/// Hashes, a blank, and a visible character: "#" alone is no heading.
[[nodiscard]] size_t scan_atx(const char *text, size_t len);
/// Three backticks or more, and no backtick behind them on the line.
[[nodiscard]] size_t scan_fence_start(const char *text, size_t len);
/// Three backticks or more, and nothing else on the line.
[[nodiscard]] size_t scan_fence_end(const char *text, size_t len);
/// A colon and something behind it.
[[nodiscard]] size_t scan_definition(const char *text, size_t len);

/// The key of a metadata line, without its colon.
[[nodiscard]] size_t scan_meta_key(const char *text, size_t len);
/// A metadata line, or dashes and a metadata line behind them.
[[nodiscard]] size_t scan_meta_line(const char *text, size_t len);

/// The line between a table's header and its body.
[[nodiscard]] size_t scan_table_separator(const char *text, size_t len);
/// What a cell of the separator line says: 1 left, 2 right, 4 centre, and 8 more for a column that wraps
/// ("+").
[[nodiscard]] int scan_alignment_string(const char *text, size_t len);

/// "[>label]:", "[^label]:", "[?label]:", "[#label]:" and something behind it on the line.
[[nodiscard]] size_t scan_ref_abbreviation(const char *text, size_t len);
[[nodiscard]] size_t scan_ref_foot(const char *text, size_t len);
[[nodiscard]] size_t scan_ref_glossary(const char *text, size_t len);
[[nodiscard]] size_t scan_ref_citation(const char *text, size_t len);
/// "[label]: destination", a title, attributes; the destination and the title may stand on lines of their
/// own.
[[nodiscard]] size_t scan_ref_link(const char *text, size_t len);
/// The same without attributes, with any bracket as its opener.
[[nodiscard]] size_t scan_ref_link_no_attributes(const char *text, size_t len);

/// "<" and the name of a block-level element, opened or closed. The names are those of HTML blocks in
/// CommonMark 0.30 (section 4.6, kinds 1 and 6).
[[nodiscard]] size_t scan_html_block(const char *text, size_t len);
/// One complete tag that is all that stands on the line, or one complete comment (of one line or more) behind
/// which nothing else stands on its last line.
[[nodiscard]] size_t scan_html_line(const char *text, size_t len);
/// One complete tag, comment, declaration or processing instruction (CommonMark 0.30, section 6.6).
[[nodiscard]] size_t scan_html(const char *text, size_t len);

/// A URL: a scheme with "://", or one of the schemes that go without; or an e-mail address, with or without
/// "mailto:".
[[nodiscard]] size_t scan_url(const char *text, size_t len);
/// Any scheme, a colon, and something behind it: too much for a line of text, which may be "Key:value", but
/// what stands in angle brackets is meant as a link.
[[nodiscard]] size_t scan_uri(const char *text, size_t len);
/// An e-mail address without "mailto:".
[[nodiscard]] size_t scan_email(const char *text, size_t len);

} // namespace tomelet::engine
