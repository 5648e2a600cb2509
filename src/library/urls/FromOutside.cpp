// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/urls/FromOutside.h"

#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/SafeWriter.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace tomelet {

static bool isRootOrBelow(const QString &path, const QString &root)
{
    return !root.isEmpty() && (path == root || path.startsWith(root + u'/'));
}

QString bookFromOutside(const QString &path)
{
    const QString root = tomeletRoot();
    const QString full = QFileInfo(fullPathOf(path, root)).canonicalFilePath(); // "" for what does not exist
    if (!isRootOrBelow(full, root)) return root;
    const QString normalized = tm_normalizedPath(full, root);
    const bool isVisible = !tm_pathIsExcludedFromDisplay(normalized) && !tm_itemIsTrashed(normalized);
    return isVisible && pathIsPlainBook(full) ? full : root;
}

QString itemFromOutside(const QString &path)
{
    const QString root = tomeletRoot();
    const QString full = QDir::cleanPath(fullPathOf(path, root));
    return isRootOrBelow(full, root) ? full : QString();
}

// The first line with anything in it.
static QStringView firstLine(QStringView text)
{
    const QStringView trimmed = text.trimmed();
    const auto end =
        std::ranges::find_if(trimmed, [](QChar unit) { return QStringView(u"\n\r\u2028\u2029").contains(unit); });
    return trimmed.first(end - trimmed.begin());
}

QString nameFromOutside(const QString &text)
{
    static constexpr qsizetype longest = 250; // more than any file system takes
    QString name;
    for (const QChar unit : firstLine(text).left(longest))
        name += unit.category() == QChar::Other_Control ? QChar(u' ') : unit;
    if (!name.isEmpty() && name.back().isHighSurrogate()) name.chop(1);
    // What one takes away may uncover the other.
    for (name = tm_escapeIllegalCharacters(name); name.startsWith(u'.'); name = tm_escapeIllegalCharacters(name))
        name.remove(0, 1);
    return name.trimmed();
}

// Nothing happens to a file that stands there; stale when somebody took the name meanwhile.
static WriteResult writeNewFile(const QString &path, QByteArrayView bytes)
{
    StagedFile file(path, bytes);
    if (!file.staged()) return file.staged();
    WriteResult written = file.commitIfStill(std::nullopt);
    if (written) file.flushName();
    return written;
}

QString writeFromOutside(const QString &name, const QString &book, QByteArrayView bytes)
{
    static constexpr int attempts = 100;
    if (book.isEmpty()) return {}; // there is no notebook
    for (int i = 0; i < attempts; ++i) {
        const QString path = tm_uniqueNameForFileatPath(name, book);
        const WriteResult written = writeNewFile(path, bytes);
        if (written) {
            tm_setCreationDate(path);
            return path;
        }
        if (!written.isStale) {
            logWarning(written.message);
            return {};
        }
    }
    return {};
}

} // namespace tomelet
