// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet screenplay FILE [--to html|fountain]`: a screenplay as its pages, or as the text that its elements make.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "cli/commands/EngineOptions.h"
#include "foundation/Folder.h"
#include "foundation/TextCodec.h"
#include "screenplay/FNHTMLScript.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace tomelet::cli {

// A file by its path, else a document by its name in the notebook.
static QString inputOf(const Invocation &call, const QString &given)
{
    takeOptions(call);
    if (given == u"-" || QFileInfo::exists(given)) return given;
    const QString item = itemPath(given);
    return itemExists(item) ? item : given;
}

int runScreenplay(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints a screenplay (Fountain, UTF-8) as HTML in pages, or as Fountain again."));
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("The screenplay; \"-\" for standard input."),
                                 QStringLiteral("FILE"));
    parser.addOption(
        {QStringLiteral("to"), QStringLiteral("html or fountain."), QStringLiteral("FORMAT"), QStringLiteral("html")});
    if (const auto status = parse(call, parser)) return *status;
    const QStringList files = parser.positionalArguments();
    const QString format = parser.value(QStringLiteral("to"));
    if (files.size() != 1) return wrongUsage(call, QStringLiteral("screenplay takes one file"));
    if (format != u"html" && format != u"fountain")
        return wrongUsage(call, QStringLiteral("--to is one of html, fountain"));

    QString error;
    const auto bytes = readInput(inputOf(call, files.first()), error);
    if (!bytes) return fail(error);
    const auto text = decodeTextAs(*bytes, TextEncoding::Utf8);
    if (!text || text->contains(QChar::Null))
        return fail(QStringLiteral("\"%1\" is no text in UTF-8").arg(files.first()));
    const FNScript script = FNScript::initWithString(*text);
    writeText(format == u"html" ? FNHTMLScript::initWithScript(script).html() : script.stringFromDocument());
    return Done;
}

} // namespace tomelet::cli
