// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/PastedImages.h"

#include "editor/DocumentForms.h"
#include "foundation/Clock.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"

namespace tomelet {

QString nameForPastedImage()
{
    return localized(TOMELET_TEXT("Image")) + u' ' +
           platform().clock.now().toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH.mm.ss")) +
           QStringLiteral(".png");
}

QString storeInImages(const QString &book, const QString &name, const QByteArray &bytes)
{
    const QString folder = joinPath(book, QStringLiteral("TMImages"));
    if (!isFolder(folder) && !makeFolder(folder)) return {};
    const auto reference = [](const QString &path) {
        return QString(QStringLiteral("TMImages/") + percentEncodedPath(lastPathComponent(path)));
    };
    const QString wanted = joinPath(folder, name);
    if (const auto present = readFile(wanted); present && *present == bytes) return reference(wanted);
    const QString path = tm_uniqueNameForFileatPath(name, folder);
    return writeFile(path, bytes) ? reference(path) : QString();
}

static QString htmlForFile(const QString &book, const QString &file)
{
    if (isFolder(file) || !hasImageExtension(file)) {
        const QString address = QStringLiteral("file://") + percentEncodedPath(file);
        return QStringLiteral("<a href=\"%1\">%2</a>")
            .arg(address.toHtmlEscaped(), nameWithoutExtension(file).toHtmlEscaped());
    }
    const auto bytes = readFile(file);
    const QString reference = bytes ? storeInImages(book, lastPathComponent(file), *bytes) : QString();
    return reference.isEmpty() ? QString() : QStringLiteral("<img src=\"%1\">").arg(reference.toHtmlEscaped());
}

QString htmlForDroppedFiles(const QString &book, const QStringList &files, QStringList &failed)
{
    QString html;
    for (const QString &file : files) {
        const QString own = htmlForFile(book, file);
        if (own.isEmpty()) failed.append(lastPathComponent(file));
        html += own;
    }
    return html;
}

} // namespace tomelet
