// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: from the text on the screen to the file.
#include "editor/TMLTDocumentViewController.h"

#include "editor/DocumentFacts.h"
#include "editor/DocumentViewChoice.h"
#include "editor/NewDocument.h"
#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "organising/contexts/Contexts.h"
#include "organising/links/LinkRewriting.h"

#include <QFileInfo>

namespace tomelet {

QString TMLTDocumentViewController::callArgument() const
{
    return QString::number(quintptr(this), 36);
}

void TMLTDocumentViewController::cancelPendingSave()
{
    platform().delayedCalls.cancel(QStringLiteral("writeTextToFile"), callArgument());
    platform().delayedCalls.cancel(QStringLiteral("saveWhileTyping"), callArgument());
    m_savesWhileTyping = false;
}

// -- what is to be saved ----------------------------------------------------------------------------------------------

bool TMLTDocumentViewController::navigatedAway() const
{
    if (m_kind != DocumentViewKind::Formatted || m_path.isEmpty()) return false;
    const QString address = m_view.mainFrameURL();
    return address != m_formattedMainFrameURL && address != m_path;
}

bool TMLTDocumentViewController::canBeSaved()
{
    if (m_kind == DocumentViewKind::PlainText && m_isEditable) return true;
    if (m_kind != DocumentViewKind::Formatted || !m_isEditable) {
        logLine(m_kind == DocumentViewKind::Formatted ? QStringLiteral("non editable formatted doc")
                                                      : QStringLiteral("non editable generic doc"));
        return false;
    }
    if (!navigatedAway()) return true;
    logLine(QStringLiteral("formatted document navigated away, don't save"));
    m_view.hideFormattingBar();
    m_isEdited = false; // what was typed went with the page
    return false;
}

void TMLTDocumentViewController::begin(DocumentSave &save) const
{
    const bool isPage = m_kind == DocumentViewKind::Formatted;
    save.path = save.previousPath = m_path;
    save.book = m_parentPath;
    save.isNew = m_path.isEmpty();
    save.isForced = m_forcedSave;
    save.isTyping = m_isTyping;
    save.kind = m_kind;
    save.isForeignPage = m_isForeignPage;
    save.isCombined = !isPage && isCombinedMarkdown(m_path);
    save.held = isPage ? m_view.innerHTML() : m_view.text();
    save.loaded = isPage ? m_view.pageSource() : m_shownText;
    save.visibleText = isPage ? m_view.innerText() : save.held;
    save.form = m_form;
    save.md5hash = m_md5hash;
    save.md5OfFile = m_md5OfFile;
    save.changes = m_changes;
}

void TMLTDocumentViewController::beginNew(DocumentSave &save) const
{
    const NewFile file = newFileFor(m_parentPath, extensionForCreation(), save.visibleText);
    save.path = save.previousPath = file.path;
    save.isCombined = file.isCombinedMarkdown;
    save.form = {};
}

// -- the save ---------------------------------------------------------------------------------------------------------

// Nothing when there is nothing to be saved, or it cannot be.
std::shared_ptr<DocumentSave> TMLTDocumentViewController::beginSave()
{
    cancelPendingSave();
    if (m_md5hash.isEmpty()) {
        m_isEdited = false;
        logLine(QStringLiteral("no hash, not saving document"));
        return {};
    }
    if (!canBeSaved()) return {};
    auto save = std::make_shared<DocumentSave>();
    begin(*save);
    if (!m_path.isEmpty()) return m_isTyping || followTitle(*save) ? save : nullptr;
    if (save->visibleText.trimmed().isEmpty()) {
        m_isEdited = false;
        return {};
    }
    beginNew(*save);
    return save;
}

void TMLTDocumentViewController::writeTextToFile()
{
    waitForSave();
    const auto save = beginSave();
    if (!save) return;
    save->run();
    completeSave(save);
}

// The main thread looks whether all is as it was when the save began, and renames. Whatever came between is set aside,
// and the save begins anew.
void TMLTDocumentViewController::completeSave(const std::shared_ptr<DocumentSave> &done)
{
    const DocumentSave &save = *done;
    if (save.isUnchanged && !save.isForced) return takeUnchanged(m_changes != save.changes);
    if (save.isForced) logLine(QStringLiteral("## enforced saving %1").arg(save.path));
    if (!save.isNew && isReadOnlyDocument(m_path)) return tellWriteProtected();
    if (save.isForeign || m_path != (save.isNew ? QString() : save.path)) return saveAnew(save);
    WriteResult written = save.file->commitIfStill(save.stamp);
    if (written.isStale && (save.isNew || save.fileIsForeign())) return saveAnew(save);
    if (written.isStale) written = save.file->commit(); // another date, the same text
    if (!written) {
        if (save.isNew) logUnsavedFile({save.path, save.isCombined}, save.text);
        return tellFailure(written.message);
    }
    takeSaved(m_changes != save.changes);
    if (save.isForced) m_forcedSave = false;
    if (save.isNew) takeNewFile(save);
    finishSave(save);
    m_saves.add([done] { done->file->flushName(); });
}

void TMLTDocumentViewController::saveAnew(const DocumentSave &save)
{
    if (!setForeignVersionAside()) return;
    m_isTyping = save.isTyping;
    m_forcedSave = m_forcedSave || save.isForced;
    writeTextToFile();
    m_isTyping = false;
}

// `isEdited`: something was typed since.
void TMLTDocumentViewController::takeSaved(bool isEdited)
{
    m_isEdited = isEdited;
    m_view.setEdited(isEdited);
    if (!isEdited) m_failure.clear();
}

void TMLTDocumentViewController::takeUnchanged(bool isEdited)
{
    takeSaved(isEdited);
    logLine(QStringLiteral("text unchanged"));
}

// One alert for a fault, not one for each pause in typing.
void TMLTDocumentViewController::tellFailure(const QString &message)
{
    logLine(QStringLiteral("saving error: %1").arg(message));
    const bool isFirst = m_failure.isEmpty();
    m_failure = message;
    if (isFirst) m_view.showAlert(localized(TOMELET_TEXT("Saving Error")), message);
}

void TMLTDocumentViewController::tellWriteProtected()
{
    tellFailure(localized(TOMELET_TEXT("%1 is write-protected.")).arg(lastPathComponent(m_path)));
}

WriteResult TMLTDocumentViewController::saveCopy(const QString &path) const
{
    DocumentSave save;
    begin(save);
    save.read();
    return writeFile(path, bytesOfText(save.finalForm(), save.form));
}

void TMLTDocumentViewController::discardChanges()
{
    m_save.reset();
    cancelPendingSave();
    m_md5hash.clear();
    m_failure.clear();
    m_isEdited = m_forcedSave = false;
    m_view.setEdited(false);
}

// What somebody else wrote since the document was read would be lost under what was typed here. False: it could not be
// kept, so nothing may be written over it.
bool TMLTDocumentViewController::setForeignVersionAside()
{
    const auto bytes = readFile(m_path);
    if (!bytes || m_md5OfFile.isEmpty() || md5OfBytes(*bytes) == m_md5OfFile) return true;
    const QString name = nameWithoutExtension(m_path) + u' ' + localized(TOMELET_TEXT("(changed elsewhere)"));
    const QString aside = tm_uniqueNameForFileatPath(fileNameFor(name, m_path), tomelet::parentPath(m_path));
    if (const FileResult copied = copyItem(m_path, aside); !copied) {
        tellFailure(copied.message);
        return false;
    }
    m_md5OfFile = md5OfBytes(*bytes);
    notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), aside);
    m_view.showNotice(localized(TOMELET_TEXT("The document was changed elsewhere")),
                      localized(TOMELET_TEXT("The other version was kept as \"%1\".")).arg(lastPathComponent(aside)));
    return true;
}

