// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet convert [FILE...] [--to FORMAT] [--from FORMAT] [--extensions N] [flags] [--language L] [-o FILE]`
#include "cli/Invocation.h"
#include "cli/commands/AllCommands.h"
#include "cli/commands/EngineOptions.h"

#include "engine/Engine.h"
#include "engine/Transclude.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <span>

namespace tomelet::cli {

namespace {

using namespace tomelet::engine;

struct Named
{
    const char *name;
    uint32_t value;
    const char *suffix = ""; ///< of result files
};

constexpr Named outputFormats[] = {
    {"html", FORMAT_HTML, ".html"},    {"epub", FORMAT_EPUB, ".epub"},    {"latex", FORMAT_LATEX, ".tex"},
    {"beamer", FORMAT_BEAMER, ".tex"}, {"memoir", FORMAT_MEMOIR, ".tex"}, {"opml", FORMAT_OPML, ".opml"},
    {"itmz", FORMAT_ITMZ, ".itmz"},    {"markdown", FORMAT_MMD, ".md"},
};

// By the extension that makes the engine read the format.
constexpr Named inputFormats[] = {{"markdown", 0}, {"opml", EXT_PARSE_OPML}, {"itmz", EXT_PARSE_ITMZ}};

constexpr Named languages[] = {{"en", LANG_EN}, {"es", LANG_ES}, {"de", LANG_DE}, {"fr", LANG_FR},
                               {"nl", LANG_NL}, {"sv", LANG_SV}, {"he", LANG_HE}};

constexpr Named flags[] = {{"compatibility", EXT_COMPATIBILITY},
                           {"complete", EXT_COMPLETE},
                           {"snippet", EXT_SNIPPET},
                           {"smart", EXT_SMART},
                           {"notes", EXT_NOTES},
                           {"no-labels", EXT_NO_LABELS},
                           {"process-html", EXT_PROCESS_HTML},
                           {"no-metadata", EXT_NO_METADATA},
                           {"obfuscate", EXT_OBFUSCATE},
                           {"critic", EXT_CRITIC},
                           {"accept", EXT_CRITIC_ACCEPT},
                           {"reject", EXT_CRITIC_REJECT},
                           {"random-foot", EXT_RANDOM_FOOT},
                           {"random-labels", EXT_RANDOM_LABELS},
                           {"transclude", EXT_TRANSCLUDE}};

const Named *find(std::span<const Named> table, const QString &name)
{
    for (const Named &entry : table)
        if (name == QLatin1StringView(entry.name)) return &entry;
    return nullptr;
}

QString namesOf(std::span<const Named> table)
{
    QStringList names;
    for (const Named &entry : table) names << QLatin1StringView(entry.name);
    return names.join(QStringLiteral(", "));
}

// What one call converts with.
struct Job
{
    const Named *to;
    const Named *language;
    uint32_t extensions;
};

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        QStringLiteral("Converts Markdown with the engine alone. Without FILE, or for \"-\", it reads standard "
                       "input. With any of the single flags the extensions start from none."));
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("What to convert."),
                                 QStringLiteral("[FILE...]"));
    parser.addOption({QStringLiteral("to"), namesOf(outputFormats), QStringLiteral("FORMAT"), QStringLiteral("html")});
    parser.addOption(
        {QStringLiteral("from"), namesOf(inputFormats), QStringLiteral("FORMAT"), QStringLiteral("markdown")});
    parser.addOption({QStringLiteral("language"), namesOf(languages), QStringLiteral("L"), QStringLiteral("en")});
    parser.addOption({QStringLiteral("o"), QStringLiteral("The result's file; with several inputs a folder."),
                      QStringLiteral("FILE")});
    addExtensionsOption(parser);
    for (const Named &flag : flags)
        parser.addOption({QLatin1StringView(flag.name), QStringLiteral("Adds %1 to the extensions.").arg(flag.value)});
}

std::optional<uint32_t> extensions(const QCommandLineParser &parser)
{
    uint32_t fromFlags = 0;
    for (const Named &flag : flags)
        if (parser.isSet(QLatin1StringView(flag.name))) fromFlags |= flag.value;
    const auto base = extensionsOption(parser, fromFlags ? 0 : defaultExtensions);
    return base ? std::optional(*base | fromFlags) : std::nullopt;
}

