// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/SearchResults.h"

#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemPath.h"

#include <QHash>
#include <QVariant>

namespace tomelet {

QString searchResultsFile()
{
    return joinPath(rootCacheFolder(), QStringLiteral(".Search/LastSearchresultsItemsPath.txt"));
}

// Results whose file could not be written, by its path: on a full disk they are shown all the same.
static QHash<QString, QStringList> &unwritten()
{
    static QHash<QString, QStringList> results;
    return results;
}

QStringList lastSearchResults()
{
    const QString file = searchResultsFile();
    return unwritten().contains(file) ? unwritten().value(file) : readStringArray(file);
}

QStringList storeSearchResults(const QStringList &paths)
{
    const QString root = tomeletRoot();
    QStringList shown;
    for (const QString &path : paths)
        if (!tm_pathIsExcludedFromDisplay(tm_normalizedPath(path, root))) shown.append(path);
    const QString file = searchResultsFile();
    unwritten().remove(file);
    if (!makeFolder(parentPath(file)) || !writeStore(file, QVariantList(shown.begin(), shown.end())))
        unwritten().insert(file, shown);
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
