// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet markdownify [FILE]` and `tomelet plain [FILE]`: HTML as Markdown and as plain text.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "cli/commands/EngineOptions.h"
#include "conversion/HtmlToMarkdown.h"
#include "conversion/TextUtilities.h"
#include "foundation/TextCodec.h"

#include <QCommandLineParser>

namespace tomelet::cli {

static int filter(const Invocation &call, const QString &description, QString (*convert)(const QString &))
{
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("What to convert; standard input without it."),
                                 QStringLiteral("[FILE]"));
    if (const auto status = parse(call, parser)) return *status;
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1) return wrongUsage(call, QStringLiteral("%1 takes one file").arg(call.command));
    takeOptions(call);
    QString error;
    const auto bytes = readInput(files.value(0, QStringLiteral("-")), error);
    if (!bytes) return fail(error);
    writeText(convert(decodeText(*bytes).text));
    return Done;
}

int runMarkdownify(const Invocation &call)
{
    return filter(call, QStringLiteral("Converts HTML to Markdown."), tm_markdownifyHTML);
}

int runPlain(const Invocation &call)
{
    return filter(call, QStringLiteral("Converts HTML to plain text."), tm_htmlToPlainText);
}

} // namespace tomelet::cli
