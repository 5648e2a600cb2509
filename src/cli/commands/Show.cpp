// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet show ITEM`: the complete page that the formatted view shows, of any kind of document.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "conversion/Page.h"
#include "editor/FormattedPage.h"
#include "foundation/Folder.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace tomelet::cli {

int runShow(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints the complete page of a document."));
    parser.addPositionalArgument(QStringLiteral("item"), QStringLiteral("The document."), QStringLiteral("ITEM"));
    if (const auto status = parse(call, parser)) return *status;
    if (parser.positionalArguments().size() != 1) return wrongUsage(call, QStringLiteral("show takes one document"));
    if (const auto status = openNotebook(call)) return *status;
    const QString path = itemPath(parser.positionalArguments().first());
    if (!itemExists(path)) return fail(QStringLiteral("%1 does not exist").arg(path));
    if (isFolder(path)) return fail(QStringLiteral("%1 is a book, not a document").arg(path));
    if (!QFileInfo(path).isReadable()) return fail(QStringLiteral("%1 cannot be read").arg(path));
    const QString page = formattedPageFor(path).html;
    writeText(page.isEmpty() ? pageForItem(path) : page); // an address to be loaded has no page of ours
    return Done;
}

} // namespace tomelet::cli
