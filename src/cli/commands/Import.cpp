// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet import FILE... [--book BOOK]`: files of other programs as documents.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/TerminalProgress.h"
#include "cli/commands/AllCommands.h"

#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "import/Imports.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonArray>

namespace tomelet::cli {

namespace {

// A file from outside is named as the shell sees it, an item of the notebook as everywhere.
QString pathOfFile(const QString &argument)
{
    const QFileInfo here(argument);
    return here.isFile() ? here.absoluteFilePath() : itemPath(argument);
}

QString whyNot(const QString &path)
{
    if (!importableExtensions().contains(lowerExtension(path)))
        return QStringLiteral("%1 is none of: %2").arg(path, importableExtensions().join(QStringLiteral(", ")));
    if (!QFileInfo(path).isFile()) return QStringLiteral("%1 is no file").arg(path);
    return QFileInfo(path).isReadable() ? QString() : QStringLiteral("%1 cannot be read").arg(path);
}

} // namespace

int runImport(const Invocation &call)
{
    const QCommandLineOption book(QStringLiteral("book"),
                                  QStringLiteral("The book that takes them; that of each file where none is given."),
                                  QStringLiteral("book"));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Makes documents of exported notes, web archives and outlines, and prints their paths."));
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("The files."), QStringLiteral("FILE..."));
    parser.addOption(book);
    if (const auto status = parse(call, parser)) return *status;
    if (parser.positionalArguments().isEmpty()) return wrongUsage(call, QStringLiteral("import takes files"));
    if (const auto status = openNotebook(call)) return *status;
    const QString target = parser.isSet(book) ? itemPath(parser.value(book)) : QString();
    if (!target.isEmpty() && !pathIsPlainBook(target)) return fail(QStringLiteral("%1 is no book").arg(target));

    int status = Done;
    QJsonArray documents;
    for (const QString &argument : parser.positionalArguments()) {
        const QString path = pathOfFile(argument);
        const QString reason = whyNot(path);
        const Imported imported = reason.isEmpty() ? importFile(path, target.isEmpty() ? parentPath(path) : target,
                                                                terminalProgress(call, QStringLiteral("Importing")))
                                                   : Imported{{}, reason};
        if (!imported.fault.isEmpty()) status = fail(imported.fault);
        for (const QString &document : imported.documents) {
            documents.append(document);
            if (!call.json) writeLine(document);
        }
    }
    if (call.json) writeJson(documents);
    drainPendingWork();
    return status;
}

} // namespace tomelet::cli
