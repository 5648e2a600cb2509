// SPDX-License-Identifier: GPL-3.0-or-later
// Due dates and repeats of single tasks. The time of day of a due date is its alert; 00:01:00 means none.
// A store that is missing or cannot be read makes all of this do nothing.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

namespace tomelet {

/// Sets the date, cut down to the whole minute.
void tm_setDueDate(const QString &path, const QDateTime &date);
/// Removes the date and with it the repeat rule.
void tm_clearDueDate(const QString &path);

/// Type, unit and factor as stored; nothing for a task that does not repeat.
[[nodiscard]] std::optional<QStringList> tm_repeatDetails(const QString &path);
/// Sets the rule, or removes it for an empty list. Tells nobody where the due date, set right after it, does
/// so.
void tm_setRepeatDetails(const QString &path, const QStringList &details);
[[nodiscard]] QString tm_readableRepeatDetails(const QString &path);

/// Makes the next occurrence of a repeating task that is done: the item becomes open again with a later date,
/// and a dated copy of it stays behind as done.
void tm_addRepeatingTask(const QString &path);
/// Posted after it with the `path` of the item and that of the `copy`.
inline const QString taskRepeatedNotification = QStringLiteral("TMLTTaskRepeatedNotification");

} // namespace tomelet
