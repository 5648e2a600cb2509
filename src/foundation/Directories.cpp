// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Directories.h"

#include <QDir>

#include <unistd.h>

namespace tomelet {

// The base directory standard of freedesktop.org tells programs to ignore base directories that are not absolute.
static QString baseDirectory(const char *variable, const QString &fallbackBelowHome)
{
    const QString value = qEnvironmentVariable(variable);
    const QString base =
        QDir::isAbsolutePath(value) ? QDir::cleanPath(value) : homeDirectory() + u'/' + fallbackBelowHome;
    return base + u'/' + bundleIdentifier;
}

QString homeDirectory()
{
    return QDir::homePath();
}

QString configDirectory()
{
    return baseDirectory("XDG_CONFIG_HOME", QStringLiteral(".config"));
}

QString dataDirectory()
{
    return baseDirectory("XDG_DATA_HOME", QStringLiteral(".local/share"));
}

QString cacheDirectory()
{
    return baseDirectory("XDG_CACHE_HOME", QStringLiteral(".cache"));
}

QString workingDirectory()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (QDir::isAbsolutePath(runtime)) return QDir::cleanPath(runtime) + u'/' + bundleIdentifier;
    return QDir::tempPath() + u'/' + bundleIdentifier + u'-' + QString::number(::getuid());
}

} // namespace tomelet
