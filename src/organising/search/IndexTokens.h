// SPDX-License-Identifier: GPL-3.0-or-later
// The tokens under which the index knows a document, and the phrases of tokens by which a term is looked up.
//
// A document's tokens are pieces of its folded text behind a letter for their kind. In the order of the text:
//   w  a word (32 bytes at most; in dense writing two characters from where each word begins)
//   x  at the place of the word: the word with the one, two and three signs in front of it
//   g  what stands between two words (8 bytes at most), unless that is one blank
//   h  at the place of that: its ends (3 bytes at most) that no x token knows, but not all of it
// Its marks are known without places, each once:
//   b  the first and the first two characters of each word
//   n  a word (8 bytes at most) and the sign behind it; a word (5 bytes at most), the blank behind it and one character
//      more
//   m  a word that stands somewhere in front of something else than a blank, unless an n mark with an ASCII sign tells
//   s  what stands between two words, from each of its characters on (16 bytes at most)
//   r  a run of one sign that is longer than that, whole (250 bytes at most)
//   t  the name from each of its characters on (24 bytes at most)
// So nearly every term is found by one phrase of tokens, the last of them as a beginning, without a look at the texts.
#pragma once

#include "organising/search/FoldedText.h"

#include <optional>
#include <string>
#include <vector>

namespace tomelet {

/// Stands behind each token; never part of a folded text.
inline constexpr char tokenSeparator = '\x1f';
/// Whether a token of this kind belongs to the place of the one before it.
[[nodiscard]] constexpr bool sharesPlace(char kind)
{
    return kind == 'x' || kind == 'h';
}

/// What the index knows of a document: tokens and marks one behind the other, each with its separator.
struct DocumentTokens
{
    std::string tokens;
    std::string marks;
};
/// `name` is folded.
[[nodiscard]] DocumentTokens tokensOfDocument(const FoldedText &text, const std::string &name);

/// Tokens one behind the other, each with its separator. A gap's end at the beginning may be all of the gap too.
struct TokenPhrase
{
    std::string tokens;
    bool prefix = false;  ///< the last token may go on
    bool inMarks = false; ///< it is one mark
};

/// The phrases that all have to be found for a term to be found.
struct TermLookUps
{
    std::vector<TokenPhrase> phrases; ///< never empty
    bool exact = true;                ///< false: what they find has to be tested against the document
    std::vector<TokenPhrase> doubts;  ///< of what exact ones find, what any of these finds is to be tested all the same
};
[[nodiscard]] TermLookUps contentLookUps(const FoldedText &term);
[[nodiscard]] TermLookUps titleLookUps(const FoldedText &term);
/// The look-ups in the content without a last token so short that to gather all that begin so takes long; not exact.
/// Nothing for other terms.
[[nodiscard]] std::optional<TermLookUps> withoutShortEnd(const FoldedText &term);

} // namespace tomelet
