// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: names that follow the first line of the text.
#include "editor/TMLTDocumentViewController.h"

#include "conversion/TextUtilities.h"
#include "editor/DocumentFacts.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/ItemOperations.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/RecentItems.h"

namespace tomelet {

bool nameFitsTitle(const QString &path, const QString &text)
{
    const QString stem = nameWithoutExtension(path);
    if (tm_stringMatchesFirstLineOfText(stem, text)) return true;
    qsizetype digits = stem.size();
    while (digits > 0 && stem[digits - 1].isDigit()) --digits;
    const bool isNumbered = digits < stem.size() && digits > 0 && stem[digits - 1] == u' ';
    return isNumbered && tm_stringMatchesFirstLineOfText(stem.left(digits - 1), text);
}

bool TMLTDocumentViewController::titleHasChanged(const QString &visibleText) const
{
    return m_titleIsFirstLineOfText && !m_path.isEmpty() && !nameFitsTitle(m_path, visibleText);
}

// False when nothing is left to be saved: the document was emptied and deleted, or must wait.
bool TMLTDocumentViewController::followTitle(DocumentSave &save)
{
    if (!titleHasChanged(save.visibleText)) return true;
    if (isReadOnlyDocument(m_path)) {
        tellWriteProtected();
        return false;
    }
    if (!setForeignVersionAside()) return false;
    const QString title = tm_firstLineOfText(save.visibleText);
    if (title.isEmpty()) {
        deleteEmptiedDocument();
        return false;
    }
    if (!moveToTitle(title)) return true;
    m_md5OfFile.clear(); // the move may have rewritten the document's own links
    tm_addToRecentItems(m_path);
    m_view.addToBackList(m_path);
    postSilentMove(save.previousPath, m_path);
    save.path = m_path;
    save.md5OfFile.clear();
    save.isForced = true;
    return true;
}

bool TMLTDocumentViewController::moveToTitle(const QString &title)
{
    const QString name = fileNameFor(tm_escapeIllegalCharacters(title), m_path);
    const QString present = lastPathComponent(m_path);
    QString target = joinPath(m_parentPath, name);
    if (name != present && name.compare(present, Qt::CaseInsensitive) == 0) {
        logLine(QStringLiteral("just changing case, so rename"));
        const QString between = joinPath(m_parentPath, QStringLiteral("._") + name);
        if (!tm_moveItemToPath(m_path, between)) return false;
        if (!tm_moveItemToPath(between, target)) {
            m_path = tm_moveItemToPath(between, m_path) ? m_path : between;
            return false;
        }
    } else {
        target = tm_uniqueNameForFileatPath(name, m_parentPath);
        if (!tm_moveItemToPath(m_path, target)) return false;
    }
    m_path = target;
    return true;
}

// Into the trash, where there is one: a text that was cut out to be pasted back should not cost the properties.
void TMLTDocumentViewController::deleteEmptiedDocument()
{
    const QString path = m_path;
    const QString properties = tm_plistPath(path);
    const bool taken = platform().trash->take(path).has_value();
    if (!taken && !tm_deleteItemAtPath(path))
        return tellFailure(localized(TOMELET_TEXT("%1 could not be deleted.")).arg(lastPathComponent(path)));
    if (taken && itemExists(properties)) (void)platform().trash->take(properties);
    m_path.clear();
    m_isNew = true;
    m_fileExtensionForNewDoc = pathExtension(path);
    m_md5OfFile.clear();
    m_shownText.clear();
    m_md5hash = md5OfText({}, m_form);
    m_isEdited = m_forcedSave = false;
    m_view.setEdited(false);
    notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), path);
}

bool TMLTDocumentViewController::tm_renameToFirstLineOfText()
{
    if (m_path.isEmpty()) return false;
    writeTextToFile();
    if (m_path.isEmpty() || m_isEdited) return false;
    const bool isPage = m_kind == DocumentViewKind::Formatted;
    const QString title = tm_firstLineOfText(isPage ? m_view.innerText() : m_view.text());
    if (title.isEmpty() || tm_stringMatchesFirstLineOfText(nameWithoutExtension(m_path), title)) return false;
    const QString name = fileNameFor(tm_escapeIllegalCharacters(title), m_path);
    const bool caseAlone = name.compare(lastPathComponent(m_path), Qt::CaseInsensitive) == 0;
    if (!caseAlone && itemExists(joinPath(m_parentPath, name))) {
        m_view.showAlert(localized(TOMELET_TEXT("Cannot Rename to First Line of Text")),
                         localized(TOMELET_TEXT("The title \"%1\" is already taken.")).arg(title));
        return false;
    }
    const QString previousPath = m_path;
    if (!moveToTitle(title)) return false;
    m_titleIsFirstLineOfText = true;
    noteFile();
    postSilentMove(previousPath, m_path);
    return true;
}

} // namespace tomelet
