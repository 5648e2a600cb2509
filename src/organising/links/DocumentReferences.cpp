// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/links/DocumentReferences.h"

#include "conversion/Patterns.h"
#include "foundation/Folder.h"
#include "foundation/HtmlEntities.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/TextFile.h"

#include <algorithm>

namespace tomelet {

namespace {

const QString scheme = QStringLiteral("tomelet://");
const QString showScheme = QStringLiteral("tomelet://show/");

bool isReference(const QString &path)
{
    if (path.isEmpty() || path.startsWith(u'#')) return false;
    return !path.contains(u"://") || path.startsWith(scheme, Qt::CaseInsensitive);
}

// A bare URL runs up to the next blank and takes closing brackets with it that belong to what stands around.
Range withoutClosingBrackets(const QString &text, Range range)
{
    const QStringView url = QStringView(text).sliced(range.location, range.length);
    for (const auto &[closing, opening] : {std::pair{u')', u'('}, {u']', u'['}, {u'>', u'<'}})
        while (range.length > 0 && text[range.end() - 1] == QChar(closing) && !url.contains(QChar(opening)))
            --range.length;
    return range;
}

QList<Reference> candidates(const QString &text)
{
    static const QString patterns[] = {
        QStringLiteral(R"x(<[^>]*? src="(.+?)")x"),        QStringLiteral(R"x(<[^>]*? href="(.+?)")x"),
        QStringLiteral(R"x(\[\[([^\[\n]+?)(\||(\]\])))x"), QStringLiteral(R"x(\]\((.+?)\))x"),
        QStringLiteral(R"x((tomelet://[^\s"]*))x"),        QStringLiteral(R"x(\n\s*\[[^\]]+?\]:\s?([^\s]*))x"),
    };
    QList<Reference> found;
    for (const QString &pattern : patterns) {
        const PatternMatches matches = matchesOfPattern(text, pattern, PatternCaseInsensitive);
        for (size_t i = 0; i < matches.size(); ++i) {
            const Range range = withoutClosingBrackets(text, matches[i].group(1));
            const QString path = substring(text, range);
            if (isReference(path)) found.append({path, range});
        }
    }
    return found;
}

} // namespace

QList<Reference> referencesInText(const QString &text)
{
    QList<Reference> found = candidates(text);
    std::ranges::stable_sort(found, [](const Reference &a, const Reference &b) {
        return std::pair(a.range.location, a.range.length) < std::pair(b.range.location, b.range.length);
    });
    // Of two that overlap the narrower stays: sorted by place, an overlap can only be with the last one kept.
    QList<Reference> kept;
    for (const Reference &reference : found) {
        if (kept.isEmpty() || kept.last().range.end() <= reference.range.location) kept.append(reference);
        else if (reference.range.length < kept.last().range.length) kept.last() = reference;
    }
    return kept;
}

bool canHoldReferences(const QString &path)
{
    const QString extension = lowerExtension(path);
    return markdownExtensions().contains(extension) || extension == u"txt" || extension == u"html";
}

QList<Reference> referencesInDocument(const QString &document)
{
    const auto decoded = readTextFile(document);
    return decoded ? referencesInText(decoded->text) : QList<Reference>();
}

QStringList tm_arrayOfAllReferencesInDocument(const QString &document)
{
    QStringList paths;
    for (const Reference &reference : referencesInDocument(document)) paths.append(reference.path);
    paths.removeDuplicates();
    return paths;
}

// -- resolution -------------------------------------------------------------------------------------------------------

bool tm_isTomeletURLSchemeAction(const QString &url)
{
    static const QStringList actions{
        QStringLiteral("grab"),         QStringLiteral("addnote"),     QStringLiteral("append"),
        QStringLiteral("addnewdoc"),    QStringLiteral("addnewtask"),  QStringLiteral("search"),
        QStringLiteral("wifi_sharing"), QStringLiteral("webdav_sync"), QStringLiteral("addnewsketch")};
    const QString lower = url.toLower();
    if (!lower.startsWith(scheme)) return false;
    const QString rest = lower.mid(scheme.size());
    return std::ranges::any_of(actions, [&](const QString &action) { return rest.startsWith(action); });
}

QString withoutTomeletScheme(const QString &reference)
{
    QString path = reference;
    if (path.startsWith(showScheme, Qt::CaseInsensitive)) path = path.mid(showScheme.size());
    else if (path.startsWith(scheme, Qt::CaseInsensitive)) path = path.mid(scheme.size());
    else return reference;
    return path.isEmpty() || path.startsWith(u'/') ? path : u'/' + path;
}

QString resolvedAgainst(const QString &relative, const QString &normalizedFolder)
{
    QStringList parts = normalizedFolder.split(u'/', Qt::SkipEmptyParts);
    for (const QString &part : relative.split(u'/', Qt::SkipEmptyParts)) {
        if (part == u".") continue;
        if (part != u"..") {
            parts.append(part);
            continue;
        }
        if (parts.isEmpty()) return {};
        parts.removeLast();
    }
    return u'/' + parts.join(u'/');
}

QString resolvedReference(const QString &reference, const QString &document)
{
    if (tm_isTomeletURLSchemeAction(reference)) return {};
    const QString path = tm_pathWithoutAnchor(withoutTomeletScheme(reference).trimmed());
    if (path.isEmpty() || path == u"/" || path.contains(u"://")) return {};
    const QString root = tomeletRoot();
    const QString book = tm_normalizedPath(parentPath(document), root);
    const QString decoded = percentDecoded(path);
    const QStringList forms{path, decoded, withEntitiesResolved(decoded)};
    const auto existing = [&](const QString &folder) -> QString {
        for (const QString &form : forms) {
            const QString normalized = resolvedAgainst(form, folder);
            if (!normalized.isEmpty() && normalized != u"/" && itemExists(fullPathOf(normalized, root)))
                return normalized;
        }
        return {};
    };
    // "." and ".." are the book and the one above, never something of that name below the root.
    const bool isRelative = !path.startsWith(u'/');
    const bool isStep = path == u"." || path == u".." || path.startsWith(u"./") || path.startsWith(u"../");
    const QString fromRoot = isStep ? QString() : existing(QString());
    if (!fromRoot.isEmpty() || !isRelative) return fromRoot;
    return existing(book);
}

QStringList verifiedReferencesInText(const QString &text, const QString &document)
{
    QStringList paths;
    for (const Reference &reference : referencesInText(text)) {
        const QString path = resolvedReference(reference.path, document);
        if (!path.isEmpty()) paths.append(path);
    }
    paths.removeDuplicates();
    return paths;
}

QStringList tm_verifiedArrayOfReferencedDocuments(const QString &document)
{
    const auto decoded = readTextFile(document);
    return decoded ? verifiedReferencesInText(decoded->text, document) : QStringList();
}

} // namespace tomelet
