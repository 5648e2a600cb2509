// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/list/DocumentListModel.h"

#include "desktop/Icons.h"
#include "desktop/actions/DragData.h"
#include "desktop/actions/ItemActions.h"
#include "desktop/outline/OutlineBadges.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/OutlineItem.h"
#include "library/Properties.h"
#include "organising/dates/DueDateTexts.h"
#include "organising/tasks/TaskRows.h"

#include <QLocale>
#include <QMimeData>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace tomelet::desktop {

// Coming or going at once.
constexpr qsizetype mostRowsFollowed = 1000;

DocumentListModel::DocumentListModel(ItemActions &actions, QObject *parent)
    : QAbstractListModel(parent)
    , m_actions(actions)
{}

void DocumentListModel::show(const ListSource &source)
{
    ++m_version;
    m_checklists.clear();
    m_taskDates.clear();
    m_controller.setSource(source);
    // All folders are walked for these, so their rows come later.
    const bool isWalk = source.smartType == RecentlyModifiedBook;
    if (isWalk) m_controller.clearRows();
    else m_controller.getDocumentsInFolder();
    takeAllRows();
    if (isWalk) reloadInBackground();
}

bool DocumentListModel::isReading() const
{
    const ListSource &shown = m_controller.source();
    return m_reading && (m_readSource == shown || (m_next.reading && m_next.source == shown));
}

void DocumentListModel::takeAllRows()
{
    beginResetModel();
    m_shown = m_controller.source();
    m_rows = m_controller.rows();
    noteBooks();
    endResetModel();
}

// Smart books and contexts are no files.
static int smartTypeOf(const QVariantMap &row)
{
    return row.value(QStringLiteral("smartType")).toInt();
}

static QSet<QString> pathsOf(const QList<QVariantMap> &rows)
{
    QSet<QString> paths;
    for (const QVariantMap &row : rows) paths.insert(pathOfRow(row));
    return paths;
}

// A book's list holds its books while the outline is hidden; computed lists may hold any, but nobody searches for
// books.
void DocumentListModel::noteBooks()
{
    m_books = pathsOf(m_controller.booksList);
    const int type = m_controller.source().smartType;
    if (type == OrdinaryBook || type == SearchResultsBook) return;
    for (const QVariantMap &row : m_controller.documentsList)
        if (smartTypeOf(row) == OrdinaryBook && pathIsPlainBook(pathOfRow(row))) m_books.insert(pathOfRow(row));
}

// A letter of the filter must not wait for what is gathered from all over the notebook.
void DocumentListModel::reload()
{
    const int type = m_controller.source().smartType;
    if (type == OrdinaryBook || type == InboxBook || type == SearchResultsBook) changeRows([] {});
    else reloadInBackground();
}

// The change may already move rows about; the views hear of all of it here, in steps that they can follow.
void DocumentListModel::changeRows(const std::function<void()> &change)
{
    ++m_version;
    m_taskDates.clear();
    change();
    m_controller.loadDisplayParameters();
    m_controller.getDocumentsInFolder();
    if (m_shown != m_controller.source()) return takeAllRows();
    takeChanges(rowChanges(m_rows, m_controller.rows()));
}

void DocumentListModel::takeChanges(RowChanges changes)
{
    if (changes.removedRows + changes.added.size() > mostRowsFollowed) return takeAllRows();
    noteBooks();
    for (const auto &[first, last] : changes.removed) {
        beginRemoveRows({}, first, last);
        m_rows.remove(first, last - first + 1);
        endRemoveRows();
    }
    if (!changes.added.isEmpty()) {
        beginInsertRows({}, int(m_rows.size()), int(m_rows.size() + changes.added.size() - 1));
        m_rows.append(changes.added);
        endInsertRows();
    }
    takePlaces(changes.places, std::move(changes.after));
    // Only what differs is told: a name that is being edited would begin anew.
    for (const int row : changes.changed) Q_EMIT dataChanged(index(row), index(row));
}

void DocumentListModel::takePlaces(const std::vector<int> &places, QList<QVariantMap> after)
{
    if (places.empty()) {
        m_rows = std::move(after);
        return;
    }
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList held = persistentIndexList();
    QModelIndexList moved;
    for (const QModelIndex &at : held) moved.append(index(places[size_t(at.row())]));
    m_rows = std::move(after);
    changePersistentIndexList(held, moved);
    Q_EMIT layoutChanged();
}

// -- reading elsewhere ------------------------------------------------------------------------------------------------

void DocumentListModel::reloadInBackground()
{
    readElsewhere([](TMLTDocumentListViewController &list) {
        list.loadDisplayParameters();
        list.readDocuments();
    });
}

