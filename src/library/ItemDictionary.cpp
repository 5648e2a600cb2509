// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/ItemDictionary.h"

#include "foundation/Collation.h"
#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"
#include "library/Properties.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace tomelet {

namespace {

// The place in the manual order as a text that sorts as such: four digits, or "-0001".
QString customPosition(const QString &name, const LocalizedIndex &order)
{
    if (order.isEmpty()) return QStringLiteral("-0001");
    if (const auto index = order.find(name)) return QStringLiteral("%1").arg(*index, 4, 10, QLatin1Char('0'));
    return settings().boolean(QStringLiteral("manualSortNewAtTop")) ? QStringLiteral("-0001") : QStringLiteral("9000");
}

QDateTime rowCreationDate(const QString &path, const QVariantMap &properties, const QDateTime &date)
{
    const QVariant stored = properties.value(QStringLiteral("CreationDate"));
    if (stored.typeId() == QMetaType::QDateTime) return stored.toDateTime();
    if (date.isValid() && settings().boolean(QStringLiteral("alwaysSaveCreationDate"))) tm_setCreationDate(path, date);
    return date;
}

QString flag(bool on)
{
    return on ? QStringLiteral("1") : QString();
}

} // namespace

QVariantMap itemRow(const QString &path, bool asTask, const QVariant &details, const RowSources &sources)
{
    const QString name = lastPathComponent(path);
    const QString parent = parentPath(path);
    const bool isBook = pathIsPlainBook(path);

    QVariantMap parentProperties;
    if (isBook || !sources.sortOrder || !sources.pinnedOrder)
        parentProperties = readDictionary(bookPropertiesPath(parent));
    const auto listed = [&](const QString &key) { return LocalizedIndex(parentProperties.value(key).toStringList()); };
    const QString orderKey = isBook ? QStringLiteral("Books") : QStringLiteral("Notes");
    const LocalizedIndex order = sources.sortOrder ? *sources.sortOrder : listed(orderKey);
    const LocalizedIndex pinned = sources.pinnedOrder ? *sources.pinnedOrder : listed(QStringLiteral("Pinned"));
    // A book's row takes its properties from the parent's file, deliberately: they describe it as a child.
    const QVariantMap properties = isBook ? parentProperties : readDictionary(tm_plistPath(path));

    const TaskRow task = asTask ? organiser().taskRow(path, details) : TaskRow{farFuture(), {}, false};
    const FileDates dates = fileDates(path);
    const auto pin = pinned.find(name);
    QVariantMap row{
        {QStringLiteral("title"), name},
        {QStringLiteral("path"), path},
        {QStringLiteral("parent"), parent},
        {QStringLiteral("modDate"), dates.modified},
        {QStringLiteral("DueDate"), task.sortDate},
        {QStringLiteral("creationDate"), rowCreationDate(path, properties, dates.created)},
        {QStringLiteral("custom"), customPosition(name, order)},
        {QStringLiteral("taskIcon"), task.icon},
        {QStringLiteral("taskIsRepeating"), flag(task.repeats)},
        {QStringLiteral("pinnedSequence"), pin ? qlonglong(*pin) : notFoundIndex},
        {QStringLiteral("_TMFAV"),
         flag(properties.value(QStringLiteral("Tags")).toStringList().contains(QStringLiteral("_TMFAV")))},
    };
    const QString color = properties.value(QStringLiteral("cellColor")).toString();
    if (!color.isEmpty()) row.insert(QStringLiteral("cellColor"), color);
    return row;
}

QVariantMap tm_dictionaryForItemAsTask(const QString &path, bool asTask, const QVariant &details,
                                       const QVariant &sortOrder, const QVariant &pinnedOrder)
{
    RowSources sources;
    if (sortOrder.isValid()) sources.sortOrder = LocalizedIndex(sortOrder.toStringList());
    if (pinnedOrder.isValid()) sources.pinnedOrder = LocalizedIndex(pinnedOrder.toStringList());
    return itemRow(path, asTask, details, sources);
}

QVariantMap tm_dictionaryForItemAtPath(const QString &path)
{
    return itemRow(path, organiser().itemIsTask(path), {}, {});
}

// -- sorting ----------------------------------------------------------------------------------------------------------

namespace {

// Sorts indices rather than rows, so that each pass moves numbers and each key is read once.
class RowOrder
{
public:
    explicit RowOrder(const QList<QVariantMap> &rows)
        : m_rows(rows)
        , m_order(size_t(rows.size()))
    {
        std::iota(m_order.begin(), m_order.end(), 0);
    }

    template <typename KeyOf>
    void sortBy(const KeyOf &keyOf, bool descending)
    {
        std::vector<decltype(keyOf(m_rows[0]))> keys;
        keys.reserve(m_order.size());
        for (const QVariantMap &row : m_rows) keys.push_back(keyOf(row));
        std::stable_sort(m_order.begin(), m_order.end(), [&](qsizetype a, qsizetype b) {
            return descending ? keys[size_t(b)] < keys[size_t(a)] : keys[size_t(a)] < keys[size_t(b)];
        });
    }

    [[nodiscard]] QList<QVariantMap> sorted() const
    {
        QList<QVariantMap> result;
        result.reserve(m_rows.size());
        for (const qsizetype index : m_order) result.append(m_rows[index]);
        return result;
    }

private:
    const QList<QVariantMap> &m_rows;
    std::vector<qsizetype> m_order;
};

qint64 dateKey(const QVariantMap &row, const QString &key)
{
    const QDateTime date = row.value(key).toDateTime();
    return date.isValid() ? date.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
}

// Rows that were made elsewhere may have no path.
QString nameOf(const QVariantMap &row)
{
    const QString path = row.value(QStringLiteral("path")).toString();
    return path.isEmpty() ? row.value(QStringLiteral("title")).toString() : lastPathComponent(path);
}

} // namespace

void sortRows(QList<QVariantMap> &rows, const QString &parameter, bool descending)
{
    if (rows.isEmpty()) return;
    const bool byTitle = parameter.isEmpty() || parameter == u"title";
    const bool custom = parameter == u"custom";
    const bool newAtTop = settings().boolean(QStringLiteral("manualSortNewAtTop"));
    const bool numeric = settings().boolean(QStringLiteral("useNumericOrder"));

    // Names settle the ties of every other order.
    RowOrder order(rows);
    order.sortBy([numeric](const QVariantMap &row) { return nameSortKey(nameOf(row), numeric); },
                 byTitle && descending);
    if (custom) {
        order.sortBy([](const QVariantMap &row) { return dateKey(row, QStringLiteral("creationDate")); }, newAtTop);
        order.sortBy([](const QVariantMap &row) { return row.value(QStringLiteral("custom")).toString(); }, false);
    } else if (!byTitle && (parameter == u"modDate" || parameter == u"DueDate" || parameter == u"creationDate"))
        order.sortBy([&](const QVariantMap &row) { return dateKey(row, parameter); }, descending);
    if (!custom)
        order.sortBy(
            [](const QVariantMap &row) { return integerFromVariant(row.value(QStringLiteral("pinnedSequence"))); },
            false);
    rows = order.sorted();
}

void tm_sortByParameter(QVariantList &rows, const QString &parameter, bool descending)
{
    QList<QVariantMap> maps;
    for (const QVariant &row : rows) maps.append(row.toMap());
    sortRows(maps, parameter, descending);
    rows.clear();
    for (const QVariantMap &row : maps) rows.append(row);
}

} // namespace tomelet
