// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: whether and when a document may be typed on.
#include "editor/TMLTDocumentViewController.h"

#include "conversion/TextUtilities.h"
#include "foundation/Platform.h"
#include "library/Properties.h"

#include <QFileInfo>

namespace tomelet {

using namespace std::chrono_literals;

bool isReadOnlyDocument(const QString &path)
{
    if (path.isEmpty()) return false;
    if (path.contains(u"/com.apple.documentVersions/")) return true;
    if (settings().stringList(QStringLiteral("iCloudArrayOfUnresolvedConflicts")).contains(path)) return true;
    if (tm_propertyForKey(path, QStringLiteral("R/O")).toString() == u"1") return true;
    const QFileInfo file(path);
    // A file that nobody may write is protected on purpose, also where the rights of the user would suffice.
    const auto anyWrite = QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    return file.exists() && (!(file.permissions() & anyWrite) || !file.isWritable());
}

bool TMLTDocumentViewController::refusesEditing() const
{
    return !m_isEditable || isReadOnlyDocument(m_path);
}

bool TMLTDocumentViewController::textShouldBeginEditing()
{
    if (m_kind != DocumentViewKind::PlainText || refusesEditing()) return false;
    if (!m_md5hash.isEmpty()) return true;
    DocumentSave unsaved;
    begin(unsaved);
    unsaved.read();
    m_md5hash = unsaved.md5OfText;
    return true;
}

bool TMLTDocumentViewController::shouldBeginEditingInDOMRange(bool onClickable)
{
    if (m_kind != DocumentViewKind::Formatted || onClickable || refusesEditing()) return false;
    if (m_view.mainFrameURL() != m_formattedMainFrameURL || isCombinedMarkdown(m_path)) return false;
    if (!m_md5hash.isEmpty()) return true;
    DocumentSave unsaved;
    begin(unsaved);
    unsaved.read();
    m_md5hash = unsaved.md5OfText;
    if (!m_path.isEmpty())
        m_titleIsFirstLineOfText = tm_stringMatchesFirstLineOfText(nameWithoutExtension(m_path), unsaved.visibleText);
    return true;
}

bool TMLTDocumentViewController::shouldChangeText(bool isUndo)
{
    if (isUndo || textShouldBeginEditing()) return true;
    m_view.tm_showUnlockAlert();
    return false;
}

void TMLTDocumentViewController::textDidChange()
{
    m_isEdited = true;
    ++m_changes;
    m_view.setEdited(true);
    if (settings().boolean(QStringLiteral("noAutosaveText"))) return;
    const bool soon = m_kind == DocumentViewKind::PlainText && m_view.isBlankUpToCaretLine();
    saveAfter(soon ? 500ms : 600ms);
    if (!m_savesWhileTyping) saveWhileTypingAfter(300ms);
}

void TMLTDocumentViewController::saveTyping()
{
    if (m_isEdited && !settings().boolean(QStringLiteral("noAutosaveText"))) writeTextToFile();
}

void TMLTDocumentViewController::saveAfter(std::chrono::milliseconds pause)
{
    platform().delayedCalls.schedule(QStringLiteral("writeTextToFile"), callArgument(), pause, [this] { autosave(); });
}

void TMLTDocumentViewController::saveWhileTypingAfter(std::chrono::milliseconds pause)
{
    m_savesWhileTyping = true;
    platform().delayedCalls.schedule(QStringLiteral("saveWhileTyping"), callArgument(), pause,
                                     [this] { saveWhileTyping(); });
}

// Who types without a pause loses no more than 0.6 second when the program ends: half of that is left for a page that
// has to tell what it holds, and for the disk. The file gets its name at the next pause: a title that is half typed is
// none.
void TMLTDocumentViewController::saveWhileTyping()
{
    m_savesWhileTyping = false;
    m_isTyping = true;
    autosave();
    m_isTyping = false;
    if (m_md5hash.isEmpty()) return;
    const QString visible = m_kind == DocumentViewKind::Formatted ? m_view.innerText() : m_view.text();
    if (titleHasChanged(visible) || (m_isEdited && !m_save)) saveAfter(600ms);
}

} // namespace tomelet
