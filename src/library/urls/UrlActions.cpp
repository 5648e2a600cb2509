// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/urls/UrlActions.h"

#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/urls/FromOutside.h"
#include "library/urls/UrlAction.h"
#include "organising/links/LostTarget.h"

namespace tomelet {

namespace {

void fail(const QString &line, UrlActionShell &shell)
{
    logLine(line);
    shell.actionFailed(line);
}

// -- grab -------------------------------------------------------------------------------------------------------------

// On the queue: a large file takes the disk its time.
void store(const FetchedPage &page, const GrabOrder &order, UrlActionShell &shell)
{
    platform().serialQueue.add([page, order, &shell] {
        const QString path = storeFetchedPage(page, order);
        if (path.isEmpty()) shell.actionFailed(QStringLiteral("nothing could be written in %1").arg(order.book));
        else shell.pageImported(path);
    });
}

void grab(const UrlAction &action, UrlActionShell &shell)
{
    const QUrl address(action.address);
    if (action.address.isEmpty() || !address.isValid())
        return shell.actionFailed(QStringLiteral("there is no address"));
    const GrabOrder order{action.address, action.title, bookFromOutside(action.parent)};
    shell.fetch(address, [order, &shell](const FetchedPage &page) {
        if (page.error.isEmpty()) store(page, order, shell);
        else fail(QStringLiteral("error: %1").arg(page.error), shell);
    });
}

// -- addnote, search, show --------------------------------------------------------------------------------------------

// A file that lists never show, as of properties or tasks, is no note.
QString noteName(const UrlAction &action)
{
    QString name = nameFromOutside(action.title.isEmpty() ? action.text : action.title);
    if (name.isEmpty()) name = localized(TOMELET_TEXT("Untitled"));
    const bool keepsExtension =
        recognisedExtensions().contains(lowerExtension(name)) && !tm_pathIsExcludedFromDisplay(u'/' + name);
    return keepsExtension ? name : name + QStringLiteral(".txt");
}

void addNote(const UrlAction &action, UrlActionShell &shell)
{
    if (action.text.isEmpty()) return shell.actionFailed(QStringLiteral("an empty text makes no document"));
    const QString book = bookFromOutside(action.parent);
    const QString path = writeFromOutside(noteName(action), book, action.text.toUtf8());
    if (path.isEmpty()) shell.actionFailed(QStringLiteral("nothing could be written in %1").arg(book));
    else shell.noteAdded(path);
}

void search(const UrlAction &action)
{
    notifications().postPath(QStringLiteral("TMLTNewBookSelectedNotification"), bookFromOutside(action.scope));
    notifications().post(QStringLiteral("TMStartSpotlightSearchNotification"), {{QStringLiteral("term"), action.term}});
}

bool standsThere(const QString &item)
{
    return itemExists(item) || itemExists(tm_pathWithoutAnchor(item));
}

// The path as it is written, decoded, and without what would be a query of the web.
QString existingItem(const QString &item)
{
    const qsizetype mark = item.indexOf(u'#');
    const QString path = item.left(mark);
    const QString fragment = mark < 0 ? QString() : item.mid(mark);
    for (const QString &form : {path, percentDecoded(path), percentDecoded(path.section(u'?', 0, 0))})
        if (const QString full = itemFromOutside(form + fragment); standsThere(full)) return full;
    return {};
}

QString itemToShow(const QString &item)
{
    if (const QString full = existingItem(item); !full.isEmpty()) return full;
    const QString lost = itemFromOutside(item);
    if (lost.isEmpty() || itemFromOutside(percentDecoded(item)).isEmpty()) return {};
    return tm_findAlternativePathExcludingOrPrompt(lost, {}, {});
}

void show(const UrlAction &action, UrlActionShell &shell)
{
    const QString path = itemToShow(action.item);
    if (path.isEmpty()) return shell.actionFailed(QStringLiteral("%1 does not exist").arg(percentDecoded(action.item)));
    if (!shell.bringToFront(path)) notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), path);
}

// -- the others -------------------------------------------------------------------------------------------------------

void refuse(const UrlAction &action, UrlActionShell &shell)
{
    shell.showAlert(localized(TOMELET_TEXT("Unsupported URL Scheme")) + QStringLiteral("\n\"%1\"").arg(action.host),
                    localized(TOMELET_TEXT("This scheme is intended for Tomelet on an iPad or iPhone.")));
}

} // namespace

void handleTomeletURL(const QString &url, UrlActionShell &shell)
{
    const auto action = parseUrlAction(url);
    if (!action) return fail(QStringLiteral("no TM scheme: %1").arg(url), shell);
    if (!rootIsInForce()) return fail(QStringLiteral("there is no notebook for %1").arg(url), shell);
    switch (action->kind) {
    case UrlAction::Show: return show(*action, shell);
    case UrlAction::Grab: return grab(*action, shell);
    case UrlAction::AddNote: return addNote(*action, shell);
    case UrlAction::Search: return search(*action);
    case UrlAction::Unsupported: return refuse(*action, shell);
    case UrlAction::LogOnly: return logLine(QStringLiteral("TM URL action: %1").arg(url));
    }
}

} // namespace tomelet
