// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/FileAttributes.h"

#include <string>
#include <vector>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tomelet::http {

namespace {

void copyExtendedAttribute(int source, int target, const char *name)
{
    const ssize_t size = fgetxattr(source, name, nullptr, 0);
    if (size < 0) return;
    std::vector<char> value(static_cast<std::size_t>(size));
    const ssize_t read = fgetxattr(source, name, value.data(), value.size());
    if (read >= 0) fsetxattr(target, name, value.data(), static_cast<std::size_t>(read), 0);
}

void copyExtendedAttributes(int source, int target)
{
    const ssize_t size = flistxattr(source, nullptr, 0);
    if (size <= 0) return;
    std::string names(static_cast<std::size_t>(size), '\0');
    const ssize_t read = flistxattr(source, names.data(), names.size());
    for (ssize_t at = 0; at < read;
         at += static_cast<ssize_t>(std::string(&names[static_cast<std::size_t>(at)]).size()) + 1)
        copyExtendedAttribute(source, target, &names[static_cast<std::size_t>(at)]);
}

} // namespace

void copyAttributes(int source, int target)
{
    struct stat status
    {};
    if (fstat(source, &status) != 0) return;
    // The owner first: changing it takes the set-user bits off the mode.
    if (fchown(target, status.st_uid, status.st_gid) != 0) (void)fchown(target, static_cast<uid_t>(-1), status.st_gid);
    fchmod(target, status.st_mode & 07777);
    copyExtendedAttributes(source, target);
}

void copyTimes(int source, int target)
{
    struct stat status
    {};
    if (fstat(source, &status) != 0) return;
    const timespec times[] = {status.st_atim, status.st_mtim};
    futimens(target, times);
}

} // namespace tomelet::http
