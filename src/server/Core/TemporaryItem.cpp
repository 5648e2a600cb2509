// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/TemporaryItem.h"

#include "server/Core/FileAttributes.h"
#include "server/Core/FileTransfer.h"
#include "server/Core/UUID.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace tomelet::http {

namespace {

constexpr std::string_view namePrefix = ".tomelet-upload-";
constexpr std::size_t uuidLength = 36;

void removeItem(const std::string &path)
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string resolvedPath(const std::string &path)
{
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) ? std::string(resolved) : path;
}

std::string parentOf(const std::string &path)
{
    return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

} // namespace

TemporaryItem::TemporaryItem(Kind kind, const std::string &folder)
    : m_path(folder + "/" + std::string(namePrefix) + makeUUID())
{
    if (kind == Kind::File) m_handle = FileHandle(open(m_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    else if (mkdir(m_path.c_str(), 0777) == 0)
        m_handle = FileHandle(open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    m_valid = m_handle.isOpen();
    if (m_valid) flock(m_handle.descriptor(), LOCK_EX | LOCK_NB);
}

TemporaryItem::~TemporaryItem()
{
    if (!m_path.empty()) removeItem(m_path);
}

void TemporaryItem::append(std::string_view data)
{
    while (m_valid && !data.empty()) {
        const ssize_t count = ::write(m_handle.descriptor(), data.data(), data.size());
        if (count > 0) data.remove_prefix(static_cast<std::size_t>(count));
        else m_valid = count < 0 && errno == EINTR;
    }
}

bool TemporaryItem::moveIntoPlace(const std::string &target)
{
    if (!m_valid) return false;
    const std::string place = resolvedPath(target);
    const FileHandle old(open(place.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status
    {};
    if (stat(place.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) return false;
        if (old.isOpen()) copyAttributes(old.descriptor(), m_handle.descriptor());
        if (fdatasync(m_handle.descriptor()) != 0) return false;
    }
    return renameTo(place);
}

bool TemporaryItem::renameTo(const std::string &target)
{
    if (::rename(m_path.c_str(), target.c_str()) == 0) {
        m_path.clear();
        return true;
    }
    return errno == EXDEV && copyBeside(target);
}

// A folder behind a symbolic link may lie on another file system: there the last step begins beside the
// target.
bool TemporaryItem::copyBeside(const std::string &target)
{
    TemporaryItem beside(Kind::File, parentOf(target));
    if (!beside.m_valid || !copyBytes(m_handle.descriptor(), beside.m_handle.descriptor())) return false;
    copyAttributes(m_handle.descriptor(), beside.m_handle.descriptor());
    if (fdatasync(beside.m_handle.descriptor()) != 0 || ::rename(beside.m_path.c_str(), target.c_str()) != 0)
        return false;
    beside.m_path.clear();
    return true;
}

bool writeFileAtomically(const std::string &folder, const std::string &target, std::string_view bytes)
{
    TemporaryItem file(TemporaryItem::Kind::File, folder);
    file.append(bytes);
    return file.moveIntoPlace(target);
}

bool isTemporaryName(std::string_view name)
{
    return name.starts_with(namePrefix) && name.size() == namePrefix.size() + uuidLength;
}

void removeAbandonedItems(const std::string &folder)
{
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string path = entry.path().string();
        if (!isTemporaryName(entry.path().filename().string())) continue;
        const FileHandle handle(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
        if (handle.isOpen() && flock(handle.descriptor(), LOCK_EX | LOCK_NB) == 0) removeItem(path);
    }
}

} // namespace tomelet::http
