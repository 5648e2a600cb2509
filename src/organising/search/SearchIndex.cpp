// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/SearchIndex.h"

#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/SerialQueue.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "organising/search/DocumentText.h"
#include "organising/search/IndexDatabase.h"
#include "organising/search/OfficeText.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <functional>
#include <iterator>
#include <sys/stat.h>
#include <thread>
#include <utility>

namespace tomelet {

namespace {

using Document = IndexDatabase::Document;

constexpr size_t documentsOfLot = 100;
constexpr size_t bytesOfLot = 8 << 20;
/// With so many candidates their texts are read sooner than all words that begin with one letter are gathered.
constexpr size_t fewCandidates = 7000;
/// The terms beyond are tested against the documents.
constexpr size_t mostTermsLookedUp = 50;
constexpr qint64 millisecondsOfTransaction = 2000;

std::optional<IndexDatabase::Stamp> stampOf(const QString &path)
{
    struct stat status
    {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) return std::nullopt;
    return IndexDatabase::Stamp{status.st_size, status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec};
}

void addDocument(const QString &root, const QString &below, std::vector<Document> &found)
{
    if (const auto stamp = stampOf(root + below)) found.push_back({below, *stamp});
}

// Links to folders are not followed: one may lead back up. What lies in a package is no document.
void addDocumentsBelow(const QString &root, const QString &below, std::vector<Document> &found)
{
    for (const FolderEntry &entry : listFolder(root + below).value_or(std::vector<FolderEntry>())) {
        const QString item = below + u'/' + entry.name;
        if (tm_pathIsExcludedFromDisplay(item)) continue;
        if (!entry.isFolder || hasPackageExtension(item)) addDocument(root, item, found);
        else if (!QFileInfo(root + item).isSymLink()) addDocumentsBelow(root, item, found);
    }
}

std::vector<Document> documentsAt(const QString &root, const QString &path)
{
    const QString below = tm_normalizedPath(path, root);
    std::vector<Document> found;
    if (!below.isEmpty() && tm_pathIsExcludedFromDisplay(below)) return found;
    if (pathIsPlainBook(path) && (path == root || !QFileInfo(path).isSymLink())) addDocumentsBelow(root, below, found);
    else if (!isFolder(path) || hasPackageExtension(path)) addDocument(root, below, found);
    return found;
}

std::string foldedName(const QString &path)
{
    return foldedForSearch(lastPathComponent(path)).text;
}

// Getting the text out of these takes long, so the index keeps it.
bool keepsText(const QString &path)
{
    const QString extension = lowerExtension(path);
    return extension == u"pdf" || extension == u"eml" || extension == u"rtf" || extension == u"webarchive" ||
           extension.startsWith(u"htm") || isOfficeDocument(extension);
}

IndexDatabase::Entry entryOf(const QString &root, const Document &document)
{
    const QString text = documentText(root + document.path);
    return {document, tokensOfDocument(foldedForSearch(text), foldedName(document.path)),
            keepsText(document.path) ? qCompress(text.toUtf8()) : QByteArray()};
}

/// Reads documents in lots, one of them ahead on a thread of its own.
class Reader
{
public:
    Reader(const QString &root, const std::vector<Document> &documents)
        : m_root(root)
        , m_documents(documents)
    {
        readNext();
    }

    /// The next lot; empty behind the last.
    std::vector<IndexDatabase::Entry> next()
    {
        m_thread.drain();
        std::vector<IndexDatabase::Entry> entries = std::exchange(m_entries, {});
        readNext();
        return entries;
    }

private:
    void readNext()
    {
        m_thread.add([this] {
            const size_t end = std::min(m_at + documentsOfLot, m_documents.size());
            for (size_t bytes = 0; m_at < end && bytes < bytesOfLot; ++m_at) {
                m_entries.push_back(entryOf(m_root, m_documents[m_at]));
                bytes += m_entries.back().tokens.tokens.size();
            }
        });
    }

