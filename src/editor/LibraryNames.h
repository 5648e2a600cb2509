// SPDX-License-Identifier: GPL-3.0-or-later
// The names of all documents of the notebook, for completing links. They are listed on a thread of their own when they
// are first wanted, and again when they are wanted after documents came, went or moved. For the main thread.
#pragma once

#include "foundation/NotificationCenter.h"
#include "foundation/SerialQueue.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <set>
#include <utility>
#include <vector>

namespace tomelet {

class LibraryNames
{
public:
    LibraryNames();

    /// Has the documents listed if what is known of them no longer holds; `listed` is called when that is done.
    void want(const std::function<void()> &listed);
    /// The normalised paths of the documents whose names begin so, in any case, ordered by name, `most` at most. As
    /// they were when they were last listed.
    [[nodiscard]] QStringList beginningWith(const QString &beginning, size_t most) const;

private:
    /// The folded name and the normalised path.
    using Names = std::set<std::pair<QString, QString>>;
    static Names listed(const QString &root);
    void noteChange(const QString &path);

    QObject m_mainThread; // receives what the other thread hands over; nothing comes once it is gone
    QString m_root;
    Names m_names;
    bool m_holds = false;
    bool m_isListing = false;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
    SerialQueue m_listings;
};

} // namespace tomelet
