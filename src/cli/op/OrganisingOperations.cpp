// SPDX-License-Identifier: GPL-3.0-or-later
// The operations on what organises the library, one line each.
#include "cli/op/Registry.h"

#include "organising/Contexts.h"
#include "organising/DocumentList.h"

namespace tomelet::cli {

static void addContexts(Registry &add)
{
    add.text("tm_extractTagsFromString", "text", tm_extractTagsFromString);
    add.text("tm_tagIsManagedAutomatically", "word", [](const QString &word) {
        return !word.isEmpty() && tm_tagIsManagedAutomatically(word);
    });
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

void addOrganisingOperations(Registry &add)
{
    addContexts(add);
    add.path("getDocumentsInFolder", "book", [](const QString &book) {
        TMLTDocumentListViewController list;
        list.setSource({book, 0, {}});
        list.getDocumentsInFolder();
        return QVariantList(list.documentsList.begin(), list.documentsList.end());
    });
}

} // namespace tomelet::cli
