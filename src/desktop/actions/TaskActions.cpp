// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/actions/TaskActions.h"

#include "desktop/actions/ItemActions.h"
#include "desktop/actions/Step.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "library/Deletion.h"
#include "library/ItemPath.h"
#include "organising/dates/DueDateCalendar.h"
#include "organising/tasks/TaskExtraction.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskMirror.h"
#include "organising/tasks/TaskRepeats.h"
#include "organising/tasks/Tasks.h"

namespace tomelet::desktop {

namespace {

using Change = std::function<void(const QString &path)>;

// A change of tasks: undone by putting their records back.
class TasksStep final : public Step
{
public:
    TasksStep(const QString &text, const QStringList &paths, Change change)
        : Step(text)
        , m_change(std::move(change))
    {
        for (const QString &path : paths)
            m_before.append({path, tm_getAllTaskDetails(path).value_or(TaskRecord()), {}});
    }

    /// The copies that repeating tasks leave behind belong to the step.
    void followRepeats()
    {
        m_repeated =
            notifications().observe(taskRepeatedNotification, [this](const QVariantMap &told) { noteCopy(told); });
    }

    void again() override
    {
        for (const Before &task : m_before) m_change(task.path);
    }

    void undo() override
    {
        for (Before &task : m_before) putBack(task);
    }

private:
    struct Before
    {
        QString path;
        TaskRecord record;
        QString copy; ///< what the repeating task left behind
    };

    // Only the step into done makes a task repeat, and each task once.
    void noteCopy(const QVariantMap &told)
    {
        for (Before &task : m_before) {
            const bool led = stateOf(task.record) == TaskState::Started && task.copy.isEmpty();
            if (led && task.path == told.value(QStringLiteral("path")).toString())
                task.copy = told.value(QStringLiteral("copy")).toString();
        }
    }

    static void putBack(Before &task)
    {
        if (!itemExists(task.path)) return;
        for (const char *waiting : {"tm_addRepeatingTask", "tm_setDueDate", "tm_clearDueDate"})
            platform().delayedCalls.cancel(QLatin1StringView(waiting), task.path);
        const TaskState now = stateOf(tm_getAllTaskDetails(task.path).value_or(TaskRecord()));
        const TaskState before = stateOf(task.record);
        if (const QString copy = std::exchange(task.copy, {}); itemExists(copy)) {
            tm_moveTaskToPath(copy, {});
            performDeleteSelectedItems({copy}, false);
            notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), copy);
        }
        tm_setTaskDetails(task.path, task.record);
        tm_correctTaskCountAtPathWithCleanup(parentPath(task.path), false);
        if (now != TaskState::NoTask && before != TaskState::NoTask) turnMarkBack(task.path, now, before);
    }

    // The mark in the text that the task came from only goes round the ring, where a started task is an open
    // one.
    static void turnMarkBack(const QString &path, TaskState from, TaskState to)
    {
        static constexpr TaskState ring[] = {TaskState::Open, TaskState::Done, TaskState::Canceled};
        const auto place = [](TaskState state) {
            return state == TaskState::Done ? 1 : state == TaskState::Canceled ? 2 : 0;
        };
        for (int at = place(from); at != place(to);) {
            at = (at + 1) % 3;
            mirrorTaskState(path, ring[at]);
        }
    }

    QList<Before> m_before;
    Change m_change;
    NotificationCenter::Subscription m_repeated;
};

TasksStep *change(ItemActions &actions, const char *name, const QStringList &paths, const Change &how)
{
    if (paths.isEmpty()) return nullptr;
    auto *step = new TasksStep(localized(name), paths, how);
    step->again();
    actions.undoStack().push(step);
    return step;
}

// Both ways are the same operation: the store goes aside and comes back.
class TasklistStep final : public Step
{
public:
    TasklistStep(const QString &text, QString book)
        : Step(text)
        , m_book(std::move(book))
        , m_isNew(!itemExists(taskStorePath(m_book)) && !itemExists(inactiveTaskStorePath(m_book)))
    {}
    void again() override { toggle(true); }
    void undo() override { toggle(!m_isNew); }

private:
    void toggle(bool keep) const
    {
        tm_toggleTasklistKeepingDetails(m_book, keep);
        notifications().post(QStringLiteral("TMLTUpdateAllTaskLists"));
    }

    QString m_book;
    bool m_isNew; ///< there were no records: none are left behind
};

} // namespace

QStringList itemsInTasklists(const QStringList &paths)
{
    QStringList items = paths;
    items.removeIf([](const QString &path) { return pathIsPlainBook(path) || !tm_bookIsTasklist(parentPath(path)); });
    return items;
}

