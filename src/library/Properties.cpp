// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/Properties.h"

#include "foundation/Clock.h"
#include "foundation/Collation.h"
#include "foundation/Conversions.h"
#include "foundation/ExtendedAttributes.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyList.h"
#include "foundation/PropertyStore.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>

namespace tomelet {

static const QString creationDateKey = QStringLiteral("CreationDate");
static const QString favoriteMark = QStringLiteral("_TMFAV");

QString bookPropertiesPath(const QString &book)
{
    return joinPath(book, QStringLiteral("BookProperties.plist"));
}

QString propertyFileOf(const QString &path)
{
    return isFolder(path) ? bookPropertiesPath(path) : tm_plistPath(path);
}

QString ownerOfPropertyFile(const QString &path)
{
    if (lastPathComponent(path) == u"BookProperties.plist") return parentPath(path);
    return path.endsWith(u".plist") ? path.chopped(6) : path;
}

QVariantMap storedProperties(const QString &path)
{
    return path.isEmpty() ? QVariantMap() : readDictionary(propertyFileOf(path));
}

// -- positions in extended attributes ---------------------------------------------------------------------------------

static bool isPositionKey(const QString &key)
{
    static const QStringList keys{QStringLiteral("CharacterOffset"), QStringLiteral("CurrentPDFPage"),
                                  QStringLiteral("Offset"), QStringLiteral("Markdown")};
    return keys.contains(key);
}

static bool rootLiesInSyncedArea()
{
    const QString container = settings().string(QStringLiteral("UbiquityContainerPath"));
    return !container.isEmpty() && tomeletRoot().startsWith(parentPath(container));
}

static bool usesAttribute(const QString &path, const QString &key)
{
    return isPositionKey(key) && (!tm_itemIsChildOfTomelet(path) || rootLiesInSyncedArea());
}

static QString attributeName(const QString &key)
{
    const bool synced = key == u"CharacterOffset" || key == u"CurrentPDFPage";
    return QStringLiteral("org.tomelet.app.") + key + (synced ? QStringLiteral("#S") : QString());
}

static QVariant readAttribute(const QString &path, const QString &key)
{
    const auto bytes = extendedAttribute(path, attributeName(key));
    return bytes ? parsePropertyList(*bytes).value_or(QVariant()) : QVariant();
}

static void writeAttribute(const QString &path, const QString &key, const QVariant &value)
{
    if (readAttribute(path, key) != value) setExtendedAttribute(path, attributeName(key), binaryPropertyList(value));
}

// -- reading and writing ----------------------------------------------------------------------------------------------

static QVariant defaultFor(const QString &key)
{
    static const QStringList nulls{QStringLiteral("TextColor"),   QStringLiteral("BackgroundColor"),
                                   QStringLiteral("isProtected"), QStringLiteral("CurrentTaskCount"),
                                   QStringLiteral("TOC"),         QStringLiteral("Embedded Photos"),
                                   QStringLiteral("Tags"),        QStringLiteral("lineSpacing")};
    if (nulls.contains(key)) return {};
    if (key == u"Backlinks" || key == u"PDFBookmarks") return QVariantList();
    if (key == u"Mail" || key == u"Print" || key == creationDateKey) return farPast();
    return QString();
}

QVariant propertyFrom(const QVariantMap &properties, const QString &key)
{
    const QVariant value = properties.value(key);
    if (!value.isValid()) return defaultFor(key);
    if (key == u"cellColor" && value == QStringLiteral("white")) return QStringLiteral("default");
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::QVariantMap:
    case QMetaType::QVariantList:
    case QMetaType::QByteArray:
    case QMetaType::QDateTime: return value;
    default: return textFromVariant(value);
    }
}

QVariant tm_propertyForKey(const QString &path, const QString &key)
{
    if (usesAttribute(path, key)) return readAttribute(path, key);
    return propertyFrom(storedProperties(path), key);
}

static void hideIfWanted(const QString &plist)
{
    if (settings().boolean(QStringLiteral("hideSystemFiles"))) tm_hideItemInFinder(plist);
}

static bool keepsNoProperties(const QString &path)
{
    return path.isEmpty() || lastPathComponent(path).startsWith(u"__NewNoteTmp");
}

void tm_setProperty(const QString &path, const QVariant &value, const QString &key)
{
    if (!value.isValid()) return tm_removePropertyForKey(path, key);
    if (keepsNoProperties(path)) return;
    if (!tm_itemIsChildOfTomelet(path)) {
        logLine(QStringLiteral("handling external document, save plist selectively"));
        if (key != u"CharacterOffset" && key != u"CSS" && key != u"MarkdownConverter") return;
    }
    if (usesAttribute(path, key)) return writeAttribute(path, key, value);

    const QString plist = propertyFileOf(path);
    bool changed = false;
    changeDictionary(plist, [&](QVariantMap &properties) {
        changed = !properties.contains(key) || properties.value(key) != value;
        properties.insert(key, value);
        return changed;
    });
    if (changed) hideIfWanted(plist);
}

