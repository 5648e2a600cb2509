// SPDX-License-Identifier: GPL-3.0-or-later
// The application from launch to termination: which root is in force, what comes on the screen first, what is saved
// at the end. The windows are behind AppShell.
#pragma once

#include "library/AppState.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace tomelet {

/// Keys that are held while the program starts.
struct HeldKeys
{
    bool option = false;  ///< Alt alone: pick another root, set nothing up
    bool command = false; ///< Ctrl alone: open no document
};

/// What the welcome screen offers beside choosing a folder.
struct WelcomeChoices
{
    QString cloudPath;   ///< "" where there is none
    QString dropboxPath; ///< "" where there is none
    enum Highlight { FolderChoice, CloudChoice, DropboxChoice } highlight = FolderChoice;
};

/// What the windows had on them at termination.
struct SessionState
{
    bool mainWindowVisible = true;
    bool mainWindowShowsNotebook = true;
    QString mainDocument;
    QList<WindowEntry> windows; ///< extra windows and tabs, in the order in which they are to come back
};

/// What the application asks of its windows. The base class is a program without any.
class AppShell
{
public:
    virtual ~AppShell() = default;
    virtual void showWelcome(const WelcomeChoices &) {}
    virtual void hideWelcome() {}
    virtual void setDark(bool) {}
    virtual void showAllPanes() {}
    virtual void showWhatsNew() {}
    /// A folder that the person picks, "" when the picker was cancelled.
    [[nodiscard]] virtual QString pickFolder(const QString &message, const QString &prompt);
    virtual void openItemsInNewWindow(const QList<WindowEntry> &) {}
    virtual void closeMainWindow() {}
    virtual void startServer() {}
    virtual void stopServer() {}
    virtual void saveReadingPosition() {}
    [[nodiscard]] virtual SessionState sessionState() { return {}; }
    virtual void saveExpandedPaths() {}
    virtual void quit() {}
};

class AppDelegate
{
public:
    explicit AppDelegate(AppShell &shell)
        : m_shell(shell)
    {}

    void applicationWillFinishLaunching(HeldKeys keys);
    void applicationDidFinishLaunching(HeldKeys keys);
    void applicationWillTerminate();
    /// The system hands over a file or folder. With `ask` the person chooses what becomes of it. False: refused.
    bool applicationOpenFile(const QString &path, bool ask);

    /// Sets the current root up and tells the shell what came of it.
    void initAppSettings(bool chosenByPerson);
    /// The picker at launch; cancelling it ends the program.
    void tm_selectTomeletRoot(bool optionHeld);
    /// The picker of the storage menu; cancelling it leaves everything as it was.
    void selectNewHomeFolder();
    void tm_selectiCloudAsRoot();
    void tm_selectDropboxAsRoot();
    /// Installs a root from the welcome screen or the command line.
    void tm_setRootToPath(const QString &path);
    void tm_switchStorageLocation(const QString &path);

    /// The system's appearance changed, or its first state at launch.
    void systemAppearanceChanged(bool dark);
    void tm_applyAppearance();

    void reopenDocumentsOnLaunch();
    void showMostRecentDocument();
    /// What a new root shows first: its newest recent item, else its first document by name.
    void showFirstDocument();

    void setHandlingUrlEvent(bool handling) { m_handlingUrlEvent = handling; }
    [[nodiscard]] bool ignoresDroppedFiles() const { return m_ignoreDroppedFilesOnLaunch; }

private:
    void showWhatLastSessionShowed(HeldKeys keys);
    bool openDroppedFile(const QString &path, bool ask);
    [[nodiscard]] WelcomeChoices welcomeChoices() const;

    AppShell &m_shell;
    bool m_ignoreDroppedFilesOnLaunch = false;
    bool m_handlingUrlEvent = false;
};

/// Removes cached thumbnails and texts whose item is gone. Leaves the cache alone when the root looks unmounted.
void sweepCache();

} // namespace tomelet
