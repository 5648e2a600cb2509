// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/FileTransfer.h"

#include "server/Core/FileAttributes.h"
#include "server/Core/FileHandle.h"
#include "server/Core/TemporaryItem.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace tomelet::http {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t copyStep = 16 * 1024 * 1024;

// For file systems that cannot copy within themselves.
bool copyByReading(int source, int target)
{
    std::vector<char> buffer(256 * 1024);
    off_t offset = lseek(target, 0, SEEK_CUR);
    while (true) {
        const ssize_t count = pread(source, buffer.data(), buffer.size(), offset);
        if (count <= 0) return count == 0;
        if (pwrite(target, buffer.data(), static_cast<std::size_t>(count), offset) != count) return false;
        offset += count;
    }
}

bool copyRegularFile(const fs::path &source, const fs::path &target)
{
    const FileHandle from(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const FileHandle to(open(target.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!from.isOpen() || !to.isOpen() || !copyBytes(from.descriptor(), to.descriptor())) return false;
    copyAttributes(from.descriptor(), to.descriptor());
    copyTimes(from.descriptor(), to.descriptor());
    return true;
}

bool copyTree(const fs::path &source, const fs::path &target);

bool copyFolder(const fs::path &source, const fs::path &target)
{
    if (mkdir(target.c_str(), 0700) != 0) return false;
    std::error_code error;
    for (fs::directory_iterator it(source, error), end; !error && it != end; it.increment(error))
        if (!copyTree(it->path(), target / it->path().filename())) return false;
    if (error) return false;
    const FileHandle from(open(source.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const FileHandle to(open(target.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    copyAttributes(from.descriptor(), to.descriptor());
    copyTimes(from.descriptor(), to.descriptor());
    return true;
}

bool copyTree(const fs::path &source, const fs::path &target)
{
    std::error_code error;
    switch (fs::symlink_status(source, error).type()) {
    case fs::file_type::regular: return copyRegularFile(source, target);
    case fs::file_type::directory: return copyFolder(source, target);
    case fs::file_type::symlink: fs::copy_symlink(source, target, error); return !error;
    default: return false;
    }
}

bool renameWithoutReplacing(const std::string &source, const std::string &target)
{
    if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return true;
    // Some file systems know no flags.
    if (errno != EINVAL && errno != ENOSYS) return false;
    return !itemExists(target) && ::rename(source.c_str(), target.c_str()) == 0;
}

bool copyDirectly(const std::string &source, const std::string &target)
{
    if (itemExists(target)) return false;
    if (copyTree(source, target)) return true;
    std::error_code ignored;
    fs::remove_all(target, ignored);
    return false;
}

} // namespace

bool itemExists(const std::string &path)
{
    struct stat status
    {};
    return lstat(path.c_str(), &status) == 0;
}

bool isFolder(const std::string &path)
{
    struct stat status
    {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool copyBytes(int source, int target)
{
    loff_t offset = 0;
    while (true) {
        const ssize_t count = copy_file_range(source, &offset, target, nullptr, copyStep, 0);
        if (count == 0) return true;
        if (count > 0 || errno == EINTR) continue;
        const bool unsupported = errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
        return unsupported && copyByReading(source, target);
    }
}

bool copyItem(const std::string &source, const std::string &target, const std::string &scratchFolder)
{
    const TemporaryItem scratch(TemporaryItem::Kind::Folder, scratchFolder);
    const std::string copy = scratch.path() + "/copy";
    if (!scratch.isValid() || !copyTree(source, copy)) return false;
    if (renameWithoutReplacing(copy, target)) return true;
    return errno == EXDEV && copyDirectly(copy, target);
}

bool moveItem(const std::string &source, const std::string &target, const std::string &scratchFolder)
{
    if (renameWithoutReplacing(source, target)) return true;
    if (errno != EXDEV || !copyItem(source, target, scratchFolder)) return false;
    std::error_code error;
    fs::remove_all(source, error);
    return !error;
}

} // namespace tomelet::http
