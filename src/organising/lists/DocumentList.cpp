// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/lists/DocumentList.h"

#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/Extensions.h"
#include "library/ItemDictionary.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"
#include "library/OutlineItem.h"
#include "library/Properties.h"
#include "library/RecentItems.h"
#include "organising/lists/OrphanedProperties.h"
#include "organising/search/SearchResults.h"
#include "organising/tasks/TaskRows.h"
#include "organising/tasks/TaskStore.h"
#include "organising/tasks/Tasks.h"

#include <QDir>
#include <QLocale>

#include <algorithm>
#include <map>

namespace tomelet {

namespace {

// The settings' names for a smart book's order begin with this; "" for the types whose order is fixed.
QString settingsPrefix(int smartType)
{
    switch (smartType) {
    case DueTasksBook: return QStringLiteral("dueTasks");
    case ContextsBook: return QStringLiteral("contexts");
    case ContextBook: return QStringLiteral("contextTag");
    case FavoritesBook: return QStringLiteral("favorites");
    case SearchResultsBook: return QStringLiteral("searchResults");
    default: return {};
    }
}

// The book whose files the source lists; the inbox is one.
QString bookOf(const ListSource &source)
{
    if (source.smartType == InboxBook) return inboxFolder();
    return source.smartType == OrdinaryBook ? source.book : QString();
}

const QString smartTypeKey = QStringLiteral("smartType");

bool rowIsFinished(const QVariantMap &row)
{
    return tm_taskIsDoneOrCanceled(row.value(QStringLiteral("taskIcon")).toString());
}

} // namespace

QString inboxFolder()
{
    return fullPathOf(settings().string(QStringLiteral("defaultInbox")));
}

void TMLTDocumentListViewController::setSource(const ListSource &source)
{
    m_source = source;
    loadDisplayParameters();
}

bool TMLTDocumentListViewController::isPlainBook() const
{
    return m_source.smartType == OrdinaryBook || m_source.smartType == InboxBook;
}

void TMLTDocumentListViewController::loadDisplayParameters()
{
    sortOrder = QStringLiteral("title");
    bool descending = false;
    const Settings &values = settings();
    if (isPlainBook()) {
        const QString book = bookOf(m_source);
        const QVariantMap properties = readDictionary(bookPropertiesPath(book));
        const QString stored = properties.value(QStringLiteral("sortOrderForNotes")).toString();
        const bool isTasklist = organiser().bookIsTasklist(book);
        sortOrder = stored.isEmpty() ? (isTasklist ? QStringLiteral("DueDate") : QStringLiteral("title")) : stored;
        // What stands under one place of the menu is stored under one word.
        if (isTasklist && sortOrder == u"modDate") sortOrder = QStringLiteral("DueDate");
        descending = properties.value(QStringLiteral("sortNotesDescending")).toString() == u"YES";
    } else if (m_source.smartType == RecentlyModifiedBook) {
        sortOrder = QStringLiteral("modDate");
        descending = true;
    } else if (const QString prefix = settingsPrefix(m_source.smartType); !prefix.isEmpty()) {
        const QString stored = values.string(prefix + QStringLiteral("SortOrder"));
        if (!stored.isEmpty()) sortOrder = stored;
        else if (m_source.smartType == DueTasksBook) sortOrder = QStringLiteral("DueDate");
        descending = values.boolean(prefix + QStringLiteral("SortDescending"));
    }
    sortAscending = !descending;
}

// -- rows -------------------------------------------------------------------------------------------------------------

bool TMLTDocumentListViewController::passesFilter(const QString &name) const
{
    if (searchFilter.isEmpty()) return true;
    // Names that other systems wrote have their accents as characters of their own.
    const auto folded = [locale = QLocale()](const QString &text) {
        return locale.toLower(text.normalized(QString::NormalizationForm_C));
    };
    return folded(name).contains(folded(searchFilter));
}

void TMLTDocumentListViewController::getDocumentsInFolder()
{
    gatherItems();
    readDocuments();
    removeOrphanedPropertyFiles();
}

void TMLTDocumentListViewController::removeOrphanedPropertyFiles()
{
    for (const QString &path : std::exchange(m_orphanedPropertyFiles, {})) removeOrphanedPropertyFile(path);
}

static QStringList itemsWithContexts(const QStringList &contexts)
{
    QStringList paths = organiser().itemsWithContext(contexts.value(0));
    for (const QString &context : contexts.mid(1)) {
        const QStringList others = organiser().itemsWithContext(context);
        const QSet<QString> known(others.begin(), others.end());
        paths.removeIf([&](const QString &path) { return !known.contains(path); });
    }
    return paths;
}

static QStringList withRoot(const QStringList &paths)
{
    QStringList full;
    for (const QString &path : paths) full.append(fullPathOf(path));
    return full;
}

void TMLTDocumentListViewController::clearRows()
{
    documentsList.clear();
    booksList.clear();
    smartBooksList.clear();
    numberOfHiddenDoneTasks = 0;
}

void TMLTDocumentListViewController::gatherItems()
{
    m_items.clear();
    smartBooksList.clear();
    switch (m_source.smartType) {
    case OrdinaryBook:
        if (m_source.book != tomeletRoot() || !settings().boolean(QStringLiteral("outlineIsCollapsed"))) return;
        for (int type = DueTasksBook; type <= ConflictsBook; ++type)
            if (smartBookShouldExist(type)) smartBooksList.append(type);
        return;
    case ContextBook: m_items = itemsWithContexts(m_source.contexts); return;
    case FavoritesBook: m_items = organiser().itemsWithContext(QStringLiteral("_TMFAV")); return;
    case AllTaskListsBook: m_items = withRoot(organiser().tasklists()); return;
    case RecentItemsBook: m_items = withRoot(verifiedListOfRecentItems()); return;
    case ContextsBook: m_items = organiser().availableContexts(); return;
    case ConflictsBook: m_items = settings().stringList(QStringLiteral("iCloudArrayOfUnresolvedConflicts")); return;
    default: return;
    }
}

void TMLTDocumentListViewController::readDocuments()
{
    documentsList.clear();
    booksList.clear();
    numberOfHiddenDoneTasks = 0;
    switch (m_source.smartType) {
    case OrdinaryBook:
    case InboxBook: readBook(bookOf(m_source)); break;
    case ContextBook:
        readPaths(m_items);
        if (settings().boolean(QStringLiteral("hideDoneTasks"))) documentsList.removeIf(rowIsFinished);
        break;
    case FavoritesBook:
    case ConflictsBook: readPaths(m_items); break;
    case RecentItemsBook: return readPaths(m_items); // in the order of use
    case DueTasksBook:
        for (const QVariant &row : tm_arrayOfDueTasksAsNumbers(tomeletRoot(), false))
            if (passesFilter(row.toMap().value(QStringLiteral("title")).toString())) documentsList.append(row.toMap());
        break;
    case AllTaskListsBook:
        m_items.removeIf([](const QString &book) { return !organiser().bookIsTasklist(book); });
        readPaths(m_items);
        break;
    case RecentlyModifiedBook: readRecentlyModified(); break;
    case SearchResultsBook:
        if (m_results) {
            documentsList = std::move(*m_results); // sorted already
            m_results.reset();
            return;
        }
        readPaths(lastSearchResults());
        break;
    case ContextsBook: readContexts(); break;
    default: break;
    }
    sortDocuments();
}

void TMLTDocumentListViewController::readBook(const QString &book)
{
    const QVariantMap properties = readDictionary(bookPropertiesPath(book));
    const LocalizedIndex pinned(properties.value(QStringLiteral("Pinned")).toStringList());
    const RowSources documentSources{LocalizedIndex(properties.value(QStringLiteral("Notes")).toStringList()), pinned};
    const RowSources bookSources{LocalizedIndex(properties.value(QStringLiteral("Books")).toStringList()), pinned};
    const bool isTasklist = organiser().bookIsTasklist(book);
    const TaskRecords records(book);
    const bool showsBooks = settings().boolean(QStringLiteral("outlineIsCollapsed"));
    const bool hidesDone = settings().boolean(QStringLiteral("hideDoneTasks"));

    for (const FolderEntry &entry : listFolder(book).value_or(std::vector<FolderEntry>())) {
        const QString path = joinPath(book, entry.name);
        if (isOrphanedPropertyFile(path)) m_orphanedPropertyFiles.append(path);
        if (tm_pathIsExcludedFromDisplay(path) || !passesFilter(entry.name)) continue;
        if (entry.isFolder && !hasPackageExtension(path)) {
            if (showsBooks) booksList.append(itemRow(path, false, {}, bookSources));
            continue;
        }
        const TaskRecord record = records.of(entry.name);
        if (hidesDone && tm_taskIsDoneOrCanceled(textOfTaskState(stateOf(record)))) ++numberOfHiddenDoneTasks;
        else documentsList.append(itemRow(path, isTasklist, record, documentSources));
    }
}

namespace {

/// Makes rows of items from anywhere, and reads what a book tells of its items once.
class RowMaker
{
public:
    QVariantMap rowOf(const QString &path)
    {
        if (pathIsPlainBook(path)) return itemRow(path, false, {}, {});
        const Book &book = bookAt(parentPath(path));
        const TaskRecord record = book.records ? book.records->of(lastPathComponent(path)) : TaskRecord();
        const bool asTask = book.records && stateOf(record) != TaskState::NoTask;
        return itemRow(path, asTask, asTask ? QVariant(record) : QVariant(), book.sources);
    }

private:
    struct Book
    {
        RowSources sources;
        std::optional<TaskRecords> records; // of a tasklist
    };

