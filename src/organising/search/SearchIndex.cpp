// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/SearchIndex.h"

#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/SerialQueue.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "organising/search/DocumentText.h"
#include "organising/search/IndexDatabase.h"
#include "organising/search/IndexTokens.h"
#include "organising/search/OfficeText.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <iterator>
#include <sys/stat.h>
#include <utility>

namespace tomelet {

namespace {

using Document = IndexDatabase::Document;

constexpr size_t documentsOfLot = 100;
constexpr size_t bytesOfLot = 8 << 20;
/// FTS5 takes expressions of limited depth; the terms beyond are tested against the documents.
constexpr size_t mostTermsOfExpression = 50;
constexpr qint64 millisecondsOfTransaction = 1000;

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
    return extension == u"pdf" || extension == u"eml" || extension == u"rtf" || extension.startsWith(u"htm") ||
           isOfficeDocument(extension);
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
                bytes += m_entries.back().tokens.size();
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

std::string quoted(const TokenPhrase &phrase)
{
    std::string text = "\"";
    for (const char c : phrase.tokens) text += c == '"' ? std::string("\"\"") : std::string(1, c);
    return text + (phrase.prefix ? "\"*" : "\"");
}

std::string allOf(const TermLookUps &lookUps)
{
    std::string text;
    for (const TokenPhrase &phrase : lookUps.phrases) text += (text.empty() ? "(" : " AND ") + quoted(phrase);
    return text + ')';
}

/// A query in the index's language, as two that together find all hits; either may be "", which finds nothing.
struct Expression
{
    std::string sure;   ///< finds hits alone
    std::string unsure; ///< what it finds has to be tested against the documents
};

std::string joined(const std::vector<std::string> &parts, const char *operation)
{
    std::string text;
    for (const std::string &part : parts)
        if (!part.empty()) text += (text.empty() ? "(" : operation) + part;
    return text.empty() ? text : text + ')';
}

Expression expressionOf(const FoldedText &term, SearchMode mode)
{
    std::vector<std::string> sure, unsure;
    const auto add = [&](const TermLookUps &place) { (place.exact ? sure : unsure).push_back(allOf(place)); };
    if (mode != SearchMode::Content) add(titleLookUps(term));
    if (mode != SearchMode::Title) add(contentLookUps(term));
    return {joined(sure, " OR "), joined(unsure, " OR ")};
}

Expression expressionOf(const SearchQuery &query)
{
    std::vector<Expression> terms;
    for (size_t i = 0; i < std::min(query.terms.size(), mostTermsOfExpression); ++i)
        terms.push_back(expressionOf(query.terms[i], query.mode));
    std::vector<std::string> sure, either;
    for (const Expression &term : terms) {
        sure.push_back(term.sure);
        either.push_back(joined({term.sure, term.unsure}, " OR "));
    }
    if (terms.size() < query.terms.size()) return {{}, joined(either, " AND ")};
    // A hit that is not sure is unsure by one term at least.
    std::vector<std::string> unsure;
    for (size_t i = 0; i < terms.size(); ++i) {
        if (terms[i].unsure.empty()) continue;
        std::vector<std::string> all = either;
        all[i] = terms[i].unsure;
        unsure.push_back(joined(all, " AND "));
    }
    const bool canBeSure = std::ranges::none_of(sure, &std::string::empty);
    return {canBeSure ? joined(sure, " AND ") : std::string(), joined(unsure, " OR ")};
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

QStringList SearchIndex::findIn(IndexDatabase &index, const SearchQuery &query, const QString &scope,
                                const Progress &progress)
{
    const Expression expression = expressionOf(query);
    const QString folder = m_root + tm_normalizedPath(scope, m_root);
    const auto pathsOf = [&](const std::vector<qint64> &documents) {
        QStringList paths = index.pathsOf(documents, m_root);
        if (folder != m_root) paths.removeIf([&](const QString &path) { return !isBelow(path, folder); });
        return paths;
    };
    const std::vector<qint64> sure = index.find(expression.sure);
    const std::vector<qint64> found = index.find(expression.unsure);
    std::vector<qint64> unsure;
    std::ranges::set_difference(found, sure, std::back_inserter(unsure)); // FTS5 finds in the numbers' order
    QStringList tested = pathsOf(unsure);
    qsizetype done = 0;
    tested.removeIf([&](const QString &path) {
        if (progress && !progress(++done, tested.size())) return true;
        return !documentMatches(path, query, index.textOf(path.sliced(m_root.size())));
    });
    return pathsOf(sure) + tested;
}

QStringList searchByWalk(const QString &root, const SearchQuery &query, const QString &scope, const Progress &progress)
{
    const std::vector<Document> documents = documentsAt(root, scope);
    QStringList hits;
    qsizetype done = 0;
    for (const Document &document : documents) {
        if (const QString path = root + document.path; documentMatches(path, query, {})) hits.append(path);
        if (progress && !progress(++done, qsizetype(documents.size()))) break;
    }
    return hits;
}

} // namespace tomelet
