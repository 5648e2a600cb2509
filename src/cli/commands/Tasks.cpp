// SPDX-License-Identifier: GPL-3.0-or-later
// `tasks`, `tasklist`, `task`, `due`, `extract` and `reminders`.
#include "organising/tasks/Tasks.h"
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/ItemDictionary.h"
#include "library/ItemPath.h"
#include "organising/dates/DueDateCalendar.h"
#include "organising/dates/DueDateTexts.h"
#include "organising/dates/Reminders.h"
#include "organising/lists/DocumentList.h"
#include "organising/tasks/TaskExtraction.h"
#include "organising/tasks/TaskRepeats.h"
#include "organising/tasks/TaskRows.h"
#include "organising/tasks/TaskStore.h"

#include <QCommandLineParser>
#include <QJsonArray>

#include <functional>

namespace tomelet::cli {

namespace {

// Description and usage of a command, its words, and the notebook; the status to end with where that fails.
std::optional<int> begin(const Invocation &call, const char *description, const char *usage, qsizetype least,
                         qsizetype most, QStringList &words)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(description));
    parser.addPositionalArgument(QStringLiteral("args"), QString(), QString::fromLatin1(usage));
    if (const auto status = parse(call, parser)) return status;
    words = parser.positionalArguments();
    if (words.size() < least || words.size() > most)
        return wrongUsage(call, QStringLiteral("%1 %2").arg(call.command, QString::fromLatin1(usage)));
    return openNotebook(call);
}

using DueDateOfRow = std::function<QDateTime(const QVariantMap &row)>;

void printRows(const Invocation &call, const QList<QVariantMap> &rows, const DueDateOfRow &dueDate)
{
    QJsonArray all;
    for (const QVariantMap &row : rows) {
        const QString path = row.value(QStringLiteral("path")).toString();
        if (call.json) all.append(jsonFromVariant(row));
        else
            writeLine(row.value(QStringLiteral("taskIcon")).toString() + u'\t' + tm_normalizedPath(path) + u'\t' +
                      tm_weekdayString(dueDate(row)));
    }
    if (call.json) writeJson(all);
}

} // namespace

int runTasks(const Invocation &call)
{
    QStringList words;
    if (const auto status = begin(call, "Prints the tasks of a tasklist in its order.", "BOOK", 1, 1, words))
        return *status;
    const QString book = itemPath(words.first());
    if (!tm_bookIsTasklist(book)) return fail(QStringLiteral("%1 is no tasklist").arg(book));
    TMLTDocumentListViewController list;
    list.setSource({book, 0, {}});
    list.getDocumentsInFolder();
    list.documentsList.removeIf(
        [](const QVariantMap &row) { return row.value(QStringLiteral("taskIcon")).toString().isEmpty(); });
    // A finished task keeps its due date, which its row does not tell.
    const TaskRecords records(book);
    printRows(call, list.documentsList, [&](const QVariantMap &row) {
        return dueDateOf(records.of(lastPathComponent(row.value(QStringLiteral("path")).toString())));
    });
    return Done;
}

int runDue(const Invocation &call)
{
    QStringList words;
    if (const auto status = begin(call, "Prints the due tasks of all tasklists.", "", 0, 0, words)) return *status;
    QList<QVariantMap> rows;
    for (const QVariant &row : tm_arrayOfDueTasksAsNumbers(tomeletRoot(), false)) rows.append(row.toMap());
    sortRows(rows, QStringLiteral("DueDate"), false);
    printRows(call, rows, dueDateOfRow);
    return Done;
}

// The reminder with what the rebuild knows of its task.
static QVariantMap reminderDictionary(const Reminder &reminder, const ReminderCandidate &task)
{
    QVariantMap values = tm_notificationForDate(reminder.path, reminder.fireDate, task.repeatInterval);
    values.insert({{QStringLiteral("path"), reminder.path},
                   {QStringLiteral("normPath"), tm_normalizedPath(reminder.path)},
                   {QStringLiteral("fireDate"), reminder.fireDate},
                   {QStringLiteral("modDate"), task.modDate},
                   {QStringLiteral("counterIncrement"), task.countsUp ? QStringLiteral("1") : QStringLiteral("0")},
                   {QStringLiteral("repeatInterval"), QString::number(task.repeatInterval)},
                   {QStringLiteral("taskState"), task.taskState}});
    return values;
}

