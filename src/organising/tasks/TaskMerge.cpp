// SPDX-License-Identifier: GPL-3.0-or-later
// Two versions of one task store, as two devices leave them.
#include "foundation/Clock.h"
#include "foundation/Collation.h"
#include "organising/tasks/Tasks.h"

namespace tomelet {

static QDateTime changedOr(const QVariant &record, const QDateTime &missing)
{
    const QDateTime changed = dateField(record.toMap(), taskField::changed);
    return changed.isValid() ? changed : missing;
}

QVariantMap tm_dictionaryByMergingWithTaskDetails(const QVariantMap &store, const QVariantMap &other)
{
    QVariantMap merged = store;
    const QStringList own = store.keys();
    const LocalizedIndex ownKeys(own);
    for (auto it = other.begin(); it != other.end(); ++it) {
        if (isTaskCounter(it.key())) continue;
        if (const auto index = ownKeys.find(it.key())) {
            // A record without a date of change yields to one that has it; of two without, the own one stays.
            const QDateTime ownChange = changedOr(store.value(own[*index]), farPast().addSecs(1));
            if (changedOr(it.value(), farPast()) < ownChange) continue;
            merged.remove(own[*index]);
        }
        merged.insert(it.key(), it.value());
    }
    return merged;
}

} // namespace tomelet
