// SPDX-License-Identifier: GPL-3.0-or-later
// Setting a notebook up: folders inside and outside the root, first-launch settings, migrations, first documents.
#pragma once

#include <QString>

namespace tomelet {

/// The version that people read and the build number that migrations compare.
inline const QString shortVersion = QStringLiteral("1.0");
inline const QString buildNumber = QStringLiteral("300");

/// Opens `TMMacLog.txt` of the root for diagnostic lines, if the person made it; with `takeStandardError` the
/// standard error stream goes there too.
void startDiagnosticLog(bool takeStandardError);

struct SetUpResult
{
    bool rootIsUsable = false;
    bool showAllPanes = false; ///< the last session ended badly: bring back what may have been hidden
    bool showWhatsNew = false; ///< the settings were those of an older version
};

/// Makes what the current root needs; can be run at any time. A root that was set up before and now holds nothing
/// at all looks like a disk that is not mounted and is left alone, unless the person has just chosen it.
SetUpResult initAppSettings(bool chosenByPerson);
/// First-launch values and migrations of the settings; true when an older version wrote them.
bool tm_initPreferences();
/// Puts the Quickstart book into a root without visible items.
void installDefaultDocuments();

/// The handbook in the Quickstart book, where it can be read beside its source and tried out; put there by the first
/// call. "" when it could not be.
[[nodiscard]] QString handbook();

/// Puts the path in front of the list of roots.
void tm_addToPreviouslySelectedHomes(const QString &path);

} // namespace tomelet
