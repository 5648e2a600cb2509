// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/contexts/Contexts.h"

#include "conversion/Patterns.h"
#include "conversion/TextUtilities.h"
#include "foundation/Clock.h"
#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"
#include "library/Properties.h"
#include "library/TextFile.h"
#include "organising/contexts/ContextStores.h"
#include "organising/links/Backlinks.h"
#include "organising/links/DocumentReferences.h"
#include "organising/links/LinkWalks.h"

#include <QFileInfo>

#include <algorithm>

namespace tomelet {

namespace {

const QString tagsKey = QStringLiteral("Tags");

QStringList tagsOf(const QString &path)
{
    QStringList tags = tm_propertyForKey(path, tagsKey).toStringList();
    tags.removeDuplicates();
    return tags;
}

void storeTags(const QString &path, const QStringList &tags)
{
    if (tags.isEmpty()) tm_removePropertyForKey(path, tagsKey);
    else tm_setProperty(path, QVariantList(tags.begin(), tags.end()), tagsKey);
}

bool holds(const QStringList &entry, const QString &path)
{
    return tm_localizedIndexOfObject(entry, path).has_value();
}

void removeFrom(QStringList &entry, const QString &path)
{
    if (const auto index = tm_localizedIndexOfObject(entry, path)) entry.removeAt(*index);
}

// Takes the item out of a word's entry; the word goes with its last item. True when the item was there.
bool removeItem(ContextStores &stores, const QString &word, const QString &path)
{
    const QString key = stores.keyFor(word);
    if (!stores.index.contains(key) || !holds(stores.index[key], path)) return false;
    removeFrom(stores.index[key], path);
    if (stores.index[key].isEmpty()) {
        stores.index.remove(key);
        stores.dropIfUnused(word);
    }
    return true;
}

/// Brings the stores in line with one item after the other.
class Collection
{
public:
    explicit Collection(ContextStores &stores)
        : m_stores(stores)
    {
        for (auto entry = stores.index.begin(); entry != stores.index.end(); ++entry)
            for (const QString &path : entry.value()) m_keys[localizedKey(path)].append(entry.key());
    }

    void collect(const QString &item)
    {
        const QString path = indexPathOf(item);
        const QStringList tags = tagsOf(item);
        QStringList &keys = m_keys[localizedKey(path)];
        QStringList added;
        for (const QString &word : tags) {
            if (!m_stores.list.contains(word) && word != favoriteContext) added.append(word);
            if (keys.contains(word)) continue;
            m_stores.index[word].append(path);
            keys.append(word);
        }
        for (const QString &key : QStringList(keys)) {
            const QString word = knownWord(key);
            if (word.isEmpty() || tags.contains(word)) continue;
            removeItem(m_stores, word, path);
            keys.removeAll(key);
        }
        m_stores.list += added;
    }

private:
    // The word of the list, or the mark of a favourite, that the key of the index stands for; "" for none.
    [[nodiscard]] QString knownWord(const QString &key) const
    {
        if (key == favoriteContext) return key;
        const auto index = tm_localizedIndexOfObject(m_stores.list, key);
        return index ? m_stores.list[*index] : QString();
    }