static QJsonArray remindersAsJson()
{
    QHash<QString, ReminderCandidate> tasks;
    for (const ReminderCandidate &task : reminderCandidates()) tasks.insert(task.path, task);
    QJsonArray all;
    for (const Reminder &reminder : scheduledReminders())
        all.append(jsonFromVariant(reminderDictionary(reminder, tasks.value(reminder.path))));
    return all;
}

int runReminders(const Invocation &call)
{
    QStringList words;
    if (const auto status = begin(call, "Rebuilds the reminders and prints those to come.", "", 0, 0, words))
        return *status;
    tm_repostAllNotifications();
    if (call.json) {
        writeJson(remindersAsJson());
        return Done;
    }
    for (const Reminder &reminder : scheduledReminders())
        writeLine(tm_absoluteWeekdayString(reminder.fireDate) + u'\t' + tm_normalizedPath(reminder.path));
    return Done;
}

int runExtract(const Invocation &call)
{
    QStringList words;
    if (const auto status = begin(call, "Makes tasks of the marked lines of a document.", "ITEM", 1, 1, words))
        return *status;
    const QString path = itemPath(words.first());
    if (!itemExists(path)) return fail(QStringLiteral("%1 does not exist").arg(path));
    if (settings().string(QStringLiteral("markTaskWithCharacter")).isEmpty())
        return fail(QStringLiteral("the setting markTaskWithCharacter is not set"));
    const QStringList made = extractMarkedTasks(path);
    drainPendingWork();
    if (call.json) writeJson(QJsonArray::fromStringList(made));
    else
        for (const QString &task : made) writeLine(tm_normalizedPath(task));
    return Done;
}

// -- tasklist ---------------------------------------------------------------------------------------------------------

namespace {

bool personWantsReset()
{
    return askQuestion({localized(TOMELET_TEXT("Reset all tasks?")),
                        localized(TOMELET_TEXT("You are about to clear task states, due dates and reminders.")) +
                            u'\n' + localized(TOMELET_TEXT("You cannot undo this action.")),
                        {localized(TOMELET_TEXT("Reset")), localized(TOMELET_TEXT("Cancel"))}}) == 0;
}

int resetTasklist(const Invocation &call, const QString &book)
{
    if (!tm_bookIsTasklist(book)) return fail(QStringLiteral("%1 is no tasklist").arg(book));
    if (personWantsReset()) tm_resetTasklist(book);
    else note(call, QStringLiteral("nothing was reset"));
    return Done;
}

} // namespace

int runTasklist(const Invocation &call)
{
    QStringList words;
    if (const auto status = begin(call, "Switches a tasklist on or off, or forgets all about its tasks.",
                                  "on|off|reset BOOK", 2, 2, words))
        return *status;
    const QString action = words.first();
    if (action != u"on" && action != u"off" && action != u"reset")
        return wrongUsage(call, QStringLiteral("tasklist takes on, off or reset"));
    const QString book = itemPath(words.last());
    if (!pathIsPlainBook(book)) return fail(QStringLiteral("%1 is no book").arg(book));
    int status = Done;
    if (action == u"reset") status = resetTasklist(call, book);
    else if (tm_bookIsTasklist(book) != (action == u"on")) tm_toggleTasklistKeepingDetails(book, true);
    drainPendingWork();
    if (action != u"reset" && tm_bookIsTasklist(book) != (action == u"on"))
        status = fail(QStringLiteral("%1 could not be switched %2").arg(book, action));
    return status;
}

// -- task -------------------------------------------------------------------------------------------------------------

