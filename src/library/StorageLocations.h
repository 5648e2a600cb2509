// SPDX-License-Identifier: GPL-3.0-or-later
// The folders that a person may take as root, as the storage-location menu lists them.
#pragma once

#include "library/ItemPath.h"

#include <QList>
#include <QString>

namespace tomelet {

struct StorageLocation
{
    enum Kind { Folder, Separator, SelectNew, ClearRecent } kind = Folder;
    QString path;
    MenuTitle title;
    bool isCurrent = false;
};

/// The menu's entries, made anew each time that it opens.
[[nodiscard]] QList<StorageLocation> storageLocations();
/// The Dropbox folder of the notebook, "" where there is none. The first place is asked at launch, the second in
/// the menu; both know both.
[[nodiscard]] QString dropboxFolder();
/// `<UbiquityContainerPath>/Documents`, "" where there is no container.
[[nodiscard]] QString cloudFolder();
/// Forgets all roots but the current one.
void clearPreviouslySelectedHomes();
/// The user's own home folder, which is too much for a notebook.
[[nodiscard]] bool isHomeFolder(const QString &path);

} // namespace tomelet