    const QString &m_root;
    const std::vector<Document> &m_documents;
    size_t m_at = 0;
    std::vector<IndexDatabase::Entry> m_entries;
    SerialQueue m_thread; // last, so that it ends first
};

bool isBelow(const QString &path, const QString &scope)
{
    return path.startsWith(scope) && path.size() > scope.size() && path[scope.size()] == u'/';
}

bool documentMatches(const QString &path, const SearchQuery &query, const QByteArray &keptText)
{
    std::optional<FoldedText> content;
    return matchesQuery(query, foldedName(path), [&]() -> const FoldedText & {
        if (!content)
            content =
                foldedForSearch(keptText.isEmpty() ? documentText(path) : QString::fromUtf8(qUncompress(keptText)));
        return *content;
    });
}

/// Does a job for each number below the count, on all cores.
void onAllCores(size_t count, const std::function<void(size_t)> &job)
{
    static const size_t cores = std::clamp(std::thread::hardware_concurrency(), 1U, 8U);
    std::atomic_size_t next = 0;
    const auto work = [&] {
        for (size_t i = next++; i < count; i = next++) job(i);
    };
    std::vector<std::jthread> others;
    for (size_t i = 1; i < std::min(cores, count); ++i) others.emplace_back(work);
    work();
}

struct ToTest
{
    QString path;
    QByteArray keptText; ///< as the index has it; empty where the file is to be read
};

/// The paths of those that match. Reading and folding take the time, and documents need nothing of each other.
QStringList tested(const std::vector<QString> &paths, const SearchQuery &query,
                   const std::function<QByteArray(const QString &)> &keptTextOf, const Progress &progress)
{
    static constexpr size_t lot = 1000; // after which one may stop
    QStringList hits;
    for (size_t from = 0; from < paths.size(); from += lot) {
        if (progress && !progress(qsizetype(from), qsizetype(paths.size()))) break;
        std::vector<ToTest> documents;
        for (size_t i = from; i < std::min(from + lot, paths.size()); ++i)
            documents.push_back({paths[i], keepsText(paths[i]) ? keptTextOf(paths[i]) : QByteArray()});
        std::vector<char> matches(documents.size());
        onAllCores(documents.size(),
                   [&](size_t i) { matches[i] = documentMatches(documents[i].path, query, documents[i].keptText); });
        for (size_t i = 0; i < documents.size(); ++i)
            if (matches[i]) hits.append(documents[i].path);
    }
    return hits;
}

} // namespace

QString searchIndexFile()
{
    return joinPath(rootCacheFolder(), QStringLiteral(".Search/Index.sqlite"));
}

SearchIndex::SearchIndex(QString root, QString file)
    : m_root(std::move(root))
    , m_file(std::move(file))
{}

SearchIndex::~SearchIndex() = default;

IndexDatabase &SearchIndex::database()
{
    if (!m_database) {
        makeFolder(parentPath(m_file));
        m_database = std::make_unique<IndexDatabase>(m_file);
    }
    return *m_database;
}

void SearchIndex::throwAway()
{
    logLine(QStringLiteral("text index thrown away: %1").arg(m_file));
    m_database.reset();
    for (const auto &ending : {QStringLiteral(""), QStringLiteral("-wal"), QStringLiteral("-shm")})
        QFile::remove(m_file + ending);
}

// -- update -----------------------------------------------------------------------------------------------------------

SearchIndex::Update SearchIndex::update(const QString &path, const Progress &progress)
{
    for (const bool first : {true, false}) {
        try {
            if (path == m_root && database().isWorn()) throwAway();
            return updateOnce(path, progress);
        } catch (const IndexDatabaseError &error) {
            if (error.isBusy()) {
                m_database.reset();
                return {false, 0, 0, 0, QStringLiteral("another program holds it")};
            }
            throwAway();
            if (!first) return {false, 0, 0, 0, QStringLiteral("it cannot be written")};
        }
    }
    return {};
}

SearchIndex::Update SearchIndex::updateOnce(const QString &path, const Progress &progress)
{
    IndexDatabase &index = database();
    QHash<QString, IndexDatabase::Stamp> known = index.documentsAt(tm_normalizedPath(path, m_root));
    std::vector<Document> documents = documentsAt(m_root, path);
    Update result{false, 0, 0, qsizetype(documents.size()), {}};
    std::erase_if(documents, [&](const Document &document) {
        const auto row = known.constFind(document.path);
        if (row == known.constEnd()) return false;
        const bool same = *row == document.stamp;
        known.erase(row);
        return same;
    });
    // An empty root is one whose disk is missing: nothing has been deleted.
    if (!known.isEmpty() && namesInFolder(m_root).isEmpty()) return result;

    if (!known.isEmpty()) {
        index.begin();
        for (auto gone = known.keyBegin(); gone != known.keyEnd(); ++gone) index.remove(*gone);
        index.commit();
        result.removed = known.size();
    }
    if (!putAll(documents, progress, result)) return result;
    result.complete = true;
    if (path == m_root && !index.isComplete()) index.setComplete();
    return result;
}

bool SearchIndex::putAll(const std::vector<IndexDatabase::Document> &documents, const Progress &progress,
                         Update &result)
{
    IndexDatabase &index = database();
    const qsizetype all = qsizetype(documents.size());
    Reader reader(m_root, documents);
    while (result.read < all) {
        // One transaction, after which other programs get their turn.
        QElapsedTimer timer;
        timer.start();
        index.begin();
        while (result.read < all && timer.elapsed() < millisecondsOfTransaction) {
            for (const IndexDatabase::Entry &entry : reader.next()) {
                index.put(entry);
                ++result.read;
            }
            if (progress && !progress(result.read, all) && result.read < all) {
                index.commit();
                return false;
            }
        }
        index.commit();
    }
    return true;
}

// -- find -------------------------------------------------------------------------------------------------------------

std::optional<QStringList> SearchIndex::find(const SearchQuery &query, const QString &scope, const Progress &progress)
{
    if (query.terms.empty()) return QStringList();
    if (!m_database && !itemExists(m_file)) return std::nullopt;
    try {
        IndexDatabase &index = database();
        if (!index.isComplete()) return std::nullopt;
        return findIn(index, query, scope, progress);
    } catch (const IndexDatabaseError &error) {
        if (error.isDamage()) throwAway();
        else m_database.reset();
        return std::nullopt;
    }
}

namespace {

using Numbers = std::vector<qint64>; // of documents, ascending

Numbers both(const Numbers &first, const Numbers &second)
{
    Numbers result;
    std::ranges::set_intersection(first, second, std::back_inserter(result));
    return result;
}

Numbers either(const Numbers &first, const Numbers &second)
{
    Numbers result;
    std::ranges::set_union(first, second, std::back_inserter(result));
    return result;
}

Numbers without(const Numbers &first, const Numbers &second)
{
    Numbers result;
    std::ranges::set_difference(first, second, std::back_inserter(result));
    return result;
}

/// Documents in which a term is found for sure, and all in which it may be.
struct Candidates
{
    Numbers sure;
    Numbers all;

