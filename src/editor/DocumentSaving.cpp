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
    save.path = m_path;
    save.book = m_parentPath;
    save.kind = m_kind;
    save.isForeignPage = m_isForeignPage;
    save.held = isPage ? m_view.innerHTML() : m_view.text();
    save.loaded = isPage ? m_view.pageSource() : m_shownText;
    if (isPage) save.visibleText = m_view.innerText();
    save.form = m_form;
    save.md5hash = m_md5hash;
}

// -- the save ---------------------------------------------------------------------------------------------------------

void TMLTDocumentViewController::writeTextToFile()
{
    waitForSave();
    cancelPendingSave();
    if (m_md5hash.isEmpty()) {
        m_isEdited = false;
        return logLine(QStringLiteral("no hash, not saving document"));
    }
    if (!canBeSaved()) return;
    DocumentSave save;
    begin(save);
    save.read();
    if (m_path.isEmpty() && save.visibleText.trimmed().isEmpty()) {
        m_isEdited = false;
        return;
    }
    if (save.isUnchanged && !m_forcedSave) return takeUnchanged(false);
    if (m_forcedSave) logLine(QStringLiteral("## enforced saving %1").arg(m_path));
    if (m_path.isEmpty()) return saveAsNewDocument(save);
    if (isReadOnlyDocument(m_path))
        return tellFailure(localized(TOMELET_TEXT("%1 is write-protected.")).arg(lastPathComponent(m_path)));
    save.writeSidecarForWebview();
    const QString previousPath = m_path;
    if (!m_isTyping && followTitle(save)) return;
    if (writeContent(save)) finishSave(save, previousPath);
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

bool TMLTDocumentViewController::writeContent(DocumentSave &save)
{
    save.path = m_path; // which may be new
    save.make();
    if (!setForeignVersionAside()) return false;
    if (const WriteResult written = writeFile(m_path, save.bytes); !written) {
        tellFailure(written.message);
        return false;
    }
    takeSaved(false);
    m_forcedSave = false;
    return true;
}

void TMLTDocumentViewController::announceSave(const QString &previousPath)
{
    if (previousPath != m_path || m_kind == DocumentViewKind::Formatted) postSilentMove(previousPath, m_path);
    else notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), m_path);
}

// The file holds what was to be saved.
void TMLTDocumentViewController::finishSave(const DocumentSave &save, const QString &previousPath)
{
    noteFile();
    m_form = save.form;
    m_md5hash = save.md5OfText;
    m_md5OfFile = save.md5OfBytes;
    m_failure.clear();
    takeReferences(m_path, save.facts.references, m_referencedDocuments);
    announceSave(previousPath);
    takeEmbeddedContexts(m_path, save.facts.contexts, m_embeddedContexts);
    takePictures(m_path, save.facts.pictures);
    m_modDateOfPresentedPlist = QFileInfo(tm_plistPath(m_path)).lastModified();
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

void TMLTDocumentViewController::saveAsNewDocument(DocumentSave &save)
{
    const QString path = saveNewDocument({m_parentPath, extensionForCreation(), {}, save.text});
    if (path.isEmpty())
        return tellFailure(localized(TOMELET_TEXT("Nothing could be written in %1.")).arg(m_parentPath));
    m_path = path;
    m_isNew = false;
    m_titleIsFirstLineOfText = true;
    // From now on the extension tells the view: the document stays in the one in which it was begun.
    const ViewChoice choice = viewForDocument(path, false);
    m_canToggle = choice.canToggle;
    m_presentingToggledView = choice.kind != m_kind;
    m_currentPlist = relevantInheritedProperties();
    m_embeddedContexts = contextsEmbeddedIn(path, save.visibleText);
    m_view.addToBackList(path);
    const bool autosaves = !settings().boolean(QStringLiteral("noAutosaveText"));
    if (m_view.isMainWindow() && autosaves)
        notifications().postPath(QStringLiteral("TMLTNewFileCreatedNotification"), path);
    notifications().postPath(QStringLiteral("TMLTItemssSelectedInOutlineOrListNotification"), path);
    if (const QString context = m_view.contextOfList(); !context.isEmpty()) tm_setTag(path, context);
    save.path = path;
    save.form = {};
    save.make();
    save.md5OfBytes = md5OfBytes(readFile(path).value_or(QByteArray()));
    takeSaved(false);
    m_forcedSave = false;
    finishSave(save, path);
}

} // namespace tomelet
