// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/NotificationCenter.h"

namespace tomelet {

NotificationCenter::Subscription NotificationCenter::observe(const QString &name, Observer observer)
{
    auto kept = std::make_shared<Observer>(std::move(observer));
    auto &observers = m_observers[name];
    std::erase_if(observers, [](const auto &entry) { return entry.expired(); });
    observers.push_back(kept);
    return kept;
}

void NotificationCenter::post(const QString &name, const QVariantMap &payload)
{
    // A copy, because an observer may begin or end observations.
    const auto observers = m_observers.value(name);
    for (const auto &entry : observers)
        if (const auto observer = entry.lock()) (*observer)(payload);
}

void NotificationCenter::postPath(const QString &name, const QString &path)
{
    post(name, {{QStringLiteral("path"), path}});
}

} // namespace tomelet
