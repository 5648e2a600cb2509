// SPDX-License-Identifier: GPL-3.0-or-later
// ZIP archives for tests.
#pragma once

#include <QByteArray>
#include <QString>

#include <archive.h>
#include <archive_entry.h>
#include <utility>
#include <vector>

namespace tomelet::test {

using ZipMember = std::pair<const char *, QByteArray>; ///< name and bytes

inline void writeZipArchive(const QString &path, const std::vector<ZipMember> &members)
{
    archive *file = archive_write_new();
    archive_write_set_format_zip(file);
    archive_write_open_filename(file, path.toUtf8().constData());
    for (const auto &[name, bytes] : members) {
        archive_entry *entry = archive_entry_new();
        archive_entry_set_pathname(entry, name);
        archive_entry_set_size(entry, bytes.size());
        archive_entry_set_filetype(entry, AE_IFREG);
        archive_write_header(file, entry);
        archive_write_data(file, bytes.constData(), size_t(bytes.size()));
        archive_entry_free(entry);
    }
    archive_write_free(file);
}

} // namespace tomelet::test
