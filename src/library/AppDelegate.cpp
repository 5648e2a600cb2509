// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/AppDelegate.h"

#include "foundation/Collation.h"
#include "foundation/Directories.h"
#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/RecentItems.h"
#include "library/SetUp.h"
#include "library/StorageLocations.h"

#include <QDirIterator>
#include <QFileInfo>

namespace tomelet {

using namespace std::chrono_literals;

static const QString rootKeyName = QStringLiteral("TomeletFolder");
static const QString gracefulKey = QStringLiteral("terminatedGracefully");
static const QString hideBrowserKey = QStringLiteral("hideBrowserOnLaunch");
static const QString lastDocumentKey = QStringLiteral("LastSelectedMainWindowDocument");

QString AppShell::pickFolder(const QString &, const QString &)
{
    return {};
}

static void removeOrSet(const QString &key, bool on)
{
    settings().setObject(key, on ? QVariant(true) : QVariant());
}

static void showItem(const QString &path)
{
    notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), path);
}

// -- launch -----------------------------------------------------------------------------------------------------------

WelcomeChoices AppDelegate::welcomeChoices() const
{
    WelcomeChoices choices;
    choices.cloudPath = cloudFolder();
    choices.dropboxPath = dropboxFolder();
    if (!choices.cloudPath.isEmpty()) choices.highlight = WelcomeChoices::CloudChoice;
    else if (!choices.dropboxPath.isEmpty()) choices.highlight = WelcomeChoices::DropboxChoice;
    return choices;
}

void AppDelegate::applicationWillFinishLaunching(HeldKeys keys)
{
    m_ignoreDroppedFilesOnLaunch = keys.option;
    if (!tomeletRoot().isEmpty()) return;
    const WelcomeChoices choices = welcomeChoices();
    for (const QString &path : {choices.cloudPath, choices.dropboxPath})
        if (!path.isEmpty()) tm_addToPreviouslySelectedHomes(path);
    m_shell.showWelcome(choices);
}

void AppDelegate::applicationDidFinishLaunching(HeldKeys keys)
{
    m_ignoreDroppedFilesOnLaunch = false;
    const bool rootIsLost = !tomeletRoot().isEmpty() && !rootIsInForce();
    if (keys.option || rootIsLost) tm_selectTomeletRoot(keys.option);
    if (rootIsInForce() && !keys.option) showWhatLastSessionShowed(keys);
    platform().delayedCalls.schedule(QStringLiteral("reopenDocumentsOnLaunch"), {}, 300ms,
                                     [this] { reopenDocumentsOnLaunch(); });
    if (settings().contains(QStringLiteral("launchLocalWebDAVServer"))) m_shell.startServer();
    const QString leftover = miscFile(QStringLiteral("RecentlyModifiedItems.txt"));
    if (rootIsInForce() && itemExists(leftover)) (void)removeItem(leftover);
}

void AppDelegate::showWhatLastSessionShowed(HeldKeys keys)
{
    Settings &values = settings();
    const bool reopen =
        values.boolean(gracefulKey) && values.boolean(QStringLiteral("openMostRecentDocOnLaunch")) && !keys.command;
    if (!reopen) {
        notifications().postPath(QStringLiteral("TMLTNewBookSelectedNotification"), tomeletRoot());
        return;
    }
    values.remove(gracefulKey);
    if (m_handlingUrlEvent) {
        m_handlingUrlEvent = false;
        return;
    }
    const QString last = values.string(lastDocumentKey);
    if (!last.isEmpty() && last.startsWith(tomeletRoot()) && itemExists(last)) showItem(last);
    else if (!storedRecentItems().isEmpty()) showMostRecentDocument();
    // Nothing was opened yet: the window shows at least what there is.
    else notifications().postPath(QStringLiteral("TMLTNewBookSelectedNotification"), tomeletRoot());
}

void AppDelegate::initAppSettings(bool chosenByPerson)
{
    startDiagnosticLog(true);
    logLine(QStringLiteral("init and setup"));
    const SetUpResult result = tomelet::initAppSettings(chosenByPerson);
    if (result.showAllPanes)
        platform().delayedCalls.schedule(QStringLiteral("showAllPanes"), {}, 100ms, [this] { m_shell.showAllPanes(); });
    if (result.showWhatsNew)
        platform().delayedCalls.schedule(QStringLiteral("showWhatsNew"), {}, 500ms, [this] { m_shell.showWhatsNew(); });
}

void AppDelegate::reopenDocumentsOnLaunch()
{
    const QList<WindowEntry> entries = takeDocumentsToOpenOnStartup();
    if (!entries.isEmpty()) {
        // Restoring opens documents, which is no sign that the person used them.
        const QStringList recent = storedRecentItems();
        m_shell.openItemsInNewWindow(entries);
        restoreRecentItems(recent);
    }
    if (settings().boolean(hideBrowserKey)) m_shell.closeMainWindow();
}

