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

/// Writes the document under a free name and notes its creation, its contexts and that it was used last. A formatted
/// document (extension "html") takes the text as its body and is named after what is visible of it. Gives the path;
/// "" for an empty text and when nothing could be written.
[[nodiscard]] QString saveNewDocument(const NewDocument &document);
/// The extension that a new plain document gets by the settings.
[[nodiscard]] QString extensionOfNewDocuments();

} // namespace tomelet