    void narrow(const Candidates &other)
    {
        sure = both(sure, other.sure);
        all = both(all, other.all);
    }
};

enum class Ends { Whole, Shortened };

Candidates candidatesOf(const SearchTerm &term, SearchMode mode, IndexDatabase &index, Ends ends)
{
    Candidates found;
    const auto add = [&](const TermLookUps &lookUps) {
        const Numbers documents = index.find(lookUps);
        found.all = either(found.all, documents);
        if (!lookUps.exact) return;
        found.sure = either(found.sure, without(documents, index.findAny(lookUps.doubts)));
    };
    if (mode != SearchMode::Content) add(titleLookUps(term.inName));
    if (mode == SearchMode::Title) return found;
    const auto shorter = ends == Ends::Shortened ? withoutShortEnd(term.inContent) : std::nullopt;
    add(shorter ? *shorter : contentLookUps(term.inContent));
    return found;
}

/// Looks the terms up one after the other: those that leave out their ends again, as they are, while many documents
/// would have to be tested.
Candidates candidatesOf(const SearchQuery &query, IndexDatabase &index, const std::function<bool()> &goesOn)
{
    const size_t count = std::min(query.terms.size(), mostTermsLookedUp);
    const auto intersection = [&](const std::vector<Candidates> &terms) {
        Candidates result = terms[0];
        for (size_t i = 1; i < terms.size(); ++i) result.narrow(terms[i]);
        if (count < query.terms.size()) result.sure.clear();
        return result;
    };
    std::vector<Candidates> terms;
    for (size_t i = 0; i < count && goesOn(); ++i)
        terms.push_back(candidatesOf(query.terms[i], query.mode, index, Ends::Shortened));
    if (terms.size() < count) return {};
    Candidates found = intersection(terms);
    for (size_t i = 0; i < count && found.all.size() - found.sure.size() > fewCandidates && goesOn(); ++i) {
        if (query.mode == SearchMode::Title || !withoutShortEnd(query.terms[i].inContent)) continue;
        terms[i] = candidatesOf(query.terms[i], query.mode, index, Ends::Whole);
        found = intersection(terms);
    }
    return found;
}

} // namespace

QStringList SearchIndex::findIn(IndexDatabase &index, const SearchQuery &query, const QString &scope,
                                const Progress &progress)
{
    const auto goesOn = [&] { return !progress || progress(0, 1); };
    const Candidates found = candidatesOf(query, index, goesOn);

    const QString folder = m_root + tm_normalizedPath(scope, m_root);
    const auto pathsOf = [&](const Numbers &documents) {
        QStringList paths = index.pathsOf(documents, m_root);
        if (folder != m_root) paths.removeIf([&](const QString &path) { return !isBelow(path, folder); });
        return paths;
    };
    const QStringList candidates = pathsOf(without(found.all, found.sure));
    return pathsOf(found.sure) + tested(
                                     {candidates.begin(), candidates.end()}, query,
                                     [&](const QString &path) { return index.textOf(path.sliced(m_root.size())); },
                                     progress);
}

QStringList searchByWalk(const QString &root, const SearchQuery &query, const QString &scope, const Progress &progress)
{
    std::vector<QString> paths;
    for (const Document &document : documentsAt(root, scope)) paths.push_back(root + document.path);
    return tested(
        paths, query, [](const QString &) { return QByteArray(); }, progress);
}

} // namespace tomelet
