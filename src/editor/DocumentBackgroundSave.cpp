// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: a save while somebody types. A thread of its own makes the bytes, compares the hashes, looks
// for what the text refers to and waits for the disk; what it wrote has no name yet. The main thread then looks whether
// all is as it was when the save began, and renames. Whatever came between goes the long way of writeTextToFile.
#include "editor/TMLTDocumentViewController.h"

#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/ItemPath.h"

#include <QFileInfo>

#include <utility>

namespace tomelet {

using namespace std::chrono_literals;

struct TMLTDocumentViewController::BackgroundSave : DocumentSave
{
    // What it begins with, too.
    QString md5OfFile;
    quint64 changes = 0;
    bool isTyping = false;

    // What the thread finds out.
    std::optional<FileStamp> stamp; ///< of the file that was compared
    bool isForeign = false;         ///< somebody else wrote the file meanwhile
    std::unique_ptr<StagedFile> file;

    void run();
};

void TMLTDocumentViewController::BackgroundSave::run()
{
    read();
    if (isUnchanged) return;
    stamp = fileStamp(path);
    const auto present = readFile(path);
    isForeign = present && !md5OfFile.isEmpty() && tomelet::md5OfBytes(*present) != md5OfFile;
    if (isForeign) return;
    writeSidecarForWebview();
    make();
    file = std::make_unique<StagedFile>(path, bytes);
}

// -- beginning --------------------------------------------------------------------------------------------------------

// The first save and a new name have more to them.
bool TMLTDocumentViewController::canSaveInBackground() const
{
    if (m_md5hash.isEmpty() || !m_isEditable || m_path.isEmpty() || navigatedAway()) return false;
    if (m_isTyping) return true;
    const bool isPage = m_kind == DocumentViewKind::Formatted;
    const QString shown = m_titleIsFirstLineOfText ? isPage ? m_view.innerText() : m_view.text() : QString();
    return !m_forcedSave && !(m_titleIsFirstLineOfText && !nameFitsTitle(m_path, shown));
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
    begin(*save);
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
    const bool again = std::exchange(m_savesAgain, false);
    if (again && m_forcedSave) saveAfter(100ms);
    else if (again && m_changes != save->changes) saveWhileTypingAfter(100ms);
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
    takeSaved(m_changes != save->changes);
    finishSave(*save, m_path);
    m_saves.add([save] { save->file->flushName(); });
}

} // namespace tomelet
