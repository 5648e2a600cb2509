// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet render ITEM... [-o FILE]`: documents as complete pages by their settings.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "conversion/MarkdownToHtml.h"
#include "conversion/Page.h"
#include "foundation/Folder.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QSet>

namespace tomelet::cli {

static QString pageOf(const QString &path)
{
    return hasMarkdownExtension(path) || hasPlainTextExtension(path) ? tm_markdownToHTML(path)
                                                                     : pageForItem(path);
}

static QString whyUnreadable(const QString &path)
{
    if (!itemExists(path)) return QStringLiteral("%1 does not exist").arg(path);
    if (isFolder(path)) return QStringLiteral("%1 is a book, not a document").arg(path);
    return QFileInfo(path).isReadable() ? QString() : QStringLiteral("%1 cannot be read").arg(path);
}

// Where the page of an item goes: empty for standard output, a file in the folder with several items.
static QString resultPath(const QString &output, const QString &item, qsizetype items)
{
    if (output.isEmpty() || items < 2) return output;
    return joinPath(output, lastPathComponent(pathWithoutExtension(item)) + QStringLiteral(".html"));
}

// Two documents of one name would share a file in the folder.
static QString sharedResult(const QString &output, const QStringList &items)
{
    QSet<QString> seen;
    for (const QString &item : items) {
        const QString target = resultPath(output, itemPath(item), items.size());
        if (!target.isEmpty() && seen.contains(target)) return target;
        seen.insert(target);
    }
    return {};
}

int runRender(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Renders documents as complete pages by their settings."));
    parser.addPositionalArgument(QStringLiteral("item"), QStringLiteral("The documents."),
                                 QStringLiteral("ITEM..."));
    parser.addOption({QStringLiteral("o"),
                      QStringLiteral("The result's file; with several documents a folder."),
                      QStringLiteral("FILE")});
    parser.addOption({QStringLiteral("pdf"), QStringLiteral("Prints to PDF, in the desktop program.")});
    if (const auto status = parse(call, parser)) return *status;
    const QStringList items = parser.positionalArguments();
    QString output = parser.value(QStringLiteral("o"));
    if (!output.isEmpty()) output = QFileInfo(output).absoluteFilePath();
    if (items.isEmpty()) return wrongUsage(call, QStringLiteral("render takes at least one document"));
    if (parser.isSet(QStringLiteral("pdf")))
        return fail(QStringLiteral("printing to PDF needs the desktop program"));
    if (items.size() > 1 && !output.isEmpty() && !isFolder(output))
        return fail(QStringLiteral("%1 is no folder").arg(output));
    if (const auto status = openNotebook(call)) return *status;
    if (const QString shared = sharedResult(output, items); !shared.isEmpty())
        return fail(QStringLiteral("two of the documents would become %1").arg(shared));
    for (const QString &item : items) {
        const QString path = itemPath(item);
        if (const QString why = whyUnreadable(path); !why.isEmpty()) return fail(why);
        const QString page = pageOf(path);
        const QString target = resultPath(output, path, items.size());
        if (target.isEmpty())
            writeText(page);
        else if (const WriteResult result = writeFile(target, page.toUtf8()); !result)
            return fail(result.message);
    }
    return Done;
}

} // namespace tomelet::cli
