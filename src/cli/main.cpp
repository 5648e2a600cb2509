// SPDX-License-Identifier: GPL-3.0-or-later
// The program `tomelet`: reads the global options, finds the command in the table and runs it.
#include "cli/Commands.h"
#include "cli/Invocation.h"
#include "foundation/Log.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>

using namespace tomelet::cli;

namespace {

void printHelp()
{
    writeLine(QStringLiteral("Usage: tomelet [--root DIR] [--json] [--quiet] [--yes|--no] COMMAND [ARGS]\n\n"
                             "A notebook of ordinary files: what stands in the folder is all there is.\n\n"
                             "Commands:"));
    for (const Command &command : commands())
        writeLine(QStringLiteral("  %1 %2")
                      .arg(QLatin1StringView(command.name), -14)
                      .arg(QLatin1StringView(command.summary)));
    writeLine(QStringLiteral("\n`tomelet COMMAND --help` tells more about one."));
}

const Command *findCommand(const QString &name)
{
    const auto all = commands();
    const auto found = std::find_if(
        all.begin(), all.end(), [&name](const Command &command) { return name == QLatin1StringView(command.name); });
    return found == all.end() ? nullptr : &*found;
}

// Takes --root, --json, --quiet, --yes and --no off the front; false when --root lacks its folder.
bool takeGlobalOptions(QStringList &words, Invocation &call)
{
    while (!words.isEmpty() && words.first().startsWith(u'-')) {
        const QString word = words.first();
        if (word == QLatin1StringView("--json")) call.json = true;
        else if (word == QLatin1StringView("--quiet")) call.quiet = true;
        else if (word == QLatin1StringView("--yes")) call.answer = true;
        else if (word == QLatin1StringView("--no")) call.answer = false;
        else if (word.startsWith(QLatin1StringView("--root="))) call.root = word.mid(7);
        else if (word == QLatin1StringView("--root")) {
            if (words.size() < 2) return false;
            words.removeFirst();
            call.root = words.first();
        } else break;
        words.removeFirst();
    }
    return true;
}

// The answer may stand behind the command as well; what `op` is given is its own.
void takeAnswer(QStringList &words, Invocation &call)
{
    words.removeIf([&call](const QString &word) {
        if (word == QLatin1StringView("--yes")) call.answer = true;
        else if (word == QLatin1StringView("--no")) call.answer = false;
        else return false;
        return true;
    });
}

// What the toolkit has to say is for whoever reads the log, not for a script that reads standard error.
void logToolkitMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    tomelet::logLine(message);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 2 && qstrcmp(argv[1], "--version") == 0) {
        std::puts("tomelet " TOMELET_VERSION);
        return Done;
    }
    qInstallMessageHandler(logToolkitMessage);
    QCoreApplication application(argc, argv);
    Invocation call;
    QStringList words = application.arguments().mid(1);
    if (!takeGlobalOptions(words, call)) return wrongUsage(call, QStringLiteral("--root needs a folder"));
    if (words.isEmpty() || words.first() == QLatin1StringView("--help") || words.first() == QLatin1StringView("-h")) {
        printHelp();
        return words.isEmpty() ? WrongUsage : Done;
    }
    if (words.first() == QLatin1StringView("--version")) {
        writeLine(QStringLiteral("tomelet " TOMELET_VERSION));
        return Done;
    }
    const Command *command = findCommand(words.first());
    call.command = words.takeFirst();
    if (!command) return wrongUsage({}, QStringLiteral("there is no command \"%1\"").arg(call.command));
    if (call.command != QLatin1StringView("op")) takeAnswer(words, call);
    call.args = words;
    holdWarnings();
    const int status = command->run(call);
    releaseWarnings();
    return status;
}