// One at a time: of what is wanted meanwhile the last is enough, since it reads everything.
void DocumentListModel::readElsewhere(const Reading &reading)
{
    const ListSource source = m_controller.source();
    if (std::exchange(m_reading, true)) {
        m_next = {source, reading};
        return;
    }
    m_readSource = source;
    m_controller.gatherItems();
    m_reader.add([this, source, reading, list = m_controller, rows = m_rows, version = m_version]() mutable {
        reading(list);
        RowChanges changes = rowChanges(rows, list.rows());
        const auto take = [this, source, reading, version, list = std::move(list), changes = std::move(changes)] {
            m_reading = false;
            const bool isStale = version != m_version || source != m_controller.source() ||
                                 list.searchFilter != m_controller.searchFilter;
            if (!isStale) takeReading(list, changes);
            WantedReading next = std::exchange(m_next, {});
            if (!next.reading && isStale) next = {source, reading};
            // What is on display instead was read when it came, or is wanted by itself.
            if (next.reading && next.source == m_controller.source()) readElsewhere(next.reading);
        };
        QMetaObject::invokeMethod(this, take, Qt::QueuedConnection);
    });
}

void DocumentListModel::takeReading(TMLTDocumentListViewController list, RowChanges changes)
{
    ++m_version;
    m_taskDates.clear();
    // To let go of thousands of rows takes its time too.
    m_reader.add([rows = m_rows, before = std::exchange(m_controller, std::move(list))] {});
    m_controller.removeOrphanedPropertyFiles();
    if (m_shown != m_controller.source()) takeAllRows();
    else takeChanges(std::move(changes));
    Q_EMIT reloaded();
}

void DocumentListModel::follow(const QString &from, const QString &to)
{
    const QModelIndex index = indexOfPath(from);
    if (!index.isValid() || parentPath(from) != parentPath(to) || indexOfPath(to).isValid()) return;
    ++m_version;
    QVariantMap &row = m_rows[index.row()];
    row.insert(QStringLiteral("path"), to);
    row.insert(QStringLiteral("title"), lastPathComponent(to));
    Q_EMIT dataChanged(index, index);
}

void DocumentListModel::setFilter(const QString &text)
{
    m_controller.searchFilter = text;
    reload();
}

void DocumentListModel::selectSortOrder(int index)
{
    if (m_controller.source().smartType != SearchResultsBook)
        return changeRows([&] { m_controller.storeSortOrder(index); });
    // To sort them anew they need not be read anew; but there may be a hundred thousand.
    m_controller.storeSortOrder(index);
    m_controller.loadDisplayParameters();
    readElsewhere([](TMLTDocumentListViewController &list) {
        list.loadDisplayParameters();
        list.sortDocuments();
    });
}

QString DocumentListModel::pathAt(const QModelIndex &index) const
{
    if (!index.isValid() || index.row() >= m_rows.size()) return {};
    const QVariantMap &row = m_rows[index.row()];
    return smartTypeOf(row) == OrdinaryBook ? pathOfRow(row) : QString();
}

bool DocumentListModel::leadsOn(const QVariantMap &row) const
{
    return smartTypeOf(row) != OrdinaryBook || m_books.contains(pathOfRow(row));
}

std::optional<ListSource> DocumentListModel::sourceAt(const QModelIndex &index) const
{
    if (!index.isValid() || index.row() >= m_rows.size() || !leadsOn(m_rows[index.row()])) return std::nullopt;
    return m_controller.sourceOf(m_rows[index.row()]);
}

void DocumentListModel::setBadges(OutlineBadges *badges)
{
    m_badges = badges;
}

QModelIndex DocumentListModel::indexOfPath(const QString &path) const
{
    for (int row = 0; row < rowCount(); ++row)
        if (pathOfRow(m_rows[row]) == path) return index(row, 0);
    return {};
}

int DocumentListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QString DocumentListModel::displayTitle(const QVariantMap &row) const
{
    const QString name = row.value(QStringLiteral("title")).toString();
    if (settings().boolean(QStringLiteral("showFileExtensions"))) return name;
    return pathWithoutExtension(name);
}

QDateTime DocumentListModel::shownDate(const QVariantMap &row) const
{
    const QString key =
        m_controller.sortOrder == u"creationDate" ? QStringLiteral("creationDate") : QStringLiteral("modDate");
    return row.value(key).toDateTime().toLocalTime();
}

