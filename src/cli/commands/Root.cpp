// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet root [DIR]`: which notebook is in force, or choosing one and setting it up.
#include "library/Root.h"
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/AppDelegate.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

namespace tomelet::cli {

static int chooseRoot(const QString &folder)
{
    const QString path = QDir(folder).absolutePath();
    if (!makeFolder(path) || !isFolder(path))
        return fail(QStringLiteral("%1 is no folder and cannot be made one").arg(folder));
    // The folder chosen is in force from here on, also where another was named for this call.
    platform().rootOverride.clear();
    AppShell noWindows;
    AppDelegate application(noWindows);
    application.tm_setRootToPath(path);
    drainPendingWork();
    if (!settings().synchronize()) return fail(QStringLiteral("the choice of %1 could not be stored").arg(path));
    // The rest of the set-up is done without it; what cannot be written there later says so by itself.
    if (!QFileInfo(path).isWritable())
        return fail(QStringLiteral("%1 is chosen, but nothing can be written there").arg(path));
    return Done;
}

int runRoot(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints the notebook's folder, or chooses DIR and sets it up."));
    parser.addPositionalArgument(QStringLiteral("dir"), QStringLiteral("The folder; made when missing."),
                                 QStringLiteral("[DIR]"));
    if (const auto status = parse(call, parser)) return *status;
    takeOptions(call);
    const QStringList words = parser.positionalArguments();
    if (words.size() > 1) return wrongUsage(call, QStringLiteral("root takes one folder"));
    if (words.size() == 1)
        return words[0].isEmpty() ? wrongUsage(call, QStringLiteral("root takes a folder")) : chooseRoot(words[0]);
    const QString stored = settings().string(QStringLiteral("TomeletFolder"));
    if (stored.isEmpty()) return fail(QStringLiteral("no notebook is chosen yet: tomelet root DIR chooses one"));
    if (call.json) writeJson(stored);
    else writeLine(stored);
    return Done;
}

} // namespace tomelet::cli
