// SPDX-License-Identifier: GPL-3.0-or-later
// What is known about an item beyond its bytes: a property list beside each document, one inside each book.
// Nothing is cached: each read opens the file. A missing or unreadable file reads as empty.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <limits>

namespace tomelet {

/// "Not found" as a number: above any index.
inline constexpr qlonglong notFoundIndex = std::numeric_limits<qlonglong>::max();

/// `BookProperties.plist` of a book.
[[nodiscard]] QString bookPropertiesPath(const QString &book);
/// The property file of an item: the book's own for a folder, the one beside it for everything else.
[[nodiscard]] QString propertyFileOf(const QString &path);
/// The item that a property file belongs to; another path is its own item.
[[nodiscard]] QString ownerOfPropertyFile(const QString &path);
/// All stored properties of an item in one read.
[[nodiscard]] QVariantMap storedProperties(const QString &path);

/// The stored value, or the key's default: null (an invalid variant), an empty list, the far past, or "". Values
/// other than texts, dictionaries, arrays, data and dates are given as text.
[[nodiscard]] QVariant tm_propertyForKey(const QString &path, const QString &key);
/// The value for a key out of properties that were read already, with the same defaults and the same reading.
[[nodiscard]] QVariant propertyFrom(const QVariantMap &properties, const QString &key);
/// Stores a value; null removes the key. Nothing is written when the same value stands there. Outside the library
/// only `CharacterOffset`, `CSS` and `MarkdownConverter` are kept.
void tm_setProperty(const QString &path, const QVariant &value, const QString &key);
/// The same for several values, in one write.
void setProperties(const QString &path, const QVariantMap &values);
void tm_removePropertyForKey(const QString &path, const QString &key);

/// The first non-empty value on the way from the item up to the root. Label, converter and preview lines go on to
/// the file's label and to the settings. Without any value: the key's default.
[[nodiscard]] QVariant tm_inheritedPropertyForKey(const QString &path, const QString &key);
/// A text, list, dictionary or data that is not empty, or any other value.
[[nodiscard]] bool isNonEmptyProperty(const QVariant &value);

/// The stored creation date, else the file's; see also `alwaysSaveCreationDate`. Storing is part of the question.
[[nodiscard]] QDateTime tm_creationDate(const QString &path);
/// Stamps now when no date is stored.
void tm_setCreationDate(const QString &path);
void tm_setCreationDate(const QString &path, const QDateTime &date);
/// Both dates of a file in UTC, read at once; invalid where there is none. A file system that keeps no date of creation
/// gives the one of the last change in its place.
struct FileDates
{
    QDateTime created;
    QDateTime modified;
};
[[nodiscard]] FileDates fileDates(const QString &path);
/// The file system's birth time, or the earlier of the dates it has where it keeps none. Invalid for no file.
[[nodiscard]] QDateTime fileCreationDate(const QString &path);

/// The index of the item's name in the parent's `Books` or `Notes`, or notFoundIndex.
[[nodiscard]] qlonglong tm_customSequenceNrForPath(const QString &path);
[[nodiscard]] bool tm_isPinned(const QString &path);
/// Pins the item before all others, or unpins it.
void tm_pinToTop(const QString &path);
/// Follows a rename inside one book in its order lists and pins; an empty target takes the name off its list.
void tm_changeSortOrderToPath(const QString &path, const QString &target);
/// Writes the names of a book's books and documents as its custom order.
void saveCustomSortOrder(const QString &book, const QStringList &books, const QStringList &documents);

/// The label: "Auto" removes it, any other text is stored.
void tm_setColorLabel(const QString &path, const QString &color);
/// False unless protection is on; otherwise the inherited `isProtected`.
[[nodiscard]] bool tm_isProtected(const QString &path);

[[nodiscard]] bool tm_isFavorite(const QString &path);
void tm_setFavorite(const QString &path);
void tm_clearFavorite(const QString &path);
void tm_toggleFavorite(const QString &path);

/// The file in the cache that holds the visible text of a formatted document.
[[nodiscard]] QString tm_sideCarPath(const QString &path);
[[nodiscard]] QString tm_sideCarPathCreatingParentIfNeeded(const QString &path);

} // namespace tomelet