QString taskStateText(const QString &icon)
{
    if (icon.startsWith(u"task-started")) return localized(TOMELET_TEXT("Started"));
    if (icon == u"task-done") return localized(TOMELET_TEXT("Done"));
    if (icon == u"task-canceled") return localized(TOMELET_TEXT("Canceled"));
    return icon.isEmpty() ? localized(TOMELET_TEXT("Not a Task")) : localized(TOMELET_TEXT("Open"));
}

static QString taskIconOf(const QVariantMap &row)
{
    return row.value(QStringLiteral("taskIcon")).toString();
}

// Formatting a date takes longer than a paint should.
QString DocumentListModel::taskDate(const QVariantMap &row) const
{
    const auto known = m_taskDates.constFind(pathOfRow(row));
    if (known != m_taskDates.cend()) return *known;
    const QDateTime finished = finishingDateOfRow(row);
    const QString text =
        finished.isValid()
            ? QString(taskStateText(taskIconOf(row)) + QStringLiteral(", ") + tm_fancyWeekdayString(finished))
            : tm_weekdayStringWithOffset(dueDateOfRow(row));
    m_taskDates.insert(pathOfRow(row), text);
    return text;
}

// Counted elsewhere; the row is drawn anew when the number is there.
qlonglong DocumentListModel::openChecklist(const QVariantMap &row) const
{
    if (!settings().boolean(QStringLiteral("showOpenChecklistItems"))) return 0;
    const QString path = pathOfRow(row);
    const QString key = path + row.value(QStringLiteral("modDate")).toDateTime().toString(Qt::ISODateWithMs);
    const auto known = m_checklists.constFind(key);
    if (known != m_checklists.cend()) return std::max<qlonglong>(0, *known);
    m_checklists.insert(key, -1);
    QPointer<DocumentListModel> self(const_cast<DocumentListModel *>(this));
    countOpenChecklistItems(path, [self, path, key](qlonglong count) {
        if (!self) return;
        self->m_checklists.insert(key, count);
        // A row that shows nothing new is left alone: its name may be being edited.
        if (const QModelIndex at = self->indexOfPath(path); at.isValid() && count > 0) Q_EMIT self->dataChanged(at, at);
    });
    return 0;
}

// What the row shows by colour and sign, in words.
QString DocumentListModel::description(const QVariantMap &row) const
{
    QStringList parts;
    if (const QString icon = taskIconOf(row); !icon.isEmpty()) {
        parts.append(taskStateText(icon));
        if (icon.endsWith(u"-due")) parts.append(localized(TOMELET_TEXT("overdue")));
        if (dueDateOfRow(row).isValid()) parts.append(localized(TOMELET_TEXT("due %1")).arg(taskDate(row)));
        if (!row.value(QStringLiteral("taskIsRepeating")).toString().isEmpty())
            parts.append(localized(TOMELET_TEXT("repeats")));
    }
    if (const qlonglong open = openChecklist(row); open > 0)
        parts.append(localized(TOMELET_TEXT("open check boxes: %1")).arg(open));
    const bool pinned = row.value(QStringLiteral("pinnedSequence")).toLongLong() != notFoundIndex;
    if (pinned) parts.append(localized(TOMELET_TEXT("pinned")));
    if (!row.value(QStringLiteral("_TMFAV")).toString().isEmpty()) parts.append(localized(TOMELET_TEXT("favorite")));
    const QString color = row.value(QStringLiteral("cellColor")).toString();
    if (!color.isEmpty() && color != u"default") parts.append(localized(TOMELET_TEXT("label %1")).arg(color));
    parts.append(QLocale().toString(shownDate(row), QLocale::ShortFormat));
    return parts.join(QStringLiteral(", "));
}

QVariant DocumentListModel::dataOfBook(const QVariantMap &row, int role) const
{
    const int type = smartTypeOf(row);
    const QString title = row.value(QStringLiteral("title")).toString();
    const Badge badge = m_badges ? m_badges->badgeOf(type, pathOfRow(row)) : Badge();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: return title;
    case Qt::DecorationRole: return outlineIcon(type, badge);
    case Qt::ToolTipRole: return QString(title + u'\n' + describeBadge(type, badge));
    case Qt::AccessibleDescriptionRole: return describeBadge(type, badge);
    case TotalRole: return badge.total;
    case DueRole: return badge.due;
    default: return {};
    }
}

