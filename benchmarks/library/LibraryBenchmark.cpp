// SPDX-License-Identifier: GPL-3.0-or-later
// A notebook of 100,000 documents in 2,000 books, and one book more with 10,000 documents and a property file on every
// tenth: start, tree, lists, memory, and a burst of changes by another program; each beside a peer where there is one.
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/OutlineController.h"
#include "library/OutlineItem.h"
#include "organising/lists/DocumentList.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSet>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tomelet;
namespace fs = std::filesystem;

namespace {

constexpr int topBooks = 100;
constexpr int booksBelowEach = 19; // 100 + 100 * 19 = 2,000
constexpr int documentsOfBook = 50;
constexpr int documentsOfLargeBook = 10000;
constexpr int burst = 10000;

class GeneratedNotebook
{
public:
    GeneratedNotebook()
    {
        for (int top = 0; top < topBooks; ++top) {
            fill(root() / ("Book " + std::to_string(top)), documentsOfBook);
            for (int below = 0; below < booksBelowEach; ++below)
                fill(root() / ("Book " + std::to_string(top)) / ("Part " + std::to_string(below)), documentsOfBook);
        }
        fill(largeBook(), documentsOfLargeBook);
        for (int i = 0; i < documentsOfLargeBook; i += 10) write(documentOf(largeBook(), i).string() + ".plist", plist);
    }

    [[nodiscard]] fs::path root() const { return m_folder.path().toStdString(); }
    [[nodiscard]] fs::path largeBook() const { return root() / "Large"; }
    [[nodiscard]] static fs::path documentOf(const fs::path &book, int i)
    {
        return book / ("Document " + std::to_string(i * 7919 % documentsOfLargeBook) + ".md");
    }
    static void write(const fs::path &path, const char *text) { std::ofstream(path) << text; }

private:
    static void fill(const fs::path &book, int documents)
    {
        fs::create_directories(book);
        for (int i = 0; i < documents; ++i) write(documentOf(book, i), "# A heading\n\nSome text.\n");
    }

