// SPDX-License-Identifier: GPL-3.0-or-later
// Tells what changes below one folder, whoever changes it: every file and folder in it, at any depth.
// Symbolic links are items like files and are not followed, except where the presented folder itself is one.
//
// A program that saves a document moves a new file over it, or sets the old one aside and makes a new one.
// Neither is told as a move, so that what is known of the document stays with its name: both names are told
// as changed.
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
    /// The item moved within the presented folder to a name that was free; what lies below a moved folder is
    /// not reported one by one. A file that was made only seconds before is also reported as changed under
    /// its new name. Moves that cross the border of the presented folder are changes.
    std::function<void(const QString &from, const QString &to)> didMove;
    /// The presented folder itself vanished, moved or was unmounted, or was not there in the first place.
    /// Nothing more is reported until present() is called again.
    std::function<void()> didVanish;
};

/// Events arrive on the thread that made the presenter, through its event loop, in the order in which they
/// happened.
class FilePresenter
{
public:
    virtual ~FilePresenter() = default;

    /// Follows the folder from now on, and no other; an empty path ends all reports. Returns at once: the
    /// folder is walked on a thread of the presenter's own. What changes during that walk is reported too.
    virtual void present(const QString &folder) = 0;

    /// Waits until the walk that `present` began is done and all that has happened so far has been delivered.
    /// For tests and for programs that end after one piece of work.
    virtual void settle() = 0;
};

/// The presenter for Linux, on inotify.
[[nodiscard]] std::unique_ptr<FilePresenter> makeFilePresenter(FileEvents events);

} // namespace tomelet
