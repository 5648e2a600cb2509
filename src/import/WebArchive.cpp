// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/WebArchive.h"

#include "conversion/Patterns.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyList.h"
#include "foundation/SafeWriter.h"
#include "import/ArchiveReferences.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"

#include <QHash>
#include <QSet>

#include <functional>

namespace tomelet {

namespace {

struct Resource
{
    QString url;
    QString type; ///< its media type
    QByteArray data;
};

struct Archive
{
    Resource page;
    QList<Resource> resources; ///< pictures and style sheets, each address once
};

// -- reading ----------------------------------------------------------------------------------------------------------

QVariant valueOfType(const QVariantMap &map, const QString &key, QMetaType::Type type)
{
    const QVariant value = map.value(key);
    return value.typeId() == type ? value : QVariant();
}

std::optional<Resource> resourceFrom(const QVariant &value)
{
    const QVariantMap map = value.toMap();
    const QVariant data = valueOfType(map, QStringLiteral("WebResourceData"), QMetaType::QByteArray);
    if (!data.isValid()) return std::nullopt;
    return Resource{valueOfType(map, QStringLiteral("WebResourceURL"), QMetaType::QString).toString(),
                    valueOfType(map, QStringLiteral("WebResourceMIMEType"), QMetaType::QString).toString(),
                    data.toByteArray()};
}

bool isImage(const Resource &resource)
{
    return resource.type.contains(u"image");
}

bool isStyle(const Resource &resource)
{
    return resource.type.contains(u"text/css");
}

QVariantMap contentsOf(const QString &path)
{
    const auto bytes = readFile(path);
    return bytes ? parsePropertyList(*bytes).value_or(QVariant()).toMap() : QVariantMap();
}

std::optional<Resource> pageFrom(const QVariantMap &contents)
{
    return resourceFrom(contents.value(QStringLiteral("WebMainResource")));
}

std::optional<Archive> readArchive(const QString &path)
{
    const QVariantMap contents = contentsOf(path);
    const auto page = pageFrom(contents);
    if (!page) return std::nullopt;
    Archive archive{*page, {}};
    QSet<QString> seen;
    for (const QVariant &entry : contents.value(QStringLiteral("WebSubresources")).toList()) {
        const auto resource = resourceFrom(entry);
        if (!resource || resource->url.isEmpty() || seen.contains(resource->url)) continue;
        seen.insert(resource->url);
        if (isImage(*resource) || isStyle(*resource)) archive.resources.append(*resource);
    }
    return archive;
}

QString textOf(const Resource &page)
{
    return QString::fromUtf8(page.data);
}

// -- files of resources -----------------------------------------------------------------------------------------------

// The view takes no style sheet or drawing from a file that is not called one.
QString fileNameFor(const Resource &resource)
{
    const QString name = nameOfResource(resource.url);
    if (name.isEmpty()) return {};
    const auto ending = [&](const QString &wanted) {
        return lowerExtension(name) == wanted ? name : QString(name + u'.' + wanted);
    };
    if (isStyle(resource)) return ending(QStringLiteral("css"));
    return resource.type.contains(u"svg") ? ending(QStringLiteral("svg")) : name;
}

/// Writes resources into a folder under names that are free there.
class ResourceFiles
{
public:
    enum class Names { AsTheyAre, BesideOthers };
    ResourceFiles(QString folder, Names names)
        : m_folder(std::move(folder))
        , m_names(names)
    {}

    /// The name of the file; "" for a resource that has none.
    QString write(const Resource &resource)
    {
        const QString wanted = fileNameFor(resource);
        if (wanted.isEmpty()) return {};
        const QString name = freeName(wanted);
        m_taken.insert(name);
        const QString path = joinPath(m_folder, name);
        // Shown again, an archive finds its files.
        if (m_names == Names::BesideOthers || readFile(path) != resource.data)
            m_batch.change(path, [data = resource.data] { return data; });
        return name;
    }
    void flush() { m_batch.flush(); }

private:
    bool isFree(const QString &name) const
    {
        return !m_taken.contains(name) && (m_names == Names::AsTheyAre || !itemExists(joinPath(m_folder, name)));
    }
    QString freeName(const QString &wanted)
    {
        if (m_names == Names::AsTheyAre && stemThatFits(wanted, {}) == wanted && isFree(wanted)) return wanted;
        qulonglong &number = m_numbers[wanted];
        while (!isFree(safeFileName(wanted, number))) ++number;
        return safeFileName(wanted, number);
    }