void AppDelegate::showMostRecentDocument()
{
    QStringList restored;
    for (const WindowEntry &entry : documentsToOpenOnStartup()) restored.append(entry.path);
    const QString path = mostRecentDocument(restored);
    if (!path.isEmpty()) showItem(path);
}

void AppDelegate::showFirstDocument()
{
    if (!storedRecentItems().isEmpty()) return showMostRecentDocument();
    const QString root = tomeletRoot();
    QStringList names = namesInFolder(root);
    std::ranges::stable_sort(names, [](const QString &a, const QString &b) { return localizedCompare(a, b) < 0; });
    for (const QString &name : names) {
        const QString path = joinPath(root, name);
        if (!pathExtension(name).isEmpty() && !tm_pathIsExcludedFromDisplay(path) &&
            recognisedExtensions().contains(lowerExtension(name)))
            return showItem(path);
    }
    showItem({});
}

// -- choosing a root --------------------------------------------------------------------------------------------------

void AppDelegate::tm_selectTomeletRoot(bool optionHeld)
{
    const QString lost = tomeletRoot();
    QString message = localized(TOMELET_TEXT("Select a folder which Tomelet can use to store your documents"));
    if (!optionHeld && !lost.isEmpty())
        message = localized(TOMELET_TEXT("The previously selected folder\n\"%1\"\n cannot be found. - Please select a "
                                         "different folder or cancel."))
                      .arg(lost);
    for (;;) {
        const QString path = m_shell.pickFolder(message, localized(TOMELET_TEXT("Choose")));
        if (path.isEmpty()) return m_shell.quit();
        if (!isHomeFolder(path)) return tm_setRootToPath(path);
        (void)askQuestion({localized(TOMELET_TEXT("Selecting the User Home is not recommended")),
                           localized(TOMELET_TEXT("Please choose a different folder")),
                           {localized(TOMELET_TEXT("Select Folder..."))}});
    }
}

void AppDelegate::selectNewHomeFolder()
{
    const QString path = m_shell.pickFolder(localized(TOMELET_TEXT("Select the Folder to be used as Tomelet' Root")),
                                            localized(TOMELET_TEXT("Choose")));
    if (path.isEmpty()) return;
    settings().setObject(rootKeyName, path);
    notifications().post(QStringLiteral("TMLTNewTomeletRootSelected"));
    tm_addToPreviouslySelectedHomes(path);
    makeFolder(rootStateFolder());
}

void AppDelegate::tm_selectiCloudAsRoot()
{
    const QString path = cloudFolder();
    if (path.isEmpty() || !makeFolder(path)) return;
    tm_setRootToPath(path);
}

void AppDelegate::tm_selectDropboxAsRoot()
{
    if (const QString path = dropboxFolder(); !path.isEmpty()) tm_setRootToPath(path);
}

void AppDelegate::tm_setRootToPath(const QString &path)
{
    const bool serves = settings().contains(QStringLiteral("launchLocalWebDAVServer"));
    if (serves) m_shell.stopServer();
    platform().rootOverride.clear();
    settings().setObject(rootKeyName, path);
    tm_addToPreviouslySelectedHomes(path);
    if (serves) m_shell.startServer();
    initAppSettings(true);
    notifications().postPath(QStringLiteral("TMLTReloadCurrentBook"), tomeletRoot());
    notifications().post(QStringLiteral("TMLTNewTomeletRootSelected"));
    m_shell.hideWelcome();
}

void AppDelegate::tm_switchStorageLocation(const QString &path)
{
    if (localizedCompare(QFileInfo(path).canonicalFilePath(), tomeletRoot()) == 0) return;
    platform().rootOverride.clear();
    settings().setObject(rootKeyName, path);
    notifications().post(QStringLiteral("TMLTNewTomeletRootSelected"));
}

// -- appearance -------------------------------------------------------------------------------------------------------

void AppDelegate::systemAppearanceChanged(bool dark)
{
    const bool follows = !settings().contains(QStringLiteral("selectAppearanceManually"));
    const bool differs = settings().boolean(QStringLiteral("darkTheme")) != dark;
    if (follows && differs) removeOrSet(QStringLiteral("darkTheme"), dark);
    if (follows) tm_applyAppearance();
    notifications().post(QStringLiteral("TMAdjustToSystemAccentColorChange"));
}

void AppDelegate::tm_applyAppearance()
{
    m_shell.setDark(settings().boolean(QStringLiteral("darkTheme")));
    notifications().post(QStringLiteral("TMLTAppearanceChanged"));
    notifications().post(QStringLiteral("TMLTReloadCurrentBook"));
}

// -- files from the system --------------------------------------------------------------------------------------------

