// SPDX-License-Identifier: GPL-3.0-or-later
// The order of the rows below one row of the tree.
#include "library/OutlineItem.h"

#include "foundation/Collation.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemDictionary.h"
#include "library/ItemPath.h"
#include "library/Properties.h"

#include <QFileInfo>

#include <algorithm>

namespace tomelet {

namespace {

struct Order
{
    QString parameter;
    bool descending = false;
};

Order orderOf(const TMLTOutlineItem &item)
{
    const auto fromSettings = [](const QString &prefix) {
        return Order{settings().string(prefix + QStringLiteral("SortOrder")),
                     settings().boolean(prefix + QStringLiteral("SortDescending"))};
    };
    if (item.smartBookType() == ContextsBook) return fromSettings(QStringLiteral("contexts"));
    if (item.smartBookType() == FavoritesBook) return fromSettings(QStringLiteral("favorites"));
    const QVariantMap properties = readDictionary(bookPropertiesPath(item.fullPath()));
    return {properties.value(QStringLiteral("sortOrderForNotes")).toString(),
            properties.value(QStringLiteral("sortNotesDescending")).toString() == u"YES"};
}

QDateTime dateOf(const TMLTOutlineItem &item, bool created)
{
    const QString path = item.fullPath();
    return created ? fileCreationDate(path) : QFileInfo(path).lastModified().toUTC();
}

// Sorts by a key that is made once an item.
template <typename KeyOf>
void sortByKey(TMLTOutlineItem::Children &list, const KeyOf &keyOf, bool descending)
{
    using Key = decltype(keyOf(*list.front()));
    std::vector<std::pair<Key, std::unique_ptr<TMLTOutlineItem>>> keyed;
    keyed.reserve(list.size());
    for (auto &item : list) {
        Key key = keyOf(*item);
        keyed.emplace_back(std::move(key), std::move(item));
    }
    std::stable_sort(keyed.begin(), keyed.end(), [descending](const auto &a, const auto &b) {
        return descending ? b.first < a.first : a.first < b.first;
    });
    for (size_t i = 0; i < list.size(); ++i) list[i] = std::move(keyed[i].second);
}

} // namespace

void TMLTOutlineItem::sortChildren()
{
    if (!m_children || m_children->empty()) {
        m_customSortSelected = false;
        return;
    }
    if (s_observer) s_observer->aboutToReorder();
    sortList(*m_children);
    if (s_observer) s_observer->reordered();
}

void TMLTOutlineItem::reassignCustomSortOrder()
{
    if (m_children) reassignCustomSortOrder(*m_children);
}

void TMLTOutlineItem::reassignCustomSortOrder(Children &list)
{
    const LocalizedIndex order(
        m_smartBookType == ContextsBook
            ? readStringArray(miscFile(QStringLiteral("AvailableTags.txt")))
            : readDictionary(bookPropertiesPath(fullPath())).value(QStringLiteral("Books")).toStringList());
    for (const auto &item : list) {
        const auto index = order.find(item->m_relativePath);
        item->m_sequenceNumber = index.value_or(0);
        item->m_listedInOrder = index.has_value();
    }
}

void TMLTOutlineItem::sortList(Children &list)
{
    m_customSortSelected = false;
    if (list.empty()) return;
    if (m_groupItemType == SmartBooksGroup)
        return sortByKey(
            list, [](const TMLTOutlineItem &item) { return int(item.m_smartBookType); }, false);

    const bool numeric = settings().boolean(QStringLiteral("useNumericOrder"));
    const auto [parameter, descending] = orderOf(*this);
    const auto byTitle = [&](bool reversed) {
        sortByKey(
            list, [&](const TMLTOutlineItem &item) { return nameSortKey(item.title(), numeric); }, reversed);
        sortByKey(
            list, [](const TMLTOutlineItem &item) { return item.m_document; }, false);
    };
    if (parameter == u"custom") {
        byTitle(false);
        reassignCustomSortOrder(list);
        m_customSortSelected = true;
        // An unlisted child is level with the first listed one and stands before it.
        return sortByKey(
            list, [](const TMLTOutlineItem &item) { return std::pair(item.m_sequenceNumber, item.m_listedInOrder); },
            false);
    }
    if (parameter == u"modDate" || parameter == u"creationDate")
        return sortByKey(
            list,
            [created = parameter == u"creationDate"](const TMLTOutlineItem &item) { return dateOf(item, created); },
            descending);
    byTitle(descending);
}

} // namespace tomelet
