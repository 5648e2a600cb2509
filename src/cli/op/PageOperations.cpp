// SPDX-License-Identifier: GPL-3.0-or-later
// The operations between texts, Markdown and pages, one line each.
#include "cli/Items.h"
#include "cli/op/Registry.h"

#include "conversion/CodeRanges.h"
#include "conversion/CriticMarkup.h"
#include "conversion/Discount.h"
#include "conversion/EmbeddedStyle.h"
#include "conversion/FontFaces.h"
#include "conversion/HtmlToMarkdown.h"
#include "conversion/MarkdownPreparation.h"
#include "conversion/MarkdownToHtml.h"
#include "conversion/PageReferences.h"
#include "conversion/Preview.h"
#include "conversion/StyleSheets.h"
#include "conversion/TextUtilities.h"
#include "conversion/WikiLinks.h"
#include "foundation/Folder.h"
#include "import/Mail.h"
#include "import/MailText.h"
#include "import/MindMap.h"
#include "import/Opml.h"
#include "import/WebArchive.h"

namespace tomelet::cli {

namespace {

// A receiver that is an item or a text: an item where one stands there.
QString itemOrText(const QString &receiver)
{
    if (receiver.contains(u'\n') || receiver.size() > 4096 || receiver.isEmpty()) return receiver;
    const QString path = itemPath(receiver);
    return itemExists(path) && !isFolder(path) ? path : receiver;
}

QVariant rangesOfCode(const QString &text)
{
    QVariantList ranges;
    for (const Range &range : tm_rangesOfFencedCodeBlocks(text)) ranges.append(textOfRange(range));
    return ranges;
}

bool listHoldsRange(const QVariantList &list, Range range)
{
    QList<Range> ranges;
    for (const QVariant &entry : list) ranges.append(fromVariant<Range>(entry));
    return tm_textCheckingResultsIntersectResult(ranges, range);
}

} // namespace

void addPageOperations(Registry &add)
{
    add.text("tm_stringPreparedForConversionWith", "text, converter", tm_stringPreparedForConversionWith);
    add.text("tm_makeEveryNewlineaLinebreak", "text", tm_makeEveryNewlineaLinebreak);
    add.text("tm_rangesOfFencedCodeBlocks", "text", rangesOfCode);
    add.value("tm_textCheckingResultsIntersectResult", "ranges, match", listHoldsRange);
    add.text("tm_makeWikiLinksMarkdownLinks", "text", tm_makeWikiLinksMarkdownLinks);
    add.text("tm_markdownToHTML", "pathOrText",
             [](const QString &text) { return tm_markdownToHTML(itemOrText(text)); });
    add.text("tm_ownMarkdownWithPath", "text, path",
             [](const QString &text, const QString &path) { return tm_ownMarkdownWithPath(text, itemPath(path)); });
    add.text("tm_markdownWithPandoc", "text, titleBlock, andTOC", tm_markdownWithPandoc);
    add.text("tm_createFormattedDocWithBody", "pathOrText, body", [](const QString &text, const QString &body) {
        return tm_createFormattedDocWithBody(itemOrText(text), body);
    });
    add.text("tm_removeParagraphsNestedInCustomClasses", "html", tm_removeParagraphsNestedInCustomClasses);
    add.text("tm_makeTMLinksRelativeTo", "html, folder", tm_makeTMLinksRelativeTo);
    add.text("tm_makeReferencesAbsoluteToTMRoot", "html, path", tm_makeReferencesAbsoluteToTMRoot);
    add.path("tm_applicableStyleSheet", "path", tm_applicableStyleSheet);
    add.path("tm_inheritedStyleSheet", "path", tm_inheritedStyleSheet);
    add.text("tm_styleSheetWithResolvedIncludes", "sheet", tm_styleSheetWithResolvedIncludes);
    add.text("tm_customClassesInStylesheet", "sheet", tm_customClassesInStylesheet);
    add.plain("availableStyleSheets", "", availableStyleSheets);
    add.text("tm_formattedDocAdjustedToColorTheme", "page", tm_formattedDocAdjustedToColorTheme);
    add.text("tm_formattedDocAdjustedToDarkTheme", "page", tm_formattedDocAdjustedToDarkTheme);
    add.text("tm_formattedDocAdjustedToSolarizedTheme", "page", tm_formattedDocAdjustedToSolarizedTheme);
    add.text("tm_markdownifyHTML", "html", tm_markdownifyHTML);
    add.text("tm_htmlWithoutInlineStyles", "html", tm_htmlWithoutInlineStyles);
    add.text("tm_htmlToPlainText", "html", tm_htmlToPlainText);
    add.text("tm_htmlToPlainQuick", "html", tm_htmlToPlainQuick);
    add.text("tm_convertMarkdownToPlainText", "text", tm_convertMarkdownToPlainText);
    add.text("tm_stripMarkdownFromHTML", "page", tm_stripMarkdownFromHTML);
    add.text("tm_stringByRemovingComments", "text", tm_stringByRemovingComments);
    add.text("tm_stringByReplacingHTMLEntities", "text", tm_stringByReplacingHTMLEntities);
    add.text("tm_wordCount", "text", tm_wordCount);
    add.text("tm_formattedWordCount", "text", tm_formattedWordCount);
    add.text("tm_firstLineOfText", "text", tm_firstLineOfText);
    add.text("tm_stringMatchesFirstLineOfText", "name, text", tm_stringMatchesFirstLineOfText);
    add.text("tm_getInnerHTML", "html", tm_getInnerHTML);
    add.text("tm_getTitleFromHTML", "html", tm_getTitleFromHTML);
    add.text("tm_getArticleFromHTML", "html", tm_getArticleFromHTML);
    add.text("tm_fontsToIncludeForFace", "face, forEpub", tm_fontsToIncludeForFace);
    add.text("tm_removeGeneratorTomelet", "text", tm_removeGeneratorTomelet);
    add.path("tm_applyCurrentStyle", "path", tm_applyCurrentStyle);
    add.path("tm_updateEmbeddedStylesheet", "path", tm_updateEmbeddedStylesheet);
    add.path("tm_previewOfNoteWithTitle", "path, title", tm_previewOfNoteWithTitle);
    add.text("tm_emlToHTML", "message", tm_emlToHTML);
    add.path("tm_webarchiveToHTML", "path", tm_webarchiveToHTML);
    add.path("tm_saveWebarchiveAsHTML", "path", tm_saveWebarchiveAsHTML);
    add.path("tm_pathToPreviewOfITMZ", "path", tm_pathToPreviewOfITMZ);
    add.text("tm_OPMLToHTML", "outline", tm_OPMLToHTML);
    add.text("stringWithEncodedWordsString", "text", stringWithEncodedWordsString);
    add.text("stringWithQuotedPrintableString", "text", stringWithQuotedPrintableString);
    add.text("stringWithBase64Encoding", "text", stringWithBase64Encoding);
    add.text("convertToHTML", "text", convertToHTML);
    add.text("wrapTextInHTML", "fragment", wrapTextInHTML);
    add.text("acceptCriticMarkup", "text", acceptCriticMarkup);
}

} // namespace tomelet::cli
