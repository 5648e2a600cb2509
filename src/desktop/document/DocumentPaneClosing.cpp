// SPDX-License-Identifier: GPL-3.0-or-later
// The document's pane: a text that cannot be saved is not left without a word, whichever way its window goes.
#include "desktop/document/DocumentPane.h"

#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/PathForms.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>

namespace tomelet::desktop {

// Every window asks its panes before it closes, and so does the end of the program.
void DocumentPane::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    window()->installEventFilter(this);
}

bool DocumentPane::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Close || watched != window() || mayLeave()) return false;
    event->ignore();
    return true;
}

QString DocumentPane::nameOfDocument() const
{
    return path().isEmpty() ? localized(TOMELET_TEXT("New Document")) : lastPathComponent(path());
}

bool DocumentPane::mayLeave()
{
    if (m_isLeaving || m_isSettling) return false;
    settlePage();
    m_isLeaving = true;
    bool asks = true;
    while (asks) {
        m_controller.writeTextToFile();
        asks = m_controller.isEdited() && askAboutUnsaved();
    }
    m_isLeaving = false;
    if (m_controller.isEdited()) return false;
    dropRescue();
    return true;
}

// True when saving is to be tried again. What is given up, or saved elsewhere, counts as edited no more.
bool DocumentPane::askAboutUnsaved()
{
    enum Answer { TryAgain, SaveElsewhere, Discard };
    for (auto *alert : findChildren<QMessageBox *>()) alert->close(); // which told the same
    // The other documents' turn may never come.
    for (QWidget *widget : QApplication::allWidgets())
        if (auto *pane = qobject_cast<DocumentPane *>(widget); pane && pane->m_controller.isEdited())
            pane->keepRescue();
    QString text = m_controller.failure();
    if (!m_rescue.isEmpty()) text += u'\n' + localized(TOMELET_TEXT("Until then a copy is kept as %1.")).arg(m_rescue);
    const int answer = askQuestion({localized(TOMELET_TEXT("\"%1\" could not be saved")).arg(nameOfDocument()),
                                    text,
                                    {localized(TOMELET_TEXT("Try Again")), localized(TOMELET_TEXT("Save Elsewhere...")),
                                     localized(TOMELET_TEXT("Discard Text")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer == TryAgain || (answer == SaveElsewhere && !saveElsewhere())) return true;
    if (answer == Discard || answer == SaveElsewhere) m_controller.discardChanges();
    return false;
}

bool DocumentPane::saveElsewhere()
{
    const QString name = path().isEmpty() ? nameOfDocument() + QStringLiteral(".md") : lastPathComponent(path());
    const QString file =
        QFileDialog::getSaveFileName(this, localized(TOMELET_TEXT("Save Elsewhere")), joinPath(QDir::homePath(), name));
    if (file.isEmpty()) return false;
    const WriteResult written = m_controller.saveCopy(file);
    if (!written) QMessageBox::warning(this, localized(TOMELET_TEXT("Saving Error")), written.message);
    return bool(written);
}

QString DocumentPane::folderOfUnsaved()
{
    return joinPath(dataDirectory(), QStringLiteral("Unsaved"));
}

// Where the session ends while the question stands, nobody waits for the answer.
void DocumentPane::keepRescue()
{
    const QString folder = folderOfUnsaved();
    if (!makeFolder(folder)) return;
    if (m_rescue.isEmpty()) m_rescue = tm_uniqueNameForFileatPath(nameOfDocument(), folder);
    if (const WriteResult written = m_controller.saveCopy(m_rescue); !written) {
        logLine(written.message);
        m_rescue.clear();
    }
}

void DocumentPane::dropRescue()
{
    if (!m_rescue.isEmpty()) QFile::remove(m_rescue);
    m_rescue.clear();
}

} // namespace tomelet::desktop