void setProperties(const QString &path, const QVariantMap &values)
{
    if (!tm_itemIsChildOfTomelet(path)) {
        for (const auto &[key, value] : values.asKeyValueRange()) tm_setProperty(path, value, key);
        return;
    }
    if (keepsNoProperties(path) || values.isEmpty()) return;
    changeDictionary(propertyFileOf(path), [&](QVariantMap &properties) {
        properties.insert(values);
        return true;
    });
    hideIfWanted(propertyFileOf(path));
}

void tm_removePropertyForKey(const QString &path, const QString &key)
{
    if (keepsNoProperties(path)) return;
    const bool hasIdentity = settings().boolean(QStringLiteral("iCloudAvailable"));
    if (isPositionKey(key) && hasIdentity && rootLiesInSyncedArea()) return writeAttribute(path, key, QString());
    changeDictionary(propertyFileOf(path), [&](QVariantMap &properties) { return properties.remove(key) > 0; });
}

// -- inheritance ------------------------------------------------------------------------------------------------------

bool isNonEmptyProperty(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType: return false;
    case QMetaType::QString: return !value.toString().isEmpty();
    case QMetaType::QByteArray: return !value.toByteArray().isEmpty();
    case QMetaType::QVariantList: return !value.toList().isEmpty();
    case QMetaType::QVariantMap: return !value.toMap().isEmpty();
    default: return true;
    }
}

static QString fileLabel(const QString &path)
{
    static const char *const colors[] = {"", "gray", "green", "purple", "blue", "yellow", "red", "orange"};
    const auto bytes = extendedAttribute(path, QStringLiteral("org.tomelet.app.label"));
    const int number = bytes ? bytes->toInt() : 0;
    return number > 0 && number < 8 ? QString::fromLatin1(colors[number]) : QString();
}

QVariant tm_inheritedPropertyForKey(const QString &path, const QString &key)
{
    const QString root = tomeletRoot();
    QString at = tm_itemIsChildOfTomelet(path, root) ? path : root;
    QVariant value = tm_propertyForKey(at, key);
    while (!isNonEmptyProperty(value) && !at.isEmpty() && at.compare(root, Qt::CaseInsensitive) != 0 && at != u"/") {
        at = parentPath(at);
        value = tm_propertyForKey(at, key);
    }
    if (isNonEmptyProperty(value)) return value;
    if (key == u"cellColor") return fileLabel(path);
    if (key == u"MarkdownConverter" || key == u"showPreviewForNotes") return QString::number(settings().integer(key));
    return value;
}

// -- dates ------------------------------------------------------------------------------------------------------------

FileDates fileDates(const QString &path)
{
    struct statx status
    {};
    if (::statx(AT_FDCWD, QFile::encodeName(path).constData(), 0, STATX_BTIME | STATX_MTIME, &status) != 0) return {};
    const auto date = [](const statx_timestamp &stamp) {
        return QDateTime::fromMSecsSinceEpoch(stamp.tv_sec * 1000 + stamp.tv_nsec / 1000000, Qt::UTC);
    };
    return {date(status.stx_mask & STATX_BTIME ? status.stx_btime : status.stx_mtime), date(status.stx_mtime)};
}

QDateTime fileCreationDate(const QString &path)
{
    return fileDates(path).created;
}

QDateTime tm_creationDate(const QString &path)
{
    const QVariant stored = storedProperties(path).value(creationDateKey);
    if (stored.typeId() == QMetaType::QDateTime) return stored.toDateTime();
    if (path.endsWith(u".plist")) return farPast();
    const QDateTime date = fileCreationDate(path);
    if (!tm_itemIsChildOfTomelet(path) || !date.isValid()) return date;
    const bool alwaysSave = settings().boolean(QStringLiteral("alwaysSaveCreationDate"));
    if (!alwaysSave && !itemExists(propertyFileOf(path))) return date;
    if (settings().integer(QStringLiteral("iCloudSyncProgress")) == 0) tm_setCreationDate(path, date);
    return date;
}

void tm_setCreationDate(const QString &path)
{
    if (!storedProperties(path).contains(creationDateKey)) tm_setCreationDate(path, platform().clock.now());
}

void tm_setCreationDate(const QString &path, const QDateTime &date)
{
    tm_setProperty(path, date.toUTC(), creationDateKey);
}

// -- orders and pins --------------------------------------------------------------------------------------------------

static const QString booksKey = QStringLiteral("Books");
static const QString notesKey = QStringLiteral("Notes");
static const QString pinnedKey = QStringLiteral("Pinned");

