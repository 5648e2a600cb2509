// SPDX-License-Identifier: GPL-3.0-or-later
// Books and documents as lists, without a tree.
#include "library/OutlineItem.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/PropertyStore.h"
#include "library/Extensions.h"
#include "library/ItemDictionary.h"
#include "library/ItemPath.h"
#include "library/Properties.h"

#include <algorithm>

namespace tomelet {

QStringList tm_listOfBooksAtPath(const QString &path)
{
    QStringList names;
    for (const FolderEntry &entry : listFolder(path).value_or(std::vector<FolderEntry>())) {
        // The test sees the bare name: hidden folders above do not matter here.
        if ((entry.exists && !entry.isFolder) || tm_pathIsExcludedFromDisplay(entry.name)) continue;
        if (tm_isProtected(joinPath(path, entry.name))) logLine(QStringLiteral("skipping protected item"));
        else names.append(entry.name);
    }
    std::ranges::stable_sort(names, {}, [](const QString &name) { return std::pair(standardSortKey(name), name); });
    return names;
}

QStringList tm_sortedListOfAllItemsInHierarchy(const QString &book)
{
    const QVariantMap properties = readDictionary(bookPropertiesPath(book));
    const LocalizedIndex pinned(properties.value(QStringLiteral("Pinned")).toStringList());
    const RowSources documentSources{LocalizedIndex(properties.value(QStringLiteral("Notes")).toStringList()), pinned};
    const RowSources bookSources{LocalizedIndex(properties.value(QStringLiteral("Books")).toStringList()), pinned};

    QList<QVariantMap> documents;
    QList<QVariantMap> books;
    for (const FolderEntry &entry : listFolder(book).value_or(std::vector<FolderEntry>())) {
        const QString path = joinPath(book, entry.name);
        if (tm_pathIsExcludedFromDisplay(path)) continue;
        const bool isBook = entry.isFolder && !hasPackageExtension(path);
        (isBook ? books : documents).append(itemRow(path, false, {}, isBook ? bookSources : documentSources));
    }
    const QString order = properties.value(QStringLiteral("sortOrderForNotes")).toString();
    const bool descending = properties.value(QStringLiteral("sortNotesDescending")).toString() == u"YES";
    sortRows(documents, order, descending);
    sortRows(books, order, descending);

    QStringList paths;
    for (const QVariantMap &row : documents) paths.append(row.value(QStringLiteral("path")).toString());
    for (const QVariantMap &row : books)
        paths.append(tm_sortedListOfAllItemsInHierarchy(row.value(QStringLiteral("path")).toString()));
    return paths;
}

} // namespace tomelet
