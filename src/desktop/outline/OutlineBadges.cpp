// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/outline/OutlineBadges.h"

#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/OutlineItem.h"
#include "organising/dates/Reminders.h"
#include "organising/lists/DocumentList.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskRows.h"
#include "organising/tasks/Tasks.h"

#include <QTimer>

namespace tomelet::desktop {

using namespace std::chrono_literals;

namespace {

// What no path begins with.
const QString dueKey = QStringLiteral("due");
const QString inboxMark = QStringLiteral("inbox:");

QString keyOf(int smartType, const QString &path)
{
    switch (smartType) {
    case DueTasksBook: return dueKey;
    case InboxBook: return inboxMark + inboxFolder();
    case OrdinaryBook: return path;
    default: return {};
    }
}

Badge countTasklist(const QString &book)
{
    const QVariantMap counts = tm_allOpenTasksCountingDescendants(book, true);
    const auto number = [&counts](const char *key) { return counts.value(QLatin1StringView(key)).toLongLong(); };
    return {number("totalTasks") - number("doneTasks"), number("dueTasks"), true};
}

Badge countInbox(const QString &book)
{
    Badge badge;
    for (const FolderEntry &entry : listFolder(book).value_or(std::vector<FolderEntry>()))
        if (!entry.name.contains(u"TMImages") && !tm_pathIsExcludedFromDisplay(joinPath(book, entry.name)))
            ++badge.total;
    return badge;
}

Badge countFor(const QString &key)
{
    if (key == dueKey) {
        const DueCounts counts = countDueTasks(tomeletRoot());
        return {counts.taken, counts.overdue, false};
    }
    const bool isInbox = key.startsWith(inboxMark);
    const QString book = isInbox ? key.mid(inboxMark.size()) : key;
    if (tm_bookIsTasklist(book)) return countTasklist(book);
    return isInbox ? countInbox(book) : Badge();
}

} // namespace

OutlineBadges::OutlineBadges(QObject *parent)
    : QObject(parent)
    , m_soon(new QTimer(this))
{
    m_soon->setSingleShot(true);
    m_soon->setInterval(150ms);
    connect(m_soon, &QTimer::timeout, this, &OutlineBadges::recount);
    for (const QString &name :
         {QStringLiteral("TMLTFileModifiedOnDiskNotification"), QStringLiteral("TMLTFileDeletedFromDiskNotification"),
          QStringLiteral("TMLTFileMovedNotification"), QStringLiteral("TMLTUpdateAllTaskLists"),
          QStringLiteral("TMLTUpdateDefaultInbox"), remindersRebuiltNotification})
        m_subscriptions.push_back(notifications().observe(name, [this](const QVariantMap &) {
            if (!m_soon->isActive()) m_soon->start();
        }));
    m_subscriptions.push_back(
        notifications().observe(QStringLiteral("TMLTNewTomeletRootSelected"), [this](const QVariantMap &) {
            m_known.clear();
            m_soon->start();
        }));
}

QString describeBadge(int smartType, const Badge &badge)
{
    QStringList parts{badge.isTasklist            ? localized(TOMELET_TEXT("Tasklist"))
                      : smartType == OrdinaryBook ? localized(TOMELET_TEXT("Book"))
                                                  : localized(TOMELET_TEXT("Smart book"))};
    if (badge.total > 0)
        parts.append(smartType == DueTasksBook ? localized(TOMELET_TEXT("due: %1")).arg(badge.total)
                     : badge.isTasklist        ? localized(TOMELET_TEXT("open tasks: %1")).arg(badge.total)
                                               : localized(TOMELET_TEXT("items: %1")).arg(badge.total));
    if (badge.due > 0) parts.append(localized(TOMELET_TEXT("overdue: %1")).arg(badge.due));
    return parts.join(QStringLiteral(", "));
}

Badge OutlineBadges::badgeOf(const TMLTOutlineItem &item)
{
    return item.isGroupItem() ? Badge() : badgeOf(item.smartBookType(), item.fullPath());
}

Badge OutlineBadges::badgeOf(int smartType, const QString &path)
{
    const QString key = keyOf(smartType, path);
    if (key.isEmpty()) return {};
    ask(key);
    return m_known.value(key).badge;
}

void OutlineBadges::ask(const QString &key)
{
    Known &known = m_known[key];
    if (known.askedIn == m_generation) return;
    known.askedIn = m_generation;
    m_queue.add([this, key, generation = m_generation] {
        const Badge badge = countFor(key);
        QMetaObject::invokeMethod(
            this, [=, this] { take(key, generation, badge); }, Qt::QueuedConnection);
    });
}

// A count from before the last change is as good as none: another one is on its way.
void OutlineBadges::take(const QString &key, quint64 generation, const Badge &badge)
{
    const auto known = m_known.find(key);
    if (known == m_known.end() || known->askedIn != generation) return;
    if (key == dueKey && badge.due != m_overdue) {
        m_overdue = badge.due;
        Q_EMIT overdueChanged(m_overdue);
    }
    if (known->badge == badge) return;
    known->badge = badge;
    Q_EMIT changed();
}

// Rows that are in sight ask by being painted; the number on the program's icon is always in sight.
void OutlineBadges::recount()
{
    ++m_generation;
    ask(dueKey);
    Q_EMIT changed();
}

} // namespace tomelet::desktop
