// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/EmbeddedPhotos.h"

#include "conversion/Patterns.h"
#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/HtmlEntities.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/TextFile.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>

namespace tomelet {

static const QString photosKey = QStringLiteral("Embedded Photos");
static const QString backlinksKey = QStringLiteral("Backlinks");
static const QString folderName = QStringLiteral("TMImages");
static const QString prefix = QStringLiteral("TMImages/");

QStringList tm_setOfEmbeddedPhotos(const QString &text)
{
    QStringList found;
    const PatternMatches matches = matchesOfPattern(text, QStringLiteral(R"((TMImages/.+?)["\?\)\]<])"));
    for (size_t i = 0; i < matches.size(); ++i) {
        const QString reference = substring(text, matches[i].group(1));
        if (!found.contains(reference)) found.append(reference);
    }
    return found;
}

// -- copying along ----------------------------------------------------------------------------------------------------

namespace {

QStringList photosProperty(const QString &document)
{
    return tm_propertyForKey(document, photosKey).toStringList();
}

// The property and what the text holds beyond it, which is then added to the property.
QStringList photosOf(const QString &document)
{
    QStringList photos = photosProperty(document);
    const QString extension = lowerExtension(document);
    const bool hasText = extension == u"html" || extension == u"htm" || hasPlainTextExtension(document);
    const auto decoded = hasText ? readTextFile(document) : std::nullopt;
    if (!decoded) return photos;
    const qsizetype known = photos.size();
    for (const QString &reference : tm_setOfEmbeddedPhotos(decoded->text))
        if (!photos.contains(reference)) photos.append(reference);
    if (photos.size() != known) tm_setProperty(document, QVariantList(photos.begin(), photos.end()), photosKey);
    return photos;
}

QByteArray md5OfFile(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Md5);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) return {};
    return hash.result();
}

// A reference may be percent-encoded in the text; the file bears the plain name.
QString photoFile(const QString &book, const QString &reference)
{
    const QString plain = joinPath(book, reference);
    return itemExists(plain) ? plain : joinPath(book, percentDecoded(reference));
}

void copyPhotoProperties(const QString &source, const QString &target)
{
    if (!itemExists(tm_plistPath(source))) return;
    QVariantMap properties = readDictionary(tm_plistPath(source));
    if (settings().boolean(QStringLiteral("manageLinks"))) {
        properties.insert(QStringLiteral("ReferencedPath"), tm_normalizedPath(target));
        properties.remove(backlinksKey);
    }
    writeStore(tm_plistPath(target), properties);
}

struct Rename
{
    QString from;
    QString to;
};

// Copies one picture; the rename where another picture of its name stands in the target book.
std::optional<Rename> copyPhoto(const QString &source, const QString &targetBook)
{
    if (!itemExists(source)) {
        logLine(QStringLiteral("move image - source does not exist, skip (maybe moved by other instance of TM)"));
        return std::nullopt;
    }
    const QString folder = joinPath(targetBook, folderName);
    QString target = joinPath(folder, lastPathComponent(source));
    std::optional<Rename> rename;
    if (itemExists(target)) {
        if (md5OfFile(target) == md5OfFile(source)) {
            logLine(QStringLiteral("move image - have identical file at target, leave as is"));
            return std::nullopt;
        }
        target = tm_uniqueNameForFileatPath(lastPathComponent(source), folder);
        rename = Rename{source, target};
        logLine(QStringLiteral("move image - conflict at target - create copy with new filename %1").arg(target));
    }
    if (copyItem(source, target)) copyPhotoProperties(source, target);
    return rename;
}

// A name ends where a reference can end; "a.png" is not meant by "a.png.gif".
bool endsReference(const QString &text, qsizetype position)
{
    return position >= text.size() || QStringView(u"\"'?)]<># \n\t").contains(text[position]);
}

void replaceName(QString &text, const QString &from, const QString &to)
{
    for (qsizetype at = text.lastIndexOf(from); at >= 0; at = at > 0 ? text.lastIndexOf(from, at - 1) : -1)
        if (endsReference(text, at + from.size())) text.replace(at, from.size(), to);
}

// Points the document to the picture under its new name, in its text and in its properties.
void renameReferences(const QString &document, const QString &from, const QString &to)
{
    QStringList photos = photosProperty(document);
    for (QString &photo : photos)
        if (photo == prefix + from || percentDecoded(photo) == prefix + from) photo = prefix + to;
    if (!photos.isEmpty()) tm_setProperty(document, QVariantList(photos.begin(), photos.end()), photosKey);

    const auto decoded = readTextFile(document);
    if (!decoded) return;
    QString text = decoded->text;
    replaceName(text, prefix + from, prefix + to);
    if (percentEncodedPath(from) != from)
        replaceName(text, prefix + percentEncodedPath(from), prefix + percentEncodedPath(to));
    if (text == decoded->text) return;
    if (const auto bytes = encodeText(text, decoded->encoding, decoded->byteOrderMark))
        (void)writeFile(document, *bytes);
}

} // namespace

