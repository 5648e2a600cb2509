// SPDX-License-Identifier: GPL-3.0-or-later
// A library of 2,000 books and 100,000 documents: the first walk, and a burst of 10,000 changes by another
// program, beside what the changes alone cost.
#include "foundation/FilePresenter.h"

#include <QString>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <set>

using namespace tomelet;
namespace fs = std::filesystem;

namespace {

constexpr int books = 2000;
constexpr int documentsOfBook = 50;
constexpr int burst = 10000;

class Library
{
public:
    Library()
    {
        for (int book = 0; book < books; ++book) {
            fs::create_directory(folder() / std::to_string(book));
            for (int i = 0; i < documentsOfBook; ++i) write(book, i);
        }
    }

    ~Library() { fs::remove_all(folder()); }
    fs::path folder() const { return m_temporary.path().toStdString(); }
    QString path() const { return m_temporary.path(); }
    void write(int book, int i) const
    {
        std::ofstream(folder() / std::to_string(book) / ("Document " + std::to_string(i) + ".md")) << "text";
    }
    void writeBurst() const
    {
        for (int i = 0; i < burst; ++i) write(i % books, i / books);
    }

private:
    QTemporaryDir m_temporary;
};

const Library &library()
{
    static const Library library;
    return library;
}

void firstWalk(benchmark::State &state)
{
    const QString path = library().path();
    for (auto _ : state) {
        const auto presenter = makeFilePresenter({});
        presenter->present(path);
        presenter->settle();
    }
}
BENCHMARK(firstWalk)->Unit(benchmark::kMillisecond)->UseRealTime();

void presentReturns(benchmark::State &state)
{
    const QString path = library().path();
    for (auto _ : state) {
        auto presenter = makeFilePresenter({});
        presenter->present(path);
        state.PauseTiming();
        presenter->settle();
        presenter.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(presentReturns)->Unit(benchmark::kMicrosecond)->UseRealTime()->Iterations(5);

void changesAlone(benchmark::State &state)
{
    for (auto _ : state) library().writeBurst();
    state.SetItemsProcessed(state.iterations() * burst);
}
BENCHMARK(changesAlone)->Unit(benchmark::kMillisecond)->UseRealTime();

void changesReported(benchmark::State &state)
{
    std::set<QString> seen;
    const auto presenter = makeFilePresenter({[&](const QString &path) { seen.insert(path); }, {}, {}});
    presenter->present(library().path());
    presenter->settle();
    size_t lost = 0;
    for (auto _ : state) {
        seen.clear();
        library().writeBurst();
        presenter->settle();
        lost += burst - seen.size();
    }
    state.SetItemsProcessed(state.iterations() * burst);
    state.counters["lost"] = double(lost);
}
BENCHMARK(changesReported)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
