// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Invocation.h"

#include "foundation/Log.h"

#include <QCommandLineParser>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>
#include <mutex>

namespace tomelet::cli {

void writeBytes(const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

void writeText(const QString &text)
{
    writeBytes(text.toUtf8());
}

void writeLine(const QString &text)
{
    writeText(text + u'\n');
}

void writeJson(const QJsonValue &value)
{
    // QJsonDocument holds only arrays and objects: a bare value travels in an array whose brackets are cut off.
    const QByteArray wrapped = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    writeBytes(wrapped.mid(1, wrapped.size() - 2) + '\n');
}

static void writeError(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fflush(stdout);
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
}

namespace {

// Warnings may come from any thread.
std::mutex heldMutex;
QStringList heldWarnings;

QStringList takeHeldWarnings()
{
    const std::lock_guard lock(heldMutex);
    return std::exchange(heldWarnings, {});
}

// Names may hold line ends; a message never does.
QString onOneLine(QString text)
{
    return text.replace(u'\n', QStringLiteral("\\n")).replace(u'\r', QStringLiteral("\\r"));
}

} // namespace

void holdWarnings()
{
    setWarningTaker([](const QString &line) {
        const std::lock_guard lock(heldMutex);
        heldWarnings.append(line);
    });
}

void releaseWarnings()
{
    setWarningTaker({});
    for (const QString &line : takeHeldWarnings()) writeError(QStringLiteral("tomelet: ") + onOneLine(line));
}

int fail(const QString &message)
{
    const QStringList reasons = takeHeldWarnings();
    const QString reason =
        reasons.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(reasons.join(QStringLiteral("; ")));
    writeError(onOneLine(QStringLiteral("tomelet: ") + message + reason));
    return Failed;
}

int wrongUsage(const Invocation &call, const QString &message)
{
    writeError(QStringLiteral("tomelet: ") + message);
    writeError(QStringLiteral("Try: tomelet %1--help").arg(call.command.isEmpty() ? QString() : call.command + u' '));
    return WrongUsage;
}

void note(const Invocation &call, const QString &message)
{
    if (!call.quiet) writeError(message);
}

std::optional<int> parse(const Invocation &call, QCommandLineParser &parser)
{
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this help."));
    parser.addOption(help);
    if (!parser.parse(QStringList{QStringLiteral("tomelet ") + call.command} + call.args))
        return wrongUsage(call, parser.errorText());
    if (!parser.isSet(help)) return std::nullopt;
    // The parser names the program itself in its usage line; the command belongs behind it.
    writeText(parser.helpText().replace(QStringLiteral("[options]"), QStringLiteral("%1 [options]").arg(call.command)));
    return Done;
}

QByteArray readStandardInput()
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) return {};
    return input.readAll();
}

} // namespace tomelet::cli