QVariant DocumentListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size()) return {};
    const QVariantMap &row = m_rows[index.row()];
    if (role == LeadsOnRole) return leadsOn(row);
    if (leadsOn(row))
        if (const QVariant value = dataOfBook(row, role); value.isValid()) return value;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole: return displayTitle(row);
    case Qt::DecorationRole:
        return taskIconOf(row).isEmpty() ? documentIcon(pathOfRow(row)) : taskStateIcon(taskIconOf(row));
    case Qt::ToolTipRole: return QString(row.value(QStringLiteral("title")).toString() + u'\n' + description(row));
    case Qt::AccessibleDescriptionRole: return description(row);
    case PathRole: return pathAt(index);
    case DateRole: return shownDate(row);
    case ColorRole: return row.value(QStringLiteral("cellColor"));
    case PinnedRole: return row.value(QStringLiteral("pinnedSequence")).toLongLong() != notFoundIndex;
    case FavoriteRole: return !row.value(QStringLiteral("_TMFAV")).toString().isEmpty();
    case TaskIconRole: return taskIconOf(row);
    case TaskDateRole: return taskIconOf(row).isEmpty() ? QString() : taskDate(row);
    case OverdueRole: return taskIconOf(row).endsWith(u"-due");
    case RepeatsRole: return !row.value(QStringLiteral("taskIsRepeating")).toString().isEmpty();
    case ChecklistRole: return openChecklist(row);
    default: return {};
    }
}

bool DocumentListModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const QVariantMap row = m_rows.value(index.row());
    if (role != Qt::EditRole || value.toString() == data(index, Qt::EditRole).toString()) return false;
    if (smartTypeOf(row) == OrdinaryBook) return m_actions.rename(pathOfRow(row), value.toString());
    m_actions.renameContext(pathOfRow(row), value.toString());
    return true;
}

Qt::ItemFlags DocumentListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    constexpr Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    const QVariantMap &row = m_rows[index.row()];
    if (smartTypeOf(row) == ContextBook) return shown | Qt::ItemIsEditable;
    if (smartTypeOf(row) != OrdinaryBook) return shown;
    // What is dropped on a book goes into it.
    return shown | Qt::ItemIsEditable | Qt::ItemIsDragEnabled |
           (leadsOn(row) ? Qt::ItemIsDropEnabled : Qt::NoItemFlags);
}

// -- drag and drop ----------------------------------------------------------------------------------------------------

QStringList DocumentListModel::mimeTypes() const
{
    return {QStringLiteral("text/uri-list")};
}

QMimeData *DocumentListModel::mimeData(const QModelIndexList &indexes) const
{
    QStringList paths;
    for (const QModelIndex &index : indexes) paths.append(pathAt(index));
    return dragDataFor(paths);
}

Qt::DropActions DocumentListModel::supportedDropActions() const
{
    return Qt::MoveAction | Qt::CopyAction;
}

// Places among the documents of the list, which stand below its books.
QList<qsizetype> DocumentListModel::positionsOf(const QStringList &paths) const
{
    const qsizetype above = m_rows.size() - m_controller.documentsList.size();
    QList<qsizetype> positions;
    for (const QString &path : paths)
        if (const QModelIndex own = indexOfPath(path); own.row() >= above) positions.append(own.row() - above);
    return positions;
}

void DocumentListModel::moveByOne(const QStringList &paths, int step)
{
    const QList<qsizetype> positions = positionsOf(paths);
    if (m_controller.source().smartType != OrdinaryBook || positions.isEmpty()) return;
    const auto [first, last] = std::ranges::minmax(positions);
    const qsizetype target = step < 0 ? first - 1 : last + 2;
    if (target < 0 || target > m_controller.documentsList.size()) return;
    changeRows([&] {
        m_controller.moveDocuments(positions, target);
        m_controller.selectSortOrder(3);
    });
}

bool DocumentListModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int,
                                     const QModelIndex &parent)
{
    const ListSource &source = m_controller.source();
    const QStringList paths = pathsIn(data);
    if (const auto book = sourceAt(parent)) {
        m_actions.drop(paths, book->book, action == Qt::CopyAction);
        return false;
    }
    if (source.smartType == ContextBook)
        for (const QString &word : source.contexts) m_actions.addContext(paths, word);
    if (source.smartType != OrdinaryBook) return false;
    const qsizetype above = m_rows.size() - m_controller.documentsList.size();
    const QList<qsizetype> positions = positionsOf(paths);
    if (positions.size() != paths.size() || action == Qt::CopyAction) {
        m_actions.drop(paths, source.book, action == Qt::CopyAction);
        return false;
    }
    // Documents of this very list, dropped between others, stand there from now on.
    changeRows([&] {
        const qsizetype all = m_controller.documentsList.size();
        m_controller.moveDocuments(positions, row < 0 ? all : std::clamp<qsizetype>(row - above, 0, all));
        m_controller.selectSortOrder(3);
    });
    return false;
}

} // namespace tomelet::desktop
