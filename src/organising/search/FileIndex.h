// SPDX-License-Identifier: GPL-3.0-or-later
// The text index as a running program has it: kept current from the routed changes of files, and asked, on threads of
// its own. All members are called on the main thread, and all callbacks come there.
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

    /// Searches below a folder; `done` gets the full paths of the hits, in no order. A search under way is stopped
    /// first, and its callback never comes. While the index is being made, or where there can be none, the documents
    /// are read one by one.
    void search(const SearchQuery &query, const QString &scope, std::function<void(const QStringList &)> done);
    void stopSearch();
    [[nodiscard]] bool isSearching() const { return m_search != nullptr; }

    /// Waits until the index knows of all changes that were told so far.
    void settle();

    /// Told how far the work on the index is: documents read and to be read; equal when there is none any more.
    std::function<void(qsizetype done, qsizetype all)> onProgress;

private:
    struct Notebook;
    void noteChange(const QString &path);
    void takeChanges();
    void update(const QStringList &paths);
    void tellProgress(qsizetype done, qsizetype all);

    QObject m_mainThread; // receives what the other threads hand over; nothing comes once it is gone
    std::shared_ptr<Notebook> m_notebook;
    std::shared_ptr<std::atomic_bool> m_search; // set to stop it; null while there is none
    QSet<QString> m_changed;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
    SerialQueue m_updates;
    SerialQueue m_searches;
};

} // namespace tomelet
