// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/FileIndex.h"

#include "foundation/Platform.h"
#include "library/FileChanges.h"
#include "library/ItemPath.h"
#include "organising/search/SearchIndex.h"

#include <QElapsedTimer>

namespace tomelet {

using namespace std::chrono_literals;

static const QString takeChangesName = QStringLiteral("takeChangesIntoFileIndex");
/// With more changes than these one look at the whole notebook costs less.
constexpr qsizetype manyChanges = 1000;
constexpr qint64 millisecondsBetweenReports = 100;

/// One root with what works on it. A later root gets another one while the jobs of this one come to their end.
struct FileIndex::Notebook
{
    explicit Notebook(const QString &rootPath, const QString &file)
        : root(rootPath)
        , updater(rootPath, file)
        , searcher(rootPath, file)
    {}

    QString root;
    SearchIndex updater;
    SearchIndex searcher;
    std::atomic_bool stopped = false;
};

FileIndex::FileIndex()
    : m_subscriptions(observeFileChanges([this](const QString &path) { noteChange(path); }))
{}

FileIndex::~FileIndex()
{
    platform().delayedCalls.cancel(takeChangesName, {});
    stopSearch();
    if (m_notebook) m_notebook->stopped = true;
}

void FileIndex::present()
{
    stopSearch();
    m_changed.clear();
    if (m_notebook) m_notebook->stopped = true;
    m_notebook = rootIsInForce() ? std::make_shared<Notebook>(tomeletRoot(), searchIndexFile()) : nullptr;
    if (m_notebook) update({m_notebook->root});
}

// -- changes ----------------------------------------------------------------------------------------------------------

// Not put off by further changes: while a program writes without a pause, what it has written is to be found.
void FileIndex::noteChange(const QString &path)
{
    if (!m_notebook || !tm_itemIsChildOfTomelet(path, m_notebook->root)) return;
    const bool waits = !m_changed.isEmpty();
    m_changed.insert(path);
    if (!waits) platform().delayedCalls.schedule(takeChangesName, {}, 200ms, [this] { takeChanges(); });
}

void FileIndex::takeChanges()
{
    const QSet<QString> changed = std::exchange(m_changed, {});
    if (!m_notebook || changed.isEmpty()) return;
    if (changed.size() > manyChanges) update({m_notebook->root});
    else update(QStringList(changed.begin(), changed.end()));
}

void FileIndex::update(const QStringList &paths)
{
    m_updates.add([this, paths, notebook = m_notebook] {
        QElapsedTimer sinceReport;
        const auto report = [&](qsizetype done, qsizetype all) {
            if (!sinceReport.isValid() || sinceReport.elapsed() > millisecondsBetweenReports) {
                sinceReport.start();
                tellProgress(done, all);
            }
            return !notebook->stopped;
        };
        for (const QString &path : paths)
            if (!notebook->stopped) notebook->updater.update(path, report);
        if (sinceReport.isValid()) tellProgress(0, 0);
    });
}

void FileIndex::tellProgress(qsizetype done, qsizetype all)
{
    QMetaObject::invokeMethod(
        &m_mainThread,
        [this, done, all] {
            if (onProgress) onProgress(done, all);
        },
        Qt::QueuedConnection);
}

void FileIndex::settle()
{
    platform().delayedCalls.cancel(takeChangesName, {});
    takeChanges();
    m_updates.drain();
}

// -- searches ---------------------------------------------------------------------------------------------------------

void FileIndex::stopSearch()
{
    if (m_search) *m_search = true;
    m_search.reset();
}

void FileIndex::run(std::function<Shown(const Stop &stop)> work)
{
    stopSearch();
    m_search = std::make_shared<std::atomic_bool>(false);
    m_searches.add([this, work = std::move(work), stop = m_search] {
        if (*stop) return;
        const Shown shown = work(stop);
        const auto show = [this, stop, shown] {
            if (*stop) return;
            m_search.reset();
            shown();
        };
        if (!*stop) QMetaObject::invokeMethod(&m_mainThread, show, Qt::QueuedConnection);
    });
}

void FileIndex::prepare(const std::function<Shown()> &work)
{
    run([work](const Stop &) { return work(); });
}

void FileIndex::search(const SearchQuery &query, const QString &scope,
                       std::function<Shown(const QStringList &)> prepare)
{
    stopSearch();
    if (!m_notebook) return;
    run([query, scope, prepare = std::move(prepare), notebook = m_notebook](const Stop &stop) -> Shown {
        const auto goesOn = [&](qsizetype, qsizetype) { return !*stop; };
        auto hits = notebook->searcher.find(query, scope, goesOn);
        if (!hits && !*stop) hits = searchByWalk(notebook->root, query, scope, goesOn);
        return *stop ? Shown() : prepare(hits.value_or(QStringList()));
    });
}

} // namespace tomelet
