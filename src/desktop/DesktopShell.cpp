// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/DesktopShell.h"

#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/preferences/PreferencesWindow.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "server/Core/Log.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <cstdlib>

namespace tomelet::desktop {

namespace {

int askWithBox(QWidget *parent, const Question &question)
{
    QMessageBox box(QMessageBox::NoIcon, question.title,
                    QStringLiteral("<b>%1</b>").arg(question.title.toHtmlEscaped()), QMessageBox::NoButton, parent);
    box.setInformativeText(question.text);
    QList<QAbstractButton *> buttons;
    for (qsizetype i = 0; i < question.buttons.size(); ++i) {
        const bool last = i + 1 == question.buttons.size();
        QAbstractButton *button =
            box.addButton(question.buttons[i], last ? QMessageBox::RejectRole : QMessageBox::AcceptRole);
        buttons.append(button);
    }
    box.exec();
    const qsizetype taken = buttons.indexOf(box.clickedButton());
    return int(taken < 0 ? buttons.size() - 1 : taken);
}

HeldKeys heldKeys()
{
    const Qt::KeyboardModifiers keys = QApplication::queryKeyboardModifiers();
    return {keys == Qt::AltModifier, keys == Qt::ControlModifier};
}

} // namespace

DesktopShell::DesktopShell()
    : m_application(*this)
    , m_server(settings(), [this](const QString &title, const QString &text) { m_window.showMessage(title, text); })
{
    http::setLogSink([](const std::string &line) { logLine(QString::fromStdString(line)); });
    connect(&m_window, &MainWindow::preferencesWanted, this, &DesktopShell::showPreferences);
    connect(&m_window, &MainWindow::quitWanted, this, &DesktopShell::closeAll);
    m_window.setApplication(m_application);
    platform().ask = [this](const Question &question) { return askWithBox(&m_window, question); };
    connect(&m_theme, &Theme::desktopChanged, this, [this](bool dark) { m_application.systemAppearanceChanged(dark); });
    connect(&m_window, &MainWindow::extraWindowWanted, this, [this](const QString &path) {
        openWindow({{path, {}, true, {}, {}}});
    });
    takeUrlsAndServices();
}

void DesktopShell::launch(const QString &folder, const QString &next)
{
    const HeldKeys keys = heldKeys();
    m_application.setHandlingUrlEvent(urlShowsSomething(next));
    m_application.systemAppearanceChanged(m_theme.desktopIsDark());
    setDark(settings().boolean(QStringLiteral("darkTheme")));
    if (!folder.isEmpty() && makeFolder(folder)) m_application.tm_setRootToPath(QDir(folder).absolutePath());
    m_application.applicationWillFinishLaunching(keys);
    m_window.restoreLayout();
    m_window.show();
    m_delivery.emplace(m_reminders);
    // The first paint comes before anything is read that it does not show.
    QTimer::singleShot(0, this, [this, keys, chosen = !folder.isEmpty()] {
        if (rootIsInForce() && !chosen && !keys.option) {
            m_application.initAppSettings(false);
            m_window.outlineController().initFileCoordinationAndTaskLists();
            m_window.outlineController().tm_expandSavedPaths();
            m_window.presentIndex();
        }
        m_application.applicationDidFinishLaunching(keys);
        const QString copies = DocumentPane::folderOfUnsaved();
        if (!namesInFolder(copies).isEmpty())
            m_window.showMessage(localized(TOMELET_TEXT("Some texts could not be saved")),
                                 localized(TOMELET_TEXT("Copies of them lie in %1.")).arg(copies));
    });
}

void WindowReminders::present(const Reminder &reminder, const Answers &answers)
{
    const auto opened = [this, answers] {
        bringToTop(m_window);
        answers.opened();
    };
    m_reminders.present(reminder, {opened, answers.failed});
}

void DesktopShell::showWelcome(const WelcomeChoices &choices)
{
    m_window.showWelcome(choices);
}

void DesktopShell::hideWelcome()
{
    m_window.hideWelcome();
}

void DesktopShell::setDark(bool dark)
{
    Theme::apply(dark);
}

void DesktopShell::showAllPanes()
{
    m_window.showAllPanes();
}

QString DesktopShell::pickFolder(const QString &message, const QString &prompt)
{
    QFileDialog dialog(&m_window, QString(message).replace(u'\n', u' '), QDir::homePath());
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setLabelText(QFileDialog::Accept, prompt);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

// -- extra windows ----------------------------------------------------------------------------------------------------

void DesktopShell::addWindow(DocumentWindow *window)
{
    m_extraWindows.append(window);
    connect(window, &DocumentWindow::quitWanted, this, &DesktopShell::closeAll);
}

void DesktopShell::openWindow(const QList<WindowEntry> &entries)
{
    QList<WindowEntry> there;
    for (const WindowEntry &entry : entries)
        if (itemExists(entry.path)) there.append(entry);
    if (there.isEmpty()) return;
    auto *window = new DocumentWindow(m_window.itemActions(), there);
    addWindow(window);
    if (there.first().minimized == u"1") window->showMinimized();
    else window->show();
}

// Tabs of one number belong to one window; "0" is the main window's, and an entry without a number stands alone.
void DesktopShell::openItemsInNewWindow(const QList<WindowEntry> &entries)
{
    for (qsizetype i = 0; i < entries.size();) {
        const QString group = entries[i].tab;
        QList<WindowEntry> tabs{entries[i++]};
        while (!group.isEmpty() && i < entries.size() && entries[i].tab == group) tabs.append(entries[i++]);
        if (group == u"0") m_window.desk().restore(tabs);
        else openWindow(tabs);
    }
}

// The one document of a window without tabs is kept by itself, unless its view is to be told.
SessionState DesktopShell::sessionState()
{
    SessionState state;
    state.mainWindowVisible = m_window.isVisible();
    state.mainWindowShowsNotebook = m_window.showsNotebook();
    state.mainDocument = m_window.documentOnDisplay();
    m_window.saveLayout();
    if (const QList<WindowEntry> tabs = m_window.desk().entries(QStringLiteral("0"));
        tabs.size() > 1 || (tabs.size() == 1 && tabs.first().toggled))
        state.windows = tabs;
    int group = 0;
    for (const QPointer<DocumentWindow> &window : m_extraWindows)
        if (window) state.windows += window->entries(QString::number(++group));
    return state;
}

void DesktopShell::startServer()
{
    m_server.launchTomeletServer();
}

void DesktopShell::stopServer()
{
    m_server.terminateTomeletServer();
}

void DesktopShell::showPreferences()
{
    auto *window = new PreferencesWindow(
        m_server,
        [this] {
            m_application.systemAppearanceChanged(m_theme.desktopIsDark());
            setDark(settings().boolean(QStringLiteral("darkTheme")));
        },
        &m_window);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
}

// The main window notes what the others show, so it is the first to go.
void DesktopShell::closeAll()
{
    m_window.close();
    QApplication::closeAllWindows();
}

void DesktopShell::closeMainWindow()
{
    m_window.hide();
}

void DesktopShell::saveExpandedPaths()
{
    m_window.outlineController().tm_saveExpandedPaths();
}

void DesktopShell::quit()
{
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
}

} // namespace tomelet::desktop
