// SPDX-License-Identifier: GPL-3.0-or-later
// How the watching thread reads folders: at the start, when a folder comes in, and after events were lost.
#include "foundation/FolderWatcher_p.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tomelet {

namespace {

bool isDirectory(int directory, const dirent *entry)
{
    if (entry->d_type != DT_UNKNOWN) return entry->d_type == DT_DIR;
    struct stat status;
    return fstatat(directory, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

// The status change time is the kernel's own: no program can set it back.
bool changedSince(int directory, const std::string &name, const timespec &since)
{
    struct stat status;
    if (fstatat(directory, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    const timespec &changed = status.st_ctim;
    return changed.tv_sec != since.tv_sec ? changed.tv_sec > since.tv_sec : changed.tv_nsec >= since.tv_nsec;
}

struct CloseDirectory
{
    void operator()(DIR *directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

// A symbolic link is followed for the presented folder alone.
Directory openDirectory(const std::string &path, bool follow)
{
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (follow ? 0 : O_NOFOLLOW);
    const int descriptor = ::open(path.c_str(), flags);
    if (descriptor < 0) return {};
    Directory directory(fdopendir(descriptor));
    if (!directory) ::close(descriptor);
    return directory;
}

} // namespace

void FolderWatcher::plan(WatchedFolder *folder, timespec since, bool isFirstWalk)
{
    m_toScan.push_back({folder, since, isFirstWalk});
}

void FolderWatcher::scanNext()
{
    if (m_toScan.empty()) return;
    const Scan next = m_toScan.front();
    m_toScan.pop_front();
    scan(next);
}

// The watch comes first: what changes after it is reported by the kernel, what changed before it is found
// here.
void FolderWatcher::scan(const Scan &scan)
{
    if (WatchedFolder *robbed = m_folders->watch(scan.folder)) plan(robbed, m_lastEmpty, false);
    const std::string path = WatchedFolders::path(scan.folder);
    const Directory directory = openDirectory(path, !scan.folder->parent);
    if (!directory) return;
    const bool looksForMissing = !scan.isFirstWalk && !scan.folder->items.empty();
    std::vector<std::string> seen;
    errno = 0;
    while (const dirent *entry = readdir(directory.get())) {
        const std::string name(entry->d_name);
        if (name != "." && name != "..") {
            found(scan, dirfd(directory.get()), path, name, isDirectory(dirfd(directory.get()), entry));
            if (looksForMissing) seen.push_back(name);
        }
        errno = 0;
    }
    if (errno == 0 && looksForMissing) forgetMissing(scan.folder, path, seen);
}

void FolderWatcher::found(const Scan &scan, int directory, const std::string &folderPath, const std::string &name,
                          bool isFolder)
{
    auto item = scan.folder->items.find(name);
    if (item != scan.folder->items.end() && bool(item->second.folder) != isFolder) {
        forget(m_folders->detach(scan.folder, name));
        item = scan.folder->items.end();
    }
    const bool isKnown = item != scan.folder->items.end();
    if ((!isKnown && !scan.isFirstWalk) || changedSince(directory, name, scan.since))
        m_outbox.changed(folderPath + '/' + name);
    if (isKnown && scan.isFirstWalk) return;
    const WatchedItem &present = isKnown ? item->second : m_folders->add(scan.folder, name, isFolder);
    if (isFolder) plan(present.folder.get(), scan.since, scan.isFirstWalk);
}

void FolderWatcher::forgetMissing(WatchedFolder *folder, const std::string &folderPath,
                                  const std::vector<std::string> &seen)
{
    std::vector<std::string> missing;
    const std::set<std::string_view> present(seen.begin(), seen.end());
    for (const auto &[name, item] : folder->items)
        if (!present.contains(name)) missing.push_back(name);
    std::sort(missing.begin(), missing.end());
    for (const std::string &name : missing) {
        m_outbox.changed(folderPath + '/' + name);
        forget(m_folders->detach(folder, name));
    }
}

void FolderWatcher::forget(WatchedItem item)
{
    if (!item.folder) return;
    const auto liesIn = [&item](const WatchedFolder *folder) {
        while (folder && folder != item.folder.get()) folder = folder->parent;
        return folder != nullptr;
    };
    std::erase_if(m_toScan, [&](const Scan &scan) { return liesIn(scan.folder); });
    m_folders->forget(std::move(item));
}

} // namespace tomelet
