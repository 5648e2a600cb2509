// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/SearchResults.h"

#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemPath.h"

#include <QHash>
#include <QVariant>

#include <mutex>
#include <optional>

namespace tomelet {

QString searchResultsFile()
{
    return joinPath(rootCacheFolder(), QStringLiteral(".Search/LastSearchresultsItemsPath.txt"));
}

namespace {

/// Results whose file could not be written, by its path: on a full disk they are shown all the same.
class UnwrittenResults
{
public:
    void keep(const QString &file, const QStringList &paths)
    {
        const std::lock_guard lock(m_mutex);
        m_results.insert(file, paths);
    }
    void forget(const QString &file)
    {
        const std::lock_guard lock(m_mutex);
        m_results.remove(file);
    }
    [[nodiscard]] std::optional<QStringList> of(const QString &file)
    {
        const std::lock_guard lock(m_mutex);
        return m_results.contains(file) ? std::optional(m_results.value(file)) : std::nullopt;
    }

private:
    std::mutex m_mutex;
    QHash<QString, QStringList> m_results;
};

UnwrittenResults &unwritten()
{
    static UnwrittenResults results;
    return results;
}

} // namespace

QStringList lastSearchResults()
{
    const QString file = searchResultsFile();
    if (const auto kept = unwritten().of(file)) return *kept;
    return readStringArray(file);
}

QStringList storeSearchResults(const QStringList &paths)
{
    const QString root = tomeletRoot();
    QStringList shown;
    for (const QString &path : paths)
        if (!tm_pathIsExcludedFromDisplay(tm_normalizedPath(path, root))) shown.append(path);
    const QString file = searchResultsFile();
    unwritten().forget(file);
    if (!makeFolder(parentPath(file)) || !writeStore(file, QVariantList(shown.begin(), shown.end())))
        unwritten().keep(file, shown);
    return shown;
}

QString searchResultsHeader(const QString &text, const QString &scope, qsizetype hits)
{
    const bool wholeLibrary = settings().boolean(QStringLiteral("searchAllBooks")) || scope == tomeletRoot();
    const QString sought = wholeLibrary ? text : QStringLiteral("%1 (%2)").arg(text, lastPathComponent(scope));
    return QStringLiteral("%1: %2 - %3 %4")
        .arg(localized(TOMELET_TEXT("Search")), sought, QString::number(hits), localized(TOMELET_TEXT("Hits")));
}

QString searchScope(const QString &book)
{
    const bool all = settings().boolean(QStringLiteral("searchAllBooks"));
    return !all && !book.isEmpty() && isFolder(book) ? book : tomeletRoot();
}

} // namespace tomelet
