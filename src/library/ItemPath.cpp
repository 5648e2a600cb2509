// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/ItemPath.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/Properties.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <sys/stat.h>

namespace tomelet {

static const QString arrow = QStringLiteral(" ⟩ ");

bool tm_pathIsBook(const QString &path)
{
    return isFolder(path);
}

bool pathIsPlainBook(const QString &path)
{
    return !hasPackageExtension(path) && isFolder(path);
}

bool tm_pathIsDotFile(const QString &path)
{
    const QString name = lastPathComponent(path);
    if (name.startsWith(u"..")) {
        // The exception is for the name alone: a hidden folder above still hides it.
        const QStringView above = QStringView(path).left(path.lastIndexOf(u'/') < 0 ? 0 : path.lastIndexOf(u'/'));
        return above.contains(u"/.") || (above.startsWith(u'.') && !above.startsWith(u".."));
    }
    return path.contains(u"/.") || name.startsWith(u'.') || path.endsWith(u'~');
}

bool tm_pathIsFinderIcon(const QString &path)
{
    const QString name = lastPathComponent(path);
    return name.size() == 5 && name.startsWith(u"Icon") && pathExtension(path).isEmpty();
}

bool tm_pathIsExcludedFromDisplay(const QString &path)
{
    if (path.endsWith(u".plist") || path.endsWith(u".__sidecar")) return true;
    if (tm_pathIsDotFile(path) || tm_pathIsFinderIcon(path)) return true;
    const QString name = lastPathComponent(path);
    if (name.contains(u"__NewNoteTmp") || name.contains(u"/.git")) return true;
    if (path.contains(u"TMResources") && !path.contains(u"CSS")) return true;
    return path.endsWith(u"TMImages");
}

bool tm_pathIsExcludedFromRecentlyModified(const QString &path)
{
    if (path.endsWith(u".plist")) return true;
    if (path.contains(u"TMResources/") && !path.contains(u"TMResources/CSS")) return true;
    for (const auto ending :
         {u"TMResources/Misc/RecentItems.txt", u"autosave", u"Dropbox Log.txt", u".icloud", u".DS_Store"})
        if (path.endsWith(QStringView(ending))) return true;
    return path.contains(u"/.git");
}

bool tm_pathIsRecentlyModified(const QString &path)
{
    const qlonglong days = settings().integer(QStringLiteral("recentlyModifiedSince")) * 7 + 7;
    if (days <= 0 || tm_pathIsExcludedFromRecentlyModified(path)) return false;
    const QFileInfo file(path);
    return file.exists() && !file.isDir() && file.lastModified() > platform().clock.now().addDays(-days);
}

bool tm_pathIsTaskPlist(const QString &path)
{
    return path.endsWith(u"TMTasklistDetails.plist") || path.endsWith(u"TMTasklistDetails_inactive.plist");
}

bool tm_pathIsSystemFile(const QString &path)
{
    return tm_pathIsTaskPlist(path) || path.endsWith(u"BookProperties.plist");
}

bool tm_itemIsChildOfTomelet(const QString &path, const QString &root)
{
    return !root.isEmpty() && path.startsWith(root, Qt::CaseInsensitive);
}

bool tm_itemIsTrashed(const QString &path)
{
    return path.contains(u".Trash") || path.contains(u".TMTrash");
}

QString tm_normalizedPath(const QString &path, const QString &root)
{
    return tm_itemIsChildOfTomelet(path, root) ? path.mid(root.size()) : path;
}

QString fullPathOf(const QString &normalizedPath, const QString &root)
{
    return joinPath(root, normalizedPath == u"/" ? QString() : normalizedPath);
}

QString tm_pathFromTomeletURLScheme(const QString &url)
{
    QString rest = url;
    rest.remove(QStringLiteral("tomelet://show")).remove(QStringLiteral("tomelet://"));
    return joinPath(QStringLiteral("/"), rest);
}

namespace {

bool isPrintableAscii(const QString &name)
{
    return std::ranges::all_of(name, [](QChar unit) { return unit.unicode() >= 0x20 && unit.unicode() < 0x7f; });
}

QString withCaseSwapped(QString name)
{
    for (QChar &unit : name) unit = unit.isUpper() ? unit.toLower() : unit.toUpper();
    return name;
}

bool isSameFile(const QString &a, const QString &b)
{
    struct stat first
    {};
    struct stat second
    {};
    return ::lstat(QFile::encodeName(a).constData(), &first) == 0 &&
           ::lstat(QFile::encodeName(b).constData(), &second) == 0 && first.st_ino == second.st_ino &&
           first.st_dev == second.st_dev;
}

Existence existenceInListing(const QString &folder, const QString &name)
{
    for (const FolderEntry &entry : listFolder(folder).value_or(std::vector<FolderEntry>()))
        if (localizedCompare(entry.name, name) == 0) return {true, entry.isFolder};
    return {};
}

} // namespace

// The listing is read only where the plain test could be wrong: a file system that folds case answers for any
// spelling, and a name beyond ASCII may stand there in another normal form.
Existence tm_fileExistsAtPathIsDirectory(const QString &path)
{
    const QString trimmed = path.size() > 1 && path.endsWith(u'/') ? path.chopped(1) : path;
    if (trimmed.isEmpty()) return {};
    if (trimmed == tomeletRoot()) return {true, true};
    const QString folder = parentPath(trimmed);
    const QString name = lastPathComponent(trimmed);
    if (!itemExists(trimmed)) return isPrintableAscii(name) ? Existence{} : existenceInListing(folder, name);
    const QString swapped = withCaseSwapped(name);
    if (swapped != name && isSameFile(trimmed, joinPath(folder, swapped))) return existenceInListing(folder, name);
    return {true, isFolder(trimmed)};
}

bool tm_isEmptyBook(const QString &path)
{
    const QString root = tomeletRoot();
    const QString full = path.startsWith(root) ? path : fullPathOf(path, root);
    const auto entries = listFolder(full);
    return !entries || std::ranges::none_of(*entries, [&](const FolderEntry &entry) {
        return !tm_pathIsExcludedFromDisplay(joinPath(full, entry.name));
    });
}

QString tm_plistPath(const QString &path)
{
    return path + QStringLiteral(".plist");
}

QString imagesFolderBeside(const QString &path)
{
    return joinPath(parentPath(path), QStringLiteral("TMImages"));
}

QString tm_imagesFolderAtMyPath(const QString &path)
{
    if (path.isEmpty()) return {};
    const QString folder = imagesFolderBeside(path);
    makeFolder(folder);
    return folder;
}

QString tm_iCloudStub(const QString &path)
{
    return parentPath(path) + QStringLiteral("/.") + lastPathComponent(path) + QStringLiteral(".icloud");
}

// File managers read the names to hide from the file ".hidden", one a line.
static void setHidden(const QString &path, bool hidden)
{
    if (path.isEmpty()) return;
    const QString listPath = joinPath(parentPath(path), QStringLiteral(".hidden"));
    QStringList names = QString::fromUtf8(readFile(listPath).value_or(QByteArray())).split(u'\n', Qt::SkipEmptyParts);
    const QString name = lastPathComponent(path);
    if (names.contains(name) == hidden) return;
    if (hidden) names.append(name);
    else names.removeAll(name);
    (void)writeFile(listPath, (names.join(u'\n') + u'\n').toUtf8());
}

void tm_hideItemInFinder(const QString &path)
{
    setHidden(path, true);
}

void tm_showItemInFinder(const QString &path)
{
    setHidden(path, false);
}

static QString trimmedSlashes(QString path)
{
    while (path.startsWith(u'/')) path.remove(0, 1);
    while (path.endsWith(u'/')) path.chop(1);
    return path;
}

QString tm_pathFormattedForDisplay(const QString &path)
{
    QString text = path;
    text.remove(QStringLiteral("https://")).remove(QStringLiteral("http://"));
    return trimmedSlashes(text).replace(u'/', arrow);
}

MenuTitle tm_pathFormattedForContextMenu(const QString &path)
{
    const QString folders = trimmedSlashes(parentPath(path)).replace(u'/', arrow);
    return {folders.isEmpty() ? QString() : folders + arrow, lastPathComponent(pathWithoutExtension(path))};
}

static QString urlFileAddress(const QByteArray &bytes)
{
    for (const QByteArray &line : bytes.split('\n'))
        if (line.startsWith("URL=")) return QString::fromUtf8(line.sliced(4).trimmed());
    return {};
}

QString tm_embeddedURL(const QString &path)
{
    const QString extension = lowerExtension(path);
    QString address;
    if (extension == u"webloc") address = readDictionary(path).value(QStringLiteral("URL")).toString();
    else if (extension == u"webarchive")
        address = readDictionary(path)
                      .value(QStringLiteral("WebMainResource"))
                      .toMap()
                      .value(QStringLiteral("WebResourceURL"))
                      .toString();
    else if (extension == u"url") address = urlFileAddress(readFile(path).value_or(QByteArray()));
    return address.isEmpty() ? tm_propertyForKey(path, QStringLiteral("URL")).toString() : address;
}

} // namespace tomelet
