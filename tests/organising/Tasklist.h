// SPDX-License-Identifier: GPL-3.0-or-later
// A notebook with the tasklist "/List" and a clock that stands at noon of a Saturday in November.
#pragma once

#include "tests/support/Notebook.h"

#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "organising/NotebookOrganiser.h"
#include "organising/tasks/TaskRepeats.h"
#include "organising/tasks/Tasks.h"

namespace tomelet::test {

class Tasklist : public Notebook
{
protected:
    Tasklist()
    {
        installNotebookOrganiser();
        setNow(QStringLiteral("2026-11-21T11:00:00Z"));
        list = makeBook(QStringLiteral("/List"));
        tm_toggleTasklistKeepingDetails(list, true);
    }

    static QDateTime now() { return platform().clock.now(); }
    static QDateTime utc(const QString &iso) { return QDateTime::fromString(iso, Qt::ISODate).toUTC(); }
    static void setNow(const QString &iso) { platform().clock.fix(utc(iso)); }

    /// A document of the tasklist.
    QString task(const QString &name) const { return write(QStringLiteral("/List/") + name); }
    [[nodiscard]] QVariantMap store() const { return readDictionary(taskStorePath(list)); }
    void setStore(const QVariantMap &values) const { writeStore(taskStorePath(list), values); }
    /// Done and due counter.
    [[nodiscard]] QString counters() const
    {
        const TaskStore values(list);
        return QStringLiteral("%1 %2").arg(values.doneCount()).arg(values.dueCount());
    }
    static QString state(const QString &path)
    {
        return tm_getAllTaskDetails(path).value_or(TaskRecord()).value(taskField::state).toString();
    }
    static TaskRecord record(const char *state, const QDateTime &due = {})
    {
        TaskRecord values;
        if (*state) values.insert(taskField::state, QString::fromLatin1(state));
        if (due.isValid()) values.insert(taskField::dueDate, due);
        return values;
    }

    QString list;
};

} // namespace tomelet::test
