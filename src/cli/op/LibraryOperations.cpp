// SPDX-License-Identifier: GPL-3.0-or-later
// The operations of the library's spine, one line each.
#include "cli/Items.h"
#include "cli/op/Call.h"
#include "cli/op/Registry.h"

#include "foundation/Collation.h"
#include "library/AppDelegate.h"
#include "library/Appearance.h"
#include "library/Deletion.h"
#include "library/EmbeddedPhotos.h"
#include "library/Extensions.h"
#include "library/ItemDictionary.h"
#include "library/ItemOperations.h"
#include "library/ItemPath.h"
#include "library/LocationSettings.h"
#include "library/OutlineItem.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/RecentItems.h"
#include "library/SetUp.h"
#include "library/TextFile.h"

namespace tomelet::cli {

namespace {

QVariant fontValue(const Font &font)
{
    return QVariantMap{{QStringLiteral("face"), font.face}, {QStringLiteral("size"), font.size}};
}

QStringList colorValue(const ItemColors &colors)
{
    return {colors.text, colors.imageName, colors.background, colors.trueText, colors.trueBackground};
}

QVariant partsOfColor(const QString &text)
{
    const auto color = tm_colorFromString(text);
    return color ? QVariantList(color->begin(), color->end()) : QVariant();
}

void addPaths(Registry &add)
{
    add.path("tm_pathIsBook", "path", tm_pathIsBook);
    add.path("tm_pathIsDotFile", "path", tm_pathIsDotFile);
    add.path("tm_pathIsExcludedFromDisplay", "path", tm_pathIsExcludedFromDisplay);
    add.path("tm_pathIsExcludedFromRecentlyModified", "path", tm_pathIsExcludedFromRecentlyModified);
    add.path("tm_pathIsRecentlyModified", "path", tm_pathIsRecentlyModified);
    add.path("tm_pathIsFinderIcon", "path", tm_pathIsFinderIcon);
    add.path("tm_pathIsSystemFile", "path", tm_pathIsSystemFile);
    add.path("tm_pathIsTaskPlist", "path", tm_pathIsTaskPlist);
    add.path("tm_itemIsChildOfTomelet", "path", [](const QString &path) { return tm_itemIsChildOfTomelet(path); });
    add.path("tm_itemIsTrashed", "path", tm_itemIsTrashed);
    add.path("tm_normalizedPath", "path", [](const QString &path) { return tm_normalizedPath(path); });
    add.text("tm_pathFromTomeletURLScheme", "url", tm_pathFromTomeletURLScheme);
    add.path("tm_pathAnchor", "path", tm_pathAnchor);
    add.path("tm_pathWithoutAnchor", "path", tm_pathWithoutAnchor);
    add.path("tm_pathByAppendingAnchor", "path, anchor", tm_pathByAppendingAnchor);
    add.text("tm_pathEscapedForMarkdownLink", "path", tm_pathEscapedForMarkdownLink);
    add.text("tm_makeRelativeToPath", "target, folder", tm_makeRelativeToPath);
    add.text("tm_uniqueNameForFileatPath", "name, folder", tm_uniqueNameForFileatPath);
    add.text("tm_escapeIllegalCharacters", "name", tm_escapeIllegalCharacters);
    add.text("tm_pathFormattedForDisplay", "path", tm_pathFormattedForDisplay);
    add.path("tm_pathFormattedForContextMenu", "path", [](const QString &path) {
        const MenuTitle title = tm_pathFormattedForContextMenu(path);
        return QString(title.folders + title.name);
    });
    add.path("tm_fileExistsAtPathIsDirectory", "path",
             [](const QString &path) { return tm_fileExistsAtPathIsDirectory(path).exists; });
    add.path("tm_isEmptyBook", "path", tm_isEmptyBook);
    add.path("tm_imagesFolderAtMyPath", "path", tm_imagesFolderAtMyPath);
    add.path("tm_iCloudStub", "path", tm_iCloudStub);
    add.path("tm_plistPath", "path", tm_plistPath);
    add.path("tm_hideItemInFinder", "path", tm_hideItemInFinder);
    add.path("tm_showItemInFinder", "path", tm_showItemInFinder);
    add.path("tm_embeddedURL", "path", tm_embeddedURL);
    add.text("tm_stringByEscapingWildcards", "text", tm_stringByEscapingWildcards);
    add.text("tm_mimeTypeForExtension", "extension", tm_mimeTypeForExtension);
    add.text("tm_extensionForMimeType", "type", tm_extensionForMimeType);
    add.path("tm_textEncodingOfFile", "path", tm_textEncodingOfFile);
}

void addProperties(Registry &add)
{
    add.path("tm_propertyForKey", "path, key", tm_propertyForKey);
    add.path("tm_setProperty", "path, value, key", [](const QString &path, const QVariant &value, const QString &key) {
        tm_setProperty(path, propertyFromText(key, value), key);
    });
    add.path("tm_removePropertyForKey", "path, key", tm_removePropertyForKey);
    add.path("tm_inheritedPropertyForKey", "path, key", tm_inheritedPropertyForKey);
    add.path("tm_sideCarPath", "path", tm_sideCarPath);
    add.path("tm_sideCarPathCreatingParentIfNeeded", "path", tm_sideCarPathCreatingParentIfNeeded);
    add.path("tm_creationDate", "path", tm_creationDate);
    add.path("tm_setCreationDate", "path", [](const QString &path) { tm_setCreationDate(path); });
    add.path("tm_setCreationDate", "path, date",
             [](const QString &path, const QDateTime &date) { tm_setCreationDate(path, date); });
    add.path("tm_customSequenceNrForPath", "path", tm_customSequenceNrForPath);
    add.path("tm_isPinned", "path", tm_isPinned);
    add.path("tm_pinToTop", "path", tm_pinToTop);
    add.path("tm_changeSortOrderToPath", "path, target", tm_changeSortOrderToPath);
    add.path("tm_isFavorite", "path", tm_isFavorite);
    add.path("tm_setFavorite", "path", tm_setFavorite);
    add.path("tm_clearFavorite", "path", tm_clearFavorite);
    add.path("tm_toggleFavorite", "path", tm_toggleFavorite);
    add.path("tm_setColorLabel", "path, color", tm_setColorLabel);
    add.path("tm_isProtected", "path", tm_isProtected);
    add.path("tm_fontFaceAtPath", "path", tm_fontFaceAtPath);
    add.path("tm_fontSizeAtPath", "path", tm_fontSizeAtPath);
    add.path("tm_fontForPath", "path", [](const QString &path) { return fontValue(tm_fontForPath(path)); });
    add.path("tm_linespacingAtPath", "path", tm_linespacingAtPath);
    add.path("tm_colorsAtPath", "path", [](const QString &path) { return colorValue(tm_colorsAtPath(path)); });
    add.text("tm_colorFromString", "text", partsOfColor);
    add.path("tm_markdownConverterAtPath", "path", tm_markdownConverterAtPath);
    add.path("tm_dictionaryForItemAtPath", "path", tm_dictionaryForItemAtPath);
    add.path("tm_dictionaryForItemAsTask", "path, asTask, details, sortOrder",
             [](const QString &path, bool asTask, const QVariant &details, const QVariant &order) {
                 return tm_dictionaryForItemAsTask(path, asTask, withIsoDates(details), order);
             });
    add.path(
        "tm_dictionaryForItemAsTask", "path, asTask, details, sortOrder, pinnedOrder",
        [](const QString &path, bool asTask, const QVariant &details, const QVariant &order, const QVariant &pins) {
            return tm_dictionaryForItemAsTask(path, asTask, withIsoDates(details), order, pins);
        });
    add.value("tm_sortByParameter", "rows, parameter, descending", tm_sortByParameter);
    add.value("tm_localizedIndexOfObject", "list, text", tm_localizedIndexOfObject);
    add.plain("tm_locationSpecificSettingForKey", "key", tm_locationSpecificSettingForKey);
    add.plain("tm_setLocationSpecificSetting", "value, key", tm_setLocationSpecificSetting);
    add.plain("tm_readLocationSpecificSettings", "", tm_readLocationSpecificSettings);
    add.plain("tm_writeLocationSpecificSettings", "", tm_writeLocationSpecificSettings);
}

void addItems(Registry &add)
{
    add.path("tm_moveItemToPath", "path, target", tm_moveItemToPath);
    add.path("tm_moveItemToPathAsync", "path, target", tm_moveItemToPathAsync);
    add.path("tm_copyItemToPath", "path, target", tm_copyItemToPath);
    add.path("tm_duplicateItemAtPath", "path", tm_duplicateItemAtPath);
    add.path("tm_finishDuplicateTo", "path, target", tm_finishDuplicateTo);
    add.path("tm_deleteItemAtPath", "path", tm_deleteItemAtPath);
    add.path("tm_copyEmbeddedPhotosToPath", "path, target", tm_copyEmbeddedPhotosToPath);
    add.path("tm_cleanupImagesFolder", "book", tm_cleanupImagesFolder);
    add.text("tm_setOfEmbeddedPhotos", "text", tm_setOfEmbeddedPhotos);
}

void addTree(Registry &add)
{
    add.path("tm_listOfBooksAtPath", "path", tm_listOfBooksAtPath);
    add.path("tm_sortedListOfAllItemsInHierarchy", "book", tm_sortedListOfAllItemsInHierarchy);
    add.plain("titleForSmartBookOfType", "type", TMLTOutlineItem::titleForSmartBookOfType);
}

void addStart(Registry &add)
{
    add.plain("tm_initPreferences", "", [] { tm_initPreferences(); });
    add.plain("initAppSettings", "", [] { initAppSettings(true); });
    add.plain("installDefaultDocuments", "", installDefaultDocuments);
    add.path("tm_addToRecentItems", "path", tm_addToRecentItems);
    add.plain("clearRecentItems", "", clearRecentItems);
    add.plain("verifiedListOfRecentItems", "", verifiedListOfRecentItems);
    add.text("tm_addToPreviouslySelectedHomes", "path", tm_addToPreviouslySelectedHomes);
    add.text("tm_setRootToPath", "path", [](const QString &path) {
        AppShell noWindows;
        AppDelegate(noWindows).tm_setRootToPath(path);
    });
}

} // namespace

void addLibraryOperations(Registry &add)
{
    addPaths(add);
    addProperties(add);
    addItems(add);
    addTree(add);
    addStart(add);
}

void addFoundationOperations(Registry &add)
{
    add.text("localizedCompare", "text, other", localizedCompare);
    add.text("localizedStandardCompare", "text, other", localizedStandardCompare);
}

} // namespace tomelet::cli
