// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/tasks/TaskLists.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "organising/contexts/Contexts.h"
#include "organising/dates/Reminders.h"
#include "organising/tasks/TaskStore.h"
#include "organising/tasks/Tasks.h"

#include <QFileInfo>

#include <algorithm>
#include <mutex>

namespace tomelet {

namespace {

const QString listKey = QStringLiteral("allTaskLists");
const QString rootOfListKey = QStringLiteral("allTaskListsRoot");
const QString flagKey = QStringLiteral("rebuildingAllTasklistsFlag");
const QString dateKey = QStringLiteral("tasklistCollectDate");

// What the last walk of this process found, for readers without a stored list: reading stores nothing.
struct LastWalk
{
    QString root;
    QStringList tasklists;
};

// Rows ask for counts on threads of their own.
class WalkMemory
{
public:
    void keep(const LastWalk &walk)
    {
        const std::lock_guard lock(m_mutex);
        m_walk = walk;
    }
    [[nodiscard]] LastWalk last()
    {
        const std::lock_guard lock(m_mutex);
        return m_walk;
    }

private:
    std::mutex m_mutex;
    LastWalk m_walk;
};

WalkMemory &walkMemory()
{
    static WalkMemory memory;
    return memory;
}

void storeList(const QString &key, const QStringList &list)
{
    settings().setObject(key, list.isEmpty() ? QVariant() : QVariant(QVariantList(list.begin(), list.end())));
}

QString normalizedBook(const QString &book, const QString &root)
{
    const QString normalized = tm_normalizedPath(book, root);
    return normalized.isEmpty() ? QStringLiteral("/") : normalized;
}

bool isTrashName(const QString &name)
{
    return name.contains(u".Trash") || name.contains(u".TMTrash");
}

struct Walk
{
    QStringList tasklists; ///< normalised, "/" for the root
    QStringList books;     ///< full paths of all folders, the root left out
};

void walkBook(const QString &book, const QString &root, Walk &found)
{
    const auto entries = listFolder(book);
    if (!entries) return;
    QStringList folders;
    for (const FolderEntry &entry : *entries) {
        if (entry.isFolder && !isTrashName(entry.name)) folders.append(entry.name);
        else if (entry.name == u"TMTasklistDetails.plist") found.tasklists.append(normalizedBook(book, root));
    }
    folders.sort();
    for (const QString &name : folders) {
        const QString path = joinPath(book, name);
        // A link may lead back up.
        if (QFileInfo(path).isSymLink()) continue;
        found.books.append(path);
        walkBook(path, root, found);
    }
}

Walk walkBooks(const QString &root)
{
    Walk found;
    walkBook(root, root, found);
    walkMemory().keep({root, found.tasklists});
    return found;
}

// The list with the root that it speaks of: a call on another notebook is not to take it for its own.
void storeTasklists(const QStringList &list, const QString &root)
{
    storeList(listKey, list);
    settings().setObject(rootOfListKey, list.isEmpty() ? QVariant() : QVariant(root));
}

bool listIsStoredFor(const QString &root)
{
    const QString owner = settings().string(rootOfListKey);
    return settings().contains(listKey) && (owner.isEmpty() || owner == root);
}

// -- counters ---------------------------------------------------------------------------------------------------------

/// A store whose counters are what its records say; `changed` tells that it is to be written.
struct Recount
{
    TaskStore store;
    qlonglong due = 0;
    bool changed = false;
};

Recount recount(const QString &book, bool cleanup)
{
    const QDateTime now = platform().clock.now();
    Recount result{TaskStore(book)};
    TaskStore &store = result.store;
    const TasksOfBook tasks = store.tasks();
    if (!store.isReadable() || !tasks.folderIsListed) return result;
    qlonglong done = 0;
    for (const LiveTask &task : tasks.live) {
        if (isSettled(stateOf(task.record))) ++done;
        else if (isOverdue(task.record, now)) ++result.due;
    }
    const bool removes = cleanup && !tasks.vanished.isEmpty();
    result.changed = done != store.doneCount() || result.due != store.dueCount() || removes;
    if (!result.changed) return result;
    if (removes)
        for (const QString &key : tasks.vanished) store.remove(key);
    store.setDoneCount(done);
    store.setDueCount(result.due);
    return result;
}

void recountAll(const QStringList &books)
{
    QStringList written;
    {
        StoreBatch batch;
        for (const QString &book : books) {
            Recount counted = recount(book, true);
            if (!counted.changed) continue;
            logLine(QStringLiteral("writing task details for %1").arg(book));
            counted.store.save(batch);
            written.append(counted.store.path());
        }
    }
    for (const QString &store : written) announceFile(store);
}

} // namespace

// -- the list of tasklists --------------------------------------------------------------------------------------------

QStringList tm_listOfTasklists(const QString &root)
{
    if (rootLooksUnmounted()) return {};
    const QStringList list = walkBooks(root).tasklists;
    storeTasklists(list, root);
    return list;
}

QStringList knownTasklists()
{
    const QString root = tomeletRoot();
    if (settings().boolean(flagKey)) return tm_listOfTasklists(root);
    if (listIsStoredFor(root)) return settings().stringList(listKey);
    if (const LastWalk walk = walkMemory().last(); walk.root == root) return walk.tasklists;
    return rootLooksUnmounted() ? QStringList() : walkBooks(root).tasklists;
}

void tasklistChanged(const QString &removing, const QString &adding)
{
    if (listIsStoredFor(tomeletRoot())) updateListOfTasklistRemoving(removing, adding);
    else walkMemory().keep({});
}

void booksChanged()
{
    // Reminders name their items by paths.
    rebuildRemindersSoon();
    if (listIsStoredFor(tomeletRoot())) updateListOfTasklistsQuick();
    else walkMemory().keep({});
}

void updateListOfTasklistsQuick()
{
    (void)tm_listOfTasklists(tomeletRoot());
}

// What companion programs are told of: the books that the outline shows.
static QStringList visibleBooks(const QStringList &books, const QString &root)
{
    QStringList visible;
    for (const QString &book : books) {
        if (tm_pathIsExcludedFromDisplay(book) || tm_isProtected(book)) continue;
        visible.append(tm_normalizedPath(book, root).mid(1));
    }
    return visible;
}

static void hideOrShowImages(const QStringList &books)
{
    const bool hide = settings().boolean(QStringLiteral("hideSystemFiles"));
    for (const QString &book : books)
        if (book.endsWith(u"TMImages")) hide ? tm_hideItemInFinder(book) : tm_showItemInFinder(book);
}

void updateListOfTasklists()
{
    const QString root = tomeletRoot();
    if (!tm_pathIsBook(root) || rootLooksUnmounted()) return;
    const QDateTime last = settings().date(dateKey);
    const qint64 age = last.msecsTo(platform().clock.now());
    if (last.isValid() && age >= 0 && age < 2000) return logLine(QStringLiteral("skip collecting task lists"));
    settings().setObject(flagKey, true);
    const Walk found = walkBooks(root);
    hideOrShowImages(found.books);
    storeTasklists(found.tasklists, root);
    storeList(QStringLiteral("booksList"), visibleBooks(found.books, root));
    settings().remove(flagKey);
    QStringList books;
    for (const QString &book : found.tasklists) books.append(fullPathOf(book, root));
    recountAll(books);
    logLine(QStringLiteral("found %1 task lists and %2 books").arg(found.tasklists.size()).arg(found.books.size()));
    settings().setObject(dateKey, platform().clock.now());
    settings().synchronize();
    rebuildRemindersSoon();
    collectNewContexts();
    notifications().post(QStringLiteral("TMLTUpdateAllTaskLists"));
}

void updateListOfTasklistRemoving(const QString &removing, const QString &adding)
{
    const QString root = tomeletRoot();
    const auto normalized = [&root](const QString &path) {
        if (path.isEmpty()) return path;
        return normalizedBook(tm_pathIsTaskPlist(path) ? parentPath(path) : path, root);
    };
    const QString gone = normalized(removing);
    const QString come = normalized(adding);
    const QStringList before = listIsStoredFor(root) ? settings().stringList(listKey) : QStringList();
    QStringList list = before;
    list.removeIf(
        [&](const QString &entry) { return localizedCompare(entry, gone) == 0 || localizedCompare(entry, come) == 0; });
    if (!come.isEmpty()) list.append(come);
    if (list != before) storeTasklists(list, root);
    walkMemory().keep({});
}

// -- counters ---------------------------------------------------------------------------------------------------------

qlonglong tm_correctTaskCountAtPathWithCleanup(const QString &book, bool cleanup)
{
    rebuildRemindersSoon();
    Recount counted = recount(book, cleanup);
    if (!counted.changed) return counted.due;
    if (counted.store.save()) {
        logLine(QStringLiteral("writing task details for %1").arg(book));
        announceFile(counted.store.path());
    } else {
        logLine(QStringLiteral("could not save task details for %1").arg(book));
    }
    return counted.due;
}

qlonglong tm_correctTaskCountAtPath(const QString &book)
{
    return tm_correctTaskCountAtPathWithCleanup(book, true);
}

void tm_taskPlistChangedAtPath(const QString &store)
{
    // Records are kept: a move may still be under way, and its record is about to follow.
    tm_correctTaskCountAtPathWithCleanup(parentPath(store), false);
}

// -- counts below a book ----------------------------------------------------------------------------------------------

namespace {

// Files that accompany documents and are none themselves.
bool accompaniesDocuments(const QString &name)
{
    return name.endsWith(u".plist") || name.endsWith(u".icloud") || name.endsWith(u".__sidecar") ||
           name.startsWith(u".DS_Store") || name == u".hidden" || pathExtension(name) == u"autosave";
}

qlonglong documentsIn(const QString &book)
{
    const auto entries = listFolder(book);
    if (!entries) return 0;
    return std::ranges::count_if(
        *entries, [](const FolderEntry &entry) { return !entry.isFolder && !accompaniesDocuments(entry.name); });
}

QStringList booksToCount(const QString &book, bool descendants)
{
    QStringList books{book};
    if (!descendants) return books;
    const QString root = tomeletRoot();
    const QString prefix = joinPath(tm_normalizedPath(book, root), QStringLiteral("/"));
    for (const QString &entry : knownTasklists()) {
        const QString path = fullPathOf(entry, root);
        if (entry.startsWith(prefix) && !books.contains(path) && tm_bookIsTasklist(path)) books.append(path);
    }
    return books;
}

} // namespace

QVariantMap tm_allOpenTasksCountingDescendants(const QString &book, bool descendants)
{
    const QString path = tm_itemIsChildOfTomelet(book) ? book : fullPathOf(book);
    qlonglong total = 0;
    qlonglong due = 0;
    qlonglong done = 0;
    for (const QString &counted : booksToCount(path, descendants)) {
        total += documentsIn(counted);
        const TaskStore store(counted);
        // Capped by the sum so far and not by the book's own documents.
        done += std::min(store.doneCount(), total);
        due += store.dueCount();
    }
    return {{QStringLiteral("totalTasks"), QString::number(total)},
            {QStringLiteral("dueTasks"), QString::number(due)},
            {QStringLiteral("doneTasks"), QString::number(std::min(done, total))}};
}

} // namespace tomelet
