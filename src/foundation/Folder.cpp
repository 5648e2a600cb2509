// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Folder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace tomelet {

static FolderEntry entryFrom(int folder, const dirent &raw)
{
    FolderEntry entry{QFile::decodeName(raw.d_name), raw.d_type == DT_DIR, true};
    if (raw.d_type != DT_LNK && raw.d_type != DT_UNKNOWN) return entry;
    struct stat status
    {};
    entry.exists = ::fstatat(folder, raw.d_name, &status, 0) == 0;
    entry.isFolder = entry.exists && S_ISDIR(status.st_mode);
    return entry;
}

namespace {

struct CloseFolder
{
    void operator()(DIR *stream) const { ::closedir(stream); }
};

} // namespace

std::optional<std::vector<FolderEntry>> listFolder(const QString &path)
{
    const std::unique_ptr<DIR, CloseFolder> stream(::opendir(QFile::encodeName(path).constData()));
    if (!stream) return std::nullopt;
    std::vector<FolderEntry> entries;
    while (const dirent *raw = ::readdir(stream.get())) {
        const QByteArrayView name(raw->d_name);
        if (name != "." && name != "..") entries.push_back(entryFrom(::dirfd(stream.get()), *raw));
    }
    return entries;
}

QStringList namesInFolder(const QString &path)
{
    QStringList names;
    if (const auto entries = listFolder(path))
        for (const FolderEntry &entry : *entries) names.append(entry.name);
    names.sort();
    return names;
}

bool isFolder(const QString &path)
{
    struct stat status
    {};
    return !path.isEmpty() && ::stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool itemExists(const QString &path)
{
    struct stat status
    {};
    return !path.isEmpty() && ::lstat(QFile::encodeName(path).constData(), &status) == 0;
}

bool makeFolder(const QString &path)
{
    return QDir().mkpath(path);
}

static QStringView withoutTrailingSlashes(QStringView path)
{
    while (path.size() > 1 && path.endsWith(u'/')) path.chop(1);
    return path;
}

QString lastPathComponent(const QString &path)
{
    const QStringView trimmed = withoutTrailingSlashes(path);
    if (trimmed == u"/") return QStringLiteral("/");
    return trimmed.sliced(trimmed.lastIndexOf(u'/') + 1).toString();
}

QString parentPath(const QString &path)
{
    const QStringView trimmed = withoutTrailingSlashes(path);
    const qsizetype slash = trimmed.lastIndexOf(u'/');
    if (slash < 0) return {};
    return withoutTrailingSlashes(trimmed.left(std::max<qsizetype>(slash, 1))).toString();
}

QString pathExtension(const QString &path)
{
    const QString name = lastPathComponent(path);
    const qsizetype point = name.lastIndexOf(u'.');
    if (point <= 0) return {};
    const QString extension = name.mid(point + 1);
    return extension.contains(u' ') ? QString() : extension;
}

QString pathWithoutExtension(const QString &path)
{
    const QString extension = pathExtension(path);
    const QString trimmed = withoutTrailingSlashes(path).toString();
    // "Name." has an empty extension and keeps its point.
    return extension.isEmpty() ? trimmed : trimmed.chopped(extension.size() + 1);
}

QString joinPath(const QString &folder, const QString &component)
{
    if (folder.isEmpty()) return component;
    if (component.isEmpty()) return folder;
    QString path = folder.endsWith(u'/') ? folder.chopped(1) : folder;
    if (!component.startsWith(u'/')) path += u'/';
    return path + component;
}

} // namespace tomelet
