// SPDX-License-Identifier: GPL-3.0-or-later
// The text index as a running program has it: kept current from the routed changes of files, and asked, on threads of
// its own. All members are called on the main thread.
#pragma once

#include "foundation/NotificationCenter.h"
#include "foundation/SerialQueue.h"
#include "organising/search/Query.h"

#include <QObject>
#include <QSet>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace tomelet {

class SearchIndex;

class FileIndex
{
public:
    FileIndex();
    /// Stops what is under way; what was read stays in the index.
    ~FileIndex();

    /// Brings the index of the root in force up to date and follows its changes from now on. To be called at start and
    /// after each change of the root.
    void present();

    /// What is to be done on the main thread with what was made of the hits.
    using Shown = std::function<void()>;
    /// Searches below a folder; `prepare` gets the full paths of the hits, in no order, on the thread of the search,
    /// and answers with what comes on the main thread. A search under way is stopped first, and its answer never comes.
    /// While the index is being made, or where there can be none, the documents are read one by one.
    void search(const SearchQuery &query, const QString &scope, std::function<Shown(const QStringList &)> prepare);
    /// Has something else prepared there, in place of what is under way.
    void prepare(const std::function<Shown()> &work);
    void stopSearch();
    [[nodiscard]] bool isSearching() const { return m_search != nullptr; }

    /// Waits until the index knows of all changes that were told so far.
    void settle();

    /// Told how far the work on the index is: documents read and to be read; equal when there is none any more.
    std::function<void(qsizetype done, qsizetype all)> onProgress;

private:
    struct Notebook;
    using Stop = std::shared_ptr<std::atomic_bool>;
    void run(std::function<Shown(const Stop &stop)> work);
    void noteChange(const QString &path);
    void takeChanges();
    void update(const QStringList &paths);
    void tellProgress(qsizetype done, qsizetype all);

    QObject m_mainThread; // receives what the other threads hand over; nothing comes once it is gone
    std::shared_ptr<Notebook> m_notebook;
    Stop m_search; // set to stop it; null while there is none
    QSet<QString> m_changed;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
    SerialQueue m_updates;
    SerialQueue m_searches;
};

} // namespace tomelet
