// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of the document list as an item model over the list's controller.
#pragma once

#include "desktop/list/RowChanges.h"
#include "foundation/SerialQueue.h"
#include "organising/lists/DocumentList.h"

#include <QAbstractListModel>
#include <QHash>
#include <QSet>

#include <functional>
#include <optional>

namespace tomelet::desktop {

class ItemActions;
class OutlineBadges;

class DocumentListModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    /// What a row tells beside the standard roles.
    enum Role {
        PathRole = Qt::UserRole + 1,
        DateRole,
        ColorRole,
        PinnedRole,
        FavoriteRole,
        TaskIconRole, ///< "" for what is no task
        TaskDateRole, ///< the due date, or when the task was finished, as a text
        OverdueRole,
        RepeatsRole,
        ChecklistRole, ///< how many check boxes are open; 0 while that is not known
        LeadsOnRole,   ///< a book, smart book or context: it is opened in this list
        TotalRole,     ///< the counts of such a row
        DueRole,
    };

    DocumentListModel(ItemActions &actions, QObject *parent);

    [[nodiscard]] TMLTDocumentListViewController &controller() { return m_controller; }
    void show(const ListSource &source);
    /// Reads the rows anew; rows that stay keep their selection, unless the list shows something else by now or so many
    /// rows that to follow each takes too long: then the model is reset. A computed list is read in the background.
    void reload();
    /// The same without making the main thread wait for a book with thousands of documents: its rows are read elsewhere
    /// and stay as they are until then. `reloaded` tells that they are there. Not for search results.
    void reloadInBackground();
    /// The rows of what is on display are on their way.
    [[nodiscard]] bool isReading() const;
    /// Keeps the row of an item that got another name in its book.
    void follow(const QString &from, const QString &to);
    void setFilter(const QString &text);
    void selectSortOrder(int index);
    /// Moves documents of a book one place up (-1) or down (1); from now on it has a custom order.
    void moveByOne(const QStringList &paths, int step);
    [[nodiscard]] QModelIndex indexOfPath(const QString &path) const;
    /// The full path of a book or document; "" for smart books and contexts, which are no files.
    [[nodiscard]] QString pathAt(const QModelIndex &index) const;
    /// What the list shows once the row is opened; nothing for a document.
    [[nodiscard]] std::optional<ListSource> sourceAt(const QModelIndex &index) const;
    /// Where the counts of books come from while the outline is hidden. It outlives the model.
    void setBadges(OutlineBadges *badges);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QStringList mimeTypes() const override;
    [[nodiscard]] QMimeData *mimeData(const QModelIndexList &indexes) const override;
    [[nodiscard]] Qt::DropActions supportedDropActions() const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

Q_SIGNALS:
    void reloaded();

private:
    /// Done to a copy of the controller, on another thread.
    using Reading = std::function<void(TMLTDocumentListViewController &)>;
    struct WantedReading
    {
        ListSource source;
        Reading reading; ///< null for nothing
    };
    void readElsewhere(const Reading &reading);
    void takeReading(TMLTDocumentListViewController list, RowChanges changes);
    void changeRows(const std::function<void()> &change);
    [[nodiscard]] QList<qsizetype> positionsOf(const QStringList &paths) const;
    void takeAllRows();
    void takeChanges(RowChanges changes);
    void takePlaces(const std::vector<int> &places, QList<QVariantMap> after);
    [[nodiscard]] QString displayTitle(const QVariantMap &row) const;
    [[nodiscard]] QDateTime shownDate(const QVariantMap &row) const;
    [[nodiscard]] QString description(const QVariantMap &row) const;
    [[nodiscard]] QString taskDate(const QVariantMap &row) const;
    [[nodiscard]] qlonglong openChecklist(const QVariantMap &row) const;

    void noteBooks();
    [[nodiscard]] bool leadsOn(const QVariantMap &row) const;
    [[nodiscard]] QVariant dataOfBook(const QVariantMap &row, int role) const;

    ItemActions &m_actions;
    OutlineBadges *m_badges = nullptr;
    QList<QVariantMap> m_rows;                      // as the views know them
    ListSource m_shown;                             // and where they come from
    QSet<QString> m_books;                          // which of them are books
    mutable QHash<QString, QString> m_taskDates;    // by path, until the next reload
    mutable QHash<QString, qlonglong> m_checklists; // by path and date of the file; -1 while it is counted
    TMLTDocumentListViewController m_controller;
    int m_version = 0;      // counts what happens to rows and controller
    bool m_reading = false; // elsewhere
    ListSource m_readSource;
    WantedReading m_next; // what is to be read after that
    SerialQueue m_reader; // last, so that it ends first
};

/// "Open", "Started", "Done", "Canceled" or "Not a Task", by the name of the task's icon.
[[nodiscard]] QString taskStateText(const QString &icon);

} // namespace tomelet::desktop
