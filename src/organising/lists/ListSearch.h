// SPDX-License-Identifier: GPL-3.0-or-later
// The search field above the document list: it filters a book by name while the person types, and searches the
// notebook after a short pause.
#pragma once

#include "foundation/NotificationCenter.h"
#include "organising/lists/DocumentList.h"
#include "organising/search/Query.h"

#include <QString>
#include <QStringList>

namespace tomelet {

class FileIndex;

/// What the search needs of the widgets. The base class is a field that nobody looks at.
class SearchFieldView
{
public:
    virtual ~SearchFieldView() = default;
    /// The list's rows or its source are to be read anew; the list's controller has both.
    virtual void reloadList() {}
    /// A line on what goes on; "" when nothing does.
    virtual void showStatus(const QString &) {}
    /// A search that began elsewhere: its text stands in the field, as if it had been typed there.
    virtual void showTerm(const QString &) {}
    /// The controls for mode and scope. Their state is in the settings.
    virtual void showSearchOptions() {}
    virtual void hideSearchOptions() {}
};

class ListSearch
{
public:
    /// All three outlive the search.
    ListSearch(TMLTDocumentListViewController &list, FileIndex &index, SearchFieldView &view);
    ~ListSearch();

    /// To be called at each edit of the field.
    void searchFieldDidChange(const QString &text);
    /// Searches at once, as for the return key. Does nothing without terms and in smart books other than the results.
    void startSpotlightSearchWithString(const QString &text);
    /// Another list is to be shown: what was searched or filtered for is over.
    void leave();
    /// Reads the rows of the results on display anew, away from the main thread; a search under way brings others.
    void reloadResults();
    /// The line above the results.
    [[nodiscard]] const QString &header() const { return m_header; }

private:
    void handleStartSpotlightSearchNotification(const QString &term);
    void queryDidFinishGathering(const QString &text, const QString &scope, const QList<QVariantMap> &rows);
    void stop();
    void fieldWasEmptied();
    [[nodiscard]] bool showsResults() const;
    [[nodiscard]] bool canSearch() const;

    TMLTDocumentListViewController &m_list;
    FileIndex &m_index;
    SearchFieldView &m_view;
    ListSource m_origin; ///< what was on display when the search began
    QString m_header;
    NotificationCenter::Subscription m_subscription;
};

} // namespace tomelet
