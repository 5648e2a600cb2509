// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/list/RowChanges.h"

#include <QHash>

namespace tomelet::desktop {

QString pathOfRow(const QVariantMap &row)
{
    return row.value(QStringLiteral("path")).toString();
}

namespace {

constexpr int gone = -1;

// From the end, so that a run's numbers hold while the ones before it go.
void noteRemoved(const std::vector<int> &places, RowChanges &changes)
{
    for (int last = int(places.size()) - 1; last >= 0; --last) {
        if (places[size_t(last)] != gone) continue;
        int first = last;
        while (first > 0 && places[size_t(first) - 1] == gone) --first;
        changes.removed.emplace_back(first, last);
        changes.removedRows += last - first + 1;
        last = first;
    }
}

void dropWhereNothingMoves(std::vector<int> &places)
{
    for (size_t i = 0; i < places.size(); ++i)
        if (places[i] != int(i)) return;
    places.clear();
}

} // namespace

RowChanges rowChanges(const QList<QVariantMap> &before, QList<QVariantMap> after)
{
    RowChanges changes;
    QHash<QString, int> placeOf;
    placeOf.reserve(after.size());
    for (int i = 0; i < after.size(); ++i) placeOf.insert(pathOfRow(after[i]), i);

    std::vector<int> places;
    std::vector<bool> known(size_t(after.size()), false);
    for (const QVariantMap &row : before) {
        const int place = placeOf.value(pathOfRow(row), gone);
        places.push_back(place);
        if (place == gone) continue;
        known[size_t(place)] = true;
        if (row != after[place]) changes.changed.push_back(place);
    }
    noteRemoved(places, changes);
    std::erase(places, gone);
    for (int i = 0; i < after.size(); ++i) {
        if (known[size_t(i)]) continue;
        changes.added.append(after[i]);
        places.push_back(i);
    }
    dropWhereNothingMoves(places);
    changes.places = std::move(places);
    changes.after = std::move(after);
    return changes;
}

} // namespace tomelet::desktop
