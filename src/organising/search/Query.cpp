// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/Query.h"

#include "foundation/Log.h"
#include "foundation/Platform.h"

#include <algorithm>

namespace tomelet {

static QStringList splitAtBlanks(const QString &text)
{
    return text.simplified().split(u' ', Qt::SkipEmptyParts);
}

QStringList tm_arrayOfSearchTermsInString(const QString &text)
{
    QString plain = text;
    for (QChar &unit : plain)
        if (QStringView(u"„“”«»").contains(unit)) unit = u'"';
    QStringList terms;
    bool quoted = false;
    for (const QString &piece : plain.split(u'"')) {
        terms += quoted ? QStringList{piece} : splitAtBlanks(piece);
        quoted = !quoted;
    }
    terms.removeAll(QString());
    logLine(QStringLiteral("search components in string: %1").arg(terms.join(QStringLiteral(", "))));
    return terms;
}

SearchMode searchModeOfSettings()
{
    if (settings().boolean(QStringLiteral("searchTitle"))) return SearchMode::Title;
    return settings().boolean(QStringLiteral("searchContent")) ? SearchMode::Content : SearchMode::TitleAndContent;
}

static FoldedText withoutFirstByte(const FoldedText &text)
{
    return {
        text.text.substr(1), {text.kinds.begin() + 1, text.kinds.end()}, {text.starts.begin() + 1, text.starts.end()}};
}

SearchQuery makeSearchQuery(const QStringList &terms, SearchMode mode)
{
    SearchQuery query{{}, mode};
    for (const QString &term : terms) {
        FoldedText folded = foldedForSearch(term);
        if (folded.text.empty()) continue;
        FoldedText inContent = folded.text.size() > 1 && folded.text[0] == ' ' ? withoutFirstByte(folded) : folded;
        query.terms.push_back({std::move(folded), std::move(inContent)});
    }
    return query;
}

bool matchesQuery(const SearchQuery &query, const std::string &name, const std::function<const FoldedText &()> &content)
{
    const auto isFound = [&](const SearchTerm &term) {
        if (query.mode != SearchMode::Content && name.find(term.inName.text) != std::string::npos) return true;
        return query.mode != SearchMode::Title && beginsWordIn(content(), term.inContent.text);
    };
    return !query.terms.empty() && std::ranges::all_of(query.terms, isFound);
}

} // namespace tomelet
