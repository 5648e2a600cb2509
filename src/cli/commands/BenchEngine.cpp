// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet bench-engine [--repeat N] [--extensions N] FILE...`: how long the engine takes for the files, in
// memory.
#include "cli/Invocation.h"
#include "cli/commands/AllCommands.h"
#include "cli/commands/EngineOptions.h"

#include "engine/Engine.h"

#include <QCommandLineParser>
#include <QJsonObject>

#include <chrono>

namespace tomelet::cli {

namespace {

using namespace tomelet::engine;

void convertOnce(const QByteArray &text, uint32_t extensions)
{
    d_string *source = d_string_new("");
    d_string_append_c_array(source, text.constData(), static_cast<size_t>(text.size()));
    d_string_free(mmd_d_string_convert(source, extensions, FORMAT_HTML, LANG_EN, ""), true);
    d_string_free(source, true);
}

double secondsFor(const QList<QByteArray> &texts, int repeat, uint32_t extensions)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < repeat; ++i)
        for (const QByteArray &text : texts) convertOnce(text, extensions);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int runBenchEngine(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Converts files in memory and prints the time it took."));
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("What to convert."), QStringLiteral("FILE..."));
    parser.addOption(
        {QStringLiteral("repeat"), QStringLiteral("How many times."), QStringLiteral("N"), QStringLiteral("1")});
    addExtensionsOption(parser);
    if (const auto status = parse(call, parser)) return *status;

    const auto extensions = extensionsOption(parser, defaultExtensions);
    const int repeat = parser.value(QStringLiteral("repeat")).toInt();
    if (!extensions) return wrongUsage(call, QStringLiteral("--extensions needs a number"));
    if (repeat < 1) return wrongUsage(call, QStringLiteral("--repeat needs a number from 1 on"));
    if (parser.positionalArguments().isEmpty()) return wrongUsage(call, QStringLiteral("no file is given"));

    QList<QByteArray> texts;
    qint64 bytes = 0;
    for (const QString &name : parser.positionalArguments()) {
        QString error;
        const auto text = readInput(name, error);
        if (!text) return fail(error);
        bytes += text->size();
        texts << *text;
    }
    const double seconds = secondsFor(texts, repeat, *extensions);
    writeJson(QJsonObject{{QStringLiteral("bytes"), bytes * repeat},
                          {QStringLiteral("seconds"), seconds},
                          {QStringLiteral("documents"), texts.size() * repeat}});
    return Done;
}

} // namespace tomelet::cli
