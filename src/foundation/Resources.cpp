// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Resources.h"

#include "foundation/Folder.h"

#include <QCoreApplication>

namespace tomelet {

QString resourcePath(const QString &relativePath)
{
    const QString chosen = qEnvironmentVariable("TOMELET_RESOURCES");
    if (!chosen.isEmpty()) return joinPath(chosen, relativePath);
    const QString installed = parentPath(QCoreApplication::applicationDirPath()) + QStringLiteral("/share/tomelet");
    if (isFolder(installed)) return joinPath(installed, relativePath);
    return joinPath(QStringLiteral(TOMELET_SOURCE_RESOURCES), relativePath);
}

} // namespace tomelet