    const Book &bookAt(const QString &path)
    {
        const auto [book, isNew] = m_books.try_emplace(path);
        if (!isNew) return book->second;
        const QVariantMap properties = readDictionary(bookPropertiesPath(path));
        book->second.sources = {LocalizedIndex(properties.value(QStringLiteral("Notes")).toStringList()),
                                LocalizedIndex(properties.value(QStringLiteral("Pinned")).toStringList())};
        if (organiser().bookIsTasklist(path)) book->second.records.emplace(path);
        return book->second;
    }

    std::map<QString, Book> m_books;
};

} // namespace

void TMLTDocumentListViewController::readPaths(const QStringList &paths)
{
    RowMaker maker;
    for (const QString &path : paths)
        if (itemExists(path) && passesFilter(lastPathComponent(path))) documentsList.append(maker.rowOf(path));
}

QList<QVariantMap> rowsOfSearchResults(const QStringList &paths)
{
    TMLTDocumentListViewController list;
    list.setSource({{}, SearchResultsBook, {}});
    RowMaker maker;
    for (const QString &path : paths)
        if (itemExists(path)) list.documentsList.append(maker.rowOf(path));
    list.sortDocuments();
    return std::move(list.documentsList);
}

void TMLTDocumentListViewController::readRecentlyModified()
{
    QStringList folders{tomeletRoot()};
    QStringList paths;
    while (!folders.isEmpty()) {
        const QString folder = folders.takeLast();
        for (const FolderEntry &entry : listFolder(folder).value_or(std::vector<FolderEntry>())) {
            const QString path = joinPath(folder, entry.name);
            if (tm_pathIsExcludedFromDisplay(path)) continue;
            // Links are not followed: one may lead back up.
            if (entry.isFolder && !QFileInfo(path).isSymLink()) folders.append(path);
            else if (!entry.isFolder && tm_pathIsRecentlyModified(path)) paths.append(path);
        }
    }
    readPaths(paths);
}

// A context is no file: it has a title and its place in the list of contexts.
void TMLTDocumentListViewController::readContexts()
{
    for (qsizetype i = 0; i < m_items.size(); ++i)
        if (m_items[i] != u"_TMFAV" && passesFilter(m_items[i]))
            documentsList.append({{QStringLiteral("title"), m_items[i]},
                                  {QStringLiteral("path"), m_items[i]},
                                  {QStringLiteral("custom"), QStringLiteral("%1").arg(i, 4, 10, QLatin1Char('0'))},
                                  {QStringLiteral("pinnedSequence"), notFoundIndex},
                                  {smartTypeKey, int(ContextBook)}});
}

QList<QVariantMap> TMLTDocumentListViewController::rows() const
{
    QList<QVariantMap> all;
    for (const int type : smartBooksList) {
        const QString title = TMLTOutlineItem::titleForSmartBookOfType(type);
        all.append({{QStringLiteral("title"), title},
                    {QStringLiteral("path"), title},
                    {QStringLiteral("pinnedSequence"), notFoundIndex},
                    {smartTypeKey, type}});
    }
    return all + booksList + documentsList;
}

ListSource TMLTDocumentListViewController::sourceOf(const QVariantMap &row) const
{
    const QString path = row.value(QStringLiteral("path")).toString();
    const int type = row.value(smartTypeKey).toInt();
    if (type == ContextBook) return {{}, type, {path}};
    return type == OrdinaryBook ? ListSource{path, type, {}} : ListSource{{}, type, {}};
}

ListSource TMLTDocumentListViewController::enclosingSource() const
{
    if (m_source.smartType == ContextBook) return {{}, ContextsBook, {}};
    const bool isBelow = m_source.smartType == OrdinaryBook && m_source.book != tomeletRoot();
    return {isBelow ? parentPath(m_source.book) : tomeletRoot(), OrdinaryBook, {}};
}

void TMLTDocumentListViewController::sortDocuments()
{
    sortRows(documentsList, sortOrder, !sortAscending);
    sortRows(booksList, sortOrder, !sortAscending);
}

// -- orders -----------------------------------------------------------------------------------------------------------

bool TMLTDocumentListViewController::orderCanBeChosen() const
{
    return isPlainBook() || !settingsPrefix(m_source.smartType).isEmpty();
}

bool TMLTDocumentListViewController::sortsByDueDate() const
{
    return m_source.smartType == DueTasksBook || (isPlainBook() && organiser().bookIsTasklist(bookOf(m_source)));
}

void TMLTDocumentListViewController::storeSortOrder(int index)
{
    static const QString orders[] = {QStringLiteral("title"), QStringLiteral("creationDate"), QStringLiteral("modDate"),
                                     QStringLiteral("custom")};
    const QString prefix = settingsPrefix(m_source.smartType);
    if (isPlainBook()) {
        const QString book = bookOf(m_source);
        if (index < 4) tm_setProperty(book, orders[index], QStringLiteral("sortOrderForNotes"));
        else if (index == 4) tm_setProperty(book, QStringLiteral("YES"), QStringLiteral("sortNotesDescending"));
        else tm_removePropertyForKey(book, QStringLiteral("sortNotesDescending"));
        notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), bookPropertiesPath(book));
    } else if (!prefix.isEmpty()) {
        const bool dueDate = index == 2 && m_source.smartType == DueTasksBook;
        if (index < 4)
            settings().setObject(prefix + QStringLiteral("SortOrder"),
                                 dueDate ? QStringLiteral("DueDate") : orders[index]);
        else settings().setObject(prefix + QStringLiteral("SortDescending"), index == 4 ? QVariant(true) : QVariant());
        if (m_source.smartType == FavoritesBook)
            notifications().post(QStringLiteral("BookViewShouldUpdateFavoritesNotification"));
        if (m_source.smartType == ContextsBook) notifications().post(QStringLiteral("TMLTReorderContextSmartBook"));
    }
}

