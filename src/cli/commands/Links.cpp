// SPDX-License-Identifier: GPL-3.0-or-later
// `links`, `backlinks`, `check-links` and `refresh-links`.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/TerminalProgress.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "organising/links/DocumentReferences.h"
#include "organising/links/LinkWalks.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

namespace tomelet::cli {

namespace {

void writePaths(const Invocation &call, const QStringList &paths)
{
    if (call.json) return writeJson(QJsonArray::fromStringList(paths));
    for (const QString &path : paths) writeLine(path);
}

// Both commands name one item and print paths.
int runOnItem(const Invocation &call, const QString &description, QStringList (*pathsOf)(const QString &))
{
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addPositionalArgument(QStringLiteral("item"), QStringLiteral("The item."));
    if (const auto status = parse(call, parser)) return *status;
    if (parser.positionalArguments().size() != 1) return wrongUsage(call, QStringLiteral("one item is needed"));
    if (const auto status = openNotebook(call)) return *status;
    const QString path = itemPath(parser.positionalArguments().constFirst());
    if (!itemExists(path)) return fail(QStringLiteral("%1 does not exist").arg(path));
    writePaths(call, pathsOf(path));
    return Done;
}

} // namespace

int runLinks(const Invocation &call)
{
    return runOnItem(call, QStringLiteral("Prints the items that a document refers to."),
                     tm_verifiedArrayOfReferencedDocuments);
}

int runBacklinks(const Invocation &call)
{
    return runOnItem(
        call, QStringLiteral("Prints the documents that refer to an item, as they are stored with it."),
        [](const QString &item) { return tm_propertyForKey(item, QStringLiteral("Backlinks")).toStringList(); });
}

int runCheckLinks(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints the items whose stored path is not their own, with that path."));
    parser.addOptions({{QStringLiteral("repair"), QStringLiteral("Make the links point to the right items again.")},
                       {QStringLiteral("remove"), QStringLiteral("Remove the backlinks of all items.")}});
    if (const auto status = parse(call, parser)) return *status;
    const bool repair = parser.isSet(QStringLiteral("repair"));
    const bool remove = parser.isSet(QStringLiteral("remove"));
    if (!parser.positionalArguments().isEmpty() || (repair && remove))
        return wrongUsage(call, QStringLiteral("check-links takes one of --repair and --remove, or nothing"));
    if (const auto status = openNotebook(call)) return *status;
    const BacklinkCheck check = remove ? BacklinkCheck::Remove : repair ? BacklinkCheck::Repair : BacklinkCheck::Find;
    const CheckedBacklinks checked =
        tm_findBrokenBacklinks(tomeletRoot(), check, terminalProgress(call, QStringLiteral("Checking links")));
    drainPendingWork();
    QJsonArray all;
    for (qsizetype i = 0; i < checked.mismatches.size(); ++i) {
        if (!call.json) writeLine(checked.mismatches[i] + u'\t' + checked.stalePaths[i]);
        else
            all.append(QJsonObject{{QStringLiteral("path"), checked.mismatches[i]},
                                   {QStringLiteral("ReferencedPath"), checked.stalePaths[i]}});
    }
    if (call.json) writeJson(all);
    note(call, checked.message());
    return Done;
}

int runRefreshLinks(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Reads all documents and stores with each item which of them refer to it."));
    if (const auto status = parse(call, parser)) return *status;
    if (!parser.positionalArguments().isEmpty())
        return wrongUsage(call, QStringLiteral("refresh-links takes no arguments"));
    if (const auto status = openNotebook(call)) return *status;
    if (!settings().boolean(QStringLiteral("manageLinks")))
        return fail(QStringLiteral("links are not managed; `tomelet settings set manageLinks true` turns it on"));
    const RefreshedLinks found = tm_refreshAllBacklinksStartingAtReferenceDate(
        tomeletRoot(), false, terminalProgress(call, QStringLiteral("Refreshing backlinks")));
    drainPendingWork();
    if (call.json)
        writeJson(QJsonObject{{QStringLiteral("links"), static_cast<qint64>(found.links)},
                              {QStringLiteral("documents"), static_cast<qint64>(found.documents)}});
    note(call, found.message());
    return Done;
}

} // namespace tomelet::cli
