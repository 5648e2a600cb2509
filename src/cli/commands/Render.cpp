// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet render ITEM... [-o FILE] [--pdf]`: documents as complete pages by their settings.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/Printing.h"
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
    if (lowerExtension(path) == u"fountain") return pageForItem(path); // a text, but of no Markdown
    return hasMarkdownExtension(path) || hasPlainTextExtension(path) ? tm_markdownToHTML(path) : pageForItem(path);
}

static QString whyUnreadable(const QString &path)
{
    if (!itemExists(path)) return QStringLiteral("%1 does not exist").arg(path);
    if (isFolder(path)) return QStringLiteral("%1 is a book, not a document").arg(path);
    return QFileInfo(path).isReadable() ? QString() : QStringLiteral("%1 cannot be read").arg(path);
}

/// What `render` was asked for.
struct Job
{
    QStringList items;
    QString output; ///< full path; "" for standard output
    bool pdf = false;

    // Where the result of an item goes: empty for standard output, a file in the folder with several items.
    [[nodiscard]] QString resultPath(const QString &item) const
    {
        if (output.isEmpty() || items.size() < 2) return output;
        const QString extension = pdf ? QStringLiteral(".pdf") : QStringLiteral(".html");
        return joinPath(output, lastPathComponent(pathWithoutExtension(item)) + extension);
    }
};

// Two documents of one name would share a file in the folder.
static QString sharedResult(const Job &job)
{
    QSet<QString> seen;
    for (const QString &item : job.items) {
        const QString target = job.resultPath(itemPath(item));
        if (!target.isEmpty() && seen.contains(target)) return target;
        seen.insert(target);
    }
    return {};
}

static int renderItem(const Job &job, const QString &path)
{
    if (const QString why = whyUnreadable(path); !why.isEmpty()) return fail(why);
    QByteArray result = pageOf(path).toUtf8();
    if (job.pdf) {
        const PrintedPage printed = printPage(result, parentPath(path));
        if (!printed.error.isEmpty()) return fail(printed.error);
        result = printed.pdf;
    }
    const QString target = job.resultPath(path);
    if (target.isEmpty()) {
        writeBytes(result);
        return Done;
    }
    const WriteResult written = writeFile(target, result);
    return written ? Done : fail(written.message);
}

int runRender(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Renders documents as complete pages by their settings."));
    parser.addPositionalArgument(QStringLiteral("item"), QStringLiteral("The documents."), QStringLiteral("ITEM..."));
    parser.addOption({QStringLiteral("o"), QStringLiteral("The result's file; with several documents a folder."),
                      QStringLiteral("FILE")});
    parser.addOption({QStringLiteral("pdf"), QStringLiteral("Prints the pages to PDF.")});
    if (const auto status = parse(call, parser)) return *status;
    Job job{parser.positionalArguments(), parser.value(QStringLiteral("o")), parser.isSet(QStringLiteral("pdf"))};
    if (!job.output.isEmpty()) job.output = QFileInfo(job.output).absoluteFilePath();
    if (job.items.isEmpty()) return wrongUsage(call, QStringLiteral("render takes at least one document"));
    if (job.items.size() > 1 && !job.output.isEmpty() && !isFolder(job.output))
        return fail(QStringLiteral("%1 is no folder").arg(job.output));
    if (const auto status = openNotebook(call)) return *status;
    if (const QString shared = sharedResult(job); !shared.isEmpty())
        return fail(QStringLiteral("two of the documents would become %1").arg(shared));
    for (const QString &item : job.items)
        if (const int status = renderItem(job, itemPath(item)); status != Done) return status;
    return Done;
}

} // namespace tomelet::cli
