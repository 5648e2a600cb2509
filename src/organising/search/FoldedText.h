// SPDX-License-Identifier: GPL-3.0-or-later
// A text as search sees it: case and accents folded, runs of white space one blank, and the places where words begin.
#pragma once

#include <QString>

#include <string>
#include <string_view>
#include <vector>

namespace tomelet {

/// What a character is to search. Dense writing (Chinese, Japanese, Thai and their like) puts no blanks between words.
enum class SearchKind : quint8 { Blank, Sign, Letter, Dense };

/// UTF-8; each byte of `text` has its kind in `kinds`, and `starts` tells whether a word begins at it.
struct FoldedText
{
    std::string text;
    std::vector<SearchKind> kinds;
    std::vector<char> starts;
};

/// Compatibility forms and case are folded (NFKC_Casefold), accents and points removed, control characters blanks.
/// A word begins where letters follow something else, at each sign, and within dense writing where ICU's dictionaries
/// say so.
[[nodiscard]] FoldedText foldedForSearch(const QString &text);

/// A byte of UTF-8 other than a character's first.
[[nodiscard]] constexpr bool isWithinCharacter(char byte)
{
    return (byte & '\xc0') == '\x80';
}
/// Where the character after the one at `position` begins.
[[nodiscard]] constexpr size_t nextCharacter(std::string_view text, size_t position)
{
    do ++position;
    while (position < text.size() && isWithinCharacter(text[position]));
    return position;
}

/// What an ASCII character is to search.
[[nodiscard]] SearchKind kindOfAscii(char character);

/// Whether the term stands in the text so that it begins where a word begins.
[[nodiscard]] bool beginsWordIn(const FoldedText &text, std::string_view term);

} // namespace tomelet
