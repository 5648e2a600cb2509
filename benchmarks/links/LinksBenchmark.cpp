// SPDX-License-Identifier: GPL-3.0-or-later
// Contexts and links of a large notebook: 100,000 documents with two links each, every fifth with contexts. The walks
// run on a tenth of it as well, so that the growth of their cost shows. Beside the rename of a document with 1,000
// referrers stand ripgrep, sed and mv on an equal set of files.
#include "foundation/Platform.h"
#include "library/ItemOperations.h"
#include "library/Properties.h"
#include "organising/NotebookOrganiser.h"
#include "organising/contexts/Contexts.h"
#include "organising/links/LinkWalks.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace tomelet;
namespace fs = std::filesystem;

namespace {

constexpr int documentsOfBook = 50;
constexpr int contexts = 100;
constexpr int referrers = 1000;
constexpr int documentsOfMovedBook = 5000;

std::string nameOf(int document)
{
    return "Note " + std::to_string(document) + ".md";
}

std::string bookOf(int document)
{
    return "Book " + std::to_string(document / documentsOfBook);
}

void write(const fs::path &path, const std::string &text)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

std::string tags(int document)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n\t<key>Tags</key>\n\t<array>\n"
           "\t\t<string>@word" +
           std::to_string(document / 5 % contexts) + "</string>\n\t</array>\n</dict>\n</plist>\n";
}

// Each document links to the next one of its book by a relative path and to a distant one by a full path.
void makeNotebook(const fs::path &root, int documents)
{
    for (int i = 0; i < documents; ++i) {
        const int near = i / documentsOfBook * documentsOfBook + (i + 1) % documentsOfBook;
        const int far = static_cast<int>((static_cast<long>(i) * 7919 + 13) % documents);
        const fs::path path = root / bookOf(i) / nameOf(i);
        write(path, "# Note\n\nSome text with a [link](" + nameOf(near) + ") in it.\n\nAnd more, see [[/" +
                        bookOf(far) + "/" + nameOf(far) + "]].\n");
        if (i % 5 == 0) write(path.string() + ".plist", tags(i));
    }
}

void useNotebook(const fs::path &root)
{
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    made->settings->setObject(QStringLiteral("TomeletFolder"), QString::fromStdString(root.string()));
    made->settings->setObject(QStringLiteral("manageLinks"), true);
    made->settings->setObject(QStringLiteral("contextsEnabled"), true);
    made->trash = makeDesktopTrash();
    setPlatform(std::move(made));
    installNotebookOrganiser();
}

double secondsOf(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    drainPendingWork();
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

double secondsOfCommand(const std::string &command)
{
    return secondsOf([&] {
        if (std::system(command.c_str()) != 0) std::fprintf(stderr, "failed: %s\n", command.c_str());
    });
}

struct Walks
{
    double contexts = 0;
    double contextsAgain = 0;
    double links = 0;
    double again = 0;
};

Walks walks(const fs::path &root)
{
    useNotebook(root);
    Walks seconds;
    RefreshedLinks found;
    seconds.contexts = secondsOf([] { tm_refreshContexts(); });
    seconds.contextsAgain = secondsOf([] { tm_refreshContexts(); });
    const QString path = QString::fromStdString(root.string());
    seconds.links = secondsOf([&] { found = tm_refreshAllBacklinksStartingAtReferenceDate(path, false); });
    seconds.again = secondsOf([&] { found = tm_refreshAllBacklinksStartingAtReferenceDate(path, false); });
    std::printf("%lld documents, %lld links: contexts %.2f s, again %.2f s, backlinks %.2f s, backlinks again %.2f s\n",
                static_cast<long long>(found.documents), static_cast<long long>(found.links), seconds.contexts,
                seconds.contextsAgain, seconds.links, seconds.again);
    return seconds;
}

void itemsOfContext()
{
    qsizetype items = 0;
    constexpr int rounds = 20;
    const double seconds = secondsOf([&] {
        for (int i = 0; i < rounds; ++i) items = tm_listOfAllItemsForTag(QStringLiteral("@word7")).size();
    });
    std::printf("items of a context: %.1f ms for %lld items\n", seconds * 1000 / rounds, static_cast<long long>(items));
}

void makeReferrers(const fs::path &book)
{
    write(book / "Target.md", "# Target\n");
    for (int i = 0; i < referrers; ++i)
        write(book / ("Referrer " + std::to_string(i) + ".md"), "# Referrer\n\nSee [it](Target.md) and more.\n");
}

void renameWithReferrers(const fs::path &root)
{
    const fs::path book = root / "Referrers";
    makeReferrers(book);
    const QString path = QString::fromStdString(book.string());
    tm_refreshAllBacklinksStartingAtReferenceDate(path, false);
    const double ours = secondsOf(
        [&] { tm_moveItemToPath(path + QStringLiteral("/Target.md"), path + QStringLiteral("/Other Name.md")); });
    std::printf("rename of a document with %d referrers: %.2f s\n", referrers, ours);

    const fs::path other = root / "Peer";
    makeReferrers(other);
    const double peer = secondsOfCommand("cd '" + other.string() +
                                         "' && mv Target.md 'Other Name.md' && "
                                         "rg -l0F Target.md . | xargs -0 sed -i 's/(Target.md)/(Other Name.md)/'");
    const double synced = secondsOfCommand("sync -f '" + other.string() + "'");
    std::printf("the same by ripgrep, sed and mv: %.2f s, and %.2f s until it is on the disk\n", peer, synced);
}

void renameBook(const fs::path &root)
{
    const fs::path book = root / "Moving";
    for (int i = 0; i < documentsOfMovedBook; ++i)
        write(book / nameOf(i), "# Note\n\nSee [it](" + nameOf((i + 1) % documentsOfMovedBook) + ") and [[/Moving/" +
                                    nameOf((i + 7) % documentsOfMovedBook) + "]].\n");
    const QString path = QString::fromStdString(book.string());
    tm_refreshAllBacklinksStartingAtReferenceDate(path, false);
    const double ours = secondsOf([&] { tm_moveItemToPath(path, path + QStringLiteral(" On")); });
    std::printf("rename of a book of %d documents: %.2f s\n", documentsOfMovedBook, ours);
}

} // namespace

int main(int argc, char **argv)
{
    QStandardPaths::setTestModeEnabled(true);
    const QCoreApplication application(argc, argv);
    const int large = argc > 1 ? std::atoi(argv[1]) : 100000;
    QTemporaryDir smallFolder;
    makeNotebook(smallFolder.path().toStdString(), large / 10);
    const Walks less = walks(smallFolder.path().toStdString());
    QTemporaryDir largeFolder;
    makeNotebook(largeFolder.path().toStdString(), large);
    const Walks more = walks(largeFolder.path().toStdString());
    std::printf("growth from a tenth: contexts %.1f, again %.1f, backlinks %.1f, again %.1f\n",
                more.contexts / less.contexts, more.contextsAgain / less.contextsAgain, more.links / less.links,
                more.again / less.again);
    itemsOfContext();
    renameWithReferrers(largeFolder.path().toStdString());
    renameBook(largeFolder.path().toStdString());
}
