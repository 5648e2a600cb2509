// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/Deletion.h"

#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemOperations.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"

#include <algorithm>

namespace tomelet {

namespace {

bool personWantsItGone()
{
    return askQuestion({localized(TOMELET_TEXT("Permanently delete?")),
                        localized(TOMELET_TEXT("Items cannot be moved to the trash, so they will be permanently "
                                               "deleted.")) +
                            u'\n' + localized(TOMELET_TEXT("You cannot undo this action.")),
                        {localized(TOMELET_TEXT("Delete")), localized(TOMELET_TEXT("Cancel"))}}) == 0;
}

class Deleter
{
public:
    explicit Deleter(bool permanently)
        : m_permanently(permanently)
    {}

    void remove(const QString &path)
    {
        const QString plist = tm_plistPath(path);
        const bool isBook = pathIsPlainBook(path);
        const bool hasPlist = !isFolder(path) && itemExists(plist);
        const QVariantMap task = organiser().taskRecordOf(path);
        if (!take(path)) {
            m_result.failed.append(path);
            return;
        }
        m_result.records.last().task = task;
        if (isBook) organiser().verifyTasklists();
        organiser().contextsFollow(path, {});
        if (hasPlist) take(plist);
        followInbox(path, {});
    }

    [[nodiscard]] const Deletion &result() const { return m_result; }

private:
    bool take(const QString &path)
    {
        if (!m_permanently) {
            if (const auto where = platform().trash->take(path)) {
                m_result.records.append({path, *where, {}});
                return true;
            }
            if (!itemExists(path) || !mayDeleteForGood()) return false;
        }
        if (!removeItem(path)) return false;
        m_result.permanent = true;
        m_result.records.append({path, {}, {}});
        return true;
    }

    // One answer holds for the whole deletion.
    bool mayDeleteForGood()
    {
        if (!m_answer) m_answer = personWantsItGone();
        return *m_answer;
    }

    bool m_permanently;
    std::optional<bool> m_answer;
    Deletion m_result;
};

} // namespace

Deletion performDeleteSelectedItems(const QStringList &items, bool deletePermanently)
{
    Deleter deleter(deletePermanently);
    const QString root = tomeletRoot();
    for (qsizetype i = items.size(); i-- > 0;)
        if (!items[i].isEmpty() && items[i] != root) deleter.remove(items[i]);
    return deleter.result();
}

QList<DeletionRecord> undoLastDelete(const QList<DeletionRecord> &records)
{
    QList<DeletionRecord> left;
    for (const DeletionRecord &record : records) {
        if (record.trashURL.isEmpty()) continue;
        if (!platform().trash->restore(record.trashURL, record.orgURL)) {
            left.append(record);
            continue;
        }
        if (!record.task.isEmpty()) organiser().taskIsBack(record.orgURL, record.task);
        if (pathIsPlainBook(record.orgURL)) organiser().verifyTasklists();
        notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), record.orgURL);
    }
    return left;
}

static QString recordsFile()
{
    return joinPath(rootStateFolder(), QStringLiteral("LastDeletion.plist"));
}

void storeLastDeletion(const QList<DeletionRecord> &records)
{
    if (!makeFolder(rootStateFolder())) return;
    QVariantList list;
    for (const DeletionRecord &record : records)
        if (!record.trashURL.isEmpty())
            list.append(QVariantMap{{QStringLiteral("orgURL"), record.orgURL},
                                    {QStringLiteral("trashURL"), record.trashURL},
                                    {QStringLiteral("task"), record.task}});
    writeStore(recordsFile(), list);
}

QList<DeletionRecord> lastDeletion()
{
    QList<DeletionRecord> records;
    for (const QVariant &entry : readArray(recordsFile())) {
        const QVariantMap map = entry.toMap();
        records.append({map.value(QStringLiteral("orgURL")).toString(),
                        map.value(QStringLiteral("trashURL")).toString(), map.value(QStringLiteral("task")).toMap()});
    }
    return records;
}

} // namespace tomelet
