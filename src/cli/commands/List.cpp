// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet list [BOOK]`: the rows of a book or smart book in its order.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"
#include "library/OutlineItem.h"
#include "organising/lists/DocumentList.h"

#include <QCommandLineParser>
#include <QJsonArray>

namespace tomelet::cli {

namespace {

int smartTypeOf(const QString &word)
{
    static const struct
    {
        const char *word;
        int type;
    } types[] = {
        {"due", DueTasksBook},
        {"contexts", ContextsBook},
        {"favorites", FavoritesBook},
        {"inbox", InboxBook},
        {"tasklists", AllTaskListsBook},
        {"recent", RecentItemsBook},
        {"modified", RecentlyModifiedBook},
        {"search", SearchResultsBook},
        {"conflicts", ConflictsBook},
    };
    for (const auto &row : types)
        if (word == QLatin1StringView(row.word)) return row.type;
    return 0;
}

void printRow(const QVariantMap &row)
{
    const QString icon = row.value(QStringLiteral("taskIcon")).toString();
    const bool pinned =
        row.value(QStringLiteral("pinnedSequence")).toLongLong() != std::numeric_limits<qlonglong>::max();
    QString line = row.value(QStringLiteral("title")).toString();
    if (pinned) line += QStringLiteral("\tpinned");
    if (!icon.isEmpty()) line += u'\t' + icon;
    writeLine(line);
}

int printHierarchy(const Invocation &call, const QString &book, bool paths)
{
    const QStringList all = tm_sortedListOfAllItemsInHierarchy(book);
    if (call.json) writeJson(QJsonArray::fromStringList(all));
    else
        for (const QString &path : all) writeLine(paths ? path : tm_normalizedPath(path));
    return Done;
}

} // namespace

int runList(const Invocation &call)
{
    const QCommandLineOption smart(QStringLiteral("smart"), QStringLiteral("A smart book in place of a book."),
                                   QStringLiteral("due|contexts|favorites|inbox|tasklists|recent|modified|search|"
                                                  "conflicts"));
    const QCommandLineOption context(QStringLiteral("context"),
                                     QStringLiteral("Items with this context; given more than once, with all of them."),
                                     QStringLiteral("word"));
    const QCommandLineOption sort(QStringLiteral("sort"), QStringLiteral("Order of this call alone."),
                                  QStringLiteral("title|creationDate|modDate|DueDate|custom"));
    const QCommandLineOption descending(QStringLiteral("descending"), QStringLiteral("The other way round."));
    const QCommandLineOption filter(QStringLiteral("filter"), QStringLiteral("Only names that hold the text."),
                                    QStringLiteral("text"));
    const QCommandLineOption all(QStringLiteral("all"),
                                 QStringLiteral("The documents of the books below as well, book by book."));
    const QCommandLineOption paths(QStringLiteral("paths"), QStringLiteral("Full paths in place of names."));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints the rows of a book or smart book in its order."));
    parser.addOptions({smart, context, sort, descending, filter, all, paths});
    parser.addPositionalArgument(QStringLiteral("book"), QStringLiteral("The book; the root where none is given."),
                                 QStringLiteral("[BOOK]"));
    if (const auto status = parse(call, parser)) return *status;
    if (parser.positionalArguments().size() > 1) return wrongUsage(call, QStringLiteral("list takes one book"));
    static const QStringList orders{QStringLiteral("title"), QStringLiteral("creationDate"), QStringLiteral("modDate"),
                                    QStringLiteral("DueDate"), QStringLiteral("custom")};
    if (parser.isSet(sort) && !orders.contains(parser.value(sort)))
        return wrongUsage(call, QStringLiteral("--sort takes one of %1").arg(orders.join(QStringLiteral(", "))));
    if (const auto status = openNotebook(call)) return *status;

    ListSource source{itemPath(parser.positionalArguments().value(0)), OrdinaryBook, parser.values(context)};
    if (parser.isSet(smart)) {
        source.smartType = smartTypeOf(parser.value(smart));
        if (source.smartType == OrdinaryBook)
            return wrongUsage(call, QStringLiteral("there is no smart book \"%1\"").arg(parser.value(smart)));
    } else if (!source.contexts.isEmpty()) source.smartType = ContextBook;
    else if (!pathIsPlainBook(source.book)) return fail(QStringLiteral("%1 is no book").arg(source.book));

    if (parser.isSet(all)) return printHierarchy(call, source.book, parser.isSet(paths));
    TMLTDocumentListViewController list;
    list.setSource(source);
    if (parser.isSet(sort)) list.sortOrder = parser.value(sort);
    if (parser.isSet(descending)) list.sortAscending = false;
    list.searchFilter = parser.value(filter);
    list.getDocumentsInFolder();

    QJsonArray rows;
    for (const QVariantMap &row : list.rows()) {
        if (call.json) rows.append(jsonFromVariant(row));
        else if (parser.isSet(paths)) writeLine(row.value(QStringLiteral("path")).toString());
        else printRow(row);
    }
    if (call.json) writeJson(rows);
    return Done;
}

} // namespace tomelet::cli