void tm_copyEmbeddedPhotosToPath(const QString &path, const QString &target)
{
    const QString sourceBook = parentPath(path);
    const QString targetBook = parentPath(target);
    if (sourceBook == targetBook) return;
    const QStringList photos = photosOf(itemExists(path) ? path : target);
    if (!photos.isEmpty()) makeFolder(joinPath(targetBook, folderName));

    QList<Rename> renames;
    for (const QString &reference : photos)
        if (const auto rename = copyPhoto(photoFile(sourceBook, reference), targetBook)) renames.append(*rename);
    tm_cleanupImagesFolder(sourceBook);
    for (const Rename &rename : renames)
        if (itemExists(target)) renameReferences(target, lastPathComponent(rename.from), lastPathComponent(rename.to));
}

// -- cleaning ---------------------------------------------------------------------------------------------------------

namespace {

bool anyIsDownloading(const QStringList &names)
{
    const bool downloading = std::ranges::any_of(names, [](const QString &n) { return n.endsWith(u".icloud"); });
    if (downloading) logLine(QStringLiteral("not deleting any images, iCloud still downloading"));
    return downloading;
}

bool isReferredTo(const QString &image)
{
    const QStringList backlinks = tm_propertyForKey(image, backlinksKey).toStringList();
    const QString root = tomeletRoot();
    return std::ranges::any_of(backlinks, [&](const QString &link) { return itemExists(fullPathOf(link, root)); });
}

QStringList imagesWithoutBacklinks(const QString &folder, const QStringList &names)
{
    QStringList images;
    for (const QString &name : names)
        if (!name.endsWith(u".plist") && !isReferredTo(joinPath(folder, name))) images.append(name);
    return images;
}

QStringList documentsOf(const QString &book, const QStringList &names)
{
    QStringList documents;
    for (const QString &name : names) {
        if (name.endsWith(u".plist")) continue;
        if (lowerExtension(name) == u"html" || hasPlainTextExtension(name)) documents.append(joinPath(book, name));
    }
    return documents;
}

bool mentions(const QString &text, const QString &image)
{
    const QString plain = prefix + image;
    const QString encoded = prefix + percentEncodedPath(image);
    return text.contains(plain) || text.contains(encoded) || withEntitiesResolved(text).contains(plain) ||
           withEntitiesResolved(text).contains(encoded);
}

// Takes off what the document's text mentions, and notes it in the document's properties for the next time.
void keepMentioned(const QString &document, const QString &text, QStringList &candidates)
{
    QStringList photos = photosProperty(document);
    const qsizetype known = photos.size();
    candidates.removeIf([&](const QString &image) {
        if (!mentions(text, image)) return false;
        photos.append(prefix + image);
        return true;
    });
    if (photos.size() != known) tm_setProperty(document, QVariantList(photos.begin(), photos.end()), photosKey);
}

// Moves files to the trash; for good from the first failure on, which tells that there is no trash.
class Remover
{
public:
    void remove(const QString &path)
    {
        if (!itemExists(path)) return;
        if (m_trashWorks && platform().trash->take(path)) return;
        m_trashWorks = false;
        (void)removeItem(path);
    }

private:
    bool m_trashWorks = true;
};

void removeImages(const QString &folder, const QStringList &images)
{
    logLine(QStringLiteral("images to delete: %1").arg(images.join(QStringLiteral(", "))));
    Remover remover;
    for (const QString &image : images) {
        remover.remove(joinPath(folder, image));
        remover.remove(tm_plistPath(joinPath(folder, image)));
    }
    QStringList remaining = namesInFolder(folder);
    remaining.removeIf([](const QString &name) { return name.endsWith(u".plist"); });
    logLine(QStringLiteral("remaining images in folder: %1").arg(remaining.join(QStringLiteral(", "))));
    if (namesInFolder(folder).isEmpty()) (void)removeItem(folder);
}

} // namespace

void tm_cleanupImagesFolder(const QString &book)
{
    const Settings &values = settings();
    if (!values.boolean(QStringLiteral("cleanUpAttachments")) ||
        values.integer(QStringLiteral("iCloudSyncProgress")) != 0)
        return;
    const QString folder = joinPath(book, folderName);
    const auto entries = isFolder(folder) ? listFolder(folder) : std::nullopt;
    const QStringList names = namesInFolder(folder);
    if (!entries || names.isEmpty() || anyIsDownloading(names)) return;
    QStringList candidates = imagesWithoutBacklinks(folder, names);
    if (candidates.isEmpty()) return logLine(QStringLiteral("no images to check"));

    const QStringList namesInBook = namesInFolder(book);
    if (namesInBook.isEmpty() || anyIsDownloading(namesInBook)) return;
    const QStringList documents = documentsOf(book, namesInBook);
    for (const QString &document : documents)
        for (const QString &reference : photosProperty(document)) {
            candidates.removeAll(lastPathComponent(reference));
            candidates.removeAll(percentDecoded(lastPathComponent(reference)));
        }
    logLine(QStringLiteral("images to delete, but will check again: %1").arg(candidates.join(QStringLiteral(", "))));

    for (const QString &document : documents) {
        if (candidates.isEmpty()) break;
        const auto decoded = readTextFile(document);
        if (!decoded) return logLine(QStringLiteral("### Break, read error: %1").arg(document));
        keepMentioned(document, decoded->text, candidates);
    }
    removeImages(folder, candidates);
}

} // namespace tomelet
