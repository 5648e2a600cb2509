// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: a save while somebody types. A thread of its own makes the bytes, compares the hashes, looks
// for what the text refers to and waits for the disk; what it wrote has no name yet.
#include "editor/TMLTDocumentViewController.h"

#include <utility>

namespace tomelet {

using namespace std::chrono_literals;

void TMLTDocumentViewController::autosave()
{
    if (m_save) { // the disk is slow today
        m_savesAgain = true;
        m_renamesAgain = m_renamesAgain || !m_isTyping;
        return;
    }
    m_save = beginSave();
    if (!m_save) return;
    m_saves.add([this, save = m_save] {
        save->run();
        QMetaObject::invokeMethod(
            &m_mainThread, [this, save] { endSave(save); }, Qt::QueuedConnection);
    });
}

void TMLTDocumentViewController::waitForSave()
{
    if (!m_save) return;
    m_saves.drain();
    endSave(m_save);
}

void TMLTDocumentViewController::endSave(std::shared_ptr<DocumentSave> save)
{
    if (m_save != save) return;
    m_save.reset();
    const bool again = std::exchange(m_savesAgain, false);
    const bool renames = std::exchange(m_renamesAgain, false);
    if (again && renames) saveAfter(100ms);
    else if (again && m_changes != save->changes) saveWhileTypingAfter(100ms);
    completeSave(save);
}

} // namespace tomelet
