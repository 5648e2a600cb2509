// SPDX-License-Identifier: GPL-3.0-or-later
// Tells what changes below one folder, whoever changes it: every file and folder in it, at any depth.
#pragma once

#include <QString>

#include <functional>
#include <memory>

namespace tomelet {

/// What a presenter reports. Paths are absolute and begin with the presented folder as it was given.
struct FileEvents
{
    /// The item at the path was made, written, had its attributes changed, or is gone: the receiver looks.
    std::function<void(const QString &path)> didChange;
    /// The item moved within the presented folder; what lies below a moved folder is not reported one by one.
    std::function<void(const QString &from, const QString &to)> didMove;
    /// The presented folder itself vanished or was unmounted.
    std::function<void()> didVanish;
};

/// Events arrive on the thread that made the presenter, through its event loop, in the order in which they happened.
class FilePresenter
{
public:
    virtual ~FilePresenter() = default;

    /// Follows the folder from now on, and no other; an empty path ends all reports. Returns at once: the folder is
    /// walked on a thread of the presenter's own. What changes during that walk is reported too.
    virtual void present(const QString &folder) = 0;

    /// Waits until the walk that `present` began is done and all that has happened so far has been delivered.
    /// For tests and for programs that end after one piece of work.
    virtual void settle() = 0;
};

/// The presenter for Linux, on inotify.
[[nodiscard]] std::unique_ptr<FilePresenter> makeFilePresenter(FileEvents events);

} // namespace tomelet