bool AppDelegate::applicationOpenFile(const QString &path, bool ask)
{
    if (m_ignoreDroppedFilesOnLaunch) return false;
    if (!isFolder(path)) return openDroppedFile(path, ask);
    if (QFileInfo(path).canonicalFilePath() == tomeletRoot()) return true;
    const int answer = askQuestion({localized(TOMELET_TEXT("Change Storage Location")),
                                    localized(TOMELET_TEXT("Switch to folder %1?")).arg(path),
                                    {localized(TOMELET_TEXT("Change")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer == 0) tm_switchStorageLocation(path);
    return answer == 0;
}

namespace {

QString usableInbox()
{
    const QString inbox = settings().string(QStringLiteral("defaultInbox"));
    const QString path = inbox.isEmpty() ? QString() : fullPathOf(inbox);
    return isFolder(path) ? path : QString();
}

enum class Choice { ExtraWindow, Inbox, Style, Cancel };

Choice askWhatToDo(const QString &path, bool hasInbox)
{
    QStringList buttons{localized(TOMELET_TEXT("Open in Extra Window")),
                        hasInbox ? localized(TOMELET_TEXT("Add to Inbox"))
                                 : localized(TOMELET_TEXT("Add to Tomelet' Top Level"))};
    QList<Choice> meanings{Choice::ExtraWindow, Choice::Inbox};
    if (lowerExtension(path) == u"css") {
        buttons.append(localized(TOMELET_TEXT("Add as Document Style")));
        meanings.append(Choice::Style);
    }
    buttons.append(localized(TOMELET_TEXT("Cancel")));
    meanings.append(Choice::Cancel);
    const int answer = askQuestion(
        {localized(TOMELET_TEXT("How Do You Wish to Proceed?")), u'"' + lastPathComponent(path) + u'"', buttons});
    return meanings.value(answer, Choice::Cancel);
}

// The path of the copy, "" when it could not be made.
QString copyInto(const QString &path, const QString &folder)
{
    makeFolder(folder);
    const QString target = tm_uniqueNameForFileatPath(lastPathComponent(path), folder);
    if (!copyItem(path, target)) return {};
    notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), target);
    return target;
}

} // namespace

bool AppDelegate::openDroppedFile(const QString &path, bool ask)
{
    const auto open = [this](const QString &document) {
        m_shell.openItemsInNewWindow({{document, {}, false, {}, {}}});
        return true;
    };
    if (tm_itemIsChildOfTomelet(path)) {
        showItem(path);
        return true;
    }
    const QString inbox = usableInbox();
    const QString target = inbox.isEmpty() ? tomeletRoot() : inbox;
    if (ask || lowerExtension(path) == u"css") {
        switch (askWhatToDo(path, !inbox.isEmpty())) {
        case Choice::ExtraWindow: return open(path);
        case Choice::Inbox: return !copyInto(path, target).isEmpty();
        case Choice::Style:
            return !copyInto(path, joinPath(tomeletRoot(), QStringLiteral("TMResources/CSS"))).isEmpty();
        case Choice::Cancel: return false;
        }
    }
    const bool temporary = path.startsWith(QDir::tempPath() + u'/') || path.startsWith(workingDirectory() + u'/');
    if (temporary) {
        // What lies there may vanish while it is open, so the copy is what opens.
        const QString copy = copyInto(path, target);
        return open(copy.isEmpty() ? path : copy);
    }
    if (settings().boolean(QStringLiteral("addDroppedItemsToInbox"))) return !copyInto(path, target).isEmpty();
    return open(path);
}

// -- termination ------------------------------------------------------------------------------------------------------

void AppDelegate::applicationWillTerminate()
{
    Settings &values = settings();
    values.setObject(gracefulKey, true);
    notifications().post(QStringLiteral("TMLTSaveCurrentDocument"));
    m_shell.saveReadingPosition();
    m_shell.stopServer();
    const SessionState state = m_shell.sessionState();
    removeOrSet(hideBrowserKey, !state.mainWindowVisible);
    if (state.mainWindowShowsNotebook && rootIsInForce()) {
        values.setObject(lastDocumentKey, state.mainDocument);
        m_shell.saveExpandedPaths();
        saveDocumentsToOpenOnStartup(state.windows);
        sweepCache();
    }
    drainPendingWork();
    values.synchronize();
}

// The item that a cached file stands for: thumbnails bear a scale mark, previews of PDF documents a second ending.
static QString itemOfCachedFile(QString path)
{
    if (path.endsWith(u".pdf.png")) path.chop(4);
    return path.remove(QStringLiteral("@2x.png")).remove(QStringLiteral("@3x.png"));
}

void sweepCache()
{
    const QString cache = rootCacheFolder();
    if (rootLooksUnmounted() || !isFolder(cache)) return;
    const QString root = tomeletRoot();
    QDirIterator files(cache, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString cached = files.next();
        const QString below = cached.mid(cache.size());
        // Stores of the program's own, such as the text index, mirror no item.
        if (below.startsWith(u"/.")) continue;
        if (itemExists(itemOfCachedFile(root + below))) continue;
        logLine(QStringLiteral("clear cache: %1").arg(cached));
        (void)removeItem(cached);
    }
}

} // namespace tomelet
