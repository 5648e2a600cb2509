// SPDX-License-Identifier: GPL-3.0-or-later
// The counts beside the rows of the outline. A paint reads what is known; what is not known, or may have
// changed, is counted on a thread of its own, and the rows are drawn anew when it is there.
#pragma once

#include "foundation/NotificationCenter.h"
#include "foundation/SerialQueue.h"

#include <QHash>
#include <QObject>

#include <vector>

class QTimer;

namespace tomelet {
class TMLTOutlineItem;
}

namespace tomelet::desktop {

struct Badge
{
    qlonglong total = 0;
    qlonglong due = 0; ///< how many of these are overdue
    bool isTasklist = false;
    friend bool operator==(const Badge &, const Badge &) = default;
};

/// The kind of row and its counts, in words.
[[nodiscard]] QString describeBadge(int smartType, const Badge &badge);

class OutlineBadges final : public QObject
{
    Q_OBJECT

public:
    explicit OutlineBadges(QObject *parent = nullptr);

    /// What is known of the row; asks for the count where that is not certain.
    [[nodiscard]] Badge badgeOf(const TMLTOutlineItem &item);
    /// The same by the type of a smart book, or OrdinaryBook and the book's full path.
    [[nodiscard]] Badge badgeOf(int smartType, const QString &path);

    /// All counts may have changed.
    void recount();

Q_SIGNALS:
    /// Rows are to be drawn anew.
    void changed();
    /// How many tasks are overdue in the whole notebook.
    void overdueChanged(qlonglong count);

private:
    struct Known
    {
        Badge badge;
        quint64 askedIn = 0; ///< the generation of the last request
    };

    void ask(const QString &key);
    void take(const QString &key, quint64 generation, const Badge &badge);

    QHash<QString, Known> m_known;
    quint64 m_generation = 1; ///< goes up whenever counts may have changed
    qlonglong m_overdue = 0;
    QTimer *m_soon;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
    SerialQueue m_queue; // ends first: its jobs speak to all of the above
};

} // namespace tomelet::desktop
