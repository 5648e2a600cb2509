// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/MindMap.h"

#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/SafeWriter.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <archive.h>
#include <archive_entry.h>
#include <array>
#include <memory>

namespace tomelet {

namespace {

constexpr qsizetype largestPicture = 32 << 20;
constexpr int mostEntries = 20000;

// Nothing for what is longer: half a picture is none.
QByteArray bytesOfEntry(archive *file)
{
    QByteArray bytes;
    std::array<char, 65536> buffer{};
    while (bytes.size() <= largestPicture) {
        const la_ssize_t count = archive_read_data(file, buffer.data(), buffer.size());
        if (count == 0) return bytes;
        if (count < 0) return {};
        bytes.append(buffer.data(), count);
    }
    return {};
}

bool isPreview(const char *name)
{
    return name && lastPathComponent(QString::fromUtf8(name)).compare(u"preview.png", Qt::CaseInsensitive) == 0;
}

QByteArray pictureIn(const QString &path)
{
    const std::unique_ptr<archive, decltype(&archive_read_free)> file(archive_read_new(), archive_read_free);
    // By the archive's own directory, so that what is passed over need not be unpacked.
    archive_read_support_format_zip_seekable(file.get());
    if (archive_read_open_filename(file.get(), QFile::encodeName(path).constData(), 65536) != ARCHIVE_OK) return {};
    archive_entry *entry = nullptr;
    for (int i = 0; i < mostEntries; ++i) {
        const int result = archive_read_next_header(file.get(), &entry);
        if (result != ARCHIVE_OK && result != ARCHIVE_WARN) break;
        if (!isPreview(archive_entry_pathname_utf8(entry))) continue;
        const QByteArray bytes = bytesOfEntry(file.get());
        if (bytes.startsWith("\x89PNG\r\n")) return bytes;
    }
    return {};
}

} // namespace

QString tm_pathToPreviewOfITMZ(const QString &path)
{
    const QString folder = joinPath(cacheDirectory(), QStringLiteral("itmzPreviews"));
    const QString state = path + u'\n' + QString::number(QFileInfo(path).lastModified().toMSecsSinceEpoch());
    const QByteArray sum = QCryptographicHash::hash(state.toUtf8(), QCryptographicHash::Sha256).toHex().left(32);
    const QString picture = joinPath(folder, QString::fromLatin1(sum) + QStringLiteral(".png"));
    if (itemExists(picture)) return picture;
    const QByteArray bytes = pictureIn(path);
    return !bytes.isEmpty() && makeFolder(folder) && writeFile(picture, bytes) ? picture : QString();
}

} // namespace tomelet
