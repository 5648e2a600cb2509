// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/Completion.h"

#include "conversion/Patterns.h"
#include "conversion/StyleSheets.h"
#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/RecentItems.h"
#include "organising/contexts/ContextStores.h"
#include "organising/contexts/Contexts.h"

#include <QDir>

#include <algorithm>

namespace tomelet {

namespace {

// No path and no class name is longer; the rest of an endless line is not looked at.
constexpr qsizetype longestTyped = 1000;

std::optional<CompletionPlace> placeOf(const QString &before, CompletionKind kind, const QString &pattern)
{
    const Range typed = rangeOfPattern(before, pattern, 0, wholeRange, 1);
    if (!typed.isFound()) return std::nullopt;
    return CompletionPlace{kind, typed.location, substring(before, typed)};
}

std::optional<CompletionPlace> contextPlace(const QString &before)
{
    if (!managesContextsAutomatically()) return std::nullopt;
    const QString markers = tm_stringByEscapingWildcards(contextMarkers());
    return placeOf(before, CompletionKind::Context, QStringLiteral(R"((?<!\S)([%1](?![%1])\S*?)$)").arg(markers));
}

QString folderPart(const QString &path)
{
    return path.left(path.lastIndexOf(u'/') + 1);
}

// "Folder/" ends in its name all the same.
QString lastPart(const QString &path)
{
    return path.mid(path.lastIndexOf(u'/', path.size() - 2) + 1);
}

// A name with one of these would end its link or begin another part of it.
bool canStandInWikiLink(const QString &path)
{
    return !std::ranges::any_of(path, [](QChar unit) { return QStringView(u"[]|\n").contains(unit); });
}

QStringList entriesOf(const QString &folder)
{
    QStringList names;
    for (const FolderEntry &entry : listFolder(folder).value_or(std::vector<FolderEntry>())) {
        if (!entry.exists || tm_pathIsExcludedFromDisplay(joinPath(folder, entry.name))) continue;
        const bool isBook = entry.isFolder && !hasPackageExtension(entry.name);
        names.append(isBook ? QString(entry.name + u'/') : entry.name);
    }
    std::ranges::sort(names, [](const QString &a, const QString &b) { return compareNames(a, b, true) < 0; });
    return names;
}

QStringList wikiPaths(const QString &typed, const QString &book)
{
    const QString typedFolder = folderPart(typed);
    const QString folder =
        QDir::cleanPath(typedFolder.startsWith(u'/') ? fullPathOf(typedFolder) : joinPath(book, typedFolder));
    QStringList paths;
    if (tm_itemIsChildOfTomelet(folder))
        for (const QString &name : entriesOf(folder)) paths.append(typedFolder + name);
    if (typedFolder.isEmpty())
        for (const QString &recent : verifiedListOfRecentItems()) {
            const QString path = tm_makeRelativeToPath(fullPathOf(recent), book);
            if (!paths.contains(path)) paths.append(path);
        }
    paths.removeIf([](const QString &path) { return !canStandInWikiLink(path); });
    return paths;
}

QString styleSheetFor(const QString &book, const QString &document)
{
    return tm_inheritedStyleSheet(document.isEmpty() ? book : document);
}

QString closingOf(CompletionKind kind)
{
    return kind == CompletionKind::WikiPath ? QStringLiteral("]]") : QString();
}

} // namespace

std::optional<CompletionPlace> completionPlace(const QString &line, qsizetype caret)
{
    const qsizetype skipped = std::max<qsizetype>(0, caret - longestTyped);
    const QString before = line.mid(skipped, caret - skipped);
    auto place = placeOf(before, CompletionKind::WikiPath, QStringLiteral(R"(\[\[([^\[\]|\n]*)$)"));
    if (!place && skipped == 0)
        place = placeOf(before, CompletionKind::StyleClass, QStringLiteral(R"(^> ?%([^%\s]*)$)"));
    if (!place) place = placeOf(before, CompletionKind::StyleClass, QStringLiteral(R"(\]\(class:[ \t]*([^()\s]*)$)"));
    if (!place) place = contextPlace(before);
    if (place) place->start += skipped;
    return place;
}

bool haveSameCandidates(const CompletionPlace &a, const CompletionPlace &b)
{
    if (a.kind != b.kind) return false;
    if (a.kind == CompletionKind::WikiPath) return folderPart(a.typed) == folderPart(b.typed);
    return a.kind == CompletionKind::StyleClass || a.typed.left(1) == b.typed.left(1);
}

QStringList completionCandidates(const CompletionPlace &place, const QString &book, const QString &document)
{
    QStringList candidates;
    switch (place.kind) {
    case CompletionKind::WikiPath: return wikiPaths(place.typed, book);
    case CompletionKind::Context: candidates = contextsForCompletion(place.typed.left(1)); break;
    case CompletionKind::StyleClass: candidates = tm_customClassesInStylesheet(styleSheetFor(book, document)); break;
    }
    candidates.removeDuplicates();
    return candidates;
}

QStringList completionsFor(const QStringList &candidates, const CompletionPlace &place)
{
    const bool isName = place.kind == CompletionKind::WikiPath && !place.typed.contains(u'/');
    QStringList completions;
    for (const QString &candidate : candidates) {
        const bool fits = candidate.startsWith(place.typed, Qt::CaseInsensitive) ||
                          (isName && lastPart(candidate).startsWith(place.typed, Qt::CaseInsensitive));
        if (fits && candidate != place.typed) completions.append(candidate);
    }
    return completions;
}

QStringList completionsFromLibrary(const QStringList &documents, const QString &book)
{
    QStringList paths;
    for (const QString &document : documents)
        if (canStandInWikiLink(document)) paths.append(tm_makeRelativeToPath(fullPathOf(document), book));
    return paths;
}

QString commonBeginning(const QStringList &completions, const QString &typed)
{
    if (completions.isEmpty()) return typed;
    QString common = completions.first();
    for (const QString &completion : completions) {
        const auto same = [](QChar a, QChar b) { return a.toCaseFolded() == b.toCaseFolded(); };
        common.truncate(std::mismatch(common.begin(), common.end(), completion.begin(), completion.end(), same).first -
                        common.begin());
    }
    return common.startsWith(typed, Qt::CaseInsensitive) ? common : typed;
}

void complete(EditedText &edited, const CompletionPlace &place, const QString &completion, bool isWhole)
{
    const qsizetype caret = edited.selection().location;
    QString closing = isWhole && !completion.endsWith(u'/') ? closingOf(place.kind) : QString();
    if (place.kind == CompletionKind::StyleClass && isWhole && edited.at(caret - place.typed.size() - 1) == u'%')
        closing = QStringLiteral("%");
    qsizetype standing = 0; // of what closes it, behind the caret already
    while (standing < closing.size() && edited.at(caret + standing) == closing[standing]) ++standing;
    const Range typed{caret - place.typed.size(), place.typed.size()};
    edited.tm_replaceCharactersInRange(typed, completion + closing.mid(standing));
    const qsizetype end = typed.location + completion.size();
    edited.select({end + (closing.isEmpty() ? 0 : closing.size()), 0});
}

} // namespace tomelet
