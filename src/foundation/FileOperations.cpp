// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/FileOperations.h"

#include "foundation/ExtendedAttributes.h"
#include "foundation/Folder.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tomelet {

namespace {

FileResult failure(const QString &what, const QString &path, int code)
{
    return {false, QStringLiteral("%1 %2: %3").arg(path, what, QString::fromLocal8Bit(::strerror(code)))};
}

// Also true on file systems that fold case, where a name stands at its own other spelling.
bool isSameItem(const QByteArray &a, const QByteArray &b)
{
    struct stat first
    {};
    struct stat second
    {};
    return ::lstat(a.constData(), &first) == 0 && ::lstat(b.constData(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

int renameWithoutReplacing(const QByteArray &from, const QByteArray &to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) return 0;
    const int code = errno;
    if (code == EEXIST && isSameItem(from, to)) return ::rename(from.constData(), to.constData()) == 0 ? 0 : errno;
    if (code != EINVAL && code != ENOSYS) return code;
    // File systems without the flag: ask first. Nothing better is to be had there.
    struct stat status
    {};
    if (::lstat(to.constData(), &status) == 0 && !isSameItem(from, to)) return EEXIST;
    return ::rename(from.constData(), to.constData()) == 0 ? 0 : errno;
}

class Descriptor
{
public:
    explicit Descriptor(int number)
        : m_number(number)
    {}
    ~Descriptor()
    {
        if (m_number >= 0) ::close(m_number);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    operator int() const { return m_number; }

private:
    int m_number;
};

int copyBytes(int source, int target)
{
    for (;;) {
        const ssize_t sent = ::sendfile(target, source, nullptr, size_t(1) << 30);
        if (sent == 0) return 0;
        if (sent < 0 && errno != EINTR) return errno;
    }
}

void copyDates(const struct stat &status, int target)
{
    const timespec times[2] = {status.st_atim, status.st_mtim};
    ::futimens(target, times);
}

int copyFile(const QByteArray &from, const QByteArray &to, const struct stat &status)
{
    const Descriptor source(::open(from.constData(), O_RDONLY | O_CLOEXEC));
    if (source < 0) return errno;
    const Descriptor target(::open(to.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (target < 0) return errno;
    if (const int code = copyBytes(source, target)) return code;
    copyExtendedAttributes(from, target);
    ::fchmod(target, status.st_mode & 07777);
    copyDates(status, target);
    return ::fsync(target) == 0 ? 0 : errno;
}

int copyLink(const QByteArray &from, const QByteArray &to)
{
    char leadsTo[4096];
    const ssize_t length = ::readlink(from.constData(), leadsTo, sizeof leadsTo - 1);
    if (length < 0) return errno;
    leadsTo[length] = 0;
    return ::symlink(leadsTo, to.constData()) == 0 ? 0 : errno;
}

int copyAny(const QByteArray &from, const QByteArray &to);

int copyFolder(const QByteArray &from, const QByteArray &to, const struct stat &status)
{
    if (::mkdir(to.constData(), 0700) != 0) return errno;
    const auto entries = listFolder(QFile::decodeName(from));
    if (!entries) return EACCES;
    for (const FolderEntry &entry : *entries) {
        const QByteArray name = '/' + QFile::encodeName(entry.name);
        if (const int code = copyAny(from + name, to + name)) return code;
    }
    const Descriptor target(::open(to.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    copyExtendedAttributes(from, target);
    ::fchmod(target, status.st_mode & 07777);
    copyDates(status, target);
    return 0;
}

int copyAny(const QByteArray &from, const QByteArray &to)
{
    struct stat status
    {};
    if (::lstat(from.constData(), &status) != 0) return errno;
    if (S_ISDIR(status.st_mode)) return copyFolder(from, to, status);
    if (S_ISLNK(status.st_mode)) return copyLink(from, to);
    if (S_ISREG(status.st_mode)) return copyFile(from, to, status);
    return EINVAL; // sockets and devices are no documents
}

} // namespace

FileResult moveItem(const QString &from, const QString &to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    const int code = renameWithoutReplacing(source, target);
    if (code == 0) return {true, {}};
    if (code != EXDEV) return failure(QStringLiteral("could not be moved"), from, code);
    if (FileResult copied = copyItem(from, to); !copied) return copied;
    return removeItem(from);
}

FileResult copyItem(const QString &from, const QString &to)
{
    if (itemExists(to)) return failure(QStringLiteral("could not be copied"), from, EEXIST);
    if (to.startsWith(from + u'/')) return failure(QStringLiteral("could not be copied"), from, EINVAL);
    const QString hidden =
        parentPath(to) + QStringLiteral("/.tomelet-copy-%1-%2").arg(::getpid()).arg(qHash(to), 0, 36);
    int code = copyAny(QFile::encodeName(from), QFile::encodeName(hidden));
    if (code == 0) code = renameWithoutReplacing(QFile::encodeName(hidden), QFile::encodeName(to));
    if (code == 0) return {true, {}};
    (void)removeItem(hidden);
    return failure(QStringLiteral("could not be copied"), from, code);
}

FileResult removeItem(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status
    {};
    if (::lstat(name.constData(), &status) != 0) return failure(QStringLiteral("could not be removed"), path, errno);
    const bool ok = S_ISDIR(status.st_mode) ? QDir(path).removeRecursively() : ::unlink(name.constData()) == 0;
    if (!ok) return failure(QStringLiteral("could not be removed"), path, errno);
    return {true, {}};
}

} // namespace tomelet