namespace {

const QString taskUsage =
    QStringLiteral("task toggle ITEM... | not-a-task ITEM... | due ITEM [DATE] | clear-due ITEM... | "
                   "repeat ITEM [\"when due\"|\"when done\" UNIT FACTOR | none]");

template <typename Change>
int forEachItem(const QStringList &items, const Change &change)
{
    for (const QString &item : items)
        if (!itemExists(itemPath(item))) return fail(QStringLiteral("%1 does not exist").arg(itemPath(item)));
    for (const QString &item : items) change(itemPath(item));
    return Done;
}

int changeDueDate(const Invocation &call, const QString &path, const QString &word)
{
    if (word.isEmpty()) {
        const QDateTime due = tm_dueDateForTask(path);
        if (call.json) writeJson(jsonFromVariant(due));
        else writeLine(tm_weekdayString(due));
        return Done;
    }
    const QDateTime date = dateFromIso(word);
    if (!date.isValid()) return wrongUsage(call, QStringLiteral("\"%1\" is no ISO 8601 date").arg(word));
    if (!tm_bookIsTasklist(parentPath(path))) return fail(QStringLiteral("%1 lies in no tasklist").arg(path));
    // As in the dialog, midnight is a day without an alert.
    tm_setDueDate(path, withoutMidnightAlert(date));
    return Done;
}

// The words in any order: a number, a unit in singular or plural, and what is left as the type.
std::optional<QStringList> repeatDetailsFrom(QStringList words)
{
    if (words.size() == 1 && words.first().startsWith(u'[')) words = variantFromJsonText(words.first()).toStringList();
    static const QStringList units{QStringLiteral("hour"), QStringLiteral("day"), QStringLiteral("week"),
                                   QStringLiteral("month"), QStringLiteral("year")};
    QStringList type;
    QString unit;
    QString factor = QStringLiteral("1");
    for (const QString &word : words) {
        bool isNumber = false;
        const qulonglong number = word.toULongLong(&isNumber);
        const QString singular = word.endsWith(u's') ? word.chopped(1) : word;
        if (isNumber) factor = QString::number(number);
        else if (units.contains(singular)) unit = singular;
        else type.append(word);
    }
    const QString typeText = type.join(u' ').replace(u'-', u' ');
    if ((typeText != u"when due" && typeText != u"when done") || unit.isEmpty() || factor == u"0") return std::nullopt;
    return QStringList{typeText, unit, factor};
}

int changeRepeat(const Invocation &call, const QString &path, const QStringList &words)
{
    if (words.isEmpty()) {
        const QStringList details = tm_repeatDetails(path).value_or(QStringList());
        if (call.json) writeJson(QJsonArray::fromStringList(details));
        else writeLine(tm_readableRepeatDetails(path));
        return Done;
    }
    if (words == QStringList{QStringLiteral("none")}) {
        tm_setRepeatDetails(path, {});
        return Done;
    }
    const auto details = repeatDetailsFrom(words);
    if (!details) return wrongUsage(call, taskUsage);
    if (!tm_bookIsTasklist(parentPath(path))) return fail(QStringLiteral("%1 lies in no tasklist").arg(path));
    tm_setRepeatDetails(path, *details);
    return Done;
}

int changeTask(const Invocation &call, const QString &action, const QStringList &words)
{
    if (action == u"toggle") {
        for (const QString &item : words)
            if (!tm_bookIsTasklist(parentPath(itemPath(item))))
                return fail(QStringLiteral("%1 lies in no tasklist").arg(itemPath(item)));
        return forEachItem(words, [](const QString &path) { writeLine(tm_toggleTask(path)); });
    }
    if (action == u"not-a-task") return forEachItem(words, tm_toggleItemIsTask);
    if (action == u"clear-due") return forEachItem(words, tm_clearDueDate);
    const bool isDue = action == u"due" && words.size() <= 2;
    if (!isDue && action != u"repeat") return wrongUsage(call, taskUsage);
    const QString path = itemPath(words.first());
    if (!itemExists(path)) return fail(QStringLiteral("%1 does not exist").arg(path));
    return isDue ? changeDueDate(call, path, words.value(1)) : changeRepeat(call, path, words.mid(1));
}

} // namespace

int runTask(const Invocation &call)
{
    QStringList words;
    if (const auto status =
            begin(call, "Changes single tasks.", "toggle|not-a-task|due|clear-due|repeat ITEM [...]", 2, 100000, words))
        return *status;
    const int status = changeTask(call, words.first(), words.mid(1));
    drainPendingWork();
    return status;
}

} // namespace tomelet::cli
