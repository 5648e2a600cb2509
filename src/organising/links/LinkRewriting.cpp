// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/links/LinkRewriting.h"

#include "conversion/Edits.h"
#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/TextFile.h"
#include "organising/links/Backlinks.h"
#include "organising/links/DocumentReferences.h"
#include "organising/links/LinkJournal.h"
#include "organising/links/LinkWalks.h"

namespace tomelet {

namespace {

QString composed(const QString &text)
{
    return text.normalized(QString::NormalizationForm_C);
}

// "/Book/b.md" is meant by itself, by what lies below it and by its anchors, but not by "/Book/b.md2".
bool beginsWithPath(const QString &text, const QString &path)
{
    if (path.isEmpty() || !text.startsWith(path, Qt::CaseInsensitive)) return false;
    return text.size() == path.size() || QStringView(u"/#?").contains(text[path.size()]);
}

bool endsWithPath(const QString &text, const QString &ending)
{
    if (ending.isEmpty() || !text.endsWith(ending)) return false;
    const qsizetype before = text.size() - ending.size() - 1;
    return before < 0 || text[before] == u'/';
}

// Marks of accents do not count, as long as the two have the same number of units.
bool beginsWithPathIgnoringMarks(const QString &text, const QString &path)
{
    if (text.size() < path.size()) return false;
    return beginsWithPath(text, path) ||
           beginsWithPath(withoutMarks(text.left(path.size())) + text.mid(path.size()), withoutMarks(path));
}

/// One move as it looks from one document.
class DocumentRewrite
{
public:
    DocumentRewrite(const QString &document, const QString &oldPath, const QString &newPath)
        : m_root(tomeletRoot())
        , m_document(composed(tm_normalizedPath(document, m_root)))
        , m_book(parentPath(m_document))
        , m_old(composed(tm_normalizedPath(oldPath, m_root)))
        , m_new(composed(tm_normalizedPath(newPath, m_root)))
        , m_oldBeginsWithNew(m_old.startsWith(m_new))
        , m_relativeOld(relative(m_old))
        , m_relativeNew(relative(m_new))
    {}

    /// What takes the reference's place; the reference itself where nothing changes.
    [[nodiscard]] QString rewritten(const QString &reference) const
    {
        const QString path = withoutTomeletScheme(composed(reference.trimmed()));
        if (path.isEmpty()) return reference;
        if (beginsWithPath(path, m_old) && (m_oldBeginsWithNew || !beginsWithPath(path, m_new)))
            return withOldReplaced(composed(reference));
        const QString decoded = composed(percentDecoded(path));
        if (beginsWithPathIgnoringMarks(decoded, m_old) && (m_oldBeginsWithNew || !beginsWithPath(decoded, m_new)))
            return withFront(reference, encoded(m_new + decoded.mid(m_old.size())));
        if (path.startsWith(u'/') || reference.contains(u"://")) return reference;
        // On disk a name may stand in either normal form, so the reference is looked up as it is spelled.
        const QString spelled = reference.trimmed();
        return m_document == m_new ? seenFromNewPlace(reference, spelled) : relativeInOtherDocument(reference, spelled);
    }

private:
    [[nodiscard]] QString relative(const QString &path) const { return tm_makeRelativeToPath(path, m_book); }
    [[nodiscard]] bool exists(const QString &normalized) const
    {
        return !normalized.isEmpty() && normalized != u"/" && itemExists(fullPathOf(normalized, m_root));
    }

    // The anchor is no part of the path that is encoded.
    static QString encoded(const QString &path)
    {
        return tm_pathByAppendingAnchor(percentEncodedPath(tm_pathWithoutAnchor(path)), tm_pathAnchor(path));
    }

    [[nodiscard]] QString withOldReplaced(QString reference) const
    {
        const qsizetype at = reference.indexOf(m_old, 0, Qt::CaseInsensitive);
        return at < 0 ? reference : reference.replace(at, m_old.size(), m_new);
    }

    // Keeps what stands in front of the path: the scheme of a tomelet URL.
    static QString withFront(const QString &reference, const QString &path)
    {
        static const QString show = QStringLiteral("tomelet://show");
        static const QString plain = QStringLiteral("tomelet:/");
        if (reference.startsWith(show, Qt::CaseInsensitive)) return show + path;
        return reference.startsWith(plain, Qt::CaseInsensitive) ? plain + path : path;
    }

