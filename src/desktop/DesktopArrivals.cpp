// SPDX-License-Identifier: GPL-3.0-or-later
// The windows for what comes from elsewhere: URLs of the program's own scheme, files, and services for other programs.
#include "desktop/DesktopShell.h"

#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/urls/UrlAction.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QMessageBox>
#include <QMimeData>

namespace tomelet::desktop {

void DesktopShell::takeUrlsAndServices()
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        if (now) noteFront(now->window());
    });
    QDesktopServices::setUrlHandler(QStringLiteral("tomelet"), this, "openUrl");
}

// A page that is being written tells us of it.
DesktopShell::~DesktopShell()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("tomelet"));
    platform().serialQueue.drain();
}

// An action that shows nothing leaves the window to what it showed the last time.
bool DesktopShell::urlShowsSomething(const QString &url)
{
    const auto action = parseUrlAction(url);
    return action && (action->kind == UrlAction::Show || action->kind == UrlAction::Search);
}

void bringToTop(QWidget &window)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

void DesktopShell::handOver(const QString &argument)
{
    if (serviceOptions().contains(argument)) return runService(argument);
    const bool isUrl = parseUrlAction(argument).has_value();
    if (!isUrl || urlShowsSomething(argument)) bringToTop(m_window);
    if (isUrl) handleTomeletURL(argument, *this);
    else if (!argument.isEmpty()) m_application.applicationOpenFile(argument, false);
}

// -- URLs -------------------------------------------------------------------------------------------------------------

// What a link in a document asks for.
void DesktopShell::openUrl(const QUrl &url)
{
    handleTomeletURL(QString::fromLatin1(url.toEncoded()), *this);
}

bool DesktopShell::bringToFront(const QString &path)
{
    const bool isWhole = itemExists(path);
    for (const QPointer<DocumentWindow> &window : m_extraWindows) {
        if (!window || !window->showOpenDocument(isWhole ? path : tm_pathWithoutAnchor(path),
                                                 isWhole ? QString() : tm_pathAnchor(path)))
            continue;
        bringToTop(*window);
        return true;
    }
    return false;
}

void DesktopShell::showAlert(const QString &title, const QString &text)
{
    const QString heading = QString(title.toHtmlEscaped()).replace(u'\n', QStringLiteral("<br>"));
    auto *box = new QMessageBox(QMessageBox::NoIcon, title.section(u'\n', 0, 0),
                                QStringLiteral("<b>%1</b>").arg(heading), QMessageBox::Close, &m_window);
    box->setInformativeText(text);
    box->setAttribute(Qt::WA_DeleteOnClose);
    bringToTop(m_window);
    box->open();
}

void DesktopShell::pageImported(const QString &path)
{
    QMetaObject::invokeMethod(
        this, [this, path] { tellImport(path); }, Qt::QueuedConnection);
}

// It shows and goes: what was asked for came.
void DesktopShell::tellImport(const QString &path)
{
    static constexpr int milliseconds = 3000;
    const MenuTitle name = tm_pathFormattedForContextMenu(tm_normalizedPath(path));
    const auto open = [this, path] {
        bringToTop(m_window);
        m_window.showItem(path);
    };
    m_notifications.present({path,
                             localized(TOMELET_TEXT("Import Complete")),
                             name.folders + name.name,
                             {{QStringLiteral("transient"), true}},
                             milliseconds,
                             open});
}

// -- services ---------------------------------------------------------------------------------------------------------

static SelectedText selectedText()
{
    const QClipboard *clipboard = QApplication::clipboard();
    const auto mode = clipboard->supportsSelection() ? QClipboard::Selection : QClipboard::Clipboard;
    const QMimeData *data = clipboard->mimeData(mode);
    return data ? SelectedText{data->text(), data->html()} : SelectedText{};
}

static const QString newNote = QStringLiteral("--new-note");
static const QString addSelection = QStringLiteral("--add-selection");
static const QString addSelectionPlain = QStringLiteral("--add-selection-plain");
static const QString insertSelection = QStringLiteral("--insert-selection");

QStringList DesktopShell::serviceOptions()
{
    return {newNote, addSelection, addSelectionPlain, insertSelection};
}

void DesktopShell::runService(const QString &option)
{
    if (option == newNote) m_services.addQuickNote();
    else if (option == addSelection) m_services.addSelection(selectedText());
    else if (option == addSelectionPlain) m_services.addSelectionPlain(selectedText());
    else if (option == insertSelection) (void)m_services.insertIntoCurrentDocument(selectedText());
}

void DesktopShell::openQuickNote()
{
    auto *window = new DocumentWindow(m_window.itemActions(), {});
    addWindow(window);
    window->startNote();
    bringToTop(*window);
}

void DesktopShell::noteFront(QWidget *window)
{
    m_windowOrder.removeIf([window](const QPointer<QWidget> &other) { return !other || other == window; });
    m_windowOrder.prepend(window);
}

bool DesktopShell::insertIntoFrontmostDocument(const QString &text)
{
    for (const QPointer<QWidget> &window : m_windowOrder) {
        auto *extra = qobject_cast<DocumentWindow *>(window);
        if (window != &m_window && !extra) continue; // a dialog
        if ((extra ? extra->desk() : m_window.desk()).current()->insertText(text)) return true;
    }
    return false;
}

} // namespace tomelet::desktop
