// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/IndexDatabase.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <future>
#include <iterator>
#include <sqlite3.h>
#include <unordered_map>

namespace tomelet {

namespace {

constexpr int millisecondsToWaitForOthers = 5000; // longer than one of our transactions
constexpr qint64 wornBeyond = 1000;
constexpr qint64 ownVersion = 7; // of the tables and tokens; a file with others is made anew
constexpr size_t manyDocuments = 500;
// Of documents whose tokens go into the same table: what a table has in hand stays close to the processor.
constexpr qint64 stretch = 8192;

void check(int code)
{
    if (code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE) throw IndexDatabaseError{code & 0xff};
}

// -- tokens: pieces between separators --------------------------------------------------------------------------------

int makeTokenizer(void *, const char **, int, Fts5Tokenizer **tokenizer)
{
    static int nothing = 0; // there is no state, but there has to be an address
    *tokenizer = reinterpret_cast<Fts5Tokenizer *>(&nothing);
    return SQLITE_OK;
}

void dropTokenizer(Fts5Tokenizer *) {}

int tokenize(Fts5Tokenizer *, void *context, int purpose, const char *text, int size,
             int (*token)(void *, int, const char *, int, int, int))
{
    for (int from = 0; from < size;) {
        const void *separator = std::memchr(text + from, tokenSeparator, size_t(size - from));
        const int end = separator ? int(static_cast<const char *>(separator) - text) : size;
        const bool shared = sharesPlace(text[from]) && purpose == FTS5_TOKENIZE_DOCUMENT;
        const int code = token(context, shared ? FTS5_TOKEN_COLOCATED : 0, text + from, end - from, from, end);
        if (code != SQLITE_OK) return code;
        from = end + 1;
    }
    return SQLITE_OK;
}

} // namespace

bool IndexDatabaseError::isBusy() const
{
    return code == SQLITE_BUSY || code == SQLITE_LOCKED;
}

bool IndexDatabaseError::isDamage() const
{
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

// -- statements -------------------------------------------------------------------------------------------------------

class IndexDatabase::Statement
{
public:
    Statement(sqlite3 *database, const char *sql)
    {
        check(sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr));
    }
    ~Statement() { sqlite3_finalize(m_statement); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    void bind(int index, qint64 value) { check(sqlite3_bind_int64(m_statement, index, value)); }
    void bind(int index, const std::string &text)
    {
        check(sqlite3_bind_text(m_statement, index, text.data(), int(text.size()), SQLITE_TRANSIENT));
    }
    void bind(int index, const QString &text) { bind(index, text.toStdString()); }
    void bind(int index, const QByteArray &bytes)
    {
        check(sqlite3_bind_blob(m_statement, index, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT));
    }

    /// The next row; false behind the last.
    bool step()
    {
        const int code = sqlite3_step(m_statement);
        if (code == SQLITE_ROW) return true;
        sqlite3_reset(m_statement);
        check(code);
        return false;
    }
    void reset() { sqlite3_reset(m_statement); }
    void run()
    {
        while (step()) {
        }
    }

    [[nodiscard]] qint64 integer(int column) const { return sqlite3_column_int64(m_statement, column); }
    [[nodiscard]] QByteArray bytes(int column) const
    {
        const auto *data = static_cast<const char *>(sqlite3_column_blob(m_statement, column));
        return {data, sqlite3_column_bytes(m_statement, column)};
    }
    [[nodiscard]] QString text(int column) const
    {
        const auto *data = static_cast<const char *>(sqlite3_column_blob(m_statement, column));
        return QString::fromUtf8(data, sqlite3_column_bytes(m_statement, column));
    }

private:
    sqlite3_stmt *m_statement = nullptr;
};

// -- connections ------------------------------------------------------------------------------------------------------

/// The file as one thread sees it.
class IndexDatabase::Connection
{
public:
    explicit Connection(const QString &file)
    {
        const int code = sqlite3_open_v2(QFile::encodeName(file).constData(), &m_database,
                                         SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
        try {
            check(code);
            sqlite3_busy_timeout(m_database, millisecondsToWaitForOthers);
            registerTokenizer();
        } catch (...) {
            sqlite3_close_v2(m_database);
            throw;
        }
    }
    ~Connection()
    {
        m_statements.clear();
        sqlite3_close_v2(m_database);
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    Statement &statement(const char *sql)
    {
        std::unique_ptr<Statement> &found = m_statements[sql];
        if (!found) found = std::make_unique<Statement>(m_database, sql);
        found->reset();
        return *found;
    }
    void execute(const char *sql) { check(sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr)); }
    void executeIfPossible(const char *sql) noexcept { sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr); }
    qint64 number(const char *sql)
    {
        Statement &query = statement(sql);
        const qint64 value = query.step() ? query.integer(0) : 0;
        query.reset();
        return value;
    }
    std::vector<qint64> numbersOf(const char *sql, const std::string &expression)
    {
        Statement &query = statement(sql);
        query.bind(1, expression);
        std::vector<qint64> numbers;
        while (query.step()) numbers.push_back(query.integer(0));
        return numbers;
    }
    [[nodiscard]] qint64 lastNumber() const { return sqlite3_last_insert_rowid(m_database); }

private:
    // https://sqlite.org/fts5.html#extending_fts5
    void registerTokenizer()
    {
        fts5_api *api = nullptr;
        sqlite3_stmt *query = nullptr;
        check(sqlite3_prepare_v2(m_database, "SELECT fts5(?1)", -1, &query, nullptr));
        sqlite3_bind_pointer(query, 1, static_cast<void *>(&api), "fts5_api_ptr", nullptr);
        sqlite3_step(query);
        sqlite3_finalize(query);
        if (!api) throw IndexDatabaseError{SQLITE_ERROR};
        fts5_tokenizer functions{makeTokenizer, dropTokenizer, tokenize};
        check(api->xCreateTokenizer(api, "pieces", nullptr, &functions, nullptr));
    }

    sqlite3 *m_database = nullptr;
    std::unordered_map<const char *, std::unique_ptr<Statement>> m_statements;
};

// -- file -------------------------------------------------------------------------------------------------------------

// Large pages make the index a seventh sooner. Readers go on while documents are put, and a crash leaves what was
// committed.
static constexpr const char *settingsOfFile =
    "PRAGMA page_size=16384; PRAGMA auto_vacuum=INCREMENTAL; PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; "
    "PRAGMA cache_size=-65536";

static constexpr const char *newTables =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS documents(id INTEGER PRIMARY KEY AUTOINCREMENT, path TEXT NOT NULL UNIQUE,"
    " size INTEGER, changed INTEGER, text BLOB);"
    "CREATE TABLE IF NOT EXISTS state(complete INTEGER);"
    "CREATE VIRTUAL TABLE IF NOT EXISTS tokens0 USING fts5(token, content='', columnsize=0, tokenize='pieces');"
    "CREATE VIRTUAL TABLE IF NOT EXISTS tokens1 USING fts5(token, content='', columnsize=0, tokenize='pieces');"
    "CREATE VIRTUAL TABLE IF NOT EXISTS marks USING fts5(mark, content='', columnsize=0, detail=none, "
    "tokenize='pieces');"
    "INSERT INTO tokens0(tokens0, rank) VALUES('pgsz', 16000);"
    "INSERT INTO tokens1(tokens1, rank) VALUES('pgsz', 16000);"
    "INSERT INTO marks(marks, rank) VALUES('pgsz', 16000);"
    // Larger lots of tokens in memory make fewer pieces to merge.
    "INSERT INTO tokens0(tokens0, rank) VALUES('hashsize', 33554432);"
    "INSERT INTO tokens1(tokens1, rank) VALUES('hashsize', 33554432);"
    "INSERT INTO marks(marks, rank) VALUES('hashsize', 16777216);"
    // While the index is made nothing is merged, neither bit by bit nor for too many pieces: it all is at the end.
    "INSERT INTO tokens0(tokens0, rank) VALUES('automerge', 0);"
    "INSERT INTO tokens1(tokens1, rank) VALUES('automerge', 0);"
    "INSERT INTO marks(marks, rank) VALUES('automerge', 0);"
    "INSERT INTO tokens0(tokens0, rank) VALUES('crisismerge', 1999);"
    "INSERT INTO tokens1(tokens1, rank) VALUES('crisismerge', 1999);"
    "INSERT INTO marks(marks, rank) VALUES('crisismerge', 1999);"
    "PRAGMA user_version=7; COMMIT";

IndexDatabase::IndexDatabase(const QString &file)
    : m_connection(std::make_unique<Connection>(file))
{
    m_connection->execute(settingsOfFile);
    const qint64 version = m_connection->number("PRAGMA user_version");
    if (version != 0 && version != ownVersion) throw IndexDatabaseError{SQLITE_CORRUPT};
    if (version == 0) m_connection->execute(newTables);
    m_other = std::make_unique<Connection>(file);
}

IndexDatabase::~IndexDatabase() = default;

void IndexDatabase::begin()
{
    m_connection->execute("BEGIN IMMEDIATE");
}

void IndexDatabase::commit()
{
    m_connection->execute("COMMIT");
}

void IndexDatabase::rollback() noexcept
{
    m_connection->executeIfPossible("ROLLBACK");
}

// -- documents --------------------------------------------------------------------------------------------------------

QHash<QString, IndexDatabase::Stamp> IndexDatabase::documentsAt(const QString &path)
{
    // "0" is the character after "/".
    Statement &query = m_connection->statement("SELECT path, size, changed FROM documents "
                                               "WHERE path = ?1 OR (path > ?1 || '/' AND path < ?1 || '0')");
    query.bind(1, path);
    QHash<QString, Stamp> found;
    while (query.step()) found.insert(query.text(0), {query.integer(1), query.integer(2)});
    return found;
}

void IndexDatabase::put(const Entry &entry)
{
    m_paths.clear();
    Statement &row =
        m_connection->statement("INSERT OR REPLACE INTO documents(path, size, changed, text) VALUES(?,?,?,?)");
    row.bind(1, entry.document.path);
    row.bind(2, entry.document.stamp.size);
    row.bind(3, entry.document.stamp.changed);
    row.bind(4, entry.text);
    row.run();
    const qint64 number = m_connection->lastNumber();
    const auto putInto = [&](Statement &table, const std::string &tokens) {
        table.bind(1, number);
        table.bind(2, tokens);
        table.run();
    };
    putInto(m_connection->statement(number / stretch % 2 == 0 ? "INSERT INTO tokens0(rowid, token) VALUES(?,?)"
                                                              : "INSERT INTO tokens1(rowid, token) VALUES(?,?)"),
            entry.tokens.tokens);
    putInto(m_connection->statement("INSERT INTO marks(rowid, mark) VALUES(?,?)"), entry.tokens.marks);
}

void IndexDatabase::remove(const QString &path)
{
    m_paths.clear();
    Statement &row = m_connection->statement("DELETE FROM documents WHERE path = ?");
    row.bind(1, path);
    row.run();
}

// The language of FTS5: https://sqlite.org/fts5.html#full_text_query_syntax
static std::string inQuotes(const std::string &tokens, bool prefix)
{
    std::string text = "\"";
    for (const char c : tokens) text.append(c == '"' ? 2 : 1, c);
    return text + (prefix ? "\"*" : "\"");
}

static std::string expressionOf(const std::vector<TokenPhrase> &phrases, bool inMarks)
{
    std::string text;
    for (const TokenPhrase &phrase : phrases) {
        if (phrase.inMarks != inMarks) continue;
        if (!text.empty()) text += " AND ";
        const std::string found = inQuotes(phrase.tokens, phrase.prefix);
        const bool isEnd = !inMarks && phrase.tokens[0] == 'h';
        text += isEnd ? '(' + found + " OR " + inQuotes('g' + phrase.tokens.substr(1), phrase.prefix) + ')' : found;
    }
    return text;
}

// Most of the time goes into gathering all tokens that begin as a term ends, so the tables have two halves.
std::vector<qint64> IndexDatabase::findTokens(const std::string &expression)
{
    auto odd = std::async(std::launch::async, [this, &expression] {
        return m_other->numbersOf("SELECT rowid FROM tokens1 WHERE tokens1 MATCH ?", expression);
    });
    const std::vector<qint64> even =
        m_connection->numbersOf("SELECT rowid FROM tokens0 WHERE tokens0 MATCH ?", expression);
    std::vector<qint64> all;
    std::ranges::merge(even, odd.get(), std::back_inserter(all));
    return all;
}

std::vector<qint64> IndexDatabase::find(const TermLookUps &lookUps)
{
    const std::string marks = expressionOf(lookUps.phrases, true);
    const std::string tokens = expressionOf(lookUps.phrases, false);
    std::vector<qint64> marked;
    if (!marks.empty()) marked = m_connection->numbersOf("SELECT rowid FROM marks WHERE marks MATCH ?", marks);
    if (tokens.empty() || (marked.empty() && !marks.empty())) return marked;
    const std::vector<qint64> found = findTokens(tokens);
    if (marks.empty()) return found;
    std::vector<qint64> both;
    std::ranges::set_intersection(marked, found, std::back_inserter(both));
    return both;
}

std::vector<qint64> IndexDatabase::findAny(const std::vector<TokenPhrase> &marks)
{
    std::string expression;
    for (const TokenPhrase &mark : marks)
        expression += (expression.empty() ? "" : " OR ") + inQuotes(mark.tokens, mark.prefix);
    return marks.empty() ? std::vector<qint64>()
                         : m_connection->numbersOf("SELECT rowid FROM marks WHERE marks MATCH ?", expression);
}

QString IndexDatabase::readPath(qint64 document)
{
    Statement &query = m_connection->statement("SELECT path FROM documents WHERE id = ?");
    query.bind(1, document);
    const QString path = query.step() ? query.text(0) : QString();
    query.reset();
    return path;
}

// A path of its own for each hit takes longer than to find it; so once there are many, all are kept.
const std::vector<QString> &IndexDatabase::allPaths(const QString &root)
{
    const qint64 version = m_connection->number("PRAGMA data_version");
    if (m_paths.empty() || m_pathsVersion != version) {
        m_paths.assign(size_t(m_connection->number("SELECT max(id) FROM documents")) + 1, QString());
        Statement &query = m_connection->statement("SELECT id, path FROM documents");
        while (query.step()) m_paths[size_t(query.integer(0))] = root + query.text(1);
        m_pathsVersion = version;
    }
    return m_paths;
}

QStringList IndexDatabase::pathsOf(const std::vector<qint64> &documents, const QString &root)
{
    QStringList paths;
    paths.reserve(qsizetype(documents.size()));
    if (documents.size() <= manyDocuments) {
        for (const qint64 document : documents)
            if (const QString path = readPath(document); !path.isEmpty()) paths.append(root + path);
        return paths;
    }
    const std::vector<QString> &known = allPaths(root);
    for (const qint64 document : documents)
        if (size_t(document) < known.size() && !known[size_t(document)].isEmpty())
            paths.append(known[size_t(document)]);
    return paths;
}

QByteArray IndexDatabase::textOf(const QString &path)
{
    Statement &query = m_connection->statement("SELECT text FROM documents WHERE path = ?");
    query.bind(1, path);
    const QByteArray text = query.step() ? query.bytes(0) : QByteArray();
    query.reset();
    return text;
}

bool IndexDatabase::isComplete()
{
    return m_connection->number("SELECT count(*) FROM state WHERE complete") > 0;
}

void IndexDatabase::setComplete()
{
    m_connection->execute("BEGIN IMMEDIATE; DELETE FROM state; INSERT INTO state VALUES(1); "
                          "INSERT INTO tokens0(tokens0) VALUES('optimize'); "
                          "INSERT INTO tokens0(tokens0, rank) VALUES('automerge', 4); "
                          "INSERT INTO tokens0(tokens0, rank) VALUES('crisismerge', 16); "
                          "INSERT INTO tokens1(tokens1) VALUES('optimize'); "
                          "INSERT INTO tokens1(tokens1, rank) VALUES('automerge', 4); "
                          "INSERT INTO tokens1(tokens1, rank) VALUES('crisismerge', 16); "
                          "INSERT INTO marks(marks) VALUES('optimize'); "
                          "INSERT INTO marks(marks, rank) VALUES('automerge', 4); "
                          "INSERT INTO marks(marks, rank) VALUES('crisismerge', 16); COMMIT; "
                          "PRAGMA incremental_vacuum; PRAGMA wal_checkpoint(TRUNCATE)");
}

bool IndexDatabase::isWorn()
{
    const qint64 used = m_connection->number("SELECT count(*) FROM documents");
    const qint64 given = m_connection->number("SELECT seq FROM sqlite_sequence WHERE name = 'documents'");
    return given - used > std::max(used, wornBeyond);
}

} // namespace tomelet
