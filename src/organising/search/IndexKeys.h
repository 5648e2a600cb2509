// SPDX-License-Identifier: GPL-3.0-or-later
// The keys under which the index knows a document, and those by which a term is looked up.
//
// A document's keys are short pieces of its folded text, each behind a letter for its kind:
//   w  a word (32 bytes at most; in dense writing two characters from each word's beginning)
//   b  the first one, two and three characters of a word
//   p  a word, what stands behind it (4 bytes at most), and the word after that
//   s  a sign or a blank
//   t  the name from each of its characters on (12 bytes at most)
// So the hits of nearly every term are the documents with keys that begin with the term, without a look at the texts.
#pragma once

#include "organising/search/FoldedText.h"

#include <string>
#include <vector>

namespace tomelet {

/// Stands between the keys of a document; never part of a folded text.
inline constexpr char keySeparator = '\x1f';

/// The keys of a document, each once. `name` is folded.
[[nodiscard]] std::string keysOfDocument(const FoldedText &text, const std::string &name);

struct KeyLookUp
{
    std::string key;
    bool prefix = false; ///< look for keys that begin with it
};

/// The look-ups that all have to succeed for a term to be found.
struct TermLookUps
{
    std::vector<KeyLookUp> keys; ///< never empty
    bool exact = true;           ///< false: what they find has to be tested against the document
};
[[nodiscard]] TermLookUps contentLookUps(const FoldedText &term);
[[nodiscard]] TermLookUps titleLookUps(const FoldedText &term);

} // namespace tomelet
