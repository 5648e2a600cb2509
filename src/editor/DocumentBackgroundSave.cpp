// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: a save while somebody types. A thread of its own makes the bytes, compares the hashes, looks
// for what the text refers to and waits for the disk; what it wrote has no name yet. The main thread then looks whether
// all is as it was when the save began, and renames. Whatever came between goes the long way of writeTextToFile.
#include "editor/TMLTDocumentViewController.h"

#include "conversion/TextUtilities.h"
#include "editor/DocumentFacts.h"
#include "editor/LineEnds.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Properties.h"

#include <QFileInfo>

#include <utility>

namespace tomelet {

using namespace std::chrono_literals;

struct TMLTDocumentViewController::BackgroundSave
{
    // What it begins with.
    QString path;
    QString shownText; ///< whose line ends count
    QString viewText;
    TextForm form;
    QString md5hash;
    QString md5OfFile;
    quint64 changes = 0;
    bool isTyping = false;

    // What the thread finds out.
    QString text;
    QString md5OfText;
    QString md5OfBytes;
    std::optional<FileStamp> stamp; ///< of the file that was compared
    bool isUnchanged = false;
    bool isForeign = false; ///< somebody else wrote the file meanwhile
    TextFacts facts;
    std::unique_ptr<StagedFile> file;

    void run();
};

void TMLTDocumentViewController::BackgroundSave::run()
{
    text = withLineEndsOf(shownText, viewText);
    isUnchanged = tomelet::md5OfText(text, form) == md5hash;
    if (isUnchanged) return;
    stamp = fileStamp(path);
    const auto present = readFile(path);
    isForeign = present && !md5OfFile.isEmpty() && tomelet::md5OfBytes(*present) != md5OfFile;
    if (isForeign) return;
    const QByteArray bytes = bytesOfText(text, form);
    md5OfText = tomelet::md5OfText(text, form);
    md5OfBytes = tomelet::md5OfBytes(bytes);
    facts = factsOfText(path, text);
    file = std::make_unique<StagedFile>(path, bytes);
}

// -- beginning --------------------------------------------------------------------------------------------------------

// A plain text that goes into its file as it stands. The first save, a new name and pages have more to them.
bool TMLTDocumentViewController::canSaveInBackground() const
{
    if (m_md5hash.isEmpty() || m_kind != DocumentViewKind::PlainText || !m_isEditable || m_path.isEmpty()) return false;
    if (lowerExtension(m_path).startsWith(u"htm")) return false;
    if (m_isTyping) return true;
    return !m_forcedSave && !(m_titleIsFirstLineOfText && !nameFitsTitle(m_path, m_view.text()));
}

void TMLTDocumentViewController::autosave()
{
    if (m_save) {
        m_savesAgain = true; // the disk is slow today
        return;
    }
    if (!canSaveInBackground()) return writeTextToFile();
    cancelPendingSave();
    startSave();
}

void TMLTDocumentViewController::startSave()
{
    auto save = std::make_shared<BackgroundSave>();
    save->path = m_path;
    save->shownText = m_shownText;
    save->viewText = m_view.text();
    save->form = m_form;
    save->md5hash = m_md5hash;
    save->md5OfFile = m_md5OfFile;
    save->changes = m_changes;
    save->isTyping = m_isTyping;
    m_save = save;
    m_saves.add([this, save] {
        save->run();
        QMetaObject::invokeMethod(
            &m_mainThread, [this, save] { completeSave(save); }, Qt::QueuedConnection);
    });
}

void TMLTDocumentViewController::waitForSave()
{
    if (!m_save) return;
    m_saves.drain();
    completeSave(m_save);
}

// -- ending -----------------------------------------------------------------------------------------------------------

void TMLTDocumentViewController::completeSave(std::shared_ptr<BackgroundSave> save)
{
    if (m_save != save) return;
    m_save.reset();
    if (std::exchange(m_savesAgain, false) && (m_forcedSave || m_changes != save->changes)) saveAfter(100ms);
    if (save->isUnchanged) return takeUnchanged(m_changes != save->changes);
    if (save->isForeign || m_path != save->path || fileStamp(m_path) != save->stamp) {
        m_isTyping = save->isTyping;
        writeTextToFile();
        m_isTyping = false;
        return;
    }
    if (isReadOnlyDocument(m_path))
        return tellFailure(localized(TOMELET_TEXT("%1 is write-protected.")).arg(lastPathComponent(m_path)));
    if (const WriteResult written = save->file->commit(); !written) return tellFailure(written.message);
    commitSave(*save);
    m_saves.add([save] { save->file->flushName(); });
}

void TMLTDocumentViewController::commitSave(BackgroundSave &save)
{
    m_form = save.form;
    m_md5hash = save.md5OfText;
    m_md5OfFile = save.md5OfBytes;
    m_shownText = save.text;
    noteFile();
    m_failure.clear();
    m_isEdited = m_changes != save.changes;
    m_view.setEdited(m_isEdited);
    takeReferences(m_path, save.facts.references, m_referencedDocuments);
    announceSave(m_path);
    takeEmbeddedContexts(m_path, save.facts.contexts, m_embeddedContexts);
    takePictures(m_path, save.facts.pictures);
    m_modDateOfPresentedPlist = QFileInfo(tm_plistPath(m_path)).lastModified();
}

} // namespace tomelet
