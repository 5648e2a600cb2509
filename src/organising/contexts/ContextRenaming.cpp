// SPDX-License-Identifier: GPL-3.0-or-later
// Renaming, deleting and excluding contexts, and the texts that follow.
#include "organising/contexts/Contexts.h"

#include "conversion/Edits.h"
#include "conversion/Patterns.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "library/TextFile.h"
#include "organising/contexts/ContextStores.h"

namespace tomelet {

namespace {

bool isHtml(const QString &path)
{
    const QString extension = lowerExtension(path);
    return extension == u"html" || extension == u"htm";
}

bool canHoldContext(const QString &path)
{
    return isHtml(path) || builtInPlainTextExtensions().contains(lowerExtension(path));
}

QString escapedForPattern(const QString &word)
{
    QString escaped;
    for (const QChar unit : word) {
        if (QStringView(u"*?+[(){}^$|\\./").contains(unit)) escaped += u'\\';
        escaped += unit;
    }
    return escaped;
}

void replaceInDocument(const QString &path, const QString &word, const QString &newWord)
{
    const auto decoded = readTextFile(path);
    if (!decoded) return;
    const QString pattern =
        isHtml(path) ? QStringLiteral("(?<=\\s|>)%1(?=,|;|\\s|&|$|<)") : QStringLiteral("(?<!\\S)%1(?=,|;|\\s|$)");
    const Range body = isHtml(path) ? rangeOfPattern(decoded->text, QStringLiteral("<body.*?>")) : Range{0, 0};
    const qsizetype from = body.isFound() ? body.end() : 0;
    const PatternMatches matches =
        matchesOfPattern(decoded->text, pattern.arg(escapedForPattern(word)), PatternLineAnchored);
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;)
        if (matches[i].range().location >= from) edits.replace(matches[i].range(), newWord);
    if (edits.isEmpty()) return;
    const auto bytes = encodeText(edits.appliedTo(decoded->text), decoded->encoding, decoded->byteOrderMark);
    if (bytes && writeFile(path, *bytes))
        notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), path);
}

bool personWantsTextsToFollow(const QString &word, const QString &newWord)
{
    const bool deletes = newWord.isEmpty();
    const QString title =
        deletes
            ? localized(TOMELET_TEXT("Delete \"%1\" from the contents of documents assigned to this context?"))
                  .arg(word)
            : localized(TOMELET_TEXT("Rename \"%1\" to \"%2\" in the contents of documents assigned to this context, "
                                     "too?"))
                  .arg(word, newWord);
    return askQuestion(
               {title,
                localized(TOMELET_TEXT("You cannot undo this action.")),
                {deletes ? localized(TOMELET_TEXT("Delete from Text")) : localized(TOMELET_TEXT("Rename in Text")),
                 localized(TOMELET_TEXT("Cancel"))}}) == 0;
}

// The item's contexts with the new word in the old one's place; the mark of a favourite is carried over.
void renameInTags(const QString &path, const QString &word, const QString &newWord)
{
    QStringList tags = tm_verifiedTagList(path);
    if (tm_isFavorite(path) && !tags.contains(favoriteContext)) tags.append(favoriteContext);
    const qsizetype at = tags.indexOf(word);
    if (at < 0) return;
    if (newWord.isEmpty() || tags.contains(newWord)) tags.removeAt(at);
    else tags[at] = newWord;
    const QString key = QStringLiteral("Tags");
    if (tags.isEmpty()) tm_removePropertyForKey(path, key);
    else tm_setProperty(path, QVariantList(tags.begin(), tags.end()), key);
}

void renameInStores(ContextStores &stores, const QString &word, const QString &newWord)
{
    const QStringList entry = stores.index.take(stores.keyFor(word));
    if (!newWord.isEmpty() && !entry.isEmpty()) {
        QStringList &target = stores.index[stores.keyFor(newWord)];
        tm_mergeTagListWithList(target, entry);
    }
    const qsizetype at = stores.list.indexOf(word);
    const qsizetype present = newWord.isEmpty() ? -1 : stores.list.indexOf(newWord);
    if (newWord.isEmpty()) stores.list.removeAll(word);
    else if (at < 0 && present < 0) stores.list.append(newWord);
    else if (at >= 0 && present < 0) stores.list[at] = newWord;
    else if (at >= 0) {
        // Both stand there: the earlier place stays.
        stores.list[std::min(at, present)] = newWord;
        stores.list.removeAt(std::max(at, present));
    }
    for (const QString &key : stores.index.keys()) {
        if (key == favoriteContext || stores.list.contains(key)) continue;
        logLine(QStringLiteral("did not find %1").arg(key));
        stores.index.remove(key);
    }
}

} // namespace

void tm_renameTagTo(const QString &word, const QString &newWord, bool renameSilently)
{
    if (word.isEmpty() || word == newWord) return;
    const QString root = tomeletRoot();
    QStringList documents;
    {
        const ContextStores stores;
        for (const QString &path : stores.index.value(stores.keyFor(word))) {
            const QString full = fullPathOf(path, root);
            if (!itemExists(full)) continue;
            renameInTags(full, word, newWord);
            if (canHoldContext(full)) documents.append(full);
        }
    }
    ContextStores stores;
    renameInStores(stores, word, newWord);
    stores.save();
    announceContexts();
    if (renameSilently || documents.isEmpty() || !managesContextsAutomatically()) return;
    if (!personWantsTextsToFollow(word, newWord)) return;
    for (const QString &path : documents) replaceInDocument(path, word, newWord);
}

void tm_excludeTag(const QString &word)
{
    writeExcludedContexts(excludedContexts() + QStringList{word});
    tm_renameTagTo(word, QString(), true);
}

} // namespace tomelet
