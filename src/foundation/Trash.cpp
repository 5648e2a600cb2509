// SPDX-License-Identifier: GPL-3.0-or-later
// The toolkit's own function is not used: it follows links, never ends on names that leave no room for the suffix of
// their record, and takes the working folder for the trash where none can be made.
#include "foundation/Trash.h"

#include "foundation/Directories.h"
#include "foundation/FileOperations.h"
#include "foundation/Folder.h"

#include <QDateTime>
#include <QFile>
#include <QStorageInfo>
#include <QUrl>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tomelet {

namespace {

/// A folder with "files" and "info", and what paths in its records are relative to ("" for absolute ones).
struct TrashFolder
{
    QString path;
    QString top;
};

std::optional<dev_t> deviceOf(const QString &path)
{
    struct stat status
    {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0) return std::nullopt;
    return status.st_dev;
}

bool makePrivateFolder(const QString &path)
{
    return ::mkdir(QFile::encodeName(path).constData(), 0700) == 0 || isFolder(path);
}

bool makeTrashFolder(const QString &path)
{
    if (!makePrivateFolder(path)) return false;
    for (const auto &part : {QStringLiteral("/files"), QStringLiteral("/info")})
        if (!makePrivateFolder(path + part) || ::access(QFile::encodeName(path + part).constData(), W_OK) != 0)
            return false;
    return true;
}

std::optional<TrashFolder> homeTrash()
{
    const QString base = parentPath(dataDirectory());
    if (!makeFolder(parentPath(base)) || !makePrivateFolder(base)) return std::nullopt;
    const QString path = base + QStringLiteral("/Trash");
    if (!makeTrashFolder(path)) return std::nullopt;
    return TrashFolder{path, {}};
}

// ".Trash" that the administrator made for all, if it is safe to use, else a person's own folder on the volume.
std::optional<TrashFolder> volumeTrash(const QString &path)
{
    const QString root = QStorageInfo(parentPath(path)).rootPath();
    if (root.isEmpty()) return std::nullopt;
    const QString top = root == u"/" ? QString() : root;
    const QString shared = top + QStringLiteral("/.Trash");
    const QString user = QString::number(::getuid());
    struct stat status
    {};
    const bool safe = ::lstat(QFile::encodeName(shared).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
                      (status.st_mode & S_ISVTX);
    if (safe && makeTrashFolder(shared + u'/' + user)) return TrashFolder{shared + u'/' + user, root};
    const QString own = top + QStringLiteral("/.Trash-") + user;
    if (!makeTrashFolder(own)) return std::nullopt;
    return TrashFolder{own, root};
}

std::optional<TrashFolder> trashFor(const QString &path)
{
    const auto device = deviceOf(path);
    if (!device) return std::nullopt;
    if (const auto home = homeTrash(); home && deviceOf(home->path) == device) return home;
    const auto volume = volumeTrash(path);
    return volume && deviceOf(volume->path) == device ? volume : std::nullopt;
}

// The name, numbered from the second attempt on, cut so that ".trashinfo" still fits into the 255 bytes of a name.
QString nameInTrash(const QString &name, int attempt)
{
    constexpr qsizetype longest = 255 - 10;
    const QString extension = pathExtension(name).toUtf8().size() > 20 ? QString() : pathExtension(name);
    const QString end = (attempt > 1 ? u' ' + QString::number(attempt) : QString()) +
                        (extension.isEmpty() ? QString() : u'.' + extension);
    QString stem = extension.isEmpty() ? name : name.chopped(extension.size() + 1);
    while (!stem.isEmpty() && (stem + end).toUtf8().size() > longest) stem.chop(stem.back().isLowSurrogate() ? 2 : 1);
    return stem + end;
}

// The record is made first and alone decides who owns the name.
bool writeRecord(const QString &recordPath, const QString &original, const QString &top)
{
    const int descriptor =
        ::open(QFile::encodeName(recordPath).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) return false;
    const QString path = top.isEmpty() ? original : original.mid(top == u"/" ? 1 : top.size() + 1);
    const QByteArray text = "[Trash Info]\nPath=" + QUrl::toPercentEncoding(path, "/") + "\nDeletionDate=" +
                            QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddThh:mm:ss")).toLatin1() +
                            '\n';
    const bool ok = ::write(descriptor, text.constData(), size_t(text.size())) == text.size();
    ::close(descriptor);
    if (!ok) QFile::remove(recordPath);
    return ok;
}

class DesktopTrash final : public Trash
{
public:
    std::optional<QString> take(const QString &path) override
    {
        const auto trash = trashFor(path);
        if (!trash) return std::nullopt;
        for (int attempt = 1; attempt <= 10000; ++attempt) {
            const QString name = nameInTrash(lastPathComponent(path), attempt);
            const QString record = recordOf(*trash, name);
            const QString where = trash->path + QStringLiteral("/files/") + name;
            if (itemExists(record) || itemExists(where)) continue;
            if (!writeRecord(record, path, trash->top)) return std::nullopt;
            if (moveItem(path, where)) return where;
            QFile::remove(record);
            return std::nullopt;
        }
        return std::nullopt;
    }

    bool restore(const QString &trashPath, const QString &originalPath) override
    {
        if (!moveItem(trashPath, originalPath)) return false;
        const TrashFolder trash{parentPath(parentPath(trashPath)), {}};
        QFile::remove(recordOf(trash, lastPathComponent(trashPath)));
        return true;
    }

private:
    static QString recordOf(const TrashFolder &trash, const QString &name)
    {
        return trash.path + QStringLiteral("/info/") + name + QStringLiteral(".trashinfo");
    }
};

} // namespace

std::unique_ptr<Trash> makeDesktopTrash()
{
    return std::make_unique<DesktopTrash>();
}

} // namespace tomelet
