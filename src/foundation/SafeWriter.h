// SPDX-License-Identifier: GPL-3.0-or-later
// The one way in which the program writes a file: no reader ever sees half of one, and a failure leaves the old one.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QSet>
#include <QString>

#include <optional>
#include <vector>

namespace tomelet {

struct WriteResult
{
    bool ok = false;
    QString message; ///< what went wrong, for a person; names the file
    explicit operator bool() const { return ok; }
};

/// Writes the bytes beside the target, flushes them to disk, gives them the target's mode and user attributes, and
/// renames them over it. A symbolic link is followed, so that the link stays. The folder must exist.
[[nodiscard]] WriteResult writeFile(const QString &path, QByteArrayView bytes);

/// Many files written like one by one, each old or new at any moment, but flushed to disk together: a disk takes a
/// hundred files in hardly more time than one. Files wait in memory until flush(), or until a good many have gathered.
class FileBatch
{
public:
    FileBatch() = default;
    ~FileBatch() { flush(); }
    FileBatch(const FileBatch &) = delete;
    FileBatch &operator=(const FileBatch &) = delete;

    /// The folder must exist. What cannot be written is logged; its old file stands.
    void write(const QString &path, QByteArray bytes);
    /// Before a file is read that may be waiting.
    void flushIfWaiting(const QString &path);
    void flush();

private:
    struct Waiting
    {
        QString path;
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
