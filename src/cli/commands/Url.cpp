// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet url URL`: carries out a tomelet URL and prints what it leads to.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/Searching.h"
#include "cli/UrlShell.h"
#include "cli/commands/AllCommands.h"
#include "organising/search/SearchResults.h"

#include <QCommandLineParser>

namespace tomelet::cli {

int runUrl(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Carries out a tomelet URL. show prints the path of the item, "
                                                    "addnote and grab that of the new document, search "
                                                    "the documents found."));
    parser.addPositionalArgument(QStringLiteral("url"), QStringLiteral("The URL."), QStringLiteral("URL"));
    if (const auto status = parse(call, parser)) return *status;
    if (parser.positionalArguments().size() != 1) return wrongUsage(call, QStringLiteral("url takes one URL"));
    if (const auto status = openNotebook(call)) return *status;

    const UrlResult result = carryOut(parser.positionalArguments().first());
    if (!result.failure.isEmpty()) return fail(result.failure);
    if (!result.alert.isEmpty()) return fail(result.alert);
    if (result.term) searchAndPrint(call, *result.term, searchModeOfSettings(), searchScope(result.book));
    for (const QString &path : {result.shown, result.made}) {
        if (path.isEmpty()) continue;
        if (call.json) writeJson(path);
        else writeLine(path);
    }
    return Done;
}

} // namespace tomelet::cli
