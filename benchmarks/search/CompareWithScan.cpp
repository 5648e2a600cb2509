// SPDX-License-Identifier: GPL-3.0-or-later
// Whether the text index finds what a plain scan finds, on real documents: `compare_search FOLDER [QUERIES]`. Queries
// are cut out of the documents: words, beginnings, phrases with all that stands in them, in the three modes and in
// quotes of all kinds. Prints each difference; the exit status is 1 where there is one.
#include "foundation/Platform.h"
#include "library/Root.h"
#include "organising/search/DocumentText.h"
#include "organising/search/SearchIndex.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

using namespace tomelet;

namespace {

struct Document
{
    QString path;
    QString text;
    FoldedText folded;
    std::string name;
};

// The index lists them itself, by its own rules; a query that every document answers gives the same list.
std::vector<Document> documentsOf(SearchIndex &index, const QString &root)
{
    std::vector<Document> documents;
    const QStringList paths =
        index.find(makeSearchQuery({QStringLiteral(".")}, SearchMode::Title), root).value_or(QStringList());
    for (const QString &path : paths) {
        const QString text = documentText(path);
        documents.push_back({path, text, foldedForSearch(text), foldedForSearch(QFileInfo(path).fileName()).text});
    }
    return documents;
}

QString queryFrom(const QString &text, std::mt19937 &random)
{
    static const QString quotes[] = {QStringLiteral("\"\""), QStringLiteral("“”"), QStringLiteral("„“"),
                                     QStringLiteral("«»")};
    const auto at = [&](qsizetype size) { return qsizetype(random() % unsigned(std::max<qsizetype>(size, 1))); };
    const QStringList words = text.mid(at(text.size() - 200), 200).simplified().split(u' ').mid(1);
    const QString phrase = words.mid(at(words.size() - 3), 1 + at(4)).join(u' ');
    const auto blank = [&] { return random() % 5 == 0 ? QStringLiteral(" ") : QString(); };
    const QString piece = blank() + phrase.left(std::max<qsizetype>(1, phrase.size() - at(4))) + blank();
    const QString &pair = quotes[random() % 4];
    switch (random() % 3) {
    case 0: return pair[0] + piece + pair[1];
    case 1: return pair[0] + piece;
    default: return piece;
    }
}

QStringList scan(const std::vector<Document> &documents, const SearchQuery &query)
{
    QStringList hits;
    for (const Document &document : documents)
        if (matchesQuery(query, document.name, [&]() -> const FoldedText & { return document.folded; }))
            hits.append(document.path);
    hits.sort();
    return hits;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc < 2) return std::fprintf(stderr, "usage: compare_search FOLDER [QUERIES]\n"), 2;
    const QString root = QFileInfo(QString::fromLocal8Bit(argv[1])).canonicalFilePath();
    const int queries = argc > 2 ? std::atoi(argv[2]) : 500;
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    made->settings->setObject(QStringLiteral("TomeletFolder"), root);
    setPlatform(std::move(made));
    const QTemporaryDir world;
    SearchIndex index(root, world.path() + QStringLiteral("/Index.sqlite"));
    index.update(root);
    const std::vector<Document> documents = documentsOf(index, root);

    std::mt19937 random(3);
    qsizetype hits = 0;
    int differences = 0;
    double slowest = 0;
    for (int i = 0; i < queries; ++i) {
        const QString text = queryFrom(documents[random() % documents.size()].text, random);
        for (const SearchMode mode : {SearchMode::TitleAndContent, SearchMode::Title, SearchMode::Content}) {
            const SearchQuery query = makeSearchQuery(tm_arrayOfSearchTermsInString(text), mode);
            QElapsedTimer timer;
            timer.start();
            QStringList found = index.find(query, root).value_or(QStringList{QStringLiteral("no answer")});
            slowest = std::max(slowest, double(timer.nsecsElapsed()) / 1e6);
            found.sort();
            const QStringList expected = scan(documents, query);
            hits += expected.size();
            if (found == expected) continue;
            ++differences;
            std::printf("%s, mode %d: index %lld, scan %lld\n", text.toUtf8().constData(), int(mode),
                        static_cast<long long>(found.size()), static_cast<long long>(expected.size()));
        }
    }
    std::printf("%zu documents, %d queries in three modes, %lld hits, slowest %.1f ms, %d differences\n",
                documents.size(), queries, static_cast<long long>(hits), slowest, differences);
    return differences == 0 ? 0 : 1;
}