    QString m_folder;
    Names m_names;
    QSet<QString> m_taken;
    QHash<QString, qulonglong> m_numbers; ///< behind names that several resources want
    FileBatch m_batch;
};

// -- pages ------------------------------------------------------------------------------------------------------------

using ReferenceTo = std::function<QString(const QString &name)>;

QString pageWithFiles(const Archive &archive, ResourceFiles &files, const ReferenceTo &referenceTo,
                      Qt::CaseSensitivity sensitivity)
{
    QList<SavedResource> saved;
    for (const Resource &resource : archive.resources)
        if (const QString name = files.write(resource); !name.isEmpty())
            saved.append({resource.url, referenceTo(name), isImage(resource)});
    files.flush();
    return ArchiveReferences(saved, archive.page.url, sensitivity).writtenInto(textOf(archive.page));
}

QString framed(QString text)
{
    static const QString before =
        QStringLiteral("<!DOCTYPE html>\n<html>\n<head>\n<meta name= \"viewport\" content = \"initial-scale=1.0\">\n"
                       "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\" />\n</head>\n<body>\n");
    return before + text.remove(QStringLiteral("<!DOCTYPE html>"), Qt::CaseInsensitive) +
           QStringLiteral("\n</body>\n</html>");
}

bool hasHead(const QString &text)
{
    return !firstMatchOfPattern(text, QStringLiteral("<head[\\s>]"), PatternCaseInsensitive).isEmpty() &&
           text.contains(u"</head>", Qt::CaseInsensitive);
}

// The program's mark, and the place where it puts the style of the document.
QString asOwnDocument(const QString &text)
{
    static const QString marks = QStringLiteral("<!-- Generator: Tomelet -->\n<style ></style>\n</head>");
    QString page = hasHead(text) ? text : framed(text);
    page.replace(page.indexOf(u"</head>", 0, Qt::CaseInsensitive), 7, marks);
    // Behind the last ">" no tag ends, and looking for one from each beginning would take long.
    const qsizetype end = page.lastIndexOf(u'>') + 1;
    return regexSweep(page.left(end), QStringLiteral("<body.*?>"), QStringLiteral("<body>"), PatternDotAll) +
           QStringView(page).sliced(end);
}

} // namespace

bool opensAsWebArchive(const QString &path)
{
    return lowerExtension(path) == u"webarchive" &&
           settings().boolean(QStringLiteral("openWebarchivesWithTMLTMethods"));
}

QString tm_webarchiveToHTML(const QString &path)
{
    const auto archive = readArchive(path);
    if (!archive) return {};
    const QString folder = joinPath(workingDirectory(), QStringLiteral("webarchiveExtract"));
    makeFolder(folder);
    ResourceFiles files(folder, ResourceFiles::Names::AsTheyAre);
    const auto reference = [&folder](const QString &name) -> QString {
        return QStringLiteral("file://") + percentEncodedPath(joinPath(folder, name));
    };
    return regexSweep(pageWithFiles(*archive, files, reference, Qt::CaseSensitive),
                      QStringLiteral("src=\"[\\./]*file://"), QStringLiteral("src=\"file://"), PatternCaseInsensitive);
}

QString tm_saveWebarchiveAsHTML(const QString &path)
{
    return saveWebArchive(path, parentPath(path));
}

QString saveWebArchive(const QString &path, const QString &book)
{
    const QString wanted = lastPathComponent(pathWithoutExtension(path)) + QStringLiteral(".html");
    const auto archive = readArchive(path);
    if (!archive) return {};
    ResourceFiles files(tm_imagesFolderAtMyPath(joinPath(book, wanted)), ResourceFiles::Names::BesideOthers);
    // A parenthesis would end the reference where the embedded images of a text are looked for.
    const auto reference = [](const QString &name) -> QString {
        return QStringLiteral("TMImages/") +
               percentEncodedPath(name).replace(u'(', QStringLiteral("%28")).replace(u')', QStringLiteral("%29"));
    };
    const QString text =
        regexSweep(pageWithFiles(*archive, files, reference, Qt::CaseInsensitive),
                   QStringLiteral("src=\"[\\./]*TMImages"), QStringLiteral("src=\"TMImages"), PatternCaseInsensitive);
    const QString target = tm_uniqueNameForFileatPath(wanted, book);
    if (!writeFile(target, asOwnDocument(text).toUtf8())) return {};
    tm_setCreationDate(target);
    tm_setProperty(target, QStringLiteral("CSS/Minimalist Theme.css"), QStringLiteral("CSS"));
    return target;
}

std::optional<QString> sourceOfWebArchive(const QString &path)
{
    const auto page = pageFrom(contentsOf(path));
    return page ? std::optional(textOf(*page)) : std::nullopt;
}

} // namespace tomelet
