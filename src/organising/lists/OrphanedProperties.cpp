// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/lists/OrphanedProperties.h"

#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemPath.h"

#include <QFileInfo>

#include <algorithm>

namespace tomelet {

static const QStringList &documentProperties()
{
    static const QStringList keys =
        QStringLiteral(
            "Tags CreationDate Backlinks ReferencedPath Description URL R/O isProtected OCR TOC Markdown CSS "
            "MarkdownConverter notesFontName noteFontSize lineSpacing TextAlignment HyphenateText TextColor "
            "BackgroundColor "
            "BackgroundImage cellColor showPreviewForNotes CurrentTaskCount Print Mail PDFBookmarks PrivateProperties "
            "Offset "
            "CharacterOffset CurrentPDFPage")
            .split(u' ') +
        QStringList{QStringLiteral("Embedded Photos")};
    return keys;
}

bool isOrphanedPropertyFile(const QString &path)
{
    if (!path.endsWith(u".plist") || tm_pathIsSystemFile(path)) return false;
    const QString document = path.chopped(6);
    if (pathExtension(document).isEmpty() || tm_fileExistsAtPathIsDirectory(document).exists ||
        itemExists(tm_iCloudStub(document)))
        return false;
    const QVariantMap properties = readDictionary(path);
    return !properties.isEmpty() && std::ranges::all_of(properties.keys(), [](const QString &key) {
        return documentProperties().contains(key);
    });
}

bool removeOrphanedPropertyFile(const QString &path)
{
    constexpr qint64 secondsAhead = 600;
    if (settings().integer(QStringLiteral("iCloudSyncProgress")) != 0 || !isOrphanedPropertyFile(path) ||
        platform().clock.now().secsTo(QFileInfo(path).lastModified()) >= secondsAhead || !platform().trash->take(path))
        return false;
    logLine(QStringLiteral("deleted orphaned %1").arg(path));
    return true;
}

} // namespace tomelet
