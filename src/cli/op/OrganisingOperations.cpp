// SPDX-License-Identifier: GPL-3.0-or-later
// The operations on what organises the library, one line each.
#include "cli/Items.h"
#include "cli/UrlShell.h"
#include "cli/op/Registry.h"

#include "library/Root.h"
#include "organising/contexts/Contexts.h"
#include "organising/links/Backlinks.h"
#include "organising/links/DocumentReferences.h"
#include "organising/links/LinkRewriting.h"
#include "organising/links/LinkWalks.h"
#include "organising/links/LostTarget.h"
#include "organising/lists/DocumentList.h"
#include "organising/search/Query.h"
#include "organising/search/SearchIndex.h"
#include "organising/search/SearchResults.h"

namespace tomelet::cli {

static void addContexts(Registry &add)
{
    add.text("tm_extractTagsFromString", "text", tm_extractTagsFromString);
    add.text("tm_tagIsManagedAutomatically", "word",
             [](const QString &word) { return !word.isEmpty() && tm_tagIsManagedAutomatically(word); });
    add.text("tm_assignClassToContextTags", "html, tags", tm_assignClassToContextTags);
    add.plain("tm_unfilteredListOfAllTags", "", tm_unfilteredListOfAllTags);
    add.text("tm_unfilteredListOfAllTags", "receiver", [](const QString &) { return tm_unfilteredListOfAllTags(); });
    add.plain("tm_listOfAllAvailableTags", "", tm_listOfAllAvailableTags);
    add.text("tm_listOfAllAvailableTags", "receiver", [](const QString &) { return tm_listOfAllAvailableTags(); });
    add.value("tm_mergeTagListWithList", "list, other", tm_mergeTagListWithList);
    add.text("tm_listOfAllItemsForTag", "word", tm_listOfAllItemsForTag);
    add.text("tm_numberOfItemsForTag", "word", tm_numberOfItemsForTag);
    add.text("tm_renameTagTo", "word, newWord",
             [](const QString &word, const QString &newWord) { tm_renameTagTo(word, newWord); });
    add.text("tm_renameTagTo", "word, newWord, renameSilently", tm_renameTagTo);
    add.text("tm_excludeTag", "word", tm_excludeTag);
    add.path("tm_verifiedTagList", "path", tm_verifiedTagList);
    add.path("tm_setTag", "path, word", tm_setTag);
    add.path("tm_clearTag", "path, word", tm_clearTag);
    add.path("tm_clearAllTags", "path", tm_clearAllTags);
    add.path("tm_updateContextsRemoving", "path, removing, adding", tm_updateContextsRemoving);
    add.path("tm_collectTagsFromText", "path, text", tm_collectTagsFromText);
    add.path("tm_collectTagsInPlist", "path", tm_collectTagsInPlist);
    add.path("tm_changePathInTagDBToPath", "path, target", tm_changePathInTagDBToPath);
    add.plain("collectNewContexts", "", [] { collectNewContexts(); });
    add.plain("tm_refreshContexts", "", [] { tm_refreshContexts(); });
}

static QVariantList referencesOf(const QString &document, bool includingRanges)
{
    QVariantList found;
    if (!includingRanges)
        for (const QString &path : tm_arrayOfAllReferencesInDocument(document)) found.append(path);
    else
        for (const Reference &reference : referencesInDocument(document))
            found.append(QVariantMap{{QStringLiteral("path"), reference.path},
                                     {QStringLiteral("range"), textOfRange(reference.range)}});
    return found;
}

static void addLinks(Registry &add)
{
    add.text("tm_isTomeletURLSchemeAction", "url", tm_isTomeletURLSchemeAction);
    add.text("handleTomeletURL", "url", [](const QString &url) { (void)carryOut(url); });
    add.path("tm_arrayOfAllReferencesInDocument", "path", tm_arrayOfAllReferencesInDocument);
    add.path("tm_arrayOfAllReferencesInDocumentIncludingRanges", "path, includingRanges", referencesOf);
    add.path("tm_verifiedArrayOfReferencedDocuments", "path", tm_verifiedArrayOfReferencedDocuments);
    add.path("tm_addBacklink", "path, referrer", tm_addBacklink);
    add.path("tm_changeBacklinkFrom", "path, oldReferrer, newReferrer", tm_changeBacklinkFrom);
    add.path("tm_removeBacklinks", "path", tm_removeBacklinks);
    add.path("tm_refreshBacklinksForReferencedDocuments", "path", tm_refreshBacklinksForReferencedDocuments);
    add.path("tm_repairBrokenBacklink", "path", tm_repairBrokenBacklink);
    add.path("tm_renameLinksInDocumentFrom", "path, oldPath, newPath", tm_renameLinksInDocumentFrom);
    add.path("tm_adjustLinksAndBacklinksAfterRenameFrom", "path, oldPath", tm_adjustLinksAndBacklinksAfterRenameFrom);
    add.path("tm_renameAllLinksFrom", "path, oldPath, newPath", tm_renameAllLinksFrom);
    add.path("tm_refreshAllBacklinksStartingAtReferenceDate", "path, sinceReferenceDate",
             [](const QString &path, bool since) {
                 return tm_refreshAllBacklinksStartingAtReferenceDate(path, since).message();
             });
    add.path("tm_findBrokenBacklinksSilently", "path, silently, repair, remove",
             [](const QString &path, bool, bool repair, bool remove) {
                 return tm_findBrokenBacklinks(path, remove   ? BacklinkCheck::Remove
                                                     : repair ? BacklinkCheck::Repair
                                                              : BacklinkCheck::Find)
                     .message();
             });
    add.path("tm_askToAdjustLinksAndBacklinksAfterRenameFrom", "path, oldPath",
             tm_askToAdjustLinksAndBacklinksAfterRenameFrom);
    // The second argument stands for the window to ask in: null for none.
    add.path("tm_findAlternativePathExcluding", "path, excluding", tm_findAlternativePathExcluding);
    add.path("tm_findAlternativePathExcluding", "path, excluding, window, backLink",
             [](const QString &path, const QStringList &excluding, const QVariant &window, const QString &backLink) {
                 return window.isNull() ? tm_findAlternativePathExcluding(path, excluding)
                                        : tm_findAlternativePathExcludingOrPrompt(path, excluding, backLink);
             });
}

// The hits of a search as the field starts it, with its mode and scope out of the settings; they become the results.
static QStringList searchFor(const QString &text, const QString &book)
{
    const SearchQuery query = makeSearchQuery(tm_arrayOfSearchTermsInString(text), searchModeOfSettings());
    const QString root = tomeletRoot();
    const QString scope = searchScope(itemPath(book));
    SearchIndex index(root, searchIndexFile());
    const auto hits = index.update(root).complete ? index.find(query, scope) : std::nullopt;
    return storeSearchResults(hits ? *hits : searchByWalk(root, query, scope));
}

static void addSearch(Registry &add)
{
    add.text("tm_arrayOfSearchTermsInString", "text", tm_arrayOfSearchTermsInString);
    add.text("startSpotlightSearchWithString", "text", [](const QString &text) { return searchFor(text, {}); });
    add.text("startSpotlightSearchWithString", "text, book", searchFor);
}

void addOrganisingOperations(Registry &add)
{
    addContexts(add);
    addLinks(add);
    addSearch(add);
    const auto listOf = [](const QString &book) {
        TMLTDocumentListViewController list;
        list.setSource({book, 0, {}});
        list.getDocumentsInFolder();
        return list;
    };
    add.path("getDocumentsInFolder", "book", [listOf](const QString &book) {
        const QList<QVariantMap> rows = listOf(book).documentsList;
        return QVariantList(rows.begin(), rows.end());
    });
    add.path("selectSortOrder", "book, index",
             [listOf](const QString &book, int index) { listOf(book).selectSortOrder(index); });
    add.path("updateEmptyBookIndicatorText", "book",
             [listOf](const QString &book) { return listOf(book).emptyText(); });
}

} // namespace tomelet::cli
