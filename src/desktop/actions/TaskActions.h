// SPDX-License-Identifier: GPL-3.0-or-later
// What a person does to tasks and tasklists, each as one step that can be undone where nothing else is told.
#pragma once

#include "organising/dates/DueDateDialog.h"

#include <QStringList>

namespace tomelet::desktop {

class ItemActions;

/// Those of the items that are documents of a tasklist, whether tasks or not.
[[nodiscard]] QStringList itemsInTasklists(const QStringList &paths);

/// The item has a due date, whatever its state.
[[nodiscard]] bool hasDueDate(const QString &path);

/// One step on in the ring of states. Undone, a repeating task also loses the dated copy that it left behind.
void toggleTasks(ItemActions &actions, const QStringList &paths);
/// Makes tasks no tasks, and the other way round.
void toggleItemsAreTasks(ItemActions &actions, const QStringList &paths);
/// Shows the dialog for the items and does what it says.
void chooseDueDates(ItemActions &actions, const QStringList &paths, const DueDateDialog &dialog);
void clearDueDates(ItemActions &actions, const QStringList &paths);
void clearAlertsOf(ItemActions &actions, const QStringList &paths);
void stopRepeating(ItemActions &actions, const QStringList &paths);

/// Shows the book as a tasklist, or as an ordinary book again; its records are kept meanwhile.
void toggleTasklist(ItemActions &actions, const QString &book);
/// A new book that is a tasklist; "" when it could not be made.
QString newTasklist(ItemActions &actions, const QString &parent);
/// Forgets all states, dates and repeats of the book after asking; this cannot be undone.
void resetTasks(const QString &book);
/// Makes tasks of the marked lines of the documents; gives the paths of the new ones.
QStringList extractTasksOf(ItemActions &actions, const QStringList &documents);

} // namespace tomelet::desktop
