// SPDX-License-Identifier: GPL-3.0-or-later
// New documents: what they are called, which kind they are, and what is noted about them at their first save.
#pragma once

#include <QString>

namespace tomelet {

struct NewDocument
{
    QString book;      ///< full path of the book
    QString extension; ///< "" for the one that the settings tell
    QString title;     ///< "" for the first line of the text
    QString text;
};

/// A document without a file yet: where it goes.
struct NewFile
{
    QString path;                    ///< free
    bool isCombinedMarkdown = false; ///< Markdown that is stored as a page, by the settings
};
/// Named after the first line of the title, or else by the time.
[[nodiscard]] NewFile newFileFor(const QString &book, const QString &extension, const QString &title);
/// What is noted about the file once it is written, or could not be.
void noteNewFile(const NewFile &file);
void logUnsavedFile(const NewFile &file, const QString &content);

/// Writes the document under a free name and notes its creation, its contexts and that it was used last. A formatted
/// document (extension "html") takes the text as its body and is named after what is visible of it. Gives the path;
/// "" for an empty text and when nothing could be written.
[[nodiscard]] QString saveNewDocument(const NewDocument &document);
/// The extension that a new plain document gets by the settings.
[[nodiscard]] QString extensionOfNewDocuments();

} // namespace tomelet
