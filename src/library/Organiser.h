// SPDX-License-Identifier: GPL-3.0-or-later
// The one seam between the library's spine and what organises it: tasks, contexts, links and computed lists.
// The base class is a library in which nothing is organised: it has no tasks, no contexts and no links.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

namespace tomelet {

/// The task side of an item's row in a list.
struct TaskRow
{
    QDateTime sortDate; ///< what the key `DueDate` sorts by
    QString icon;       ///< "" for none
    bool repeats = false;
};

class Organiser
{
public:
    virtual ~Organiser();

    // Computed lists
    [[nodiscard]] virtual bool hasDueTasks() { return false; }
    /// Normalised paths of all tasklists, as far as they are known.
    [[nodiscard]] virtual QStringList tasklists();
    /// Paths of the items with a context or mark, in the order of the index.
    [[nodiscard]] virtual QStringList itemsWithContext(const QString &context);
    [[nodiscard]] virtual QStringList availableContexts() { return {}; }
    [[nodiscard]] virtual bool bookIsTasklist(const QString &) { return false; }
    [[nodiscard]] virtual bool itemIsTask(const QString &) { return false; }
    [[nodiscard]] virtual TaskRow taskRow(const QString &path, const QVariant &record);

    /// A page's body with the item's contexts marked where they stand in the text.
    [[nodiscard]] virtual QString withContextsMarked(const QString &path, const QString &html);

    // Changes that travel along with items
    /// Puts the context or mark on the item's `Tags` or takes it off.
    virtual void setMark(const QString &path, const QString &mark, bool on);
    /// An empty target: the item has left the library.
    virtual void contextsFollow(const QString &, const QString &) {}
    virtual void taskFollows(const QString &, const QString &) {}
    virtual void taskIsCopied(const QString &, const QString &) {}
    /// The item's task record, empty for none, and its way back after the item was deleted.
    [[nodiscard]] virtual QVariantMap taskRecordOf(const QString &) { return {}; }
    virtual void taskIsBack(const QString &, const QVariantMap &) {}
    /// All links to and from a moved book or document.
    virtual void linksFollow(const QString &, const QString &) {}

    /// The notebook's folders and settings are in place; called at each start.
    virtual void notebookSetUp() {}

    // What reported changes ask for
    /// The list of contexts in the library's files was changed by another program.
    virtual void contextListChanged() {}
    /// A property file was changed: contexts and links of its item may have.
    virtual void propertyFileChanged(const QString &) {}
    /// Recount a book's tasks; called a moment after its store changed.
    virtual void taskStoreChanged(const QString &) {}
    /// A book became a tasklist (first path) or ceased to be one (second path); either may be empty.
    virtual void tasklistsChanged(const QString &, const QString &) {}
    /// Books came, went or moved: see which of the known tasklists still stand.
    virtual void verifyTasklists() {}
    /// Gather all tasklists of the root.
    virtual void gatherTasklists() {}
};

/// The organiser in force.
[[nodiscard]] Organiser &organiser();
/// Puts another one in its place; a null pointer brings back the base class.
void setOrganiser(std::unique_ptr<Organiser> replacement);

} // namespace tomelet
