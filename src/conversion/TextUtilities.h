// SPDX-License-Identifier: GPL-3.0-or-later
// Small operations on texts: plain text out of pages and Markdown, comments, entities, titles, counts.
#pragma once

#include <QString>

namespace tomelet {

/// The plain text of a formatted document (its own representation, exactly), else the string value of the page.
[[nodiscard]] QString tm_htmlToPlainText(const QString &html);
/// A text with light formatting: items begin with "- ", paragraphs and cells are kept apart.
[[nodiscard]] QString tm_htmlToPlainQuick(const QString &html);
[[nodiscard]] QString tm_convertMarkdownToPlainText(const QString &text);
/// The page without its plain representation.
[[nodiscard]] QString tm_stripMarkdownFromHTML(const QString &page);
/// Removes whole lines that begin with "//", outside code.
[[nodiscard]] QString tm_stringByRemovingComments(const QString &text);
/// A fixed list of entities, in a fixed order; other numeric ones go.
[[nodiscard]] QString tm_stringByReplacingHTMLEntities(const QString &text);

/// Words by ICU's segmentation in the current locale; ends early when the setting `stopWordCharCount` appears.
[[nodiscard]] qlonglong tm_wordCount(const QString &text);
[[nodiscard]] QString tm_formattedWordCount(const QString &text);

/// The title that a text gives its document: its first line, shortened to about 120 units, safe as a name.
[[nodiscard]] QString tm_firstLineOfText(const QString &text);
[[nodiscard]] bool tm_stringMatchesFirstLineOfText(const QString &name, const QString &text);

/// The body of a page; without one what stands behind the head, or everything. Trimmed.
[[nodiscard]] QString tm_getInnerHTML(const QString &html);
[[nodiscard]] QString tm_getTitleFromHTML(const QString &html);
/// A page cut down to its `article`, where it has one.
[[nodiscard]] QString tm_getArticleFromHTML(const QString &html);

/// The mark that a formatted document's plain text stands behind.
inline const QString plainRepresentationMark = QStringLiteral("<!-- Plain Text Representation:\n");

} // namespace tomelet