void TMLTDocumentListViewController::selectSortOrder(int index)
{
    storeSortOrder(index);
    loadDisplayParameters();
    sortDocuments();
}

static QStringList namesOf(const QList<QVariantMap> &rows)
{
    QStringList names;
    for (const QVariantMap &row : rows) names.append(row.value(QStringLiteral("title")).toString());
    return names;
}

// What the filter or the hiding of done tasks leaves out keeps its place behind the name that it stood behind.
static QStringList withUnseen(QStringList shown, const QStringList &before)
{
    for (qsizetype i = 0; i < before.size(); ++i)
        if (!shown.contains(before[i])) shown.insert(i == 0 ? 0 : shown.indexOf(before[i - 1]) + 1, before[i]);
    return shown;
}

void TMLTDocumentListViewController::saveCustomSortOrder()
{
    if (!isPlainBook()) return;
    const QString book = bookOf(m_source);
    // While the tree shows the books, the list knows nothing of their order.
    const QVariantMap properties = readDictionary(bookPropertiesPath(book));
    const QStringList books = settings().boolean(QStringLiteral("outlineIsCollapsed"))
                                  ? namesOf(booksList)
                                  : properties.value(QStringLiteral("Books")).toStringList();
    QStringList documents = namesOf(documentsList);
    if (numberOfHiddenDoneTasks > 0 || !searchFilter.isEmpty())
        documents = withUnseen(documents, properties.value(QStringLiteral("Notes")).toStringList());
    tomelet::saveCustomSortOrder(book, books, documents);
    notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), bookPropertiesPath(book));
}

