// SPDX-License-Identifier: GPL-3.0-or-later
// What is searched for, and the plain test of one document that says what a hit is. The index answers the same.
#pragma once

#include "organising/search/FoldedText.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace tomelet {

/// The terms of a text as it is typed: what stands in quotes of any kind is one term, everything else is split at
/// blanks. A quote without its partner makes the rest of the text one term.
[[nodiscard]] QStringList tm_arrayOfSearchTermsInString(const QString &text);

enum class SearchMode { TitleAndContent, Title, Content };
/// By the settings `searchTitle` and `searchContent`; the title goes first.
[[nodiscard]] SearchMode searchModeOfSettings();

/// A term as it may stand in a name, and in a content. There it begins with a word, so a blank in front of one says
/// nothing, and is left out. Neither is empty.
struct SearchTerm
{
    FoldedText inName;
    FoldedText inContent;
};

/// Terms that all have to be found, each in the name or in the content as the mode tells.
struct SearchQuery
{
    std::vector<SearchTerm> terms;
    SearchMode mode = SearchMode::TitleAndContent;
};
[[nodiscard]] SearchQuery makeSearchQuery(const QStringList &terms, SearchMode mode);

/// Whether a document is a hit: a term is found anywhere in its name, or in its content from the beginning of a word.
/// Both are folded; the content is asked for only where it is needed. False for a query without terms.
[[nodiscard]] bool matchesQuery(const SearchQuery &query, const std::string &name,
                                const std::function<const FoldedText &()> &content);

} // namespace tomelet
