// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/Imports.h"

#include "conversion/MarkdownToHtml.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/SafeWriter.h"
#include "import/EvernoteImporter.h"
#include "import/Opml.h"
#include "import/WebArchive.h"
#include "library/Extensions.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/TextFile.h"

namespace tomelet {

namespace {

QString fault(const char *text, const QString &path)
{
    return localized(text).arg(lastPathComponent(path));
}

Imported importWebArchive(const QString &path, const QString &book)
{
    const QString document = saveWebArchive(path, book);
    if (document.isEmpty()) return {{}, fault(TOMELET_TEXT("\"%1\" holds no page, or nothing can be written."), path)};
    return {{document}, {}};
}

Imported importOutline(const QString &path, const QString &book)
{
    const auto decoded = readTextFile(path);
    const QString body = decoded ? tm_OPMLToHTML(decoded->text) : QString();
    if (body.isEmpty()) return {{}, fault(TOMELET_TEXT("\"%1\" holds no outline."), path)};
    const QString name = lastPathComponent(pathWithoutExtension(path)) + QStringLiteral(".html");
    const QString document = tm_uniqueNameForFileatPath(name, book);
    if (const auto written = writeFile(document, tm_createFormattedDocWithBody(document, body).toUtf8()); !written)
        return {{}, written.message};
    tm_setCreationDate(document);
    return {{document}, {}};
}

Imported importNotes(const QString &path, const QString &book, const Progress &progress)
{
    TMLTEvernoteImporter importer(path, book);
    importer.start(progress);
    if (importer.fault().isEmpty()) return {importer.notes(), {}};
    return {importer.notes(), fault(TOMELET_TEXT("\"%1\" could not be read to its end: "), path) + importer.fault()};
}

} // namespace

const QStringList &importableExtensions()
{
    static const QStringList all{QStringLiteral("enex"), QStringLiteral("opml"), QStringLiteral("webarchive")};
    return all;
}

Imported importFile(const QString &path, const QString &book, const Progress &progress)
{
    const QString extension = lowerExtension(path);
    if (extension == u"webarchive") return importWebArchive(path, book);
    if (extension == u"enex") return importNotes(path, book, progress);
    if (extension == u"opml") return importOutline(path, book);
    return {{}, fault(TOMELET_TEXT("\"%1\" is of no kind that can be imported."), path)};
}

} // namespace tomelet
