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

namespace {

struct SavedForm
{
    QString extension;
    QString content;     ///< what the file holds
    QString visibleText; ///< what it is named after and what contexts are read from
    bool isCombinedMarkdown = false;
};

SavedForm savedForm(const NewDocument &document)
{
    const QString extension = document.extension.isEmpty() ? extensionOfNewDocuments() : document.extension;
    if (extension == u"html" || extension == u"htm")
        return {extension, tm_createFormattedDocWithBody(document.book, document.text),
                tm_htmlToPlainQuick(document.text), false};
    if (extension == u"md" && settings().boolean(QStringLiteral("createCombinedMarkdown")))
        return {QStringLiteral("html"), combinedForm(document.text), document.text, true};
    return {extension, document.text, document.text, false};
}

QString nameFor(const QString &title, const QString &visibleText)
{
    const QString line = tm_firstLineOfText(title.isEmpty() ? visibleText : title);
    if (!line.isEmpty()) return line;
    return platform().clock.now().toLocalTime().toString(QStringLiteral("yyyy-MM-dd hh-mm-ss"));
}

} // namespace

QString extensionOfNewDocuments()
{
    const QString chosen = settings().string(QStringLiteral("DefaultDocumentType"));
    if (chosen == u"html") return QStringLiteral("txt"); // formatted documents are made on request alone
    return chosen.isEmpty() ? QStringLiteral("md") : chosen;
}

QString saveNewDocument(const NewDocument &document)
{
    if (document.text.trimmed().isEmpty()) return {};
    const SavedForm form = savedForm(document);
    const QString name = nameFor(document.title, form.visibleText) + u'.' + form.extension;
    const QString path = tm_uniqueNameForFileatPath(name, document.book);
    if (const WriteResult written = writeFile(path, form.content.toUtf8()); !written) {
        logLine(QStringLiteral("could not save! path: %1; parent: %2; suggested %3\n Contents %4")
                    .arg(path, document.book, name, form.content));
        return {};
    }
    tm_setCreationDate(path);
    if (form.isCombinedMarkdown) tm_setProperty(path, QStringLiteral("OK"), QStringLiteral("Markdown"));
    tm_addToRecentItems(path);
    if (managesContextsAutomatically()) tm_collectTagsFromText(path, form.visibleText);
    notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), path);
    logLine(QStringLiteral("saved file: %1").arg(path));
    return path;
}

} // namespace tomelet
