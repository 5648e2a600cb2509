// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/SetUp.h"

#include "foundation/Collation.h"
#include "foundation/Directories.h"
#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "foundation/Resources.h"
#include "library/LocationSettings.h"
#include "library/Organiser.h"
#include "library/Properties.h"
#include "library/RecentItems.h"
#include "library/Root.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <sys/stat.h>

namespace tomelet {

void startDiagnosticLog(bool takeStandardError)
{
    const QString path = joinPath(tomeletRoot(), QStringLiteral("TMMacLog.txt"));
    if (!rootIsInForce() || !itemExists(path)) return openDiagnosticLog({});
    if (takeStandardError && !std::freopen(QFile::encodeName(path).constData(), "a+", stderr)) return;
    openDiagnosticLog(path);
}

// -- settings ---------------------------------------------------------------------------------------------------------

namespace {

void writeFirstLaunchValues()
{
    static const char *const switches[] = {
        "hideDocumentWhenChangingBook",
        "fsAutoHideColumns",
        "fsUseDocWidthAsPageWidth",
        "resizeWindowWhenHidingFrames",
        "DoNotFadeHeaderAndFooter",
        "listViewUsesTreeViewFont",
        "listViewUsesBoldFont",
        "HighlightLinks",
        "AutoIndentLists",
        "IndentWithTabs",
        "HighlightMarkdown",
        "tapMarkdownToPositionCursor",
        "useTabToIndent",
        "insertClosingCharacters",
        "formatFirstLineAsTitle",
        "openLinkInBrowser",
        "contextsEnabled",
    };
    Settings &values = settings();
    for (const char *key : switches) values.setObject(QString::fromLatin1(key), true);
    values.setObject(QStringLiteral("showPreviewForNotes"), 4LL);
    values.setObject(QStringLiteral("highlightCurrentLine"), 1LL);
    values.setObject(QStringLiteral("centerCurrentLine"), 3LL);
    values.setObject(QStringLiteral("TMFLD"), platform().clock.now());
    values.setObject(QStringLiteral("installedVersion"), shortVersion);
}

void switchOnWhatIsNew(double installed)
{
    static constexpr struct
    {
        int build;
        const char *key;
    } steps[] = {
        {194, "cleanUpAttachments"},     {197, "formatFirstLineAsTitle"}, {200, "outlineUseIncreasedSpacing"},
        {201, "showDatesInListOfNotes"}, {217, "autodetectListsHTML"},    {220, "openMostRecentDocOnLaunch"},
        {229, "useNumericOrder"},
    };
    for (const auto &step : steps)
        if (installed < step.build) settings().setObject(QString::fromLatin1(step.key), true);
    const QString inbox = settings().string(QStringLiteral("defaultInbox"));
    if (installed < 220 && !inbox.isEmpty()) tm_setLocationSpecificSetting(inbox, QStringLiteral("defaultInbox"));
}

// Merged, not replaced: either list may hold contexts that the other does not know yet.
void migrateContextList()
{
    const QString oldPath = joinPath(rootStateFolder(), QStringLiteral("AvailableTags.plist"));
    const QString newPath = miscFile(QStringLiteral("AvailableTags.txt"));
    const QString stub = miscFile(QStringLiteral(".AvailableTags.txt.icloud"));
    if (!itemExists(oldPath) || !rootIsInForce()) return;
    if (itemExists(newPath)) {
        QStringList merged = readStringArray(newPath);
        for (const QString &word : readStringArray(oldPath))
            if (!tm_localizedIndexOfObject(merged, word)) merged.append(word);
        if (writeStore(newPath, QVariantList(merged.begin(), merged.end()))) (void)removeItem(oldPath);
    } else if (!itemExists(stub) && makeMiscFolder()) {
        (void)moveItem(oldPath, newPath);
    }
}

} // namespace

bool tm_initPreferences()
{
    Settings &values = settings();
    const QString versionKey = QStringLiteral("installedVersion");
    const bool firstLaunch = !values.contains(QStringLiteral("TMFLD"));
    if (firstLaunch) writeFirstLaunchValues();
    const double installed = values.number(versionKey);
    switchOnWhatIsNew(installed);
    migrateContextList();
    tm_readLocationSpecificSettings();
    values.setObject(versionKey, buildNumber);
    values.synchronize();
    return installed < 220;
}

// -- folders and documents --------------------------------------------------------------------------------------------

static void noteCloudIdentity()
{
    // There is no such account on this platform, so what another one left behind goes.
    settings().remove(QStringLiteral("iCloudAvailable"));
    settings().remove(QStringLiteral("UbiquityContainerIdentifier"));
}

static void makeFolders(const QString &root)
{
    makeFolder(workingDirectory());
    ::chmod(QFile::encodeName(workingDirectory()).constData(), 0700);
    const QString resources = joinPath(root, QStringLiteral("TMResources"));
    if (!itemExists(resources))
        for (const auto &name : {QStringLiteral("CSS"), QStringLiteral("BG"), QStringLiteral("Misc")})
            makeFolder(joinPath(resources, name));
    makeFolder(rootStateFolder());
}

void installDefaultDocuments()
{
    const QString root = tomeletRoot();
    const auto entries = listFolder(root);
    if (!entries) return;
    for (const FolderEntry &entry : *entries)
        if (!entry.name.startsWith(u'.') && !entry.name.contains(u"TMResources")) return;

    const QString book = joinPath(root, localized(TOMELET_TEXT("Quickstart")));
    const QString name = localized(TOMELET_TEXT("Welcome to Tomelet.html"));
    const QString document = joinPath(book, name);
    makeFolder(book);
    if (!copyItem(resourcePath(QStringLiteral("Welcome/") + name), document)) return;
    tm_setProperty(document, QStringLiteral("1.2"), QStringLiteral("lineSpacing"));
    tm_setProperty(document, QStringLiteral("CSS/Handbook.css"), QStringLiteral("CSS"));
    tm_addToRecentItems(document);
}

QString handbook()
{
    const QString book = joinPath(tomeletRoot(), localized(TOMELET_TEXT("Quickstart")));
    const QString document = joinPath(book, localized(TOMELET_TEXT("Handbook.md")));
    if (itemExists(document)) return document;
    if (!makeFolder(book) || !copyItem(resourcePath(QStringLiteral("Welcome/Handbook.md")), document)) return {};
    tm_setProperty(document, QStringLiteral("CSS/Handbook.css"), QStringLiteral("CSS"));
    // It shows what only the own converter knows.
    tm_setProperty(document, QStringLiteral("1"), QStringLiteral("MarkdownConverter"));
    return document;
}

SetUpResult initAppSettings(bool chosenByPerson)
{
    SetUpResult result;
    const QString root = tomeletRoot();
    noteCloudIdentity();
    if (!isFolder(root)) return result;
    const bool wasSetUpBefore = isFolder(rootStateFolder());
    if (!chosenByPerson && wasSetUpBefore && rootLooksUnmounted()) {
        logWarning(QStringLiteral("%1 is empty now, so it is left alone: is its disk mounted?").arg(root));
        return result;
    }
    result.rootIsUsable = true;
    makeFolders(root);
    result.showWhatsNew = tm_initPreferences();
    installDefaultDocuments();
    organiser().notebookSetUp();
    if (!settings().boolean(QStringLiteral("terminatedGracefully"))) {
        settings().remove(QStringLiteral("outlineIsCollapsed"));
        result.showAllPanes = true;
    }
    return result;
}

void tm_addToPreviouslySelectedHomes(const QString &path)
{
    const QString key = QStringLiteral("previouslySelectedHomes");
    QStringList homes = settings().stringList(key);
    while (const auto earlier = tm_localizedIndexOfObject(homes, path)) homes.removeAt(*earlier);
    homes.prepend(path);
    settings().setObject(key, QVariantList(homes.begin(), homes.end()));
}

} // namespace tomelet
