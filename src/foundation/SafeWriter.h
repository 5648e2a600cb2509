// SPDX-License-Identifier: GPL-3.0-or-later
// The one way in which the program writes a file: no reader ever sees half of one, and a failure leaves the old one.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QSet>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tomelet {

class TemporaryFile;

struct WriteResult
{
    bool ok = false;
    QString message;      ///< what went wrong, for a person; names the file
    bool isStale = false; ///< somebody else wrote the file meanwhile
    explicit operator bool() const { return ok; }
};

/// Writes the bytes beside the target, flushes them to disk, gives them the target's mode and user attributes, and
/// renames them over it. A symbolic link is followed, so that the link stays. The folder must exist.
[[nodiscard]] WriteResult writeFile(const QString &path, QByteArrayView bytes);

/// Tells two states of a file apart without reading it.
struct FileStamp
{
    quint64 inode = 0;
    qint64 size = 0;
    qint64 modified = 0; ///< nanoseconds, as the next one
    qint64 changed = 0;
    friend bool operator==(const FileStamp &, const FileStamp &) = default;
};
/// Nothing where there is no file.
[[nodiscard]] std::optional<FileStamp> fileStamp(const QString &path);

/// The same in two steps, for whoever may not wait for the disk: the constructor, on any thread, writes the bytes
/// beside the target and flushes them; commit() only renames. What is not committed disappears.
class StagedFile
{
public:
    StagedFile(const QString &path, QByteArrayView bytes);
    ~StagedFile();
    StagedFile(const StagedFile &) = delete;
    StagedFile &operator=(const StagedFile &) = delete;

    /// How the first step went.
    [[nodiscard]] const WriteResult &staged() const { return m_staged; }
    [[nodiscard]] WriteResult commit();
    /// The same, but nothing happens and the result is stale when the file is in another state by now. No other write
    /// of this program comes between.
    [[nodiscard]] WriteResult commitIfStill(const std::optional<FileStamp> &state);
    /// Afterwards, on any thread: the new name outlives a loss of power.
    void flushName() const;

private:
    QString m_path;
    QByteArray m_target;
    std::unique_ptr<TemporaryFile> m_file;
    WriteResult m_staged;
};

/// Reads a file and gives what is to stand in it; nothing when it is to stay as it is. It is called again when somebody
/// else wrote the file before the change was on the disk.
using FileChange = std::function<std::optional<QByteArray>()>;

/// Writes what the change makes of the file, so that nothing another thread writes meanwhile is lost.
[[nodiscard]] WriteResult changeFile(const QString &path, const FileChange &change);

/// Many files changed like one by one, each old or new at any moment, but flushed to disk together: a disk takes a
/// hundred files in hardly more time than one. Files wait in memory until flush(), or until a good many have gathered.
class FileBatch
{
public:
    FileBatch() = default;
    ~FileBatch() { flush(); }
    FileBatch(const FileBatch &) = delete;
    FileBatch &operator=(const FileBatch &) = delete;

    /// The same as changeFile, in a folder that exists. The change is called at once, and kept until it is flushed.
    /// What cannot be written is logged; its old file stands.
    void change(const QString &path, FileChange change);
    void flush();

private:
    struct Waiting
    {
        QString path;
        FileChange change;
        std::optional<FileStamp> state; ///< that the change has read
        QByteArray bytes;
    };
    struct Written;
    [[nodiscard]] std::vector<Written> writeWaiting() const;
    static bool flushDisksOf(const std::vector<Written> &files);

    QList<Waiting> m_files;
    QSet<QString> m_paths;
};

/// Reads a whole file. Nothing when it cannot be read, or is no ordinary file.
[[nodiscard]] std::optional<QByteArray> readFile(const QString &path);

/// Renames a file that cannot be read, so that nothing is written over it, and logs one line.
/// "Notes.plist" becomes "Notes.plist.unreadable-20261121T083000.plist". False when the rename failed.
bool setAside(const QString &path);

} // namespace tomelet