void TMLTDocumentViewController::announceSave()
{
    if (m_kind == DocumentViewKind::Formatted) postSilentMove(m_path, m_path);
    else notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), m_path);
}

// The file holds what was to be saved.
void TMLTDocumentViewController::finishSave(const DocumentSave &save)
{
    noteFile();
    m_form = save.form;
    m_md5hash = save.md5OfText;
    m_md5OfFile = save.md5OfBytes;
    takeReferences(m_path, save.facts.references, m_referencedDocuments);
    announceSave();
    takeEmbeddedContexts(m_path, save.facts.contexts, m_embeddedContexts);
    takePictures(m_path, save.facts.pictures);
    m_modDateOfPresentedPlist = QFileInfo(tm_plistPath(m_path)).lastModified();
    // The name's own change may have reached the links in the file before this text did.
    if (save.previousPath != m_path) renameOwnLinks(m_path, save.previousPath);
}

// -- the first save ---------------------------------------------------------------------------------------------------

QString TMLTDocumentViewController::extensionForCreation() const
{
    if (m_kind == DocumentViewKind::Formatted) return QStringLiteral("html");
    const QString chosen = settings().string(QStringLiteral("DefaultDocumentType"));
    const QString wanted = !m_fileExtensionForNewDoc.isEmpty() ? m_fileExtensionForNewDoc : chosen;
    if (!wanted.isEmpty() && wanted != u"html") return wanted;
    return chosen.isEmpty() || chosen == u"md" ? QStringLiteral("md") : QStringLiteral("txt");
}

void TMLTDocumentViewController::takeNewFile(const DocumentSave &save)
{
    noteNewFile({save.path, save.isCombined});
    m_path = save.path;
    m_isNew = false;
    m_titleIsFirstLineOfText = true;
    // From now on the extension tells the view: the document stays in the one in which it was begun.
    const ViewChoice choice = viewForDocument(m_path, false);
    m_canToggle = choice.canToggle;
    m_presentingToggledView = choice.kind != m_kind;
    m_currentPlist = relevantInheritedProperties();
    m_view.addToBackList(m_path);
    const bool autosaves = !settings().boolean(QStringLiteral("noAutosaveText"));
    if (m_view.isMainWindow() && autosaves)
        notifications().postPath(QStringLiteral("TMLTNewFileCreatedNotification"), m_path);
    notifications().postPath(QStringLiteral("TMLTItemssSelectedInOutlineOrListNotification"), m_path);
    for (const QString &context : m_view.contextsOfList()) tm_setTag(m_path, context);
}

} // namespace tomelet