    [[nodiscard]] QString seenFromNewPlace(const QString &reference, const QString &path) const
    {
        const QString anchor = tm_pathAnchor(path);
        const QString target = tm_pathWithoutAnchor(path);
        const QString decoded = percentDecoded(target);
        for (const QString &form : {target, decoded})
            if (exists(resolvedAgainst(form, m_book))) return reference;
        const QString oldBook = parentPath(m_old);
        if (const QString there = resolvedAgainst(target, oldBook); exists(there))
            return tm_pathByAppendingAnchor(relative(there), anchor);
        if (const QString there = resolvedAgainst(decoded, oldBook); exists(there))
            return tm_pathByAppendingAnchor(percentEncodedPath(relative(there)), anchor);
        return reference;
    }

    [[nodiscard]] QString relativeInOtherDocument(const QString &reference, const QString &path) const
    {
        const QString anchor = tm_pathAnchor(path);
        const QString target = tm_pathWithoutAnchor(path);
        const QString decoded = percentDecoded(target);
        for (const QString &form : {target, decoded}) {
            const QString meant = resolvedAgainst(form, m_book);
            // A roundabout form ("../Book/b.md" inside Book) means the moved item too.
            const QString comparable = composed(meant);
            const bool isMoved = comparable == m_old && !exists(meant);
            if (!isMoved && !comparable.startsWith(m_old + u'/')) continue;
            const QString now = relative(m_new + comparable.mid(m_old.size()));
            return tm_pathByAppendingAnchor(form == target ? now : percentEncodedPath(now), anchor);
        }
        for (const QString &form : {target, decoded}) {
            const QString now = form == target ? m_relativeNew : percentEncodedPath(m_relativeNew);
            const QString comparable = composed(form);
            const bool stands = exists(resolvedAgainst(form, m_book));
            const bool shortened = endsWithPath(m_old, comparable) || endsWithPath(m_relativeOld, comparable);
            if (shortened && !stands) return tm_pathByAppendingAnchor(now, anchor);
            const bool done = !m_oldBeginsWithNew && beginsWithPath(comparable, m_relativeNew);
            if (beginsWithPath(comparable, m_relativeOld) && !done && !stands)
                return tm_pathByAppendingAnchor(now + comparable.mid(m_relativeOld.size()), anchor);
        }
        return reference;
    }

    QString m_root;
    QString m_document;
    QString m_book;
    QString m_old;
    QString m_new;
    bool m_oldBeginsWithNew;
    QString m_relativeOld;
    QString m_relativeNew;
};

} // namespace

/// A document's text with its references as they are after a move.
struct RenamedLinks
{
    DecodedText decoded;
    bool changed = false;

    /// Nothing when the file is to stay as it is.
    [[nodiscard]] std::optional<QByteArray> bytes() const
    {
        return changed ? encodeText(decoded.text, decoded.encoding, decoded.byteOrderMark) : std::nullopt;
    }
};

// Nothing for a document that holds no references or cannot be read.
static std::optional<RenamedLinks> withLinksRenamed(const QString &document, const QString &oldPath,
                                                    const QString &newPath)
{
    if (!canHoldReferences(document)) return std::nullopt;
    auto decoded = readTextFile(document);
    if (!decoded) {
        logLine(QStringLiteral("have no text for %1").arg(document));
        return std::nullopt;
    }
    const DocumentRewrite rewrite(document, oldPath, newPath);
    const QList<Reference> references = referencesInText(decoded->text);
    Edits edits;
    for (qsizetype i = references.size(); i-- > 0;) {
        const QString now = rewrite.rewritten(references[i].path);
        if (now != references[i].path) edits.replace(references[i].range, now);
    }
    QString text = edits.appliedTo(decoded->text);
    const bool changed = text != decoded->text;
    logLine(changed ? QStringLiteral("renamed Links in %1 from %2 to %3").arg(document, oldPath, newPath)
                    : QStringLiteral("Not renaming links in: %1").arg(document));
    decoded->text = std::move(text);
    return RenamedLinks{std::move(*decoded), changed};
}

bool tm_renameLinksInDocumentFrom(const QString &document, const QString &oldPath, const QString &newPath)
{
    bool changed = false;
    const WriteResult written = changeFile(document, [&] {
        const auto renamed = withLinksRenamed(document, oldPath, newPath);
        const auto bytes = renamed ? renamed->bytes() : std::nullopt;
        changed = bytes.has_value();
        return bytes;
    });
    return changed && written;
}

void renameOwnLinks(const QString &document, const QString &oldPath)
{
    if (!settings().boolean(QStringLiteral("manageLinks"))) return;
    platform().serialQueue.add([=] { tm_renameLinksInDocumentFrom(document, oldPath, document); });
}

namespace {

/// The writes of one move: documents and property files by the hundred.
struct MoveWrites
{
    FileBatch documents;
    StoreBatch stores;

