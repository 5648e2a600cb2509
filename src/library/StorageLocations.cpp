// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/StorageLocations.h"

#include "foundation/Collation.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"

#include <QFileInfo>

namespace tomelet {

static const QString homesKey = QStringLiteral("previouslySelectedHomes");

QString dropboxFolder()
{
    for (const auto &place :
         {QStringLiteral("Library/CloudStorage/Dropbox/Tomelet"), QStringLiteral("Dropbox/Tomelet")})
        if (isFolder(joinPath(homeDirectory(), place))) return joinPath(homeDirectory(), place);
    return {};
}

QString cloudFolder()
{
    const QString container = settings().string(QStringLiteral("UbiquityContainerPath"));
    const bool hasIdentity = settings().boolean(QStringLiteral("iCloudAvailable"));
    return container.isEmpty() || !hasIdentity ? QString() : joinPath(container, QStringLiteral("Documents"));
}

static bool isCurrentRoot(const QString &path)
{
    return localizedCompare(QFileInfo(path).canonicalFilePath(), tomeletRoot()) == 0;
}

// The well-known front of a path as a person calls it.
static QString withKnownFront(const QString &path)
{
    const QString container = settings().string(QStringLiteral("UbiquityContainerPath"));
    const QString cloud = QStringLiteral("iCloud");
    if (!container.isEmpty() && path.startsWith(container)) return cloud + path.mid(container.size());
    if (!container.isEmpty() && path.startsWith(parentPath(container)))
        return QString(cloud + path.mid(parentPath(container).size())).remove(QStringLiteral("/com~apple~CloudDocs"));
    const QString dropbox = parentPath(dropboxFolder());
    if (!dropbox.isEmpty() && path.startsWith(dropbox)) return QStringLiteral("Dropbox") + path.mid(dropbox.size());
    const QString home = homeDirectory();
    if (path.startsWith(home)) return QStringLiteral("Home") + path.mid(home.size());
    return path;
}

static StorageLocation service(const QString &path, const QString &name)
{
    return {StorageLocation::Folder, path, {{}, QStringLiteral("Tomelet — ") + name}, isCurrentRoot(path)};
}

QList<StorageLocation> storageLocations()
{
    QList<StorageLocation> entries;
    const QString cloud = cloudFolder();
    const QString dropbox = dropboxFolder();
    if (!cloud.isEmpty()) entries.append(service(cloud, QStringLiteral("iCloud")));
    if (!dropbox.isEmpty()) entries.append(service(dropbox, QStringLiteral("Dropbox")));
    if (!entries.isEmpty()) entries.append({StorageLocation::Separator, {}, {}, false});

    QStringList homes = settings().stringList(homesKey);
    if (homes.isEmpty() && !tomeletRoot().isEmpty()) homes.append(tomeletRoot());
    bool anyListed = false;
    for (const QString &path : homes) {
        if (path == cloud || path == dropbox || !QFileInfo(path).lastModified().isValid()) continue;
        entries.append(
            {StorageLocation::Folder, path, tm_pathFormattedForContextMenu(withKnownFront(path)), isCurrentRoot(path)});
        anyListed = true;
    }
    entries.append({StorageLocation::SelectNew, {}, {{}, localized(TOMELET_TEXT("Select a new Location..."))}, false});
    if (anyListed) {
        entries.append({StorageLocation::Separator, {}, {}, false});
        entries.append({StorageLocation::ClearRecent, {}, {{}, localized(TOMELET_TEXT("Clear Recent"))}, false});
    }
    return entries;
}

void clearPreviouslySelectedHomes()
{
    settings().setObject(homesKey, QVariantList{tomeletRoot()});
}

bool isHomeFolder(const QString &path)
{
    return QFileInfo(path).canonicalFilePath() == QFileInfo(homeDirectory()).canonicalFilePath();
}

} // namespace tomelet
