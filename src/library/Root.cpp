// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/Root.h"

#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <chrono>

namespace tomelet {

// Every operation asks for the root, and resolving it costs ten system calls: within a blink the answer holds.
static QString resolvedRoot(const QString &chosen)
{
    using Steady = std::chrono::steady_clock;
    thread_local QString known;
    thread_local QString resolved;
    thread_local Steady::time_point until;
    if (chosen != known || Steady::now() >= until) {
        const QString canonical = QFileInfo(chosen).canonicalFilePath();
        known = chosen;
        resolved = canonical.isEmpty() ? QDir::cleanPath(chosen) : canonical;
        until = Steady::now() + std::chrono::milliseconds(50);
    }
    return resolved;
}

QString tomeletRoot()
{
    const Platform &now = platform();
    const QString chosen =
        now.rootOverride.isEmpty() ? now.settings->string(QStringLiteral("TomeletFolder")) : now.rootOverride;
    return chosen.isEmpty() ? QString() : resolvedRoot(chosen);
}

bool rootIsInForce()
{
    return isFolder(tomeletRoot());
}

bool rootLooksUnmounted()
{
    const QString root = tomeletRoot();
    const auto entries = root.isEmpty() ? std::nullopt : listFolder(root);
    return !entries || entries->empty();
}

QString miscFolder()
{
    return joinPath(tomeletRoot(), QStringLiteral("TMResources/Misc"));
}

QString miscFile(const QString &name)
{
    return joinPath(miscFolder(), name);
}

bool makeMiscFolder()
{
    // A folder that was set up and is empty now waits for its disk; what is written here would lie under it.
    const bool waitsForDisk = rootLooksUnmounted() && isFolder(rootStateFolder());
    return rootIsInForce() && !waitsForDisk && makeFolder(miscFolder());
}

QString rootKey()
{
    return QString::fromLatin1(
        QCryptographicHash::hash(tomeletRoot().toUtf8(), QCryptographicHash::Md5).toHex().toUpper());
}

QString rootStateFolder()
{
    return joinPath(dataDirectory(), rootKey());
}

QString rootCacheFolder()
{
    return joinPath(cacheDirectory(), rootKey());
}

} // namespace tomelet