    /// Gives the document's text after the move.
    QString renameLinks(const QString &document, const QString &oldPath, const QString &newPath)
    {
        auto text = std::make_shared<QString>();
        documents.change(document, [=] {
            const auto renamed = withLinksRenamed(document, oldPath, newPath);
            *text = renamed ? renamed->decoded.text : QString();
            return renamed ? renamed->bytes() : std::nullopt;
        });
        return *text;
    }
};

} // namespace

// -- one item ---------------------------------------------------------------------------------------------------------

namespace {

const QString backlinksKey = QStringLiteral("Backlinks");
const QString referencedKey = QStringLiteral("ReferencedPath");

// Noted until it is done, so that nothing is lost when the program is killed meanwhile.
void queueMove(const MoveInWork &move, std::function<void()> work)
{
    noteMove(move);
    platform().serialQueue.add([move, work = std::move(work)] {
        work();
        forgetMove(move);
    });
}

QStringList backlinksOf(const QString &item)
{
    return tm_propertyForKey(item, backlinksKey).toStringList();
}

// The item may have moved on before its turn came: then there is nothing at this place to work on.
void adjustAfterRename(const QString &newPath, const QString &oldPath)
{
    if (!itemExists(newPath)) return;
    const QString root = tomeletRoot();
    const QStringList backlinks = backlinksOf(newPath);
    if (!backlinks.isEmpty()) tm_setProperty(newPath, tm_normalizedPath(newPath, root), referencedKey);
    MoveWrites writes;
    const QString text = writes.renameLinks(newPath, oldPath, newPath);
    for (const QString &referrer : backlinks) writes.renameLinks(fullPathOf(referrer, root), oldPath, newPath);
    for (const QString &target : verifiedReferencesInText(text, newPath))
        changeBacklink(writes.stores, target, oldPath, newPath);
}

} // namespace

void tm_adjustLinksAndBacklinksAfterRenameFrom(const QString &newPath, const QString &oldPath)
{
    if (itemExists(oldPath) && oldPath.compare(newPath, Qt::CaseInsensitive) != 0)
        return logLine(QStringLiteral("not changing links & backlinks because old path still exists\n%1\n%2")
                           .arg(oldPath, newPath));
    queueMove({oldPath, newPath, false}, [newPath, oldPath] { adjustAfterRename(newPath, oldPath); });
}

void tm_askToAdjustLinksAndBacklinksAfterRenameFrom(const QString &newPath, const QString &oldPath)
{
    const qsizetype referrers = backlinksOf(newPath).size();
    if (referrers == 0 && tm_arrayOfAllReferencesInDocument(newPath).isEmpty()) return;
    const QString count = referrers == 1 ? localized(TOMELET_TEXT("One document is linking to this document."))
                                         : localized(TOMELET_TEXT("%lu documents are linking to this document."))
                                               .replace(QLatin1String("%lu"), QString::number(referrers));
    const int answer = askQuestion({localized(TOMELET_TEXT("Update Links")),
                                    count + u'\n' + localized(TOMELET_TEXT("Do you want to update the links?")),
                                    {localized(TOMELET_TEXT("Update")), localized(TOMELET_TEXT("Do not Update")),
                                     localized(TOMELET_TEXT("Cancel"))}});
    if (answer == 0) tm_adjustLinksAndBacklinksAfterRenameFrom(newPath, oldPath);
    if (answer == 1) tm_removeBacklinks(newPath);
}

// -- a book -----------------------------------------------------------------------------------------------------------

namespace {

/// The move of a book, with its paths full.
struct BookMove
{
    QString root;
    QString from;
    QString to;

