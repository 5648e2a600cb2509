// SPDX-License-Identifier: GPL-3.0-or-later
// The text index of a large notebook: `bench_search [DOCUMENTS] [FOLDER] [KEPT]`, 100,000 documents of 3 KB by default.
// Their text is cut out of the text files of FOLDER where one is given ("" for none), else made of words as frequent as
// those of a language. Beside the first indexing stands a plain SQLite FTS5 table of the same files, read and put by
// the same program. In the folder KEPT notebook and index stay for further runs, which only ask queries; without the
// index they make it anew.
#include "foundation/Platform.h"
#include "library/Root.h"
#include "organising/search/SearchIndex.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tomelet;
namespace fs = std::filesystem;

namespace {

constexpr int documentsOfBook = 50;
constexpr size_t bytesOfDocument = 3000;
constexpr int vocabulary = 60000;
constexpr size_t queries = 300;
constexpr size_t hardQueries = 40;

std::string readAll(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// -- texts ------------------------------------------------------------------------------------------------------------

/// Words with the frequencies of a language: the n-th is used 1/n as often as the first.
class Writer
{
public:
    Writer()
    {
        std::uniform_int_distribution<int> letter('a', 'z');
        std::uniform_int_distribution<int> more(0, 7);
        for (int i = 0; i < vocabulary; ++i) {
            std::string word;
            for (int length = i < 100 ? 1 + i % 4 : 3 + more(m_random); length >= 0; --length)
                word += char(letter(m_random));
            m_words.push_back(word);
        }
    }

    const std::string &word()
    {
        return m_words[size_t(std::exp(std::uniform_real_distribution<>(0, std::log(vocabulary))(m_random)))];
    }

    std::string document()
    {
        std::string text = "# " + word() + ' ' + word() + "\n\n";
        for (int count = 1; text.size() < bytesOfDocument; ++count)
            text += word() + (count % 90 == 0 ? ".\n\n" : count % 13 == 0 ? ". " : count % 7 == 0 ? ", " : " ");
        return text;
    }

    std::mt19937 &random() { return m_random; }

private:
    std::mt19937 m_random{7};
    std::vector<std::string> m_words;
};

/// Pieces of the text files below a folder, over and over.
class Cutter
{
public:
    explicit Cutter(const fs::path &folder)
    {
        for (const auto &entry : fs::recursive_directory_iterator(folder)) {
            const std::string ending = entry.path().extension();
            if (entry.is_regular_file() && (ending == ".md" || ending == ".txt")) m_text += readAll(entry.path());
        }
    }

    std::string document()
    {
        if (m_at + bytesOfDocument > m_text.size()) m_at = size_t(++m_round) * 701;
        m_at += bytesOfDocument;
        return m_text.substr(m_at - bytesOfDocument, bytesOfDocument);
    }

private:
    std::string m_text;
    size_t m_at = 0;
    int m_round = 0;
};

fs::path pathOf(const fs::path &root, int document)
{
    return root / ("Book " + std::to_string(document / documentsOfBook)) / ("Note " + std::to_string(document) + ".md");
}

template <typename Source>
void makeNotebook(const fs::path &root, int documents, Source source)
{
    for (int i = 0; i < documents; ++i) {
        fs::create_directories(pathOf(root, i).parent_path());
        std::ofstream(pathOf(root, i)) << source.document();
    }
}

qint64 sizeOfNotebook(const fs::path &root, int documents)
{
    qint64 bytes = 0;
    for (int i = 0; i < documents; ++i) bytes += qint64(fs::file_size(pathOf(root, i)));
    return bytes;
}

// -- measures ---------------------------------------------------------------------------------------------------------

double secondsOf(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e9;
}

/// Time and memory of work in a process of its own, so that neither peer warms up the other's memory.
void inProcess(const char *what, const std::function<void()> &work)
{
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const double seconds = secondsOf(work);
        struct rusage used
        {};
        getrusage(RUSAGE_SELF, &used);
        std::printf("%-28s %8.2f s %8.1f s of processor %6ld MB\n", what, seconds,
                    double(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
                        double(used.ru_utime.tv_usec + used.ru_stime.tv_usec) / 1e6,
                    used.ru_maxrss / 1024);
        std::fflush(stdout);
        _exit(0);
    }
    waitpid(child, nullptr, 0);
}

void plainIndex(const fs::path &root, int documents, const fs::path &file)
{
    sqlite3 *database = nullptr;
    sqlite3_stmt *put = nullptr;
    sqlite3_open(file.c_str(), &database);
    sqlite3_exec(database,
                 "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; CREATE VIRTUAL TABLE texts USING fts5(path "
                 "UNINDEXED, text)",
                 nullptr, nullptr, nullptr);
    sqlite3_prepare_v2(database, "INSERT INTO texts VALUES(?,?)", -1, &put, nullptr);
    for (int i = 0; i < documents; ++i) {
        if (i % 5000 == 0) sqlite3_exec(database, i ? "COMMIT; BEGIN" : "BEGIN", nullptr, nullptr, nullptr);
        const std::string path = pathOf(root, i);
        const std::string text = readAll(path);
        sqlite3_bind_text(put, 1, path.c_str(), -1, SQLITE_STATIC);
        sqlite3_bind_text(put, 2, text.c_str(), int(text.size()), SQLITE_STATIC);
        sqlite3_step(put);
        sqlite3_reset(put);
    }
    sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_finalize(put);
    sqlite3_close(database);
}

double megabytes(const fs::path &file)
{
    return double(fs::file_size(file)) / 1e6;
}

/// Makes a query of a text at a place in it; the number tells the how manieth it is. "" where that place has none.
using MadeQuery = QString (*)(const QString &text, qsizetype at, size_t number);

QString inQuotes(const QString &text)
{
    return u'"' + text + u'"';
}

// Words, beginnings of words, phrases of two and three words, as they stand in the documents.
QString commonQuery(const QString &text, qsizetype at, size_t number)
{
    const QStringList words = text.mid(at, 300).split(u' ').mid(1);
    switch (number % 4) {
    case 0: return words.value(0);
    case 1: return words.value(0).left(4);
    case 2: return inQuotes(words.mid(0, 2).join(u' '));
    default: return words.mid(0, 3).join(u' ');
    }
}

// Up to the first place behind a word from `at` on, where one begins, and `more` characters beyond.
QString wordAndMore(const QString &text, qsizetype at, qsizetype more)
{
    while (at < text.size() && !text[at - 1].isSpace()) ++at;
    qsizetype end = at;
    while (end < text.size() && text[end].isLetter()) ++end;
    return end == at ? QString() : text.mid(at, end - at + more);
}

// Each of these looks up many tokens, or such as are in many documents.
QString wordAndSign(const QString &text, qsizetype at, size_t)
{
    const QString query = wordAndMore(text, at, 1);
    const bool hasSign = !query.isEmpty() && !query.back().isLetterOrNumber() && query.back() != u' ';
    return hasSign ? inQuotes(query) : QString();
}

QString wordAndLetter(const QString &text, qsizetype at, size_t)
{
    const QString query = wordAndMore(text, at, 2);
    return query.size() > 3 && query[query.size() - 2] == u' ' ? inQuotes(query) : QString();
}

QString wordInBlanks(const QString &text, qsizetype at, size_t number)
{
    QString query = wordAndMore(text, at, 1);
    if (query.isEmpty() || query.back() != u' ') return {};
    if (number % 3 == 0) return inQuotes(query);
    return inQuotes(u' ' + (number % 3 == 1 ? query : query.trimmed()));
}

QString twoLetters(const QString &text, qsizetype at, size_t)
{
    const QString query = wordAndMore(text, at, 0);
    return query.size() < 2 ? QString() : query.left(2);
}

QString signsOnEnd(const QString &text, qsizetype at, size_t)
{
    const auto isSign = [&](qsizetype i) { return i < text.size() && !text[i].isLetterOrNumber() && text[i] != u'"'; };
    qsizetype end = at;
    while (isSign(end)) ++end;
    return end - at < 3 || text.mid(at, end - at).trimmed().isEmpty() ? QString() : inQuotes(text.mid(at, end - at));
}

constexpr std::pair<const char *, MadeQuery> kindsOfQueries[] = {
    {"words and phrases", commonQuery},     {"a word and a sign", wordAndSign},
    {"a word and a letter", wordAndLetter}, {"a word and blanks at its edges", wordInBlanks},
    {"three signs and more", signsOnEnd},   {"two letters", twoLetters},
};

std::vector<QString> someQueries(const fs::path &root, int documents, std::mt19937 &random, MadeQuery make,
                                 size_t count)
{
    static constexpr int mostDocumentsRead = 5000; // texts made of words have hardly any signs side by side
    std::vector<QString> all;
    for (int read = 0; all.size() < count && read < mostDocumentsRead; ++read) {
        const QString text =
            QString::fromStdString(readAll(pathOf(root, int(random() % unsigned(documents))))).simplified();
        for (int tries = 0; tries < 100; ++tries) {
            const QString query = make(text, 1 + qsizetype(random() % unsigned(text.size())), all.size());
            if (query.isEmpty()) continue;
            all.push_back(query);
            break;
        }
    }
    return all;
}

void timeQueries(SearchIndex &index, const QString &root, const std::vector<QString> &texts)
{
    std::vector<std::pair<double, QString>> times;
    qsizetype hits = 0;
    for (const QString &text : texts) {
        const SearchQuery query = makeSearchQuery(tm_arrayOfSearchTermsInString(text), SearchMode::TitleAndContent);
        qsizetype found = 0;
        const double seconds = secondsOf([&] { found = index.find(query, root).value_or(QStringList()).size(); });
        times.emplace_back(seconds * 1000, QStringLiteral("%1: %2 hits").arg(text).arg(found));
        hits += found;
    }
    if (times.empty()) return;
    std::ranges::sort(times);
    std::printf("%zu queries: median %.2f ms, 95%% %.2f ms, worst %.2f ms; %lld hits\n", times.size(),
                times[times.size() / 2].first, times[times.size() * 95 / 100].first, times.back().first,
                static_cast<long long>(hits));
    for (size_t i = times.size() - std::min<size_t>(5, times.size()); i < times.size(); ++i)
        std::printf("    %8.2f ms  %s\n", times[i].first, times[i].second.left(70).toUtf8().constData());
}

void usePlatformFor(const fs::path &root)
{
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    made->settings->setObject(QStringLiteral("TomeletFolder"), QString::fromStdString(root));
    setPlatform(std::move(made));
}

void timeIndexing(const fs::path &root, int documents, qint64 bytes, const fs::path &index, const fs::path &plain)
{
    const QString rootPath = QString::fromStdString(root);
    const QString file = QString::fromStdString(index);
    std::printf("%d documents, %.1f MB of text\n", documents, double(bytes) / 1e6);
    inProcess("plain FTS5", [&] { plainIndex(root, documents, plain); });
    inProcess("first indexing", [&] { SearchIndex(rootPath, file).update(rootPath); });
    inProcess("plain FTS5 once more", [&] {
        fs::remove(plain);
        plainIndex(root, documents, plain);
    });
    const double size = megabytes(index);
    std::printf("index %.1f MB, %.2f of the text; plain FTS5 %.1f MB\n", size, size * 1e6 / double(bytes),
                megabytes(plain));
    inProcess("start, nothing changed", [&] { SearchIndex(rootPath, file).update(rootPath); });
    std::ofstream(pathOf(root, 0), std::ios::app) << "changed";
    inProcess("one document changed",
              [&] { SearchIndex(rootPath, file).update(QString::fromStdString(pathOf(root, 0))); });
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const int documents = argc > 1 ? std::atoi(argv[1]) : 100000;
    const QTemporaryDir made;
    const fs::path world = argc > 3 ? fs::path(argv[3]) : fs::path(made.path().toStdString());
    const fs::path index = world / "Index.sqlite";
    const bool isNew = !fs::exists(index);
    fs::create_directories(world / "root");
    const fs::path root = fs::canonical(world / "root");
    usePlatformFor(root);
    if (fs::is_empty(root)) {
        const std::string folder = argc > 2 ? argv[2] : "";
        if (folder.empty()) makeNotebook(root, documents, Writer());
        else makeNotebook(root, documents, Cutter(folder));
    }
    if (isNew) timeIndexing(root, documents, sizeOfNotebook(root, documents), index, world / "plain.sqlite");
    SearchIndex asked(QString::fromStdString(root), QString::fromStdString(index));
    std::mt19937 random(11);
    for (const auto &[name, query] : kindsOfQueries) {
        std::printf("%s\n", name);
        timeQueries(asked, QString::fromStdString(root),
                    someQueries(root, documents, random, query, query == commonQuery ? queries : hardQueries));
    }
}
