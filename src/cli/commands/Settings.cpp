// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet settings list | get KEY | set KEY VALUE | unset KEY`
#include "cli/Invocation.h"
#include "cli/commands/AllCommands.h"

#include "foundation/Conversions.h"
#include "foundation/Directories.h"
#include "foundation/Settings.h"

#include <QCommandLineParser>
#include <QJsonObject>

namespace tomelet::cli {

namespace {

void printAll(const Invocation &call, const Settings &settings)
{
    QJsonObject all;
    for (const QString &key : settings.keys()) {
        if (call.json) all.insert(key, jsonFromVariant(settings.object(key)));
        else writeLine(key + QStringLiteral(" = ") + jsonTextFromVariant(settings.object(key)));
    }
    if (call.json) writeJson(all);
}

void printOne(const Invocation &call, const QVariant &value)
{
    if (call.json) writeJson(jsonFromVariant(value));
    else if (value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QVariantMap)
        writeLine(jsonTextFromVariant(value));
    else if (value.typeId() == QMetaType::Bool)
        writeLine(value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
    else if (value.isValid()) writeLine(textFromVariant(value));
}

int store(Settings &settings, const QString &key, const QVariant &value)
{
    settings.setObject(key, value);
    return settings.synchronize() ? Done : fail(QStringLiteral("the setting %1 could not be stored").arg(key));
}

} // namespace

int runSettings(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Reads and changes the flat settings store."));
    parser.addPositionalArgument(QStringLiteral("action"), QStringLiteral("list, get KEY, set KEY VALUE, unset KEY"),
                                 QStringLiteral("list|get|set|unset"));
    parser.addPositionalArgument(QStringLiteral("key"), QStringLiteral("The setting's name."), QStringLiteral("[KEY]"));
    parser.addPositionalArgument(QStringLiteral("value"), QStringLiteral("JSON or a plain string."),
                                 QStringLiteral("[VALUE]"));
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    if (const auto status = parse(call, parser)) return *status;

    const QStringList words = parser.positionalArguments();
    const QString action = words.value(0);
    const auto settings = openSettings(configDirectory() + QStringLiteral("/settings.ini"));
    if (action == QLatin1StringView("list") && words.size() == 1) printAll(call, *settings);
    else if (action == QLatin1StringView("get") && words.size() == 2) printOne(call, settings->object(words[1]));
    else if (action == QLatin1StringView("set") && words.size() == 3)
        return store(*settings, words[1], variantFromJsonText(words[2]));
    else if (action == QLatin1StringView("unset") && words.size() == 2) return store(*settings, words[1], {});
    else return wrongUsage(call, QStringLiteral("settings list | get KEY | set KEY VALUE | unset KEY"));
    return Done;
}

} // namespace tomelet::cli
