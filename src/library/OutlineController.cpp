// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/OutlineController.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/AppState.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/SetUp.h"

namespace tomelet {

static const QString collapsedMark = QStringLiteral("TMSmartBooksCollapsed");

TMLTOutlineController::TMLTOutlineController(OutlineView &view)
    : m_view(view)
{
    const auto onPath = [this](const QString &name, void (TMLTOutlineController::*handler)(const QString &)) {
        m_subscriptions.push_back(notifications().observe(name, [this, handler](const QVariantMap &payload) {
            (this->*handler)(payload.value(QStringLiteral("path")).toString());
        }));
    };
    onPath(QStringLiteral("TMLTHandleFileModificationInstantly"), &TMLTOutlineController::subItemDidChange);
    m_subscriptions.push_back(
        notifications().observe(QStringLiteral("TMLTHandleFileMoveInstantly"), [this](const QVariantMap &payload) {
            presentedSubitemAtURL(payload.value(QStringLiteral("originalPath")).toString(),
                                  payload.value(QStringLiteral("newPath")).toString());
        }));
    const auto onSmartBook = [this](const QString &name, int type) {
        m_subscriptions.push_back(
            notifications().observe(name, [this, type](const QVariantMap &) { updateSmartBookOfType(type); }));
    };
    onSmartBook(QStringLiteral("TMLTUpdateAllTaskLists"), AllTaskListsBook);
    onSmartBook(QStringLiteral("TMLTUpdateDefaultInbox"), InboxBook);
    onSmartBook(QStringLiteral("BookViewShouldUpdateFavoritesNotification"), FavoritesBook);
    onSmartBook(QStringLiteral("TMLTReloadContextSmartBook"), ContextsBook);
}

TMLTOutlineController::~TMLTOutlineController() = default;

void TMLTOutlineController::initFileCoordinationAndTaskLists()
{
    const QString root = tomeletRoot();
    m_view.rootAvailabilityChanged(isFolder(root));
    m_presenter = makeFilePresenter({
        [this](const QString &path) { presentedSubitemDidChangeAtURL(path); },
        [this](const QString &path, const QString &newPath) { presentedSubitemAtURL(path, newPath); },
        [this] { m_view.rootAvailabilityChanged(false); },
    });
    m_presenter->present(isFolder(root) ? root : QString());
    organiser().gatherTasklists();
}

void TMLTOutlineController::settle()
{
    if (m_presenter) m_presenter->settle();
}

// -- another root -----------------------------------------------------------------------------------------------------

namespace {

struct LibrarySettings
{
    QString inbox;
    bool links = false;
    bool contexts = false;
    bool extracts = false;
    QString markers;
};

LibrarySettings librarySettings()
{
    const Settings &values = settings();
    const bool contexts = values.boolean(QStringLiteral("contextsEnabled"));
    const QString markers = values.string(QStringLiteral("contextMarkers"));
    return {values.string(QStringLiteral("defaultInbox")), values.boolean(QStringLiteral("manageLinks")), contexts,
            contexts && values.boolean(QStringLiteral("extractContextsAutomatically")),
            markers.isEmpty() ? QStringLiteral("@#") : markers};
}

QString reportLine(const char *what, const QString &value)
{
    return QStringLiteral("%1: %2\n").arg(localized(what), value);
}

QString activity(bool on)
{
    return on ? localized(TOMELET_TEXT("Active")) : localized(TOMELET_TEXT("Inactive"));
}

QString changeReport(const LibrarySettings &before, const LibrarySettings &now)
{
    QString report;
    if (before.inbox != now.inbox)
        report += reportLine(TOMELET_TEXT("Default Inbox"), now.inbox.isEmpty() ? QStringLiteral("---") : now.inbox);
    if (before.links != now.links) report += reportLine(TOMELET_TEXT("Link Management"), activity(now.links));
    if (before.contexts != now.contexts || before.extracts != now.extracts)
        report += reportLine(TOMELET_TEXT("Manage Contexts"), activity(now.contexts));
    if (before.markers != now.markers) report += reportLine(TOMELET_TEXT("Context Markers"), now.markers);
    return report;
}

} // namespace

QString TMLTOutlineController::newRootSelected()
{
    initFileCoordinationAndTaskLists();
    const LibrarySettings before = librarySettings();
    TMLTOutlineItem::rootItem()->resetAllChildren();
    m_view.expand(TMLTOutlineItem::booksItem());
    m_view.expand(TMLTOutlineItem::smartBooksItem());
    tm_expandSavedPaths();
    notifications().post(QStringLiteral("TMLTReloadContextSmartBook"));
    initAppSettings(true);
    return changeReport(before, librarySettings());
}

// -- expansion --------------------------------------------------------------------------------------------------------

void TMLTOutlineController::tm_saveExpandedPaths()
{
    // A root that is away for now has no rows, and its books are to be open again when it is back.
    if (!rootIsInForce() || rootLooksUnmounted()) return;
    QStringList paths;
    if (!m_view.isExpanded(TMLTOutlineItem::smartBooksItem())) paths.append(collapsedMark);
    for (const TMLTOutlineItem *item : m_view.expandedItems())
        if (!item->isGroupItem() && item->smartBookType() == OrdinaryBook) paths.append(item->fullPath());
    saveExpandedPaths(paths);
}

void TMLTOutlineController::tm_expandSavedPaths()
{
    for (const QString &path : savedExpandedPaths()) {
        if (path == collapsedMark) {
            m_view.collapse(TMLTOutlineItem::smartBooksItem());
            continue;
        }
        if (tm_isProtected(path)) continue;
        TMLTOutlineItem *item = TMLTOutlineItem::childAtPath(path);
        if (!item) continue;
        if (item->parent() && !m_view.isExpanded(item->parent())) expandPathToItem(path);
        m_view.expand(item);
    }
    if (m_view.selectedItem()) return;
    if (TMLTOutlineItem *book = TMLTOutlineItem::childAtPath(m_view.bookOnDisplay()); book && !book->isGroupItem())
        m_view.select(book, true);
}

void TMLTOutlineController::expandPathToItem(const QString &path, int smartType)
{
    if (smartType >= ContextBook) {
        if (TMLTOutlineItem *smartBook = TMLTOutlineItem::smartBookOfType(smartType)) m_view.select(smartBook, false);
        return;
    }
    const QString root = tomeletRoot();
    QString full = tm_itemIsChildOfTomelet(path, root) ? path : fullPathOf(path, root);
    if (!itemExists(full)) full = tm_pathWithoutAnchor(full);
    if (!itemExists(full)) return;

    TMLTOutlineItem *item = TMLTOutlineItem::booksItem();
    TMLTOutlineItem *deepest = item;
    for (const QString &part : tm_normalizedPath(full, root).split(u'/', Qt::SkipEmptyParts)) {
        m_view.expand(item);
        item = item->childWithTitle(part);
        if (!item) break;
        deepest = item;
    }
    // A document's place in the tree is its book.
    m_view.select(deepest->isGroupItem() ? nullptr : deepest, true);
}

// -- smart books ------------------------------------------------------------------------------------------------------

void TMLTOutlineController::updateSmartBookOfType(int type)
{
    TMLTOutlineItem *present = TMLTOutlineItem::smartBookOfType(type);
    const bool wanted = smartBookShouldExist(type);
    if (wanted && !present) TMLTOutlineItem::insertSmartChildOfType(type);
    else if (!wanted && present) TMLTOutlineItem::smartBooksItem()->removeChild(present);
    else if (present) {
        const bool expanded = m_view.isExpanded(present);
        present->resetAllChildren();
        present->refresh();
        if (expanded) m_view.expand(present);
    }
}

} // namespace tomelet
