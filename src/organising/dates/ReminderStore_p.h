// SPDX-License-Identifier: GPL-3.0-or-later
// The file that holds the reminders of a root, open for one change.
#pragma once

#include "organising/dates/Reminders.h"

#include <QLockFile>

#include <memory>

namespace tomelet {

/// Reads the lists; holds back other programs while it lives.
class ReminderStore
{
public:
    ReminderStore();
    /// Writes what was changed.
    void save();

    QList<Reminder> scheduled;
    QList<Reminder> waiting;
    QList<Reminder> delivered;

private:
    QString m_path;
    std::unique_ptr<QLockFile> m_lock;
    QVariantMap m_saved;
};

} // namespace tomelet
