// SPDX-License-Identifier: GPL-3.0-or-later
// `search` and `index`.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/Searching.h"
#include "cli/TerminalProgress.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "library/ItemPath.h"
#include "library/OutlineItem.h"
#include "organising/lists/DocumentList.h"
#include "organising/search/SearchIndex.h"
#include "organising/search/SearchResults.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

namespace tomelet::cli {

namespace {

// Both switches together are what none of them is.
SearchMode modeOf(const QCommandLineParser &parser)
{
    const bool title = parser.isSet(QStringLiteral("title"));
    const bool content = parser.isSet(QStringLiteral("content"));
    if (title && content) return SearchMode::TitleAndContent;
    if (title) return SearchMode::Title;
    return content ? SearchMode::Content : searchModeOfSettings();
}

// No program may be following the notebook, so the index is brought up to date first.
QStringList hitsOf(const Invocation &call, const SearchQuery &query, const QString &scope)
{
    const QString root = tomeletRoot();
    SearchIndex index(root, searchIndexFile());
    const SearchIndex::Update update = index.update(root, terminalProgress(call, QStringLiteral("Indexing")));
    if (update.complete)
        if (const auto hits = index.find(query, scope)) return *hits;
    if (!update.problem.isEmpty()) note(call, QStringLiteral("searching without the index: %1").arg(update.problem));
    return searchByWalk(root, query, scope, terminalProgress(call, QStringLiteral("Searching")));
}

// In the order in which the smart book of results has them.
void printRows(const Invocation &call, const QStringList &hits)
{
    TMLTDocumentListViewController list;
    list.setSource({{}, SearchResultsBook, {}});
    if (!hits.isEmpty()) list.getDocumentsInFolder();
    QJsonArray rows;
    for (const QVariantMap &row : list.documentsList) {
        if (call.json) rows.append(jsonFromVariant(row));
        else writeLine(tm_normalizedPath(row.value(QStringLiteral("path")).toString()));
    }
    if (call.json) writeJson(rows);
}

} // namespace

void searchAndPrint(const Invocation &call, const QString &text, SearchMode mode, const QString &scope)
{
    const SearchQuery query = makeSearchQuery(tm_arrayOfSearchTermsInString(text), mode);
    QStringList hits;
    if (!query.terms.empty()) hits = storeSearchResults(hitsOf(call, query, scope));
    printRows(call, hits);
}

int runSearch(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints the documents that hold all terms; what stands in quotes "
                                                    "is one term. They become the search results."));
    parser.addOptions(
        {{QStringLiteral("title"), QStringLiteral("Search names: each term anywhere in them.")},
         {QStringLiteral("content"), QStringLiteral("Search texts: each term from the beginning of a word.")},
         {QStringLiteral("in"), QStringLiteral("Search one book and the books in it."), QStringLiteral("book")}});
    parser.addPositionalArgument(QStringLiteral("terms"), QStringLiteral("What to search for."),
                                 QStringLiteral("TERM..."));
    if (const auto status = parse(call, parser)) return *status;
    if (parser.positionalArguments().isEmpty())
        return wrongUsage(call, QStringLiteral("search takes what to search for"));
    if (const auto status = openNotebook(call)) return *status;
    const QString scope = itemPath(parser.value(QStringLiteral("in")));
    if (!pathIsPlainBook(scope)) return fail(QStringLiteral("%1 is no book").arg(scope));

    searchAndPrint(call, parser.positionalArguments().join(u' '), modeOf(parser), scope);
    return Done;
}

int runIndex(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Brings the text index up to date."));
    if (const auto status = parse(call, parser)) return *status;
    if (!parser.positionalArguments().isEmpty()) return wrongUsage(call, QStringLiteral("index takes no arguments"));
    if (const auto status = openNotebook(call)) return *status;
    SearchIndex index(tomeletRoot(), searchIndexFile());
    const SearchIndex::Update update = index.update(tomeletRoot(), terminalProgress(call, QStringLiteral("Indexing")));
    if (!update.complete)
        return fail(QStringLiteral("the text index was not brought up to date: %1").arg(update.problem));
    if (call.json)
        writeJson(QJsonObject{{QStringLiteral("read"), static_cast<qint64>(update.read)},
                              {QStringLiteral("removed"), static_cast<qint64>(update.removed)},
                              {QStringLiteral("documents"), static_cast<qint64>(update.documents)}});
    else writeLine(QStringLiteral("%1 of %2 documents read").arg(update.read).arg(update.documents));
    return Done;
}

} // namespace tomelet::cli
