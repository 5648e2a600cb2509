// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/WatchedFolders_p.h"

#include <QtGlobal>

#include <cerrno>
#include <cstring>
#include <vector>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tomelet {

static constexpr uint32_t folderEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE |
                                         IN_MODIFY | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR |
                                         IN_EXCL_UNLINK;

WatchedFolders::WatchedFolders(const std::string &rootPath)
    : m_inotify(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    , m_root(std::make_unique<WatchedFolder>())
{
    m_root->name = rootPath;
    struct stat status;
    if (::stat(rootPath.c_str(), &status) == 0) {
        m_rootDevice = status.st_dev;
        m_rootInode = status.st_ino;
    }
    if (isOpen()) watchAncestors();
    else qWarning("file events are off: %s", std::strerror(errno));
}

WatchedFolders::~WatchedFolders()
{
    if (isOpen()) ::close(m_inotify);
}

// A folder hears of its own moves but not of those of the folders that it lies in.
void WatchedFolders::watchAncestors()
{
    std::string path = m_root->name;
    for (size_t slash = path.rfind('/'); slash != std::string::npos && slash > 0; slash = path.rfind('/')) {
        path.resize(slash);
        inotify_add_watch(m_inotify, path.c_str(), IN_MOVE_SELF | IN_DELETE_SELF | IN_ONLYDIR);
    }
}

WatchedFolder *WatchedFolders::byWatch(int watch) const
{
    const auto found = m_byWatch.find(watch);
    return found == m_byWatch.end() ? nullptr : found->second;
}

std::string WatchedFolders::path(const WatchedFolder *folder)
{
    if (!folder->parent) return folder->name;
    return path(folder->parent) + '/' + folder->name;
}

static bool isSameFile(const std::string &one, const std::string &other)
{
    struct stat a, b;
    return ::lstat(one.c_str(), &a) == 0 && ::lstat(other.c_str(), &b) == 0 && a.st_ino == b.st_ino &&
           a.st_dev == b.st_dev;
}

WatchedFolder *WatchedFolders::watch(WatchedFolder *folder)
{
    const std::string here = path(folder);
    const int watch = inotify_add_watch(m_inotify, here.c_str(), folderEvents | (folder->parent ? IN_DONT_FOLLOW : 0));
    if (watch < 0 && errno == ENOSPC && !m_limitWasLogged) {
        m_limitWasLogged = true;
        qWarning("not every folder can be watched: the limit fs.inotify.max_user_watches is reached at %s",
                 here.c_str());
    }
    // A folder that is not there now is on the move, or its end will be told: it keeps the watch that it has.
    if (watch < 0 || watch == folder->watch) return nullptr;
    release(folder);
    WatchedFolder *robbed = byWatch(watch);
    if (robbed) robbed->watch = -1;
    folder->watch = watch;
    m_byWatch[watch] = folder;
    // One folder that shows at two places cannot be watched at both.
    if (!robbed || isSameFile(path(robbed), here)) return nullptr;
    return robbed;
}

void WatchedFolders::watchEnded(WatchedFolder *folder)
{
    m_byWatch.erase(folder->watch);
    folder->watch = -1;
}

void WatchedFolders::release(WatchedFolder *folder)
{
    if (folder->watch < 0) return;
    inotify_rm_watch(m_inotify, folder->watch);
    watchEnded(folder);
}

WatchedItem &WatchedFolders::add(WatchedFolder *parent, const std::string &name, bool isFolder)
{
    WatchedItem &item = parent->items[name];
    if (isFolder) {
        item.folder = std::make_unique<WatchedFolder>();
        item.folder->parent = parent;
        item.folder->name = name;
    }
    return item;
}

WatchedItem WatchedFolders::detach(WatchedFolder *parent, const std::string &name)
{
    auto node = parent->items.extract(name);
    if (!node) return {};
    WatchedItem item = std::move(node.mapped());
    if (item.folder) {
        item.folder->name = path(item.folder.get()).substr(m_root->name.size() + 1);
        item.folder->parent = m_root.get();
    }
    return item;
}

void WatchedFolders::attach(WatchedFolder *parent, const std::string &name, WatchedItem item)
{
    if (item.folder) {
        item.folder->parent = parent;
        item.folder->name = name;
    }
    parent->items.insert_or_assign(name, std::move(item));
}

void WatchedFolders::forget(WatchedItem item)
{
    // Level by level, because folders may be nested deeper than the stack is.
    std::vector<std::unique_ptr<WatchedFolder>> level;
    if (item.folder) level.push_back(std::move(item.folder));
    while (!level.empty()) {
        const std::unique_ptr<WatchedFolder> folder = std::move(level.back());
        level.pop_back();
        release(folder.get());
        for (auto &[name, below] : folder->items)
            if (below.folder) level.push_back(std::move(below.folder));
    }
}

bool WatchedFolders::isRootInPlace() const
{
    struct stat status;
    return ::stat(m_root->name.c_str(), &status) == 0 && status.st_ino == m_rootInode && status.st_dev == m_rootDevice;
}

} // namespace tomelet
