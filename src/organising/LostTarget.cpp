// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/LostTarget.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace tomelet {

namespace {

bool isOn(const char *setting)
{
    return settings().boolean(QString::fromLatin1(setting));
}

bool isTextDocument(const QString &path)
{
    const QString extension = lowerExtension(path);
    return extension == u"html" || builtInPlainTextExtensions().contains(extension);
}

// Case, accents and width do not count.
QString folded(const QString &text)
{
    return withoutMarks(text.normalized(QString::NormalizationForm_KC)).toCaseFolded();
}

QString repaired(const QString &target)
{
    const QString decoded = percentDecoded(target);
    if (itemExists(decoded)) return decoded;
    if (!tm_pathAnchor(target).isEmpty()) {
        const QString plain = tm_pathWithoutAnchor(target);
        for (const QString &form : {plain, percentDecoded(plain)})
            if (itemExists(form)) return tm_pathByAppendingAnchor(form, tm_pathAnchor(target));
        return {};
    }
    const QString straight = QString(decoded).replace(QChar(0x2019), QLatin1Char('\''));
    return straight != decoded && itemExists(straight) ? straight : QString();
}

/// The search for one missing document.
class LostTarget
{
public:
    explicit LostTarget(const QString &path)
        : m_folder(parentPath(path))
        , m_name(lastPathComponent(path))
        , m_stem(lastPathComponent(pathWithoutExtension(path)))
        , m_key(m_stem.trimmed().toLower())
        , m_keyWithoutBlanks(QString(m_key).remove(u' '))
    {
        if (!isTextDocument(path)) readFolder();
    }

    [[nodiscard]] QString found(const QStringList &excluding) const
    {
        if (!m_sameName.isEmpty()) return m_sameName;
        if (m_key.isEmpty()) return {};
        const bool byTitle = isOn("WikiSmartResolveTitles");
        if (byTitle)
            if (const QString path = byPartOfName(); !path.isEmpty()) return path;
        if (byTitle && isOn("WikiSmartResolveGlobally"))
            if (const QString path = anywhere(); !path.isEmpty()) return path;
        return isOn("WikiSmartResolveContents") ? byContents(excluding) : QString();
    }

private:
    void readFolder()
    {
        QStringList names = namesInFolder(m_folder);
        names.removeIf([&](const QString &name) { return tm_pathIsExcludedFromDisplay(joinPath(m_folder, name)); });
        const auto same = std::ranges::find_if(names, [&](const QString &name) {
            const QString stem = lastPathComponent(pathWithoutExtension(joinPath(m_folder, name)));
            return localizedCompare(stem, m_stem) == 0 || localizedCompare(stem, m_name) == 0;
        });
        if (same != names.end()) {
            m_sameName = joinPath(m_folder, *same);
            return;
        }
        std::ranges::stable_sort(names, [](const QString &a, const QString &b) {
            return localizedCompare(a.toCaseFolded(), b.toCaseFolded()) < 0;
        });
        m_candidates = names;
    }

    [[nodiscard]] QString byPartOfName() const
    {
        const QString key = folded(m_key);
        const QString keyWithoutBlanks = folded(m_keyWithoutBlanks);
        for (const QString &name : m_candidates) {
            const QString text = folded(name);
            if (text.contains(key) || text.contains(keyWithoutBlanks)) return joinPath(m_folder, name);
        }
        return {};
    }

    [[nodiscard]] QString anywhere() const
    {
        QString partial;
        const QString exact = exactBelow(tomeletRoot(), partial);
        return exact.isEmpty() ? partial : exact;
    }

    // Ends with the first name that is the key; keeps the first that holds it.
    [[nodiscard]] QString exactBelow(const QString &folder, QString &partial) const
    {
        static const QStringList passedOver{QStringLiteral(".Trash"), QStringLiteral(".TMTrash"),
                                            QStringLiteral("TMResources"), QStringLiteral("TMImages")};
        for (const FolderEntry &entry : listFolder(folder).value_or(std::vector<FolderEntry>())) {
            if (passedOver.contains(entry.name)) continue;
            const QString path = joinPath(folder, entry.name);
            if (entry.isFolder) {
                if (QFileInfo(path).isSymLink()) continue;
                if (const QString exact = exactBelow(path, partial); !exact.isEmpty()) return exact;
                continue;
            }
            const QString name = entry.name.toLower();
            if (!name.contains(m_key) || name.endsWith(u".plist") || name.startsWith(u'.')) continue;
            if (lastPathComponent(pathWithoutExtension(path)).toLower() == m_key) return path;
            if (partial.isEmpty()) partial = path;
        }
        return {};
    }

    [[nodiscard]] QString byContents(const QStringList &excluding) const
    {
        const QString key = folded(m_key);
        for (const QString &name : m_candidates) {
            const QString path = joinPath(m_folder, name);
            if (excluding.contains(path) || !isTextDocument(path)) continue;
            QFile file(path);
            if (file.open(QIODevice::ReadOnly) && folded(QString::fromUtf8(file.readAll())).contains(key)) return path;
        }
        return {};
    }

    QString m_folder;
    QString m_name;
    QString m_stem;
    QString m_key;
    QString m_keyWithoutBlanks;
    QString m_sameName;
    QStringList m_candidates;
};

} // namespace

QString tm_findAlternativePathExcluding(const QString &target, const QStringList &excluding)
{
    if (const QString path = repaired(target); !path.isEmpty()) return path;
    const QString anchor = tm_pathAnchor(target);
    const QString found = LostTarget(percentDecoded(tm_pathWithoutAnchor(target))).found(excluding);
    return found.isEmpty() ? QString() : tm_pathByAppendingAnchor(found, anchor);
}

bool canBeCreatedForLink(const QString &target)
{
    return lowerExtension(target).isEmpty() || isTextDocument(target);
}

} // namespace tomelet
