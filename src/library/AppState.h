// SPDX-License-Identifier: GPL-3.0-or-later
// `AppState.txt`: what a window session leaves behind for the next one, outside the root.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace tomelet {

/// One window or tab to restore. Entries with the same tab number form one group; "0" is the main window's.
struct WindowEntry
{
    QString path;
    QString tab;
    bool selected = false;
    QString frame;        ///< "{{x, y}, {width, height}}" of the text column; extra windows only
    QString minimized;    ///< "1" or "0"; extra windows only
    QString side = {};    ///< "1" for a tab of the right-hand side, where two stand beside each other
    bool toggled = false; ///< in the other of the document's two views
};

[[nodiscard]] QStringList savedExpandedPaths();
/// Stores the paths; an entry that is a prefix of a later one is dropped, so that only the deepest remain.
void saveExpandedPaths(const QStringList &paths);

[[nodiscard]] QList<WindowEntry> documentsToOpenOnStartup();
/// Gives the entries and removes them at once, so that a crash while restoring does not repeat it.
[[nodiscard]] QList<WindowEntry> takeDocumentsToOpenOnStartup();
void saveDocumentsToOpenOnStartup(const QList<WindowEntry> &entries);

} // namespace tomelet
