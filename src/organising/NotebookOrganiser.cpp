// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/NotebookOrganiser.h"

#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"
#include "library/Properties.h"
#include "library/Root.h"
#include "organising/contexts/ContextStores.h"
#include "organising/contexts/Contexts.h"
#include "organising/links/Backlinks.h"
#include "organising/links/LinkRewriting.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskRows.h"
#include "organising/tasks/Tasks.h"

#include <QFile>

#include <utility>

namespace tomelet {

using namespace std::chrono_literals;

namespace {

class NotebookOrganiser final : public Organiser
{
public:
    QStringList itemsWithContext(const QString &context) override { return tm_listOfAllItemsForTag(context); }
    bool hasDueTasks() override { return anyTaskIsDue(tomeletRoot()); }
    QStringList tasklists() override { return knownTasklists(); }
    bool bookIsTasklist(const QString &book) override { return tm_bookIsTasklist(book); }
    bool itemIsTask(const QString &path) override { return tm_itemIsTask(path); }
    TaskRow taskRow(const QString &path, const QVariant &record) override { return taskRowOf(path, record); }
    QStringList availableContexts() override { return tm_listOfAllAvailableTags(); }

    void setMark(const QString &path, const QString &mark, bool on) override
    {
        if (on) tm_setTag(path, mark);
        else tm_clearTag(path, mark);
    }
    void contextsFollow(const QString &path, const QString &target) override
    {
        tm_changePathInTagDBToPath(path, target);
    }
    void linksFollow(const QString &path, const QString &target) override
    {
        if (pathIsPlainBook(target)) tm_renameAllLinksFrom(tomeletRoot(), path, target);
        tm_adjustLinksAndBacklinksAfterRenameFrom(target, path);
    }
    void notebookSetUp() override
    {
        // A list that the person has emptied stays empty: only a notebook without one gets the first contexts.
        const bool fresh = !itemExists(miscFile(QStringLiteral("AvailableTags.txt")));
        if (fresh && settings().boolean(QStringLiteral("contextsEnabled"))) writeDefaultContexts();
        finishAbandonedMoves();
    }
    void propertyFileChanged(const QString &path) override
    {
        m_changedProperties.append(path);
        // Thousands come at a time when notes are imported or a sync client is at work.
        platform().delayedCalls.schedule(QStringLiteral("collectTags"), {}, 100ms,
                                         [this] { collectTagsOf(std::exchange(m_changedProperties, {})); });
        repairIfMoved(path);
    }
    void taskFollows(const QString &path, const QString &target) override { tm_moveTaskToPath(path, target); }
    void taskIsCopied(const QString &path, const QString &target) override
    {
        if (const auto record = tm_getAllTaskDetails(path)) tm_setTaskDetails(target, *record);
    }
    QVariantMap taskRecordOf(const QString &path) override { return tm_getAllTaskDetails(path).value_or(TaskRecord()); }
    void taskIsBack(const QString &path, const QVariantMap &record) override
    {
        if (!tm_getAllTaskDetails(path)) tm_setTaskDetails(path, record);
    }
    void taskStoreChanged(const QString &store) override { tm_taskPlistChangedAtPath(store); }
    void tasklistsChanged(const QString &added, const QString &removed) override
    {
        updateListOfTasklistRemoving(removed, added);
    }
    void verifyTasklists() override { booksChanged(); }
    // The collection reads every tasklist, so the window or the first line of output goes first.
    void gatherTasklists() override
    {
        platform().delayedCalls.schedule(QStringLiteral("updateListOfTasklists"), {}, std::chrono::milliseconds(0),
                                         updateListOfTasklists);
    }

    void contextListChanged() override { mergeLeftoverList(); }

    QString withContextsMarked(const QString &path, const QString &html) override
    {
        return tm_assignClassToContextTags(html, tm_propertyForKey(path, QStringLiteral("Tags")).toStringList());
    }

private:
    QStringList m_changedProperties; // whose contexts are not collected yet

    // An item that another program moved still tells its former path.
    static void repairIfMoved(const QString &plist)
    {
        if (!settings().boolean(QStringLiteral("manageLinks"))) return;
        const QString item = ownerOfPropertyFile(plist);
        const QString stored = storedProperties(item).value(QStringLiteral("ReferencedPath")).toString();
        if (!itemExists(item) || stored.isEmpty() || stored == tm_normalizedPath(item)) return;
        logLine(QStringLiteral("collectTags: backlinkref mismatch for %1: %2").arg(item, stored));
        tm_repairBrokenBacklink(item);
    }

    // An older program may still write its list beside the index.
    static void mergeLeftoverList()
    {
        const QString leftover = joinPath(rootStateFolder(), QStringLiteral("AvailableTags.plist"));
        if (!itemExists(leftover)) return;
        ContextStores stores;
        tm_mergeTagListWithList(stores.list, readStringArray(leftover));
        stores.save();
        QFile::remove(leftover);
    }
};

} // namespace

void installNotebookOrganiser()
{
    setOrganiser(std::make_unique<NotebookOrganiser>());
}

} // namespace tomelet