static QVariantList listFrom(const QStringList &names)
{
    return {names.begin(), names.end()};
}

qlonglong tm_customSequenceNrForPath(const QString &path)
{
    const QVariantMap book = readDictionary(bookPropertiesPath(parentPath(path)));
    const QStringList order = book.value(pathIsPlainBook(path) ? booksKey : notesKey).toStringList();
    const auto index = tm_localizedIndexOfObject(order, lastPathComponent(path));
    return index ? *index : notFoundIndex;
}

bool tm_isPinned(const QString &path)
{
    const QVariantMap book = readDictionary(bookPropertiesPath(parentPath(path)));
    return tm_localizedIndexOfObject(book.value(pinnedKey).toStringList(), lastPathComponent(path)).has_value();
}

void tm_pinToTop(const QString &path)
{
    const QString plist = bookPropertiesPath(parentPath(path));
    changeDictionary(plist, [&](QVariantMap &book) {
        QStringList pinned = book.value(pinnedKey).toStringList();
        if (const auto index = tm_localizedIndexOfObject(pinned, lastPathComponent(path))) pinned.removeAt(*index);
        else pinned.prepend(lastPathComponent(path));
        book.insert(pinnedKey, listFrom(pinned));
        return true;
    });
    hideIfWanted(plist);
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), plist);
}

// Replaces the name in the list under the key, or removes it for a null replacement; true when the list changed.
static bool changeNameInList(QVariantMap &book, const QString &key, const QString &name, const QString &replacement)
{
    QStringList names = book.value(key).toStringList();
    const auto index = tm_localizedIndexOfObject(names, name);
    if (!index || names[*index] == replacement) return false;
    if (replacement.isNull()) names.removeAt(*index);
    else names[*index] = replacement;
    book.insert(key, listFrom(names));
    return true;
}

void tm_changeSortOrderToPath(const QString &path, const QString &target)
{
    const QString book = parentPath(path);
    const QString plist = bookPropertiesPath(book);
    if (!itemExists(plist) || (!target.isEmpty() && parentPath(target) != book)) return;
    const QString name = lastPathComponent(path);
    changeDictionary(plist, [&](QVariantMap &properties) {
        if (target.isEmpty()) {
            // The item may be gone already: then the list that names it tells of which kind it was.
            const bool inBooks =
                itemExists(path)
                    ? pathIsPlainBook(path)
                    : tm_localizedIndexOfObject(properties.value(booksKey).toStringList(), name).has_value();
            return changeNameInList(properties, inBooks ? booksKey : notesKey, name, QString());
        }
        const QString newName = lastPathComponent(target);
        const bool ordered = changeNameInList(properties, pathIsPlainBook(target) ? booksKey : notesKey, name, newName);
        const bool pinned = changeNameInList(properties, pinnedKey, name, newName);
        return ordered || pinned;
    });
}

void saveCustomSortOrder(const QString &book, const QStringList &books, const QStringList &documents)
{
    changeDictionary(bookPropertiesPath(book), [&](QVariantMap &properties) {
        const QVariantMap before = properties;
        properties.insert(booksKey, listFrom(books));
        properties.insert(notesKey, listFrom(documents));
        return properties != before;
    });
}

// -- labels, protection, favourites -----------------------------------------------------------------------------------

void tm_setColorLabel(const QString &path, const QString &color)
{
    tm_setProperty(path, color == u"Auto" ? QVariant() : QVariant(color), QStringLiteral("cellColor"));
}

bool tm_isProtected(const QString &path)
{
    return settings().boolean(QStringLiteral("protectionEnabled")) &&
           boolFromVariant(tm_inheritedPropertyForKey(path, QStringLiteral("isProtected")));
}

bool tm_isFavorite(const QString &path)
{
    return tm_propertyForKey(path, QStringLiteral("Tags")).toStringList().contains(favoriteMark);
}

void tm_setFavorite(const QString &path)
{
    if (!tm_isFavorite(path)) organiser().setMark(path, favoriteMark, true);
}

void tm_clearFavorite(const QString &path)
{
    if (tm_isFavorite(path)) organiser().setMark(path, favoriteMark, false);
}

void tm_toggleFavorite(const QString &path)
{
    organiser().setMark(path, favoriteMark, !tm_isFavorite(path));
}

// -- sidecar ----------------------------------------------------------------------------------------------------------

QString tm_sideCarPath(const QString &path)
{
    return joinPath(rootCacheFolder(), tm_normalizedPath(path));
}

QString tm_sideCarPathCreatingParentIfNeeded(const QString &path)
{
    const QString sidecar = tm_sideCarPath(path);
    makeFolder(parentPath(sidecar));
    return sidecar;
}

} // namespace tomelet
