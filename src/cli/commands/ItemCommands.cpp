// SPDX-License-Identifier: GPL-3.0-or-later
// `book`, `mv`, `cp`, `duplicate`, `rm` and `undo-rm`: items with all that travels along.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Deletion.h"
#include "library/ItemOperations.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"

#include <QCommandLineParser>

namespace tomelet::cli {

namespace {

int finish(const QString &path)
{
    drainPendingWork();
    writeLine(path);
    return Done;
}

// The words behind the command when their number is right and the notebook is open.
std::optional<int> takeWords(const Invocation &call, QCommandLineParser &parser, qsizetype least, qsizetype most,
                             const char *usage)
{
    parser.addPositionalArgument(QStringLiteral("args"), QString(), QString::fromLatin1(usage));
    if (const auto status = parse(call, parser)) return status;
    const qsizetype count = parser.positionalArguments().size();
    if (count < least || count > most)
        return wrongUsage(call, QStringLiteral("%1 %2").arg(call.command, QString::fromLatin1(usage)));
    return openNotebook(call);
}

using Transfer = bool (*)(const QString &, const QString &);

int transfer(const Invocation &call, const char *description, const char *verb, Transfer operation)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(description));
    if (const auto status = takeWords(call, parser, 2, 2, "FROM TO")) return *status;
    const QString from = itemPath(parser.positionalArguments()[0]);
    QString to = itemPath(parser.positionalArguments()[1]);
    if (!itemExists(from)) return fail(QStringLiteral("%1 does not exist").arg(from));
    // Onto a book means into it, unless the book itself only gets another spelling.
    if (pathIsPlainBook(to) && to != from && to.compare(from, Qt::CaseInsensitive) != 0)
        to = joinPath(to, lastPathComponent(from));
    if (itemExists(to) && to.compare(from, Qt::CaseInsensitive) != 0)
        return fail(QStringLiteral("an item with name \"%1\" already exists").arg(lastPathComponent(to)));
    if (!operation(from, to))
        return fail(QStringLiteral("%1 could not be %2 to %3").arg(from, QLatin1StringView(verb), to));
    return finish(to);
}

} // namespace

int runMv(const Invocation &call)
{
    return transfer(call, "Moves or renames an item with all that belongs to it.", "moved", tm_moveItemToPath);
}

int runCp(const Invocation &call)
{
    return transfer(call, "Copies an item with its properties, pictures and task.", "copied", tm_copyItemToPath);
}

int runBook(const Invocation &call)
{
    const QCommandLineOption in(QStringLiteral("in"), QStringLiteral("The book to make it in."),
                                QStringLiteral("book"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Makes a book."));
    parser.addOption(in);
    if (const auto status = takeWords(call, parser, 1, 1, "NAME")) return *status;
    const QString parent = itemPath(parser.value(in));
    const QString name = tm_escapeIllegalCharacters(parser.positionalArguments().first());
    if (!pathIsPlainBook(parent)) return fail(QStringLiteral("%1 is no book").arg(parent));
    if (tm_fileExistsAtPathIsDirectory(joinPath(parent, name)).exists)
        return fail(QStringLiteral("an item with name \"%1\" already exists").arg(name));
    const QString path = makeNewBook(parent, name);
    if (path.isEmpty()) return fail(QStringLiteral("the book %1 could not be made in %2").arg(name, parent));
    return finish(path);
}

int runDuplicate(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Copies an item beside itself."));
    if (const auto status = takeWords(call, parser, 1, 1, "ITEM")) return *status;
    const QString path = itemPath(parser.positionalArguments().first());
    if (!itemExists(path)) return fail(QStringLiteral("%1 does not exist").arg(path));
    const QString copy = pathForDuplicate(path);
    if (!tm_duplicateItemAtPath(path)) return fail(QStringLiteral("%1 could not be duplicated").arg(path));
    return finish(copy);
}

int runRm(const Invocation &call)
{
    const QCommandLineOption permanent(QStringLiteral("permanent"), QStringLiteral("Not into the trash: for good."));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Moves items to the trash."));
    parser.addOption(permanent);
    if (const auto status = takeWords(call, parser, 1, 100000, "ITEM...")) return *status;
    QStringList paths;
    for (const QString &word : parser.positionalArguments()) {
        const QString path = itemPath(word);
        if (!itemExists(path)) return fail(QStringLiteral("%1 does not exist").arg(path));
        if (path == tomeletRoot()) return fail(QStringLiteral("the notebook itself is not removed"));
        paths.append(path);
    }
    const Deletion deletion = performDeleteSelectedItems(paths, parser.isSet(permanent));
    drainPendingWork();
    storeLastDeletion(deletion.records);
    if (!deletion.failed.isEmpty())
        return fail(QStringLiteral("%1 could not be deleted").arg(deletion.failed.join(QStringLiteral(", "))));
    return Done;
}

int runUndoRm(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Brings back what the last rm moved to the trash."));
    if (const auto status = takeWords(call, parser, 0, 0, "")) return *status;
    const QList<DeletionRecord> records = lastDeletion();
    if (records.isEmpty()) return fail(QStringLiteral("there is no deletion to undo"));
    const QList<DeletionRecord> left = undoLastDelete(records);
    drainPendingWork();
    storeLastDeletion(left);
    if (!left.isEmpty()) return fail(QStringLiteral("%1 could not be brought back").arg(left.first().orgURL));
    for (const DeletionRecord &record : records) writeLine(record.orgURL);
    return Done;
}

} // namespace tomelet::cli
