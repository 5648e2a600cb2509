// SPDX-License-Identifier: GPL-3.0-or-later
// The operations on tasks, due dates, repeats and reminders, one line each.
#include "cli/Items.h"
#include "cli/op/Call.h"
#include "cli/op/Registry.h"

#include "library/Root.h"
#include "organising/dates/DueDateDialog.h"
#include "organising/dates/DueDateTexts.h"
#include "organising/dates/Reminders.h"
#include "organising/dates/RepeatRule.h"
#include "organising/tasks/TaskExtraction.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskRepeats.h"
#include "organising/tasks/TaskRows.h"
#include "organising/tasks/Tasks.h"

namespace tomelet::cli {

static void addTasks(Registry &add)
{
    add.path("tm_bookIsTasklist", "book", tm_bookIsTasklist);
    add.path("tm_iconForTask", "path", tm_iconForTask);
    add.text("tm_taskIconForStateIsDue", "state, due", tm_taskIconForStateIsDue);
    add.path("tm_itemIsTask", "path", tm_itemIsTask);
    add.text("tm_taskIsDoneOrCanceled", "iconOrState", tm_taskIsDoneOrCanceled);
    add.path("tm_getAllTaskDetails", "path", tm_getAllTaskDetails);
    add.path("tm_setTaskDetails", "path, record", [](const QString &path, const QVariant &record) {
        tm_setTaskDetails(path, withIsoDates(record).toMap());
    });
    add.path("tm_dueDateForTask", "path", tm_dueDateForTask);
    add.path("tm_doneDateForTask", "path", tm_doneDateForTask);
    add.path("tm_toggleItemIsTask", "path", tm_toggleItemIsTask);
    add.path("tm_toggleTask", "path", tm_toggleTask);
    add.path("tm_toggleTaskWithDate", "path, date", tm_toggleTaskWithDate);
    add.path("tm_moveTaskToPath", "path, target", tm_moveTaskToPath);
    add.path("tm_toggleTasklistKeepingDetails", "book, keep", tm_toggleTasklistKeepingDetails);
    add.path("tm_resetTasklist", "book", tm_resetTasklist);
    add.value("tm_dictionaryByMergingWithTaskDetails", "store, other",
              [](const QVariantMap &store, const QVariant &other) {
                  return tm_dictionaryByMergingWithTaskDetails(store, withIsoDates(other).toMap());
              });
}

static void addTaskLists(Registry &add)
{
    add.path("tm_listOfTasklists", "root", tm_listOfTasklists);
    add.path("tm_correctTaskCountAtPath", "book", tm_correctTaskCountAtPath);
    add.path("tm_correctTaskCountAtPathWithCleanup", "book, cleanup", tm_correctTaskCountAtPathWithCleanup);
    add.path("tm_allOpenTasksCountingDescendants", "book, descendants", tm_allOpenTasksCountingDescendants);
    add.path("tm_arrayOfDueTasksAsNumbers", "root, numbers", tm_arrayOfDueTasksAsNumbers);
    add.text("tm_extractTasksToPath", "text, target, mode, encoding, inNewBook", tm_extractTasksToPath);
    add.path("tm_taskPlistChangedAtPath", "store", tm_taskPlistChangedAtPath);
    add.plain("updateListOfTasklists", "", updateListOfTasklists);
    add.plain("updateListOfTasklistsQuick", "", updateListOfTasklistsQuick);
    add.plain("updateListOfTasklistRemoving", "removing, adding", [](const QString &removing, const QString &adding) {
        const auto path = [](const QString &item) { return item.isEmpty() ? item : itemPath(item); };
        updateListOfTasklistRemoving(path(removing), path(adding));
    });
    add.path("openChecklistItems", "path", openChecklistItems);
}

static void addDueDates(Registry &add)
{
    add.path("tm_setDueDate", "path, date", tm_setDueDate);
    add.path("tm_clearDueDate", "path", tm_clearDueDate);
    add.path("tm_repeatDetails", "path", tm_repeatDetails);
    add.path("tm_setRepeatDetails", "path, details", tm_setRepeatDetails);
    add.path("tm_readableRepeatDetails", "path", tm_readableRepeatDetails);
    add.value("tm_readableRepeatDetailsForDetails", "details",
              [](const QVariant &details) { return tm_readableRepeatDetailsForDetails(details.toStringList()); });
    add.text("tm_readableRepeatDetailsForDetails", "receiver, details",
             [](const QString &, const QStringList &details) { return tm_readableRepeatDetailsForDetails(details); });
    add.path("tm_addRepeatingTask", "path", tm_addRepeatingTask);
    add.path("tm_notificationForDate", "path, date, repeat", tm_notificationForDate);
    add.plain("tm_repostAllNotifications", "", tm_repostAllNotifications);
    add.text("tm_repostAllNotifications", "receiver", [](const QString &) { tm_repostAllNotifications(); });
    add.path("tm_openTaskFromNotification", "path", tm_openTaskFromNotification);
    add.value("tm_showDueDateDialogForItems", "items", [](const QVariant &items) {
        QStringList paths;
        for (const QString &item : items.toStringList()) paths.append(itemPath(item));
        tm_showDueDateDialogForItems(paths,
                                     [](const Question &question, DueDateChoice &) { return askQuestion(question); });
    });
}

static void addDates(Registry &add)
{
    const auto date = [&add](const char *name, auto function) {
        add.text(name, "date", [function](const QDateTime &moment) { return function(moment); });
    };
    date("tm_dueDateHasAlertTime", tm_dueDateHasAlertTime);
    date("tm_alertTimeString", tm_alertTimeString);
    date("tm_thatDayMidnight", tm_thatDayMidnight);
    date("tm_weekdayString", tm_weekdayString);
    date("tm_weekdayStringWithOffset", tm_weekdayStringWithOffset);
    date("tm_absoluteWeekdayString", tm_absoluteWeekdayString);
    date("tm_fancyWeekdayString", tm_fancyWeekdayString);
    date("tm_shortDateTimeString", tm_shortDateTimeString);
    date("tm_sortableDateTimeString", tm_sortableDateTimeString);
    add.plain("tm_todayMidnight", "", tm_todayMidnight);
    add.text("tm_todayMidnight", "receiver", [](const QString &) { return tm_todayMidnight(); });
    add.plain("tm_todayInSecondsLocalized", "", tm_todayInSecondsLocalized);
    add.text("tm_todayInSecondsLocalized", "receiver", [](const QString &) { return tm_todayInSecondsLocalized(); });
}

void addTaskOperations(Registry &add)
{
    addTasks(add);
    addTaskLists(add);
    addDueDates(add);
    addDates(add);
}

} // namespace tomelet::cli
