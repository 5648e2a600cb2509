// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/tasks/TaskRows.h"

#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemDictionary.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "organising/dates/DueDateCalendar.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskStore.h"
#include "organising/tasks/Tasks.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

namespace tomelet {

// -- the row ----------------------------------------------------------------------------------------------------------

namespace {

// Seconds behind the reference date: about the years 2976, 3170 and 3365, beyond any real due date.
constexpr qint64 placeOfUndated = 30785400000;
constexpr qint64 placeOfDone = 36910080000;
constexpr qint64 placeOfCanceled = 43061760000;

QDateTime referenceDate()
{
    return {QDate(2001, 1, 1), QTime(0, 0), Qt::UTC};
}

// Mirrored about the place, so that the latest comes first.
QDateTime placeOfFinished(qint64 place, const TaskRecord &record)
{
    const QDateTime finished = dateField(record, taskField::changed);
    const QDateTime base = referenceDate().addSecs(place);
    return finished.isValid() ? base.addMSecs(-referenceDate().msecsTo(finished)) : base;
}

QDateTime sortDateOf(const TaskRecord &record)
{
    const TaskState state = stateOf(record);
    if (state == TaskState::Done) return placeOfFinished(placeOfDone, record);
    if (state == TaskState::Canceled) return placeOfFinished(placeOfCanceled, record);
    if (const QDateTime due = dateField(record, taskField::dueDate); due.isValid() && due != farFuture()) return due;
    return state == TaskState::NoTask ? farPast() : referenceDate().addSecs(placeOfUndated);
}

} // namespace

TaskRow taskRowOf(const QString &path, const QVariant &record)
{
    const TaskRecord values = record.isValid() ? record.toMap() : tm_getAllTaskDetails(path).value_or(TaskRecord());
    const bool due = isOverdue(values, platform().clock.now());
    return {sortDateOf(values), taskIcon(stateOf(values), due), values.contains(taskField::repeatType)};
}

QDateTime dueDateOfRow(const QVariantMap &row)
{
    const QString icon = row.value(QStringLiteral("taskIcon")).toString();
    const QDateTime date = row.value(QStringLiteral("DueDate")).toDateTime();
    const bool isOpen = !icon.isEmpty() && !tm_taskIsDoneOrCanceled(icon);
    return isOpen && date != referenceDate().addSecs(placeOfUndated) ? date : QDateTime();
}

QDateTime finishingDateOfRow(const QVariantMap &row)
{
    const QString icon = row.value(QStringLiteral("taskIcon")).toString();
    if (!tm_taskIsDoneOrCanceled(icon)) return {};
    const qint64 place = icon.contains(u"done") ? placeOfDone : placeOfCanceled;
    const qint64 mirrored = row.value(QStringLiteral("DueDate")).toDateTime().msecsTo(referenceDate().addSecs(place));
    return mirrored == 0 ? QDateTime() : referenceDate().addMSecs(mirrored);
}

// -- the due list -----------------------------------------------------------------------------------------------------

QDateTime dueHorizon()
{
    const QDateTime now = platform().clock.now();
    const qlonglong index = settings().integer(QStringLiteral("dueTasksLookAhead"));
    if (index <= 0) return now;
    static constexpr qlonglong daysOfIndex[] = {0, 0, 1, 3, 5, 7};
    const qlonglong days = index < 6 ? daysOfIndex[index] : std::min<qlonglong>(index, 1000000);
    const qlonglong restOfToday = 86400 - 1 - tm_todayInSecondsLocalized();
    return now.addSecs(restOfToday + days * 86400);
}

QStringList dueLookAheadTitles()
{
    const QString days = localized(TOMELET_TEXT("days"));
    return {localized(TOMELET_TEXT("Don't look ahead")),
            localized(TOMELET_TEXT("Today")),
            localized(TOMELET_TEXT("Tomorrow")),
            QString(u"3 " + days),
            QString(u"5 " + days),
            QString(u"7 " + days)};
}

void chooseDueLookAhead(int index)
{
    settings().setObject(QStringLiteral("dueTasksLookAhead"), index > 0 ? QVariant(qlonglong(index)) : QVariant());
}

namespace {

/// A tasklist as it was read.
struct ReadTasklist
{
    QString book;
    TaskStore store;
    TasksOfBook tasks;
};

/// Reads a lot of tasklists on all processors; most of the time goes into taking the stores apart.
std::vector<std::optional<ReadTasklist>> readTasklists(const QStringList &books)
{
    std::vector<std::optional<ReadTasklist>> lists(size_t(books.size()));
    std::atomic_size_t next = 0;
    const auto read = [&] {
        for (size_t i = next++; i < lists.size(); i = next++) {
            TaskStore store(books[qsizetype(i)]);
            TasksOfBook tasks = store.tasks();
            if (store.isReadable() && tasks.folderIsListed)
                lists[i] = {books[qsizetype(i)], std::move(store), std::move(tasks)};
        }
    };
    std::vector<std::thread> others;
    const size_t threads = std::min<size_t>({lists.size(), std::thread::hardware_concurrency(), 4});
    for (size_t i = 1; i < threads; ++i) others.emplace_back(read);
    read();
    for (std::thread &thread : others) thread.join();
    return lists;
}

} // namespace

constexpr qsizetype tasklistsOfLot = 64; // few, as one may be enough

enum class DueCounters { Leave, PutRight };

// Calls the taker for each due task, book by book, until it says false.
static DueCounts findDueTasks(const QString &root, DueCounters counters,
                              const std::function<bool(const QString &book, const LiveTask &task)> &taker)
{
    logLine(QStringLiteral("getting due tasks"));
    const QDateTime now = platform().clock.now();
    const QDateTime horizon = dueHorizon();
    DueCounts all;
    StoreBatch corrected; // one by one, many stores would keep the person waiting for the disk
    QStringList books;
    for (const QString &entry : knownTasklists()) books.append(fullPathOf(entry, root));
    for (qsizetype from = 0; from < books.size(); from += tasklistsOfLot) {
        for (std::optional<ReadTasklist> &list : readTasklists(books.mid(from, tasklistsOfLot))) {
            if (!list) continue;
            qlonglong overdue = 0;
            for (const LiveTask &task : list->tasks.live) {
                const QDateTime due = dateField(task.record, taskField::dueDate);
                if (isSettled(stateOf(task.record)) || !due.isValid() || (due >= now && due >= horizon)) continue;
                if (due < now) ++overdue;
                ++all.taken;
                if (!taker(list->book, task)) return all;
            }
            all.overdue += overdue;
            if (counters == DueCounters::Leave || overdue == list->store.dueCount()) continue;
            list->store.setDueCount(overdue);
            list->store.save(corrected);
        }
    }
    return all;
}

DueCounts countDueTasks(const QString &root)
{
    return findDueTasks(root, DueCounters::Leave, [](const QString &, const LiveTask &) { return true; });
}

bool anyTaskIsDue(const QString &root)
{
    return findDueTasks(root, DueCounters::Leave, [](const QString &, const LiveTask &) { return false; }).taken > 0;
}

QVariantList tm_arrayOfDueTasksAsNumbers(const QString &root, bool numbers)
{
    QVariantList rows;
    QString sourcesBook;
    RowSources sources;
    const auto taker = [&](const QString &book, const LiveTask &task) {
        if (numbers) return true;
        if (book != sourcesBook) {
            // Manual order plays no part in this list; the pins of a book are read once.
            const QVariantMap properties = readDictionary(bookPropertiesPath(book));
            sources = {LocalizedIndex(), LocalizedIndex(properties.value(QStringLiteral("Pinned")).toStringList())};
            sourcesBook = book;
        }
        rows.append(itemRow(joinPath(book, task.name), true, task.record, sources));
        return true;
    };
    const DueCounts counts = findDueTasks(root, DueCounters::PutRight, taker);
    if (numbers) return {counts.taken, counts.overdue};
    return rows;
}

} // namespace tomelet
