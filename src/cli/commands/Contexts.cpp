// SPDX-License-Identifier: GPL-3.0-or-later
// `contexts` and `context add|remove|rename|delete|exclude|refresh|extract`.
#include "organising/contexts/Contexts.h"
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/TerminalProgress.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "organising/contexts/ContextStores.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

namespace tomelet::cli {

namespace {

const QString usage = QStringLiteral("context add ITEM WORD | remove ITEM WORD | rename WORD NEW | delete WORD | "
                                     "exclude WORD | refresh | extract");

int changeItem(const QString &action, const QString &item, const QString &word)
{
    const QString path = itemPath(item);
    if (!itemExists(path)) return fail(QStringLiteral("%1 does not exist").arg(path));
    if (action == u"add") {
        tm_setTag(path, word);
        // Nobody watches the property file here, so the list of contexts is brought in line at once.
        tm_collectTagsInPlist(path);
    } else {
        tm_clearTag(path, word);
    }
    return Done;
}

int changeContext(const Invocation &call, const QStringList &words)
{
    const QString action = words.value(0);
    if ((action == u"add" || action == u"remove") && words.size() == 3) return changeItem(action, words[1], words[2]);
    if (action == u"rename" && words.size() == 3) tm_renameTagTo(words[1], words[2]);
    else if (action == u"delete" && words.size() == 2) tm_renameTagTo(words[1], QString());
    else if (action == u"exclude" && words.size() == 2) tm_excludeTag(words[1]);
    else if (action == u"refresh" && words.size() == 1)
        note(call, QStringLiteral("read %1 property files")
                       .arg(tm_refreshContexts(terminalProgress(call, QStringLiteral("Refreshing contexts")))));
    else if (action == u"extract" && words.size() == 1)
        note(call,
             QStringLiteral("read %1 documents")
                 .arg(extractContextsFromDocuments(terminalProgress(call, QStringLiteral("Extracting contexts")))));
    else return wrongUsage(call, usage);
    return Done;
}

} // namespace

int runContexts(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints all contexts with the numbers of their items."));
    if (const auto status = parse(call, parser)) return *status;
    if (!parser.positionalArguments().isEmpty()) return wrongUsage(call, QStringLiteral("contexts takes no arguments"));
    if (const auto status = openNotebook(call)) return *status;
    QJsonArray all;
    for (const QString &word : tm_listOfAllAvailableTags()) {
        if (word == favoriteContext) continue;
        const qlonglong count = tm_numberOfItemsForTag(word);
        if (call.json) all.append(QJsonObject{{QStringLiteral("context"), word}, {QStringLiteral("items"), count}});
        else writeLine(word + u'\t' + QString::number(count));
    }
    if (call.json) writeJson(all);
    return Done;
}

int runContext(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Changes contexts: ") + usage);
    parser.addPositionalArgument(QStringLiteral("action"), QStringLiteral("What to do."),
                                 QStringLiteral("ACTION [ARGS]"));
    if (const auto status = parse(call, parser)) return *status;
    if (const auto status = openNotebook(call)) return *status;
    const int status = changeContext(call, parser.positionalArguments());
    drainPendingWork();
    return status;
}

} // namespace tomelet::cli