// Converts bytes that stand in a file of the folder; `path` is empty for standard input.
std::optional<QByteArray> convert(const Job &job, const QByteArray &text, const QString &path)
{
    const QByteArray folder = QFile::encodeName(path.isEmpty() ? QDir::currentPath() : QFileInfo(path).absolutePath());
    d_string *source = d_string_new("");
    const qsizetype mark = text.startsWith("\xEF\xBB\xBF") ? 3 : 0; // a byte order mark is no text
    d_string_append_c_array(source, text.constData() + mark, static_cast<size_t>(text.size() - mark));
    if (job.extensions & EXT_TRANSCLUDE) {
        const QByteArray file = path.isEmpty() ? QByteArray() : QFile::encodeName(QFileInfo(path).absoluteFilePath());
        mmd_transclude_source(source, folder.constData(), file.isEmpty() ? nullptr : file.constData(),
                              static_cast<uint16_t>(job.to->value), nullptr, nullptr);
    }
    d_string *result = mmd_d_string_convert(source, job.extensions, static_cast<uint16_t>(job.to->value),
                                            static_cast<uint16_t>(job.language->value), folder.constData());
    d_string_free(source, true);
    if (!result) return std::nullopt;
    QByteArray bytes(result->str, static_cast<qsizetype>(result->currentStringLength));
    d_string_free(result, true);
    return bytes;
}

bool writeFile(const QString &path, const QByteArray &bytes, QString &error)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush()) return true;
    error = QStringLiteral("cannot write \"%1\": %2").arg(path, file.errorString());
    return false;
}

// Where the result of an input goes: empty for standard output.
QString resultPath(const QString &output, const QString &input, qsizetype inputs, const Named &format)
{
    if (output.isEmpty() || inputs < 2) return output;
    const QString name =
        input == QLatin1StringView("-") ? QStringLiteral("stdin") : QFileInfo(input).completeBaseName();
    return output + u'/' + name + QLatin1StringView(format.suffix);
}

int convertAll(const Job &job, const QStringList &inputs, const QString &output)
{
    for (const QString &input : inputs) {
        QString error;
        const auto text = readInput(input, error);
        if (!text) return fail(error);
        const auto result = convert(job, *text, input == QLatin1StringView("-") ? QString() : input);
        if (!result)
            return fail(QStringLiteral("the format \"%1\" is not available").arg(QLatin1StringView(job.to->name)));
        const QString path = resultPath(output, input, inputs.size(), *job.to);
        if (path.isEmpty()) writeBytes(*result);
        else if (!writeFile(path, *result, error)) return fail(error);
    }
    return Done;
}

} // namespace

int runConvert(const Invocation &call)
{
    QCommandLineParser parser;
    describe(parser);
    if (const auto status = parse(call, parser)) return *status;

    const Named *to = find(outputFormats, parser.value(QStringLiteral("to")));
    const Named *from = find(inputFormats, parser.value(QStringLiteral("from")));
    const Named *language = find(languages, parser.value(QStringLiteral("language")));
    const auto mask = extensions(parser);
    if (!to) return wrongUsage(call, QStringLiteral("--to is one of ") + namesOf(outputFormats));
    if (!from) return wrongUsage(call, QStringLiteral("--from is one of ") + namesOf(inputFormats));
    if (!language) return wrongUsage(call, QStringLiteral("--language is one of ") + namesOf(languages));
    if (!mask) return wrongUsage(call, QStringLiteral("--extensions needs a number"));
    if (!mmd_format_is_available(static_cast<uint16_t>(to->value)))
        return fail(QStringLiteral("the format \"%1\" is not available").arg(QLatin1StringView(to->name)));
    if (from->value != 0)
        return fail(QStringLiteral("reading the format \"%1\" is not available").arg(QLatin1StringView(from->name)));

    QStringList inputs = parser.positionalArguments();
    if (inputs.isEmpty()) inputs << QStringLiteral("-");
    return convertAll({to, language, *mask | from->value}, inputs, parser.value(QStringLiteral("o")));
}

} // namespace tomelet::cli
