// SPDX-License-Identifier: GPL-3.0-or-later
// The list of documents: what a book or a smart book shows, in which order, and what is left out.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>
#include <utility>

namespace tomelet {

/// What the list shows: a book by its full path, or a smart book by its type (see SmartBookType) with its contexts.
struct ListSource
{
    QString book;
    int smartType = 0;
    QStringList contexts;
    bool operator==(const ListSource &) const = default;
};

/// The book that is the inbox.
[[nodiscard]] QString inboxFolder();

/// The rows of search results in the order of their smart book. May be called from any thread: there may be thousands.
[[nodiscard]] QList<QVariantMap> rowsOfSearchResults(const QStringList &paths);

class TMLTDocumentListViewController
{
public:
    void setSource(const ListSource &source);
    [[nodiscard]] const ListSource &source() const { return m_source; }

    /// Hands over the rows of the search results, for the next rebuild alone.
    void setRowsOfSearchResults(QList<QVariantMap> rows) { m_results = std::move(rows); }
    /// Rebuilds the rows of what is on display, and takes away property files without a document.
    void getDocumentsInFolder();
    /// No rows, until they are read.
    void clearRows();
    /// The three steps of getDocumentsInFolder. The second, in which the files are read, may be done on any thread. The
    /// first asks what the program knows of the notebook; and while a document moves, its property file stands alone
    /// for a moment.
    void gatherItems();
    void readDocuments();
    void removeOrphanedPropertyFiles();
    /// Settles sort order and direction of what is on display.
    void loadDisplayParameters();
    /// Sorts the documents, and the books where they are shown.
    void sortDocuments();
    /// The menu's choices by index: 0 title, 1 creation date, 2 modification date (due date in a tasklist), 3 custom,
    /// 4 descending, 5 ascending. Stored in the book or, for a smart book, in the settings.
    void selectSortOrder(int index);
    /// Stores the choice alone; the rows stay as they are.
    void storeSortOrder(int index);
    /// False where the order is fixed.
    [[nodiscard]] bool orderCanBeChosen() const;
    /// The menu's place 2 means the due date here.
    [[nodiscard]] bool sortsByDueDate() const;
    /// Writes the rows' order as the book's custom order.
    void saveCustomSortOrder();
    /// Moves documents by their positions so that the first stands at `target`, and keeps that as the custom order.
    void moveDocuments(QList<qsizetype> positions, qsizetype target);

    /// All rows from top to bottom: smart books, books, documents. What is no file has its type under `smartType`; a
    /// smart book's or context's path is its title.
    [[nodiscard]] QList<QVariantMap> rows() const;
    /// What a row leads to when it is opened; a book and type 0 for a document.
    [[nodiscard]] ListSource sourceOf(const QVariantMap &row) const;
    /// Where one gets on the way up: the enclosing book, for a context the list of contexts, else the root.
    [[nodiscard]] ListSource enclosingSource() const;

    /// What to say in place of an empty list.
    [[nodiscard]] QString emptyText() const;
    /// The list's title.
    [[nodiscard]] QString title() const;

    QList<QVariantMap> documentsList;
    QList<QVariantMap> booksList; ///< only while the outline is collapsed
    QList<int> smartBooksList;    ///< types; only while the outline is collapsed and the root is on display
    QString sortOrder;            ///< a row key
    bool sortAscending = true;
    QString searchFilter; ///< part of the name, any case
    qsizetype numberOfHiddenDoneTasks = 0;

private:
    void readBook(const QString &book);
    void readPaths(const QStringList &paths);
    void readRecentlyModified();
    void readContexts();
    [[nodiscard]] bool passesFilter(const QString &name) const;
    [[nodiscard]] bool isPlainBook() const;

    ListSource m_source;
    std::optional<QList<QVariantMap>> m_results;
    QStringList m_items; ///< that belong into a smart book: full paths, or contexts
    QStringList m_orphanedPropertyFiles;
};

} // namespace tomelet
