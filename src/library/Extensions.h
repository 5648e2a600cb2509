// SPDX-License-Identifier: GPL-3.0-or-later
// What an extension says about an item: plain text, Markdown, picture, package, and the media type.
// Extensions are given without the point; comparisons are on their lower-case form.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

[[nodiscard]] const QStringList &recognisedExtensions();
[[nodiscard]] const QStringList &markdownExtensions();
[[nodiscard]] const QStringList &imageExtensions();
/// Folders with one of these are documents.
[[nodiscard]] const QStringList &packageExtensions();
/// The built-in list of plain text extensions alone.
[[nodiscard]] const QStringList &builtInPlainTextExtensions();
/// The built-in list and the library's own additions, which are read from their file at each call.
[[nodiscard]] QStringList plainTextExtensions();
/// The library's additions: the words of `CustomPlainTextExtensions.txt`, each once.
[[nodiscard]] QStringList customPlainTextExtensions();

/// The lower-case extension of a path.
[[nodiscard]] QString lowerExtension(const QString &path);
[[nodiscard]] bool hasMarkdownExtension(const QString &path);
[[nodiscard]] bool hasPlainTextExtension(const QString &path);
[[nodiscard]] bool hasImageExtension(const QString &path);
[[nodiscard]] bool hasPackageExtension(const QString &path);

/// The media type of an extension; "text/html" for what is unknown.
[[nodiscard]] QString tm_mimeTypeForExtension(const QString &extension);
/// The extension of a media type; "txt" for what is unknown.
[[nodiscard]] QString tm_extensionForMimeType(const QString &type);

} // namespace tomelet
