// SPDX-License-Identifier: GPL-3.0-or-later
// The folders that a presenter watches and the names of what lies in them: one tree, kept by the watching
// thread. The names are what tells which items are gone after events were lost; they take about 100 bytes an
// item.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <unordered_map>

namespace tomelet {

struct WatchedFolder;

struct WatchedItem
{
    std::unique_ptr<WatchedFolder> folder;             // null for what is no folder
    std::chrono::steady_clock::time_point madeAt = {}; // set when the item was seen being made
};

struct WatchedFolder
{
    WatchedFolder *parent = nullptr;
    std::string name; // of the root: its whole path
    int watch = -1;   // inotify's descriptor, -1 while there is none
    std::unordered_map<std::string, WatchedItem> items;
};

class WatchedFolders
{
public:
    /// Opens an inotify instance; isOpen() tells whether there was one to be had.
    explicit WatchedFolders(const std::string &rootPath);
    ~WatchedFolders();
    WatchedFolders(const WatchedFolders &) = delete;
    WatchedFolders &operator=(const WatchedFolders &) = delete;

    [[nodiscard]] bool isOpen() const { return m_inotify >= 0; }
    [[nodiscard]] int descriptor() const { return m_inotify; }
    [[nodiscard]] WatchedFolder *root() { return m_root.get(); }
    [[nodiscard]] WatchedFolder *byWatch(int watch) const;
    [[nodiscard]] static std::string path(const WatchedFolder *folder);

    /// Watches the folder at its present path, anew if another folder lies there now. Gives a folder that
    /// lost this watch to it and still lies elsewhere, or null. A folder that cannot be watched has the watch
    /// -1.
    WatchedFolder *watch(WatchedFolder *folder);
    /// The kernel has dropped the watch.
    void watchEnded(WatchedFolder *folder);

    WatchedItem &add(WatchedFolder *parent, const std::string &name, bool isFolder);
    /// Takes an item out with all its watches; a folder keeps its path, but hangs from the root, since
    /// the folder that it lay in may be forgotten before it is attached again.
    WatchedItem detach(WatchedFolder *parent, const std::string &name);
    void attach(WatchedFolder *parent, const std::string &name, WatchedItem item);
    /// Ends the watches of the item and of all below it.
    void forget(WatchedItem item);

    /// Whether the root's path still leads to the folder that is watched.
    [[nodiscard]] bool isRootInPlace() const;

private:
    void watchAncestors();
    void release(WatchedFolder *folder);

    int m_inotify = -1;
    std::unique_ptr<WatchedFolder> m_root;
    std::unordered_map<int, WatchedFolder *> m_byWatch;
    unsigned long m_rootDevice = 0, m_rootInode = 0;
    bool m_limitWasLogged = false;
};

} // namespace tomelet
