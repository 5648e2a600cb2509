// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/contexts/ContextStores.h"

#include "foundation/Clock.h"
#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "foundation/SafeWriter.h"
#include "library/ItemPath.h"
#include "organising/contexts/Contexts.h"

#include <QFile>
#include <QLocale>

#include <algorithm>
#include <mutex>
#include <sys/stat.h>

namespace tomelet {

namespace {

QString listFile()
{
    return miscFile(QStringLiteral("AvailableTags.txt"));
}

QString indexFile()
{
    return joinPath(rootStateFolder(), QStringLiteral("TagDB.plist"));
}

QString infoFile()
{
    return joinPath(rootStateFolder(), QStringLiteral("Info.plist"));
}

using Index = QMap<QString, QStringList>;

// What tells one version of a file from another: each write makes a new file.
struct FileVersion
{
    QString path;
    quint64 inode = 0;
    qint64 size = -1;
    qint64 changed = 0; ///< in nanoseconds

    friend bool operator==(const FileVersion &, const FileVersion &) = default;
};

FileVersion versionOf(const QString &path)
{
    struct stat status
    {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) return {path};
    return {path, status.st_ino, status.st_size, status.st_mtim.tv_sec * 1'000'000'000LL + status.st_mtim.tv_nsec};
}

// Every list of a context asks for the index, which can be a megabyte: it is parsed once per version of its file.
Index readIndex()
{
    static std::mutex mutex;
    static FileVersion known;
    static Index parsed;
    const std::lock_guard lock(mutex);
    const FileVersion now = versionOf(indexFile());
    if (now.size >= 0 && now == known) return parsed;
    parsed.clear();
    const QVariantMap stored = readDictionary(now.path);
    for (auto it = stored.begin(); it != stored.end(); ++it) parsed.insert(it.key(), it.value().toStringList());
    known = now;
    return parsed;
}

} // namespace

ContextStores::ContextStores()
    : index(readIndex())
{
    list = readStringArray(listFile());
    m_savedIndex = index;
    m_savedList = list;
}

QString ContextStores::keyFor(const QString &word) const
{
    if (index.contains(word)) return word;
    for (auto it = index.begin(); it != index.end(); ++it)
        if (localizedCompare(it.key(), word) == 0) return it.key();
    return word;
}

void ContextStores::dropIfUnused(const QString &word)
{
    if (managesContextsAutomatically() && !word.isEmpty() && tm_tagIsManagedAutomatically(word)) list.removeAll(word);
}

bool ContextStores::save()
{
    if (list != m_savedList && makeMiscFolder()) {
        writeStore(listFile(), QVariantList(list.begin(), list.end()));
        m_savedList = list;
    }
    if (index == m_savedIndex || !makeFolder(rootStateFolder())) return false;
    QVariantMap stored;
    for (auto it = index.begin(); it != index.end(); ++it)
        stored.insert(it.key(), QVariantList(it.value().begin(), it.value().end()));
    writeStore(indexFile(), stored);
    m_savedIndex = index;
    return true;
}

void announceContexts()
{
    notifications().post(QStringLiteral("TMLTReloadContextSmartBook"));
    notifications().post(QStringLiteral("BookViewShouldUpdateFavoritesNotification"));
}

// -- excluded words ---------------------------------------------------------------------------------------------------

QString excludedContextsFile()
{
    return miscFile(QStringLiteral("ExcludedTags.txt"));
}

QStringList excludedContexts()
{
    QString text = QString::fromUtf8(readFile(excludedContextsFile()).value_or(QByteArray()));
    return text.replace(u',', u' ').simplified().split(u' ', Qt::SkipEmptyParts);
}

void writeExcludedContexts(QStringList words)
{
    words.removeDuplicates();
    std::ranges::stable_sort(words, [](const QString &a, const QString &b) { return compareNames(a, b, false) < 0; });
    if (makeMiscFolder()) (void)writeFile(excludedContextsFile(), words.join(u'\n').toUtf8());
}

// -- settings and dates -----------------------------------------------------------------------------------------------

QString contextMarkers()
{
    const QString markers = settings().string(QStringLiteral("contextMarkers"));
    return markers.isEmpty() ? QStringLiteral("@#") : markers;
}

bool managesContextsAutomatically()
{
    return settings().boolean(QStringLiteral("contextsEnabled")) &&
           settings().boolean(QStringLiteral("extractContextsAutomatically"));
}

namespace {

QDateTime dateInInfo(const QString &key)
{
    const QVariant date = readDictionary(infoFile()).value(key);
    return date.typeId() == QMetaType::QDateTime ? date.toDateTime() : farPast();
}

void setInInfo(const QString &key, const QVariant &value)
{
    if (!makeFolder(rootStateFolder())) return;
    changeDictionary(infoFile(), [&](QVariantMap &info) {
        info.insert(QStringLiteral("TMRoot"), tomeletRoot());
        info.insert(key, value);
        return true;
    });
}

} // namespace

QDateTime autocollectDate()
{
    return dateInInfo(QStringLiteral("autocollectDate"));
}

void setAutocollectDate(const QDateTime &date)
{
    setInInfo(QStringLiteral("autocollectDate"), date);
}

QDateTime lastRefreshOfBacklinks()
{
    return dateInInfo(QStringLiteral("autocollectDateBacklinks"));
}

void setLastRefreshOfBacklinks(const QDateTime &date)
{
    setInInfo(QStringLiteral("autocollectDateBacklinks"), date);
}

void setNumberOfDocumentsWithBacklinks(qsizetype number)
{
    setInInfo(QStringLiteral("numberOfDocumentsWithBacklinks"), static_cast<qlonglong>(number));
}

QString indexPathOf(const QString &path)
{
    return tm_normalizedPath(path).normalized(QString::NormalizationForm_C);
}

} // namespace tomelet
