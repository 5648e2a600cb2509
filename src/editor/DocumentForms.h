// SPDX-License-Identifier: GPL-3.0-or-later
// The forms that a document has on disk, apart from its text: encodings, formatted pages, Markdown inside of a page.
#pragma once

#include "foundation/TextCodec.h"

#include <QByteArray>
#include <QString>

namespace tomelet {

/// How the bytes of a document were read, and are to be written.
struct TextForm
{
    TextEncoding encoding = TextEncoding::Utf8;
    QByteArray byteOrderMark;
};

/// "Note" for "/Book/Note.md": what a document that is named after its first line bears of it.
[[nodiscard]] QString nameWithoutExtension(const QString &path);

/// The title with the extension of the path.
[[nodiscard]] QString fileNameFor(const QString &title, const QString &path);

/// The document is called "Title", or "Title 2" where that name was taken, after the first line of the text.
[[nodiscard]] bool nameFitsTitle(const QString &path, const QString &text);

/// The bytes of a text. Where the encoding has no place for a character the form becomes UTF-8; half of a surrogate
/// pair, which has no bytes anywhere, becomes U+FFFD.
[[nodiscard]] QByteArray bytesOfText(const QString &text, TextForm &form);
/// Writes the text in the encoding of that number, through the safe writer: attributes and mode of a file that stands
/// there are kept. False, and nothing written, when the encoding has no place for a character or the disk refuses.
bool tm_writeToFile(const QString &text, const QString &path, bool atomically, TextEncoding encoding);
/// MD5 in upper-case hexadecimal digits of the text in its encoding.
[[nodiscard]] QString md5OfText(const QString &text, const TextForm &form);
[[nodiscard]] QString md5OfBytes(const QByteArray &bytes);

/// The page was written by this program.
[[nodiscard]] bool tm_generatorIsTomelet(const QString &page);
/// An `.html` file that is Markdown with its page; the property `Markdown` tells.
[[nodiscard]] bool isCombinedMarkdown(const QString &path);
/// Markdown as such a file holds it: the source as a comment, then its page.
[[nodiscard]] QString combinedForm(const QString &source);

/// What an editable page gives back, without what editing leaves behind: empty lists, headings, links and divisions.
[[nodiscard]] QString cleanedBody(const QString &html);

/// The position of the paragraph of a text that says the same as the one given, whatever marks either bears: between a
/// source and its page. -1 when there is none.
[[nodiscard]] qsizetype positionOfParagraph(const QString &text, const QString &paragraph);
/// The position of the Markdown heading that an anchor means, compared by letters and digits; -1 when there is none.
[[nodiscard]] qsizetype positionOfHeading(const QString &text, const QString &anchor);

} // namespace tomelet
