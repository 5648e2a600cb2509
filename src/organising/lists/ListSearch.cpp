// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/lists/ListSearch.h"

#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/OutlineItem.h"
#include "library/Root.h"
#include "organising/search/FileIndex.h"
#include "organising/search/SearchResults.h"

namespace tomelet {

using namespace std::chrono_literals;

static const QString delayedName = QStringLiteral("startSpotlightSearchWithString:");

ListSearch::ListSearch(TMLTDocumentListViewController &list, FileIndex &index, SearchFieldView &view)
    : m_list(list)
    , m_index(index)
    , m_view(view)
    , m_origin(list.source())
{
    m_subscription = notifications().observe(
        QStringLiteral("TMStartSpotlightSearchNotification"), [this](const QVariantMap &payload) {
            handleStartSpotlightSearchNotification(payload.value(QStringLiteral("term")).toString());
        });
}

ListSearch::~ListSearch()
{
    stop();
}

bool ListSearch::showsResults() const
{
    return m_list.source().smartType == SearchResultsBook;
}

bool ListSearch::canSearch() const
{
    const int type = m_list.source().smartType;
    return type == OrdinaryBook || type == InboxBook || type == SearchResultsBook;
}

void ListSearch::stop()
{
    platform().delayedCalls.cancel(delayedName, {});
    m_index.stopSearch();
    m_view.showStatus({});
}

void ListSearch::leave()
{
    stop();
    m_list.searchFilter.clear();
    m_view.showSearchOptions();
}

void ListSearch::searchFieldDidChange(const QString &text)
{
    stop();
    if (text.isEmpty()) return fieldWasEmptied();
    if (!showsResults() && m_list.searchFilter != text) {
        m_list.searchFilter = text;
        m_view.hideSearchOptions();
        m_view.reloadList();
    }
    platform().delayedCalls.schedule(delayedName, {}, 300ms, [this, text] { startSpotlightSearchWithString(text); });
}

void ListSearch::fieldWasEmptied()
{
    const bool filtered = !m_list.searchFilter.isEmpty();
    m_list.searchFilter.clear();
    m_view.showSearchOptions();
    if (showsResults()) m_list.setSource(m_origin);
    else if (!filtered) return;
    m_view.reloadList();
}

void ListSearch::startSpotlightSearchWithString(const QString &text)
{
    stop();
    if (!canSearch()) return;
    const SearchQuery query = makeSearchQuery(tm_arrayOfSearchTermsInString(text), searchModeOfSettings());
    if (query.terms.empty()) return;
    if (!showsResults()) m_origin = m_list.source();
    const QString scope = searchScope(m_origin.smartType == InboxBook ? inboxFolder() : m_origin.book);
    m_view.showStatus(localized(TOMELET_TEXT("Searching...")));
    m_index.search(query, scope, [this, text, scope](const QStringList &paths) {
        const QList<QVariantMap> rows = rowsOfSearchResults(storeSearchResults(paths));
        return [this, text, scope, rows] { queryDidFinishGathering(text, scope, rows); };
    });
}

void ListSearch::reloadResults()
{
    if (!showsResults() || m_index.isSearching()) return;
    m_index.prepare([this] {
        const QList<QVariantMap> rows = rowsOfSearchResults(lastSearchResults());
        return [this, rows] {
            if (!showsResults()) return;
            m_list.setRowsOfSearchResults(rows);
            m_view.reloadList();
        };
    });
}

void ListSearch::queryDidFinishGathering(const QString &text, const QString &scope, const QList<QVariantMap> &rows)
{
    m_view.showStatus({});
    m_header = searchResultsHeader(text, scope, rows.size());
    if (!TMLTOutlineItem::smartBookOfType(SearchResultsBook))
        TMLTOutlineItem::insertSmartChildOfType(SearchResultsBook);
    m_list.searchFilter.clear();
    m_view.showSearchOptions(); // nothing is filtered any more
    m_list.setSource({m_origin.book, SearchResultsBook, {}});
    m_list.setRowsOfSearchResults(rows);
    m_view.reloadList();
}

// Wherever the search comes from, the book on display is its scope; a computed list stands for the whole notebook.
void ListSearch::handleStartSpotlightSearchNotification(const QString &term)
{
    if (!canSearch()) m_list.setSource({tomeletRoot(), OrdinaryBook, {}});
    m_view.showTerm(term);
    startSpotlightSearchWithString(term);
}

} // namespace tomelet
