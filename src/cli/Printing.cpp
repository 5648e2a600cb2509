// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Printing.h"

#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/SafeWriter.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

namespace tomelet::cli {

static QByteArray withBase(QByteArray page, const QString &folder)
{
    const QByteArray base = "<head>\n<base href=\"" + QUrl::fromLocalFile(folder + u'/').toEncoded() + "\">";
    const qsizetype head = page.indexOf("<head>");
    return head < 0 ? page : page.replace(head, 6, base);
}

PrintedPage printPage(const QByteArray &page, const QString &folder)
{
    const QString program = joinPath(QCoreApplication::applicationDirPath(), QStringLiteral("tomelet-print"));
    if (!itemExists(program)) return {{}, QStringLiteral("printing needs the program tomelet-print beside tomelet")};
    makeFolder(workingDirectory());
    const QTemporaryDir work(joinPath(workingDirectory(), QStringLiteral("print-XXXXXX")));
    const QString source = work.filePath(QStringLiteral("page.html"));
    const QString result = work.filePath(QStringLiteral("page.pdf"));
    if (const WriteResult written = writeFile(source, withBase(page, folder)); !written) return {{}, written.message};
    QProcess process;
    process.start(program, {source, result});
    process.waitForFinished(-1);
    const auto pdf = readFile(result);
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0 && pdf) return {*pdf, {}};
    const QString said = QString::fromUtf8(process.readAllStandardError()).trimmed().section(u'\n', -1);
    return {{}, said.isEmpty() ? QStringLiteral("the page could not be printed") : said};
}

} // namespace tomelet::cli
