// SPDX-License-Identifier: GPL-3.0-or-later
// Names with a dictionary that anyone may post and anyone may observe; delivery is immediate, on the poster's thread.
#pragma once

#include <QHash>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <vector>

namespace tomelet {

class NotificationCenter
{
public:
    using Observer = std::function<void(const QVariantMap &payload)>;

    /// Ends the observation when it is destroyed.
    using Subscription = std::shared_ptr<void>;

    /// Calls the observer at every post of the name while the subscription lives.
    [[nodiscard]] Subscription observe(const QString &name, Observer observer);
    void post(const QString &name, const QVariantMap &payload = {});
    /// Posts with the one entry "path".
    void postPath(const QString &name, const QString &path);

private:
    QHash<QString, std::vector<std::weak_ptr<Observer>>> m_observers;
};

} // namespace tomelet
