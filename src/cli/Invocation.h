// SPDX-License-Identifier: GPL-3.0-or-later
// One call of the command line: its global options, its arguments, and the ways in which a command answers.
#pragma once

#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <optional>

class QCommandLineParser;

namespace tomelet::cli {

/// Exit statuses of every command.
enum ExitStatus : int { Done = 0, Failed = 1, WrongUsage = 2 };

/// What stands before and behind the command's name.
struct Invocation
{
    QString command;
    QStringList args;           ///< arguments of the command, global options taken out
    QString root;               ///< --root, empty when not given
    bool json = false;          ///< --json
    bool quiet = false;         ///< --quiet
    std::optional<bool> answer; ///< --yes / --no: what every question is answered with
};

/// Writes text to standard output as UTF-8, just as it is.
void writeText(const QString &text);
/// Writes bytes to standard output, just as they are.
void writeBytes(const QByteArray &bytes);
/// Writes text and a newline.
void writeLine(const QString &text);
/// Writes one JSON value and a newline: strings, numbers and null included.
void writeJson(const QJsonValue &value);

/// Keeps warnings back until the command ends, so that a failure can name them as its reason.
void holdWarnings();
/// Writes the warnings held back so far and lets later ones through at once.
void releaseWarnings();
/// Writes "tomelet: message" to standard error, with the warnings held back as the reason; one line, whatever names
/// stand in it. Returns Failed.
int fail(const QString &message);
/// Writes the message and a hint to --help to standard error; returns WrongUsage.
int wrongUsage(const Invocation &call, const QString &message);
/// A message or progress for the person at the terminal: standard error, silent with --quiet.
void note(const Invocation &call, const QString &message);

/// Parses call.args with the command's own options. Gives the status to end with when the arguments are wrong or
/// help was asked for (help goes to standard output), nothing when the command may go on.
std::optional<int> parse(const Invocation &call, QCommandLineParser &parser);

/// Reads all of standard input.
QByteArray readStandardInput();

} // namespace tomelet::cli
