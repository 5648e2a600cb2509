// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/PageReferences.h"

#include "conversion/Edits.h"
#include "conversion/Patterns.h"
#include "foundation/Folder.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"

#include <functional>

namespace tomelet {

namespace {

const QString filePrefix = QStringLiteral("file://");
const QString showPrefix = QStringLiteral("tomelet://show/");

// Gives each reference's value to the function; a null answer leaves it as it is.
QString rewriteReferences(const QString &html, const std::function<QString(const QString &)> &rewritten)
{
    const PatternMatches matches =
        matchesOfPattern(html, QStringLiteral(R"x(<[^>]*? (?:src|href)="(.*?)")x"), PatternCaseInsensitive);
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;) {
        const QString value = substring(html, matches[i].group(1));
        const QString replacement = rewritten(value);
        if (!replacement.isNull() && replacement != value) edits.replace(matches[i].group(1), replacement);
    }
    return edits.appliedTo(html);
}

// The path of a value that is a path or file URL below the root; "" for every other.
QString pathBelowRoot(const QString &value, const QString &root)
{
    if (root.isEmpty()) return {};
    const QString path = value.startsWith(filePrefix) ? value.mid(filePrefix.size()) : value;
    for (const QString &form : {path, percentDecoded(path)})
        if (form == root || form.startsWith(root + u'/')) return path == form ? path : form;
    return {};
}

} // namespace

QString tm_makeTMLinksRelativeTo(const QString &html, const QString &folder)
{
    const QString root = tomeletRoot();
    return rewriteReferences(html, [&](const QString &value) -> QString {
        if (value.isEmpty() || value.startsWith(u'#')) return {};
        if (value.startsWith(showPrefix)) return tm_makeRelativeToPath(value, folder);
        if (!pathBelowRoot(value, root).isEmpty()) {
            const QString path = value.startsWith(filePrefix) ? value.mid(filePrefix.size()) : value;
            return tm_makeRelativeToPath(path, folder);
        }
        if (!value.startsWith(u'/') || value.startsWith(u"//")) return {};
        const QString plain = tm_pathWithoutAnchor(value);
        const bool exists = itemExists(fullPathOf(plain, root)) || itemExists(fullPathOf(percentDecoded(plain), root));
        return exists ? tm_makeRelativeToPath(value, folder) : QString();
    });
}

QString tm_makeReferencesAbsoluteToTMRoot(const QString &html, const QString &)
{
    const QString root = tomeletRoot();
    return rewriteReferences(html, [&](const QString &value) -> QString {
        if (pathBelowRoot(value, root).isEmpty()) return {};
        const QString path = value.startsWith(filePrefix) ? value.mid(filePrefix.size()) : value;
        const bool encoded = !path.startsWith(root);
        const QString normalized = tm_normalizedPath(encoded ? percentDecoded(path) : path, root);
        return encoded ? percentEncodedPath(normalized) : normalized;
    });
}

} // namespace tomelet
