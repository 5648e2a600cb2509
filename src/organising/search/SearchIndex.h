// SPDX-License-Identifier: GPL-3.0-or-later
// The text index of one root: kept in its cache folder, a derived store that can be thrown away at any time.
#pragma once

#include "foundation/Progress.h"
#include "organising/search/IndexDatabase.h"
#include "organising/search/Query.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace tomelet {

/// The file of the index in force; ".Search/Index.sqlite" in the root's cache.
[[nodiscard]] QString searchIndexFile();

/// For use on one thread at a time; several may work on one file.
class SearchIndex
{
public:
    /// `root` is the resolved root. Nothing is opened or made yet.
    SearchIndex(QString root, QString file);
    ~SearchIndex();

    struct Update
    {
        bool complete = false;   ///< false when it was stopped or the file cannot be used
        qsizetype read = 0;      ///< documents whose text was read
        qsizetype removed = 0;   ///< documents that are gone
        qsizetype documents = 0; ///< documents in the notebook, or below the path
        QString problem;         ///< why the file cannot be used; "" for none
    };
    /// Brings the index up to date with what lies at the path (a document or folder, there or gone), by size and time
    /// of change. A damaged file is thrown away and made anew.
    Update update(const QString &path, const Progress &progress = {});

    /// The full paths of all hits below the scope, in no order. Nothing when the index cannot tell: it is not complete
    /// yet, or damaged. Ends early, with what it has, when `progress` says so.
    std::optional<QStringList> find(const SearchQuery &query, const QString &scope, const Progress &progress = {});

private:
    IndexDatabase &database();
    bool putAll(const std::vector<IndexDatabase::Document> &documents, const Progress &progress, Update &result);
    Update updateOnce(const QString &path, const Progress &progress);
    QStringList findIn(IndexDatabase &index, const SearchQuery &query, const QString &scope, const Progress &progress);
    void throwAway();

    QString m_root;
    QString m_file;
    std::unique_ptr<IndexDatabase> m_database;
};

/// The same hits by reading every document below the scope.
[[nodiscard]] QStringList searchByWalk(const QString &root, const SearchQuery &query, const QString &scope,
                                       const Progress &progress = {});

} // namespace tomelet