    [[nodiscard]] bool covers(const QString &path) const { return path == from || path.startsWith(from + u'/'); }
    [[nodiscard]] QString moved(const QString &path) const { return covers(path) ? to + path.mid(from.size()) : path; }
    [[nodiscard]] QString former(const QString &path) const
    {
        return path == to || path.startsWith(to + u'/') ? from + path.mid(to.size()) : path;
    }
};

/// What one walk below a folder found of use for links.
struct LinkedItems
{
    QStringList documents;  ///< that can hold references
    QStringList referenced; ///< that others refer to, and that have moved
};

LinkedItems findLinkedItems(const QString &folder, const BookMove &move)
{
    LinkedItems found;
    walkLinkedItems(folder, [&](const QString &path, bool isBook) {
        const QString stored = storedProperties(path).value(referencedKey).toString();
        // What lies in the moved book may bear its new path already, if the work was broken off once.
        const bool hasMoved = stored != tm_normalizedPath(path, move.root) || move.former(path) != path;
        if (!stored.isEmpty() && hasMoved) found.referenced.append(path);
        if (!isBook && canHoldReferences(path)) found.documents.append(path);
        return true;
    });
    return found;
}

// The documents that refer to an item of the moved book, wherever they now are.
void followReferrers(MoveWrites &writes, const QString &item, const BookMove &move)
{
    const QString former = move.former(item);
    QStringList referrers;
    for (const QString &backlink : backlinksOf(item)) {
        const QString before = fullPathOf(backlink, move.root);
        const QString referrer = move.moved(before);
        if (move.covers(before)) writes.renameLinks(referrer, move.from, move.to);
        else if (!itemExists(former)) writes.renameLinks(referrer, former, item);
        if (itemExists(referrer)) referrers.append(tm_normalizedPath(referrer, move.root));
    }
    referrers.removeDuplicates();
    writes.stores.change(propertyFileOf(item),
                         [referrers, path = tm_normalizedPath(item, move.root)](auto &properties) {
                             if (referrers.isEmpty())
                                 return properties.remove(backlinksKey) + properties.remove(referencedKey) > 0;
                             properties.insert(backlinksKey, QVariantList(referrers.begin(), referrers.end()));
                             properties.insert(referencedKey, path);
                             return true;
                         });
}

void followReferences(MoveWrites &writes, const QString &document, const BookMove &move)
{
    const QString former = move.former(document);
    if (former == document) return;
    const bool formerIsGone = !itemExists(former);
    const QString text = writes.renameLinks(document, former, document);
    for (const QString &target : verifiedReferencesInText(text, document)) {
        if (formerIsGone) changeBacklink(writes.stores, target, former, document);
        else addBacklinks(writes.stores, target, {document});
    }
}

void renameAllLinks(const QString &folder, const BookMove &move)
{
    const LinkedItems found = findLinkedItems(folder, move);
    MoveWrites writes;
    for (const QString &item : found.referenced) followReferrers(writes, item, move);
    writes.stores.flush();
    for (const QString &document : found.documents) followReferences(writes, document, move);
}

} // namespace

void tm_renameAllLinksFrom(const QString &folder, const QString &oldPath, const QString &newPath)
{
    queueMove({oldPath, newPath, true},
              [folder, move = BookMove{tomeletRoot(), oldPath, newPath}] { renameAllLinks(folder, move); });
}

void finishAbandonedMoves()
{
    for (const MoveInWork &move : takeAbandonedMoves()) {
        // Something else stands at the old place by now: what refers to it can no longer be told.
        if (!itemExists(move.to) || itemExists(move.from)) continue;
        logLine(QStringLiteral("finishing the move of %1 to %2").arg(move.from, move.to));
        if (move.allBelow) tm_renameAllLinksFrom(tomeletRoot(), move.from, move.to);
        else tm_adjustLinksAndBacklinksAfterRenameFrom(move.to, move.from);
    }
}

} // namespace tomelet