    static constexpr auto plist = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n"
                                  "\t<key>CreationDate</key>\n\t<date>2026-01-01T08:00:00Z</date>\n"
                                  "\t<key>cellColor</key>\n\t<string>red</string>\n</dict>\n</plist>\n";
    QTemporaryDir m_folder;
};

const GeneratedNotebook &notebook()
{
    static const GeneratedNotebook made;
    return made;
}

QString text(const fs::path &path)
{
    return QString::fromStdString(path.string());
}

void usePlatform()
{
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    made->settings->setObject(QStringLiteral("TomeletFolder"), text(notebook().root()));
    made->settings->setObject(QStringLiteral("useNumericOrder"), true);
    made->trash = makeDesktopTrash();
    setPlatform(std::move(made));
    TMLTOutlineItem::rootItem()->resetAllChildren();
}

// -- whole programs ---------------------------------------------------------------------------------------------------

pid_t start(std::vector<std::string> words)
{
    std::vector<char *> arguments;
    for (std::string &word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) child = -1;
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

void program(benchmark::State &state, const std::vector<std::string> &words)
{
    for ([[maybe_unused]] const auto _ : state) {
        int status = -1;
        const pid_t child = start(words);
        if (child < 0 || ::waitpid(child, &status, 0) != child || status != 0) {
            state.SkipWithError("the program failed");
            return;
        }
    }
}

double residentMegabytes(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:")) return std::stod(line.substr(6)) / 1024;
    return 0;
}

// `tomelet watch` holds the core with the whole notebook under its eyes; the most that it holds over six seconds.
void residentMemory(benchmark::State &state)
{
    for ([[maybe_unused]] const auto _ : state) {
        const pid_t child = start({TOMELET_PROGRAM, "--root", notebook().root(), "watch"});
        double most = 0;
        for (int i = 0; i < 12; ++i) {
            ::usleep(500000);
            most = std::max(most, residentMegabytes(child));
        }
        state.counters["MB"] = most;
        ::kill(child, SIGTERM);
        ::waitpid(child, nullptr, 0);
    }
}

// -- in the process ---------------------------------------------------------------------------------------------------

void treeFirstLevel(benchmark::State &state)
{
    usePlatform();
    for ([[maybe_unused]] const auto _ : state) {
        TMLTOutlineItem::rootItem()->resetAllChildren();
        TMLTOutlineItem::smartBooksItem()->children();
        benchmark::DoNotOptimize(TMLTOutlineItem::booksItem()->children());
        for (const auto &book : *TMLTOutlineItem::booksItem()->children())
            benchmark::DoNotOptimize(book->mayHaveChildren());
    }
    state.counters["books"] = double(TMLTOutlineItem::booksItem()->numberOfChildren());
}

void treeFirstLevelPeer(benchmark::State &state)
{
    for ([[maybe_unused]] const auto _ : state)
        for (const auto &entry : fs::directory_iterator(notebook().root()))
            benchmark::DoNotOptimize(entry.is_directory());
}

void listLargeBook(benchmark::State &state, const char *order)
{
    usePlatform();
    TMLTDocumentListViewController list;
    for ([[maybe_unused]] const auto _ : state) {
        list.setSource({text(notebook().largeBook()), OrdinaryBook, {}});
        list.sortOrder = QString::fromLatin1(order);
        list.getDocumentsInFolder();
    }
    state.counters["rows"] = double(list.documentsList.size());
}

// What any list must do at the least: read the names and ask each file for its dates.
void listLargeBookPeer(benchmark::State &state)
{
    for ([[maybe_unused]] const auto _ : state)
        for (const auto &entry : fs::directory_iterator(notebook().largeBook())) {
            struct stat status
            {};
            benchmark::DoNotOptimize(::stat(entry.path().c_str(), &status));
        }
}

// Each document changed by another program must be told of at least once.
void routeBurst(benchmark::State &state)
{
    usePlatform();
    OutlineView view;
    TMLTOutlineController controller(view);
    controller.initFileCoordinationAndTaskLists();
    controller.settle();
    QSet<QString> told;
    const auto subscription =
        notifications().observe(QStringLiteral("TMLTFileModifiedOnDiskNotification"), [&](const QVariantMap &payload) {
            told.insert(payload.value(QStringLiteral("path")).toString());
        });
    double lost = 0;
    double queued = 0;
    for ([[maybe_unused]] const auto _ : state) {
        told.clear();
        for (int i = 0; i < burst; ++i)
            GeneratedNotebook::write(
                GeneratedNotebook::documentOf(notebook().root() / ("Book " + std::to_string(i % topBooks)),
                                              i / topBooks % documentsOfBook + (i / 5000) * 100),
                "changed");
        controller.settle();
        drainPendingWork();
        QSet<QString> changed;
        for (int i = 0; i < burst; ++i)
            changed.insert(
                text(GeneratedNotebook::documentOf(notebook().root() / ("Book " + std::to_string(i % topBooks)),
                                                   i / topBooks % documentsOfBook + (i / 5000) * 100)));
        lost += double((changed - told).size());
        queued = platform().delayedCalls.isEmpty() ? 0 : 1;
        state.counters["files"] = double(changed.size());
    }
    state.counters["lost"] = lost;
    state.counters["left waiting"] = queued;
}

void routeBurstPeer(benchmark::State &state)
{
    for ([[maybe_unused]] const auto _ : state)
        for (int i = 0; i < burst; ++i)
            GeneratedNotebook::write(
                GeneratedNotebook::documentOf(notebook().root() / ("Book " + std::to_string(i % topBooks)),
                                              i / topBooks % documentsOfBook + (i / 5000) * 100),
                "changed");
}

benchmark::internal::Benchmark *add(const std::string &name, const std::function<void(benchmark::State &)> &function)
{
    return benchmark::RegisterBenchmark(name.c_str(), function)->Unit(benchmark::kMillisecond)->UseRealTime();
}

void addProgram(const std::string &name, std::vector<std::string> words)
{
    add(name, [words](benchmark::State &state) { program(state, words); });
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QTemporaryDir world;
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
        qputenv(variable, (world.path() + u'/' + QLatin1StringView(variable)).toUtf8());

    const std::string root = notebook().root();
    const std::string large = notebook().largeBook();
    addProgram("start: tomelet --version", {TOMELET_PROGRAM, "--version"});
    addProgram("start: peer, true", {"true"});
    addProgram("start: peer, git --version", {"git", "--version"});
    add("first level of the tree", treeFirstLevel);
    add("first level of the tree: peer, a plain listing", treeFirstLevelPeer);
    add("book of 10,000 by title", [](benchmark::State &state) { listLargeBook(state, "title"); });
    add("book of 10,000 by date", [](benchmark::State &state) { listLargeBook(state, "modDate"); });
    add("book of 10,000: peer, names and stat", listLargeBookPeer);
    addProgram("book of 10,000: tomelet list", {TOMELET_PROGRAM, "--root", root, "list", "Large"});
    addProgram("book of 10,000: peer, ls -l", {"ls", "-l", large});
    addProgram("book of 10,000: peer, python os.scandir",
               {"python3", "-c",
                "import os,sys\nprint(sorted((e.name, e.stat().st_mtime) for e in os.scandir(sys.argv[1])))", large});
    add("10,000 external changes", routeBurst)->Iterations(3);
    add("10,000 external changes: peer, the writing alone", routeBurstPeer)->Iterations(3);
    add("resident memory of tomelet watch", residentMemory)->Iterations(1);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    setPlatform(nullptr);
    return 0;
}