    ContextStores &m_stores;
    QHash<QByteArray, QStringList>
        m_keys; // an item's path, as the locale compares it, with the index's keys that hold it
};

} // namespace

// -- all contexts -----------------------------------------------------------------------------------------------------

QStringList tm_unfilteredListOfAllTags()
{
    const bool hadFolder = isFolder(miscFolder());
    if (makeMiscFolder() && !hadFolder) setAutocollectDate(autocollectDate());
    ContextStores stores;
    stores.list.removeDuplicates();
    stores.save();
    return stores.list;
}

QStringList tm_listOfAllAvailableTags()
{
    ContextStores stores;
    if (rootLooksUnmounted()) return stores.list;
    const QString root = tomeletRoot();
    bool removedAny = false;
    for (const QString &word : QStringList(stores.list)) {
        const QString key = stores.keyFor(word);
        if (!stores.index.contains(key)) continue;
        QStringList entry = stores.index.value(key);
        entry.removeDuplicates();
        removedAny |= entry.removeIf([&](const QString &path) { return !itemExists(fullPathOf(path, root)); }) > 0;
        if (!entry.isEmpty()) {
            stores.index.insert(key, entry);
            continue;
        }
        stores.index.remove(key);
        stores.dropIfUnused(word);
    }
    if (removedAny) stores.save();
    return stores.list;
}

void tm_mergeTagListWithList(QStringList &list, const QStringList &other)
{
    for (const QString &word : other)
        if (!tm_localizedIndexOfObject(list, word)) list.append(word);
}

QString makeNewContext()
{
    ContextStores stores;
    const QString name = localized(TOMELET_TEXT("New Context"));
    int number = 1;
    const auto word = [&] { return QString(name + u' ' + QString::number(number)); };
    while (tm_localizedIndexOfObject(stores.list, word())) ++number;
    stores.list.append(word());
    stores.save();
    notifications().post(QStringLiteral("TMLTReloadContextSmartBook"));
    return word();
}

void writeDefaultContexts()
{
    ContextStores stores;
    if (!stores.list.isEmpty()) return;
    for (const char *word : {TOMELET_TEXT("@Home"), TOMELET_TEXT("@Office"), TOMELET_TEXT("@Errands"),
                             TOMELET_TEXT("@Waiting"), TOMELET_TEXT("@Phone"), TOMELET_TEXT("@Computer")})
        stores.list.append(localized(word));
    stores.save();
    notifications().post(QStringLiteral("TMLTReloadContextSmartBook"));
}

// -- one context ------------------------------------------------------------------------------------------------------

QStringList tm_listOfAllItemsForTag(const QString &word)
{
    ContextStores stores;
    const QString key = stores.keyFor(word);
    QStringList entry = stores.index.value(key);
    entry.removeDuplicates();
    const QString root = tomeletRoot();
    QStringList items;
    QStringList kept;
    for (const QString &path : entry) {
        const QString full = fullPathOf(path, root);
        if (!itemExists(full) || !tm_localizedIndexOfObject(tagsOf(full), word)) continue;
        items.append(full);
        kept.append(path);
    }
    if (kept != stores.index.value(key) && !rootLooksUnmounted()) {
        if (kept.isEmpty()) stores.index.remove(key);
        else stores.index.insert(key, kept);
        stores.save();
    }
    return items;
}

qlonglong tm_numberOfItemsForTag(const QString &word)
{
    const QStringList items = tm_listOfAllItemsForTag(word);
    if (!settings().boolean(QStringLiteral("hideDoneTasks"))) return items.size();
    return std::ranges::count_if(items, [](const QString &path) {
        const QString icon = organiser().itemIsTask(path) ? organiser().taskRow(path, {}).icon : QString();
        return !icon.contains(u"done") && !icon.contains(u"canceled");
    });
}

// -- one item ---------------------------------------------------------------------------------------------------------

QStringList tm_verifiedTagList(const QString &path)
{
    QStringList tags = tagsOf(path);
    if (tags.isEmpty()) return tags;
    const QStringList available = tm_listOfAllAvailableTags();
    tags.removeIf([&](const QString &word) { return !available.contains(word); });
    return tags;
}

QStringList contextsOf(const QString &path)
{
    QStringList tags = tm_verifiedTagList(path);
    tags.removeAll(favoriteContext);
    return tags;
}

static void announceChange(const QString &word)
{
    notifications().post(word == favoriteContext ? QStringLiteral("BookViewShouldUpdateFavoritesNotification")
                                                 : QStringLiteral("TMLTReloadContextSmartBook"));
}

// The verified list lacks the mark of a favourite, which must not be lost on the way.
static QStringList changeableTags(const QString &path)
{
    QStringList tags = tm_verifiedTagList(path);
    if (tagsOf(path).contains(favoriteContext) && !tags.contains(favoriteContext)) tags.append(favoriteContext);
    return tags;
}

void tm_setTag(const QString &path, const QString &word)
{
    QStringList tags = changeableTags(path);
    if (!tags.contains(word)) tags.append(word);
    storeTags(path, tags);
    ContextStores stores;
    QStringList &entry = stores.index[stores.keyFor(word)];
    if (!holds(entry, indexPathOf(path))) entry.append(indexPathOf(path));
    stores.save();
    announceChange(word);
}

void tm_clearTag(const QString &path, const QString &word)
{
    QStringList tags = changeableTags(path);
    tags.removeAll(word);
    storeTags(path, tags);
    ContextStores stores;
    if (!removeItem(stores, word, indexPathOf(path))) return;
    stores.save();
    announceChange(word);
}

void tm_clearAllTags(const QString &path)
{
    const bool favorite = tagsOf(path).contains(favoriteContext);
    storeTags(path, favorite ? QStringList{favoriteContext} : QStringList());
    ContextStores stores;
    for (const QString &word : stores.index.keys())
        if (word != favoriteContext) removeItem(stores, word, indexPathOf(path));
    stores.save();
    announceContexts();
}

// False when the item has these contexts already and nothing else is to be done.
static bool changeTags(const QString &path, const QStringList &removing, const QStringList &adding)
{
    QStringList tags = tagsOf(path);
    const QSet<QString> before(tags.begin(), tags.end());
    if (before == QSet<QString>(adding.begin(), adding.end())) return false;
    tags.removeIf([&](const QString &word) { return removing.contains(word); });
    for (const QString &word : adding)
        if (!tags.contains(word)) tags.append(word);
    if (QSet<QString>(tags.begin(), tags.end()) != before) storeTags(path, tags);
    return true;
}

void tm_updateContextsRemoving(const QString &path, const QStringList &removing, const QStringList &adding)
{
    if (changeTags(path, removing, adding)) tm_collectTagsInPlist(path);
}

void tm_collectTagsFromText(const QString &path, const QString &text)
{
    const QStringList words = tm_extractTagsFromString(text);
    if (!words.isEmpty()) tm_updateContextsRemoving(path, {}, words);
}

void tm_collectTagsInPlist(const QString &path)
{
    collectTagsOf({path});
}

void collectTagsOf(const QStringList &paths)
{
    QStringList items;
    for (const QString &path : paths)
        if (const QString item = ownerOfPropertyFile(path); itemExists(item)) items.append(item);
    if (items.isEmpty()) return;
    ContextStores stores;
    Collection collection(stores);
    for (const QString &item : items) collection.collect(item);
    if (stores.save()) announceContexts();
}

// -- moves ------------------------------------------------------------------------------------------------------------

namespace {

bool countsAsBook(const QString &path, const QString &target)
{
    if (itemExists(path)) return pathIsPlainBook(path);
    if (itemExists(target)) return pathIsPlainBook(target);
    return pathExtension(path).isEmpty();
}

struct IndexMove
{
    QString from;
    QString to; ///< empty: out of the index
    bool isBook = false;
    QStringList bookTags;
};

QStringList movedEntry(QStringList entry, const QString &word, const IndexMove &move)
{
    entry.removeDuplicates();
    const auto at = tm_localizedIndexOfObject(entry, move.from);
    if (at) entry.removeAt(*at);
    if (move.isBook) {
        const QString prefix = move.from + u'/';
        if (move.to.isEmpty()) entry.removeIf([&](const QString &path) { return path.startsWith(prefix); });
        else
            for (QString &path : entry)
                if (path.startsWith(prefix)) path = move.to + path.mid(move.from.size());
    }
    const bool stays = at && !move.to.isEmpty() && (!move.isBook || move.bookTags.contains(word));
    if (stays && !entry.contains(move.to)) entry.insert(std::min(*at, entry.size()), move.to);
    return entry;
}

} // namespace

void tm_changePathInTagDBToPath(const QString &path, const QString &target)
{
    ContextStores stores;
    if (stores.index.isEmpty()) return;
    IndexMove move{
        indexPathOf(path), target.isEmpty() ? QString() : indexPathOf(target), countsAsBook(path, target), {}};
    // The property file has moved already when the move itself has.
    const QStringList tags = tagsOf(itemExists(path) || target.isEmpty() ? path : target);
    if (move.isBook) move.bookTags = tags;
    const QStringList words = move.isBook || tags.isEmpty() ? QStringList(stores.index.keys()) : tags;
    for (const QString &word : words) {
        const QString key = stores.keyFor(word);
        if (!stores.index.contains(key)) continue;
        const QStringList entry = movedEntry(stores.index.value(key), word, move);
        if (!entry.isEmpty()) {
            stores.index.insert(key, entry);
            continue;
        }
        stores.index.remove(key);
        stores.dropIfUnused(word);
    }
    if (stores.save()) announceContexts();
}

// -- the whole library ------------------------------------------------------------------------------------------------

namespace {

// Property files of documents and books below the folder that changed since the date. Links are not followed.
void findChangedPropertyFiles(const QString &folder, const QDateTime &since, QStringList &found)
{
    for (const FolderEntry &entry : listFolder(folder).value_or(std::vector<FolderEntry>())) {
        const QString path = joinPath(folder, entry.name);
        if (entry.isFolder) {
            if (!tm_itemIsTrashed(entry.name) && !QFileInfo(path).isSymLink())
                findChangedPropertyFiles(path, since, found);
        } else if (entry.name.endsWith(u".plist") && !tm_pathIsTaskPlist(path) &&
                   QFileInfo(path).lastModified() > since) {
            found.append(path);
        }
    }
}

// Another program may have moved items together with what they know of their links.
void repairMovedItems(const QStringList &plists)
{
    for (const QString &plist : plists)
        if (const QString item = ownerOfPropertyFile(plist); !item.contains(u"TMResources") && itemExists(item))
            tm_repairBrokenBacklink(item);
}

qsizetype collectSince(ContextStores &stores, const QDateTime &since, const Progress &progress)
{
    const QDateTime begin = platform().clock.now();
    QStringList plists;
    findChangedPropertyFiles(tomeletRoot(), since, plists);
    Collection collection(stores);
    qsizetype done = 0;
    for (const QString &plist : plists) {
        if (const QString item = ownerOfPropertyFile(plist); itemExists(item)) collection.collect(item);
        ++done;
        if (progress && !progress(done, plists.size())) return done;
    }
    setAutocollectDate(begin);
    if (stores.save()) announceContexts();
    if (settings().boolean(QStringLiteral("manageLinks"))) repairMovedItems(plists);
    return plists.size();
}

} // namespace

qsizetype collectNewContexts(const Progress &progress)
{
    if (rootLooksUnmounted()) return 0;
    ContextStores stores;
    return collectSince(stores, autocollectDate(), progress);
}

qsizetype tm_refreshContexts(const Progress &progress)
{
    if (rootLooksUnmounted()) return 0;
    ContextStores stores;
    const QStringList favorites = stores.index.value(favoriteContext);
    stores.index.clear();
    if (!favorites.isEmpty()) stores.index.insert(favoriteContext, favorites);
    return collectSince(stores, farPast(), progress);
}

// -- contexts out of the texts of all documents -----------------------------------------------------------------------

namespace {

// What a page of our own says to a reader: links, pictures and code hold no contexts. Other pages say nothing.
QString textOfPage(QString page)
{
    if (!page.contains(u"Generator: Tomelet")) return {};
    for (const char *pattern :
         {"<a href=.+?>", "<img .+?>", "<script .+?/script>", "<object .+?>", "<iframe .+?>", "(?s)<code>.*?</code>"})
        page = regexSweep(page, QString::fromLatin1(pattern), {}, PatternCaseInsensitive);
    return tm_htmlToPlainQuick(page);
}

} // namespace

qsizetype extractContextsFromDocuments(const Progress &progress)
{
    if (rootLooksUnmounted()) return 0;
    QStringList documents;
    walkLinkedItems(tomeletRoot(), [&](const QString &path, bool isBook) {
        if (!isBook && canHoldReferences(path)) documents.append(path);
        return true;
    });
    ContextStores stores;
    Collection collection(stores);
    qsizetype done = 0;
    for (const QString &document : documents) {
        const auto decoded = readTextFile(document);
        QString text = decoded ? decoded->text : QString();
        if (lowerExtension(document) == u"html") text = textOfPage(text);
        const QStringList words = tm_extractTagsFromString(text);
        if (!words.isEmpty() && changeTags(document, {}, words)) collection.collect(document);
        ++done;
        if (progress && !progress(done, documents.size())) break;
    }
    if (stores.save()) announceContexts();
    return done;
}

} // namespace tomelet
