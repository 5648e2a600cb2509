// SPDX-License-Identifier: GPL-3.0-or-later
// Item paths: absolute path texts that are the handles of all books and documents. What an item is follows from its
// path and the file system, each time anew.
//
// `root` is the resolved root; batches pass it so that it is looked up once.
#pragma once

#include "library/Root.h"

#include <QString>

#include <optional>

namespace tomelet {

/// The path names an existing folder. A package counts too; callers that care test its extension.
[[nodiscard]] bool tm_pathIsBook(const QString &path);
/// A book that is no package.
[[nodiscard]] bool pathIsPlainBook(const QString &path);
/// A hidden name, anything below a hidden folder, or a name that ends in "~". "..name" is not hidden by itself.
[[nodiscard]] bool tm_pathIsDotFile(const QString &path);
/// The item never appears in lists. A test of the text alone, without a look at the file system.
[[nodiscard]] bool tm_pathIsExcludedFromDisplay(const QString &path);
/// A change of the file does not count as a modification of the library.
[[nodiscard]] bool tm_pathIsExcludedFromRecentlyModified(const QString &path);
/// A file that was modified within the span of the setting `recentlyModifiedSince`.
[[nodiscard]] bool tm_pathIsRecentlyModified(const QString &path);
/// "Icon" and one further character, without extension: the folder-icon file of another platform.
[[nodiscard]] bool tm_pathIsFinderIcon(const QString &path);
[[nodiscard]] bool tm_pathIsSystemFile(const QString &path);
[[nodiscard]] bool tm_pathIsTaskPlist(const QString &path);
/// The path begins with the root, case folded; the root is its own child. False while no root is set.
[[nodiscard]] bool tm_itemIsChildOfTomelet(const QString &path, const QString &root = tomeletRoot());
[[nodiscard]] bool tm_itemIsTrashed(const QString &path);

/// The path with the root cut off, so that it begins with "/"; a path outside the library as it is.
[[nodiscard]] QString tm_normalizedPath(const QString &path, const QString &root = tomeletRoot());
/// The full path of a normalised one.
[[nodiscard]] QString fullPathOf(const QString &normalizedPath, const QString &root = tomeletRoot());
/// "tomelet://show/Book/a.md" gives "/Book/a.md". Nothing is percent-decoded.
[[nodiscard]] QString tm_pathFromTomeletURLScheme(const QString &url);

struct Existence
{
    bool exists = false;
    bool isFolder = false;
};
/// Whether the item stands in the listing of its folder by locale-aware comparison, so that the name counts as it is
/// stored and not as the file system understands it.
[[nodiscard]] Existence tm_fileExistsAtPathIsDirectory(const QString &path);
/// No entry of the book is visible. A relative path is taken from the root.
[[nodiscard]] bool tm_isEmptyBook(const QString &path);

/// The property file beside a document: its path with ".plist" appended.
[[nodiscard]] QString tm_plistPath(const QString &path);
/// `TMImages` beside the item; made when missing.
[[nodiscard]] QString tm_imagesFolderAtMyPath(const QString &path);
/// The same without making it.
[[nodiscard]] QString imagesFolderBeside(const QString &path);
/// The hidden placeholder of a document that a sync service has not downloaded: "/Book/.a.md.icloud".
[[nodiscard]] QString tm_iCloudStub(const QString &path);

/// Puts the name on the list that file managers hide names by (the file ".hidden" of the folder), or takes it off.
void tm_hideItemInFinder(const QString &path);
void tm_showItemInFinder(const QString &path);

/// Without "https://" and "http://", without "/" at the ends, each other "/" as " ⟩ ".
[[nodiscard]] QString tm_pathFormattedForDisplay(const QString &path);

/// A menu title in two shades: the folders, dim, and the name without extension.
struct MenuTitle
{
    QString folders; ///< "Book ⟩ Sub ⟩ ", or ""
    QString name;
};
[[nodiscard]] MenuTitle tm_pathFormattedForContextMenu(const QString &path);

/// The web address that a webarchive, webloc or url file holds, else the item's property `URL`, else "".
[[nodiscard]] QString tm_embeddedURL(const QString &path);

} // namespace tomelet