bool hasDueDate(const QString &path)
{
    const QDateTime due = tm_dueDateForTask(path);
    return due != farFuture() && due != farPast();
}

// -- tasks --------------------------------------------------------------------------------------------------

void toggleTasks(ItemActions &actions, const QStringList &paths)
{
    QStringList tasks = itemsInTasklists(paths);
    tasks.removeIf([](const QString &path) { return !tm_itemIsTask(path); });
    TasksStep *step =
        change(actions, TOMELET_TEXT("Task State"), tasks, [](const QString &path) { tm_toggleTask(path); });
    if (step) step->followRepeats();
}

void toggleItemsAreTasks(ItemActions &actions, const QStringList &paths)
{
    change(actions, TOMELET_TEXT("Not a Task"), itemsInTasklists(paths), tm_toggleItemIsTask);
}

void chooseDueDates(ItemActions &actions, const QStringList &paths, const DueDateDialog &dialog)
{
    const QStringList items = itemsInTasklists(paths);
    if (items.isEmpty()) return;
    struct Chosen
    {
        int button = 0;
        bool hadRule = false;
        DueDateChoice choice;
    };
    const auto chosen = std::make_shared<Chosen>();
    auto *step = new TasksStep(localized(TOMELET_TEXT("Due Date")), items, [chosen](const QString &path) {
        if (chosen->button != 0) return tm_clearDueDate(path);
        setChosenRepeat(path, chosen->choice.repeatDetails, chosen->hadRule);
        tm_setDueDate(path, withoutMidnightAlert(chosen->choice.date));
    });
    tm_showDueDateDialogForItems(items, [&](const Question &question, DueDateChoice &choice) {
        chosen->hadRule = !choice.repeatDetails.isEmpty();
        chosen->button = dialog(question, choice);
        chosen->choice = choice;
        return chosen->button;
    });
    if (chosen->button == 0 || chosen->button == 1) actions.undoStack().push(step);
    else delete step;
}

void clearDueDates(ItemActions &actions, const QStringList &paths)
{
    QStringList dated = itemsInTasklists(paths);
    dated.removeIf([](const QString &path) { return !hasDueDate(path); });
    change(actions, TOMELET_TEXT("Clear Due Date"), dated, tm_clearDueDate);
}

void clearAlertsOf(ItemActions &actions, const QStringList &paths)
{
    QStringList alerted = itemsInTasklists(paths);
    alerted.removeIf([](const QString &path) { return !tm_dueDateHasAlertTime(tm_dueDateForTask(path)); });
    change(actions, TOMELET_TEXT("Clear Alert"), alerted, [](const QString &path) { clearAlerts({path}); });
}

void stopRepeating(ItemActions &actions, const QStringList &paths)
{
    QStringList repeating = itemsInTasklists(paths);
    repeating.removeIf([](const QString &path) { return !tm_repeatDetails(path); });
    change(actions, TOMELET_TEXT("Don't Repeat"), repeating,
           [](const QString &path) { tm_setRepeatDetails(path, {}); });
}

// -- tasklists ----------------------------------------------------------------------------------------------

void toggleTasklist(ItemActions &actions, const QString &book)
{
    auto *step = new TasklistStep(localized(TOMELET_TEXT("Show as Tasklist")), book);
    step->again();
    actions.undoStack().push(step);
}

QString newTasklist(ItemActions &actions, const QString &parent)
{
    const QString book = actions.newBook(parent);
    if (!book.isEmpty()) tm_toggleTasklistKeepingDetails(book, false);
    return book;
}

void resetTasks(const QString &book)
{
    const int answer = askQuestion({localized(TOMELET_TEXT("Reset all tasks?")),
                                    localized(TOMELET_TEXT("You are about to clear task states, due dates and "
                                                           "reminders.\nYou cannot undo this action.")),
                                    {localized(TOMELET_TEXT("Reset")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer == 0) tm_resetTasklist(book);
}

QStringList extractTasksOf(ItemActions &actions, const QStringList &documents)
{
    QStringList made;
    for (const QString &path : documents)
        if (!pathIsPlainBook(path)) made += extractMarkedTasks(path);
    if (made.isEmpty()) return made;
    actions.undoStack().beginMacro(localized(TOMELET_TEXT("Extract Tasks")));
    for (const QString &path : made) actions.noteCreation({}, path);
    actions.undoStack().endMacro();
    return made;
}

} // namespace tomelet::desktop