void TMLTDocumentListViewController::moveDocuments(QList<qsizetype> positions, qsizetype target)
{
    std::ranges::sort(positions);
    QList<QVariantMap> moved;
    for (const qsizetype position : positions) moved.append(documentsList[position]);
    for (qsizetype i = positions.size(); i-- > 0;) {
        documentsList.removeAt(positions[i]);
        if (positions[i] < target) --target;
    }
    for (qsizetype i = 0; i < moved.size(); ++i) documentsList.insert(target + i, moved[i]);
    saveCustomSortOrder();
}

// -- texts ------------------------------------------------------------------------------------------------------------

QString TMLTDocumentListViewController::title() const
{
    if (m_source.smartType == ContextBook) return m_source.contexts.join(QStringLiteral(" + "));
    if (m_source.smartType != OrdinaryBook) return TMLTOutlineItem::titleForSmartBookOfType(m_source.smartType);
    return lastPathComponent(m_source.book);
}

QString TMLTDocumentListViewController::emptyText() const
{
    if (numberOfHiddenDoneTasks > 0) {
        const QString count =
            QStringLiteral(" %1 %2").arg(numberOfHiddenDoneTasks).arg(localized(TOMELET_TEXT("Done Tasks")));
        if (!searchFilter.isEmpty() || !isPlainBook()) return count;
        return count + QStringLiteral("\n\n") +
               localized(TOMELET_TEXT("To view these tasks, turn off \"Hide Done Tasks\" from the ••• menu."));
    }
    const QString none = localized(TOMELET_TEXT("No Documents to Display"));
    if (!searchFilter.isEmpty() || !isPlainBook()) return none;
    return none + QStringLiteral("\n\n") +
           localized(TOMELET_TEXT("Drop files here, or put them into the folder with any program."));
}

} // namespace tomelet
