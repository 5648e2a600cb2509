// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/NewDocument.h"

#include "conversion/MarkdownToHtml.h"
#include "conversion/TextUtilities.h"
#include "editor/DocumentForms.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/RecentItems.h"
#include "organising/contexts/ContextStores.h"
#include "organising/contexts/Contexts.h"

namespace tomelet {

QString extensionOfNewDocuments()
{
    const QString chosen = settings().string(QStringLiteral("DefaultDocumentType"));
    if (chosen == u"html") return QStringLiteral("txt"); // formatted documents are made on request alone
    return chosen.isEmpty() ? QStringLiteral("md") : chosen;
}

NewFile newFileFor(const QString &book, const QString &extension, const QString &title)
{
    const bool isCombined = extension == u"md" && settings().boolean(QStringLiteral("createCombinedMarkdown"));
    const QString line = tm_firstLineOfText(title);
    const QString name =
        line.isEmpty() ? platform().clock.now().toLocalTime().toString(QStringLiteral("yyyy-MM-dd hh-mm-ss")) : line;
    const QString ending = isCombined ? QStringLiteral("html") : extension;
    return {tm_uniqueNameForFileatPath(name + u'.' + ending, book), isCombined};
}

void noteNewFile(const NewFile &file)
{
    tm_setCreationDate(file.path);
    if (file.isCombinedMarkdown) tm_setProperty(file.path, QStringLiteral("OK"), QStringLiteral("Markdown"));
    tm_addToRecentItems(file.path);
    notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), file.path);
    logLine(QStringLiteral("saved file: %1").arg(file.path));
}

void logUnsavedFile(const NewFile &file, const QString &content)
{
    logLine(QStringLiteral("could not save! path: %1; parent: %2; suggested %3\n Contents %4")
                .arg(file.path, parentPath(file.path), lastPathComponent(file.path), content));
}

QString saveNewDocument(const NewDocument &document)
{
    if (document.text.trimmed().isEmpty()) return {};
    const QString extension = document.extension.isEmpty() ? extensionOfNewDocuments() : document.extension;
    const bool isPage = extension == u"html" || extension == u"htm";
    const QString visibleText = isPage ? tm_htmlToPlainQuick(document.text) : document.text;
    const NewFile file = newFileFor(document.book, extension, document.title.isEmpty() ? visibleText : document.title);
    const QString content = isPage                    ? tm_createFormattedDocWithBody(document.book, document.text)
                            : file.isCombinedMarkdown ? combinedForm(document.text)
                                                      : document.text;
    if (const WriteResult written = writeFile(file.path, content.toUtf8()); !written) {
        logUnsavedFile(file, content);
        return {};
    }
    noteNewFile(file);
    if (managesContextsAutomatically()) tm_collectTagsFromText(file.path, visibleText);
    return file.path;
}

} // namespace tomelet
