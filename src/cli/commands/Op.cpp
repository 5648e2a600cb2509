// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet op NAME RECEIVER [ARG...]`: one operation by its name. `tomelet ops`: many, a line of JSON each.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "cli/op/Call.h"
#include "cli/op/Registry.h"
#include "foundation/Conversions.h"
#include "foundation/Platform.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tomelet::cli {

namespace {

void listOperations(const Invocation &call)
{
    QJsonArray all;
    for (const Operation &operation : registry().all()) {
        if (call.json)
            all.append(QJsonObject{{QStringLiteral("name"), operation.name},
                                   {QStringLiteral("parameters"), QJsonArray::fromStringList(operation.parameters)}});
        else writeLine(operation.name + QStringLiteral("(%1)").arg(operation.parameters.join(QStringLiteral(", "))));
    }
    if (call.json) writeJson(all);
}

void printResult(const Invocation &call, const QVariant &value)
{
    if (call.json) return writeJson(jsonFromVariant(value));
    switch (value.typeId()) {
    case QMetaType::QString: return writeText(value.toString());
    case QMetaType::QDateTime: return writeText(isoFromDate(value.toDateTime()));
    default: return writeJson(jsonFromVariant(value));
    }
}

// Where a text is wanted, a number, a list or a truth value stays the word that was typed.
QVariant argumentFrom(const QString &word, bool textIsWanted)
{
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray('[' + word.toUtf8() + ']'));
    if (document.array().size() != 1) return word;
    const QJsonValue value = document.array().first();
    return textIsWanted && !value.isString() && !value.isNull() ? QVariant(word) : variantFromJson(value);
}

} // namespace

int runOp(const Invocation &call)
{
    if (call.args.value(0) == u"--list") {
        listOperations(call);
        return Done;
    }
    if (call.args.isEmpty() || call.args.first() == u"--help") {
        writeLine(QStringLiteral("Usage: tomelet op NAME RECEIVER [ARG...]\n       tomelet op --list\n\n"
                                 "Calls one operation and prints its result. RECEIVER \"-\" reads standard input,\n"
                                 "\"@FILE\" a file. Each ARG is JSON, or else a plain string."));
        return call.args.isEmpty() ? WrongUsage : Done;
    }
    takeOptions(call);
    const QString name = call.args.first();
    const Operation *operation = registry().find(name, call.args.size() - 1);
    QVariantList arguments;
    for (const QString &word : call.args.mid(1)) {
        const bool isReceiver = arguments.isEmpty() && operation && operation->receiver != Receiver::None;
        const bool textIsWanted = operation && operation->takesText.value(arguments.size());
        arguments.append(isReceiver ? QVariant(word) : argumentFrom(word, textIsWanted));
    }
    const CallResult result = callOperation(name, arguments, true);
    drainPendingWork();
    if (result.kind == CallResult::Failure) return fail(result.message);
    if (result.kind != CallResult::Ok) return wrongUsage(call, result.message);
    if (result.hasValue) printResult(call, result.value);
    return Done;
}

// -- many -------------------------------------------------------------------------------------------------------------

namespace {

QJsonObject error(const QString &message)
{
    return {{QStringLiteral("error"), message}};
}

QJsonObject result(const QVariant &value)
{
    return {{QStringLiteral("result"), jsonFromVariant(value)}};
}

// The lines that speak to the process itself; nothing for every other name.
std::optional<QJsonObject> runDirective(const QString &name, const QVariantList &arguments)
{
    if (name == u"$set" && arguments.size() == 2) settings().setObject(arguments[0].toString(), arguments[1]);
    else if (name == u"$unset" && arguments.size() == 1) settings().remove(arguments[0].toString());
    else if (name == u"$now" && arguments.size() == 1) {
        const QDateTime moment = dateFromIso(arguments[0].toString());
        if (!moment.isValid()) return error(QStringLiteral("$now takes an ISO 8601 date"));
        platform().clock.fix(moment);
    } else if (name == u"$drain" && arguments.isEmpty()) drainPendingWork();
    else if (name.startsWith(u'$')) return error(QStringLiteral("$set KEY VALUE, $unset KEY, $now DATE or $drain"));
    else return std::nullopt;
    return result({});
}

QJsonObject runLine(const QByteArray &line)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(line, &parseError);
    if (!document.isArray() || document.array().isEmpty() || !document.array().first().isString())
        return error(QStringLiteral("a line is a JSON array that begins with a name"));
    QVariantList arguments = variantFromJson(document.array()).toList();
    const QString name = arguments.takeFirst().toString();
    if (const auto done = runDirective(name, arguments)) return *done;
    const CallResult outcome = callOperation(name, arguments, false);
    return outcome.kind == CallResult::Ok ? result(outcome.value) : error(outcome.message);
}

} // namespace

int runOps(const Invocation &call)
{
    if (call.args.value(0) == u"--help") {
        writeLine(QStringLiteral("Usage: tomelet ops\n\nReads lines of JSON, [\"NAME\", RECEIVER, ARG...], and answers "
                                 "each with a line {\"result\": ...} or {\"error\": ...}.\n"
                                 "[\"$set\", KEY, VALUE] [\"$unset\", KEY] [\"$now\", DATE] [\"$drain\"]"));
        return Done;
    }
    if (!call.args.isEmpty()) return wrongUsage(call, QStringLiteral("ops takes no arguments"));
    takeOptions(call);
    releaseWarnings();
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) return fail(QStringLiteral("standard input cannot be read"));
    for (QByteArray line = input.readLine(); !line.isEmpty(); line = input.readLine()) {
        if (line.trimmed().isEmpty()) continue;
        writeBytes(QJsonDocument(runLine(line)).toJson(QJsonDocument::Compact) + '\n');
        std::fflush(stdout);
    }
    drainPendingWork();
    return Done;
}

} // namespace tomelet::cli
