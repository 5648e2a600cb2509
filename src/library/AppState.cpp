// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/AppState.h"

#include "foundation/Folder.h"
#include "foundation/PropertyStore.h"
#include "library/Root.h"

#include <algorithm>

namespace tomelet {

static const QString expandedKey = QStringLiteral("expandedPaths");
static const QString windowsKey = QStringLiteral("documentsToOpenOnStartup");

static QString stateFile()
{
    return joinPath(rootStateFolder(), QStringLiteral("AppState.txt"));
}

static void changeState(const std::function<bool(QVariantMap &)> &change)
{
    if (makeFolder(rootStateFolder())) changeDictionary(stateFile(), change);
}

QStringList savedExpandedPaths()
{
    return readDictionary(stateFile()).value(expandedKey).toStringList();
}

void saveExpandedPaths(const QStringList &paths)
{
    QVariantList kept;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const bool covered = std::any_of(paths.begin() + i + 1, paths.end(),
                                         [&](const QString &later) { return later.startsWith(paths[i]); });
        if (!covered) kept.append(paths[i]);
    }
    changeState([&](QVariantMap &state) {
        const bool changed = state.value(expandedKey).toList() != kept;
        state.insert(expandedKey, kept);
        return changed;
    });
}

static WindowEntry entryFrom(const QVariantMap &map)
{
    return {map.value(QStringLiteral("path")).toString(),
            map.value(QStringLiteral("tab")).toString(),
            map.value(QStringLiteral("selected")).toString() == u"1",
            map.value(QStringLiteral("frame")).toString(),
            map.value(QStringLiteral("minimized")).toString(),
            map.value(QStringLiteral("side")).toString(),
            map.value(QStringLiteral("toggled")).toString() == u"1"};
}

static QVariantMap mapFrom(const WindowEntry &entry)
{
    QVariantMap map{{QStringLiteral("path"), entry.path}};
    if (!entry.tab.isEmpty()) map.insert(QStringLiteral("tab"), entry.tab);
    if (entry.selected) map.insert(QStringLiteral("selected"), QStringLiteral("1"));
    if (!entry.frame.isEmpty()) map.insert(QStringLiteral("frame"), entry.frame);
    if (!entry.minimized.isEmpty()) map.insert(QStringLiteral("minimized"), entry.minimized);
    if (!entry.side.isEmpty()) map.insert(QStringLiteral("side"), entry.side);
    if (entry.toggled) map.insert(QStringLiteral("toggled"), QStringLiteral("1"));
    return map;
}

QList<WindowEntry> documentsToOpenOnStartup()
{
    QList<WindowEntry> entries;
    for (const QVariant &entry : readDictionary(stateFile()).value(windowsKey).toList())
        entries.append(entryFrom(entry.toMap()));
    return entries;
}

QList<WindowEntry> takeDocumentsToOpenOnStartup()
{
    const QList<WindowEntry> entries = documentsToOpenOnStartup();
    if (!entries.isEmpty()) changeState([](QVariantMap &state) { return state.remove(windowsKey) > 0; });
    return entries;
}

void saveDocumentsToOpenOnStartup(const QList<WindowEntry> &entries)
{
    if (entries.isEmpty()) return;
    QVariantList list;
    for (const WindowEntry &entry : entries) list.append(mapFrom(entry));
    changeState([&](QVariantMap &state) {
        state.insert(windowsKey, list);
        return true;
    });
}

} // namespace tomelet
