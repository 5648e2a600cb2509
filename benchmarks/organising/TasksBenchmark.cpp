// SPDX-License-Identifier: GPL-3.0-or-later
// 500 tasklists with 20,000 tasks in a notebook of 100,000 documents: the due list, its counts, a rebuild of
// all reminders, a recount of everything and the walk for all tasklists; beside them, as a peer, reading and
// parsing the same stores alone.
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyList.h"
#include "foundation/PropertyStore.h"
#include "foundation/SafeWriter.h"
#include "library/ItemPath.h"
#include "organising/NotebookOrganiser.h"
#include "organising/dates/Reminders.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskRows.h"
#include "organising/tasks/TaskStore.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <fstream>

using namespace tomelet;

namespace {

constexpr int books = 2000;
constexpr int documentsOfBook = 50;
constexpr int tasklists = 500;
constexpr int tasksOfList = 40;

// One task of ten is overdue, four have a date to come, one of these comes again; the others are open or
// done.
TaskRecord recordOf(int number, const QDateTime &now)
{
    TaskRecord record{{taskField::changed, now.addDays(-number % 300)}};
    const int kind = number % 10;
    if (kind == 0) record.insert(taskField::dueDate, now.addDays(-1 - number % 50));
    else if (kind < 5) record.insert(taskField::dueDate, now.addSecs(3600 + number * 613));
    else if (kind < 8) record.insert(taskField::state, QStringLiteral("done"));
    if (kind != 1) return record;
    record.insert(taskField::repeatType, QStringLiteral("when due"));
    record.insert(taskField::repeatUnit, QStringLiteral("week"));
    record.insert(taskField::repeatFactor, QStringLiteral("2"));
    return record;
}

class GeneratedNotebook
{
public:
    GeneratedNotebook()
    {
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qputenv(variable, m_folder.filePath(QString::fromLatin1(variable)).toUtf8());
        auto made = std::make_unique<Platform>();
        made->settings = makeMemorySettings();
        made->settings->setObject(QStringLiteral("TomeletFolder"), m_folder.filePath(QStringLiteral("root")));
        setPlatform(std::move(made));
        makeFolder(m_folder.filePath(QStringLiteral("root")));
        installNotebookOrganiser();
        for (int book = 0; book < books; ++book) fill(book);
        updateListOfTasklistsQuick();
        // Fresh stores have no counters yet; from here on only what changes is written.
        for (const QString &list : knownTasklists()) tm_correctTaskCountAtPath(fullPathOf(list));
        tm_repostAllNotifications();
    }
    ~GeneratedNotebook() { setPlatform(nullptr); }

private:
    static void fill(int number)
    {
        const QString book = tomeletRoot() + QStringLiteral("/Shelf %1/Book %2").arg(number / 50).arg(number);
        makeFolder(book);
        QVariantMap store;
        const QDateTime now = platform().clock.now();
        for (int i = 0; i < documentsOfBook; ++i) {
            const QString name = QStringLiteral("Some document %1.md").arg(i);
            std::ofstream(joinPath(book, name).toStdString()) << "# A heading\n\nSome text.\n";
            if (i < tasksOfList) store.insert(name, recordOf(number * tasksOfList + i, now));
        }
        if (number % (books / tasklists) != 0) return;
        const QByteArray bytes = xmlPropertyList(store);
        std::ofstream(taskStorePath(book).toStdString()).write(bytes.constData(), bytes.size());
    }

    QTemporaryDir m_folder;
};

void prepare()
{
    static const GeneratedNotebook notebook;
}

void peerReadsTheStores(benchmark::State &state)
{
    prepare();
    const QStringList lists = knownTasklists();
    qint64 bytes = 0;
    for (auto _ : state)
        for (const QString &list : lists) {
            const auto data = readFile(taskStorePath(tomeletRoot() + list));
            bytes += data->size();
            benchmark::DoNotOptimize(parsePropertyList(*data));
        }
    state.SetBytesProcessed(bytes);
}

void dueList(benchmark::State &state)
{
    prepare();
    qsizetype rows = 0;
    for (auto _ : state) rows = tm_arrayOfDueTasksAsNumbers(tomeletRoot(), false).size();
    state.counters["rows"] = double(rows);
}

// As in the morning: in every list some task has become overdue since its counters were written.
void dueListPutsAllCountersRight(benchmark::State &state)
{
    prepare();
    for (auto _ : state) {
        state.PauseTiming();
        StoreBatch stores;
        for (const QString &list : knownTasklists())
            stores.change(taskStorePath(tomeletRoot() + list), [](QVariantMap &store) {
                store.insert(QStringLiteral("__DueItemCount__"), QStringLiteral("0"));
                return true;
            });
        stores.flush();
        state.ResumeTiming();
        benchmark::DoNotOptimize(tm_arrayOfDueTasksAsNumbers(tomeletRoot(), false));
    }
}

void dueCounts(benchmark::State &state)
{
    prepare();
    for (auto _ : state) benchmark::DoNotOptimize(countDueTasks(tomeletRoot()));
}

void rebuildReminders(benchmark::State &state)
{
    prepare();
    for (auto _ : state) tm_repostAllNotifications();
    state.counters["reminders"] = double(scheduledReminders().size());
}

void recountAll(benchmark::State &state)
{
    prepare();
    for (auto _ : state)
        for (const QString &list : knownTasklists()) tm_correctTaskCountAtPath(tomeletRoot() + list);
}

void walkForTasklists(benchmark::State &state)
{
    prepare();
    for (auto _ : state) updateListOfTasklistsQuick();
}

} // namespace

BENCHMARK(peerReadsTheStores)->Unit(benchmark::kMillisecond);
BENCHMARK(dueList)->Unit(benchmark::kMillisecond);
BENCHMARK(dueListPutsAllCountersRight)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(dueCounts)->Unit(benchmark::kMillisecond);
BENCHMARK(rebuildReminders)->Unit(benchmark::kMillisecond);
BENCHMARK(recountAll)->Unit(benchmark::kMillisecond);
BENCHMARK(walkForTasklists)->Unit(benchmark::kMillisecond);

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
