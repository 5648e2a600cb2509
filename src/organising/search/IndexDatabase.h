// SPDX-License-Identifier: GPL-3.0-or-later
// The index's file: an SQLite database with the documents and, in FTS5 tables without content, their tokens and marks.
// The tokens are in two tables, stretch by stretch of the documents, which are read side by side.
//
// FTS5 cannot take a document out of such tables without its tokens, so a document that changes gets another number
// and the rows of the former one find nothing from then on. `isWorn` tells when there are too many of those.
#pragma once

#include "organising/search/IndexTokens.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>
#include <string>
#include <vector>

namespace tomelet {

/// What SQLite answered in place of doing its work; a result code.
struct IndexDatabaseError
{
    int code;
    /// Another program holds the file, and the same may work later.
    [[nodiscard]] bool isBusy() const;
    /// The file is no index, or a broken one.
    [[nodiscard]] bool isDamage() const;
};

class IndexDatabase
{
public:
    /// Size in bytes and time of the last change in nanoseconds.
    struct Stamp
    {
        qint64 size = 0;
        qint64 changed = 0;
        bool operator==(const Stamp &) const = default;
    };
    struct Document
    {
        QString path; ///< normalised
        Stamp stamp;
    };
    /// A document with its tokens and, where getting at its text takes long, that text.
    struct Entry
    {
        Document document;
        DocumentTokens tokens;
        QByteArray text;
    };

    /// Opens the file or makes it. All members throw IndexDatabaseError.
    explicit IndexDatabase(const QString &file);
    ~IndexDatabase();
    IndexDatabase(const IndexDatabase &) = delete;
    IndexDatabase &operator=(const IndexDatabase &) = delete;

    void begin();
    void commit();
    /// Undoes what was not committed; never throws.
    void rollback() noexcept;

    /// The documents at a path and below it; "" for all.
    [[nodiscard]] QHash<QString, Stamp> documentsAt(const QString &path);
    void put(const Entry &entry);
    void remove(const QString &path);

    /// The numbers of the documents in which all of a term's phrases are found, ascending; some may be out of use.
    [[nodiscard]] std::vector<qint64> find(const TermLookUps &lookUps);
    /// The same of those in which any of the marks is found; none for no marks.
    [[nodiscard]] std::vector<qint64> findAny(const std::vector<TokenPhrase> &marks);
    /// The paths of those that are in use, each with `root` in front, which is always the same.
    [[nodiscard]] QStringList pathsOf(const std::vector<qint64> &documents, const QString &root);
    /// The text that was put with the document; "" for none.
    [[nodiscard]] QByteArray textOf(const QString &path);

    /// Whether all documents have been put once.
    [[nodiscard]] bool isComplete();
    /// Says so, and makes the file small.
    void setComplete();
    /// More numbers are out of use than in use.
    [[nodiscard]] bool isWorn();

private:
    class Statement;
    class Connection;
    std::vector<qint64> findTokens(const std::string &expression);
    QString readPath(qint64 document);
    const std::vector<QString> &allPaths(const QString &root);

    std::unique_ptr<Connection> m_connection;
    std::unique_ptr<Connection> m_other; ///< for reading the second half of the tokens
    std::vector<QString> m_paths;        // by number, as of m_pathsVersion; empty while nobody needs them
    qint64 m_pathsVersion = 0;
};

} // namespace tomelet
