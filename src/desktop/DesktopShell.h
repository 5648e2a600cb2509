// SPDX-License-Identifier: GPL-3.0-or-later
// The windows behind the application's logic.
#pragma once

#include "desktop/DocumentWindow.h"
#include "desktop/MainWindow.h"
#include "desktop/Theme.h"
#include "library/AppDelegate.h"
#include "library/urls/PageFetcher.h"
#include "library/urls/ServiceProvider.h"
#include "library/urls/UrlActions.h"
#include "organising/dates/ReminderDBus.h"
#include "organising/dates/ReminderDelivery.h"
#include "server/ServerControl.h"

#include <QObject>
#include <QPointer>

#include <optional>

class QTimer;

namespace tomelet::desktop {

/// Reminders of the desktop, which bring the window to the front when the person answers one.
class WindowReminders final : public ReminderPresenter
{
public:
    explicit WindowReminders(QWidget &window)
        : m_window(window)
    {}
    void present(const Reminder &reminder, const Answers &answers) override;
    void withdraw(const QString &path) override { m_reminders.withdraw(path); }

private:
    QWidget &m_window;
    DesktopReminders m_reminders;
};

/// Also when it was minimized or hidden.
void bringToTop(QWidget &window);

class DesktopShell final : public QObject, public AppShell, private UrlActionShell, private ServiceShell
{
    Q_OBJECT

public:
    DesktopShell();
    ~DesktopShell() override;

    /// Shows the main window and lets the application start. `folder` becomes the root when it is not empty. What is to
    /// be handed over next may want the window for itself.
    void launch(const QString &folder, const QString &next = {});
    /// What a second start of the program hands over: a folder, a file, a tomelet URL, a service by its option, or
    /// nothing but the wish to see the window.
    void handOver(const QString &argument);
    [[nodiscard]] TMLTServiceProvider &services() { return m_services; }
    /// The options that stand for services, such as "--new-note".
    [[nodiscard]] static QStringList serviceOptions();

    // AppShell
    void showWelcome(const WelcomeChoices &choices) override;
    void hideWelcome() override;
    void setDark(bool dark) override;
    void showAllPanes() override;
    [[nodiscard]] QString pickFolder(const QString &message, const QString &prompt) override;
    void openItemsInNewWindow(const QList<WindowEntry> &entries) override;
    void closeMainWindow() override;
    void startServer() override;
    void stopServer() override;
    [[nodiscard]] SessionState sessionState() override;
    void saveExpandedPaths() override;
    void quit() override;

private Q_SLOTS:
    void openUrl(const QUrl &url);

private:
    // UrlActionShell
    void fetch(const QUrl &address, Fetched done) override { m_fetcher.fetch(address, std::move(done)); }
    bool bringToFront(const QString &path) override;
    void showAlert(const QString &title, const QString &text) override;
    void pageImported(const QString &path) override;
    // ServiceShell
    void openQuickNote() override;
    bool insertIntoFrontmostDocument(const QString &text) override;

    void takeUrlsAndServices();
    [[nodiscard]] static bool urlShowsSomething(const QString &url);
    void runService(const QString &option);
    void addWindow(DocumentWindow *window);
    void noteFront(QWidget *window);
    void tellImport(const QString &path);
    void openWindow(const QList<WindowEntry> &entries);
    void showPreferences();
    void closeAll();

    AppDelegate m_application;
    Theme m_theme;
    MainWindow m_window;
    ServerControl m_server;
    WindowReminders m_reminders{m_window};
    std::optional<ReminderDelivery> m_delivery; // from the moment on at which the root is known
    QList<QPointer<DocumentWindow>> m_extraWindows;
    QList<QPointer<QWidget>> m_windowOrder; ///< from front to back
    PageFetcher m_fetcher;
    TMLTServiceProvider m_services{*this};
    DesktopNotifications m_notifications;
};

} // namespace tomelet::desktop
