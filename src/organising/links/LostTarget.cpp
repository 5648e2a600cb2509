// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/links/LostTarget.h"

#include "conversion/MarkdownToHtml.h"
#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "organising/links/Backlinks.h"

#include <QDir>
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

// -- making the target ------------------------------------------------------------------------------------------------

namespace {

// The document to make, with the extension that it gets; "" for one that cannot be made.
QString documentToCreate(const QString &target)
{
    const QString path = QDir::cleanPath(percentDecoded(tm_pathWithoutAnchor(target)));
    if (!canBeCreatedForLink(path) || lastPathComponent(path).isEmpty()) return {};
    if (!pathExtension(path).isEmpty()) return path;
    const QString type = settings().string(QStringLiteral("DefaultDocumentType"));
    return type.isEmpty() ? path : path + u'.' + type;
}

QString backlinkInHtml(const QString &path, const QString &linkingDocument)
{
    const bool sameBook = parentPath(path) == parentPath(linkingDocument);
    const QString address =
        sameBook ? lastPathComponent(linkingDocument)
                 : tm_makeRelativeToPath(tm_normalizedPath(linkingDocument), tm_normalizedPath(parentPath(path)));
    const QString name = lastPathComponent(pathWithoutExtension(linkingDocument));
    return QStringLiteral("<a href=\"%1\">%2</a>").arg(percentEncodedPath(address), name.toHtmlEscaped());
}

// What stands in the new document: its name and, where asked for, a way back.
QString textOfCreated(const QString &path, const QString &linkingDocument)
{
    const QString name = lastPathComponent(pathWithoutExtension(path));
    if (lowerExtension(path) != u"html") {
        if (linkingDocument.isEmpty()) return name;
        return name + QStringLiteral("\n\n[[%1]]").arg(tm_normalizedPath(linkingDocument));
    }
    const bool heading = isOn("formatFirstLineAsTitle");
    QString body = heading ? QStringLiteral("<h1>%1</h1>").arg(name.toHtmlEscaped()) : name.toHtmlEscaped();
    if (!linkingDocument.isEmpty())
        body +=
            (heading ? QStringLiteral("\n") : QStringLiteral("\n<br><br>\n")) + backlinkInHtml(path, linkingDocument);
    return tm_createFormattedDocWithBody(path, body);
}

enum class Creation { None, Plain, WithBacklink };

Creation askToCreate(const QString &path, bool offerBacklink)
{
    QStringList buttons{localized(TOMELET_TEXT("Create")), localized(TOMELET_TEXT("Cancel"))};
    if (offerBacklink) buttons.insert(1, localized(TOMELET_TEXT("Create with Backlink")));
    const MenuTitle menu = tm_pathFormattedForContextMenu(tm_normalizedPath(path));
    const QString extension = pathExtension(path);
    const QString title = localized(TOMELET_TEXT("The document \"%@\" does not exist"))
                              .replace(QLatin1String("%@"),
                                       menu.folders + menu.name + (extension.isEmpty() ? QString() : u'.' + extension));
    const int answer = askQuestion({title, localized(TOMELET_TEXT("Do you want to create it?")), buttons});
    if (answer == 0) return Creation::Plain;
    return offerBacklink && answer == 1 ? Creation::WithBacklink : Creation::None;
}

} // namespace

QString tm_findAlternativePathExcludingOrPrompt(const QString &target, const QStringList &excluding,
                                                const QString &linkingDocument)
{
    if (const QString found = tm_findAlternativePathExcluding(target, excluding); !found.isEmpty()) return found;
    const QString path = documentToCreate(target);
    if (path.isEmpty() || !tm_itemIsChildOfTomelet(path)) return {};
    const bool managed = isOn("manageLinks");
    const Creation creation = askToCreate(path, !managed && !linkingDocument.isEmpty());
    if (creation == Creation::None || !makeFolder(parentPath(path))) return {};
    const QString text = textOfCreated(path, creation == Creation::WithBacklink ? linkingDocument : QString());
    if (!writeFile(path, text.toUtf8())) return {};
    if (managed && !linkingDocument.isEmpty()) tm_addBacklink(path, linkingDocument);
    return tm_pathByAppendingAnchor(path, tm_pathAnchor(target));
}

bool canBeCreatedForLink(const QString &target)
{
    return lowerExtension(target).isEmpty() || isTextDocument(target);
}

} // namespace tomelet
