// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet new [--book BOOK] [--ext EXT] [--title T]`: a document from standard input.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "editor/NewDocument.h"
#include "foundation/Platform.h"
#include "foundation/TextCodec.h"
#include "library/ItemPath.h"

#include <QCommandLineParser>

namespace tomelet::cli {

int runNew(const Invocation &call)
{
    const QCommandLineOption book(QStringLiteral("book"), QStringLiteral("The book; the root where none is given."),
                                  QStringLiteral("book"));
    const QCommandLineOption extension(QStringLiteral("ext"), QStringLiteral("The kind of document."),
                                       QStringLiteral("extension"));
    const QCommandLineOption title(QStringLiteral("title"), QStringLiteral("Its name; else the text's first line."),
                                   QStringLiteral("title"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Makes a document from standard input and prints its path."));
    parser.addOptions({book, extension, title});
    if (const auto status = parse(call, parser)) return *status;
    if (!parser.positionalArguments().isEmpty()) return wrongUsage(call, QStringLiteral("new takes options alone"));
    if (const auto status = openNotebook(call)) return *status;

    NewDocument document{itemPath(parser.value(book)), parser.value(extension), parser.value(title),
                         decodeText(readStandardInput()).text};
    if (!pathIsPlainBook(document.book)) return fail(QStringLiteral("%1 is no book").arg(document.book));
    if (document.text.trimmed().isEmpty()) return fail(QStringLiteral("an empty text makes no document"));
    const QString path = saveNewDocument(document);
    drainPendingWork();
    if (path.isEmpty()) return fail(QStringLiteral("nothing could be written in %1").arg(document.book));
    writeLine(path);
    return Done;
}

} // namespace tomelet::cli
