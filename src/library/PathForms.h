// SPDX-License-Identifier: GPL-3.0-or-later
// Paths as texts in other forms: anchors, percent-encoding, relative paths, and names for new files.
#pragma once

#include <QString>

namespace tomelet {

/// What follows the last "#" of the last component: "Intro" for "Book/Doc.md#Intro". "" when there is none, and for
/// every path with a recognised extension: "C#.md" is a name.
[[nodiscard]] QString tm_pathAnchor(const QString &path);
[[nodiscard]] QString tm_pathWithoutAnchor(const QString &path);
/// Path, "#" and anchor; the path as it is for an empty anchor.
[[nodiscard]] QString tm_pathByAppendingAnchor(const QString &path, const QString &anchor);

/// Percent-encodes all but what RFC 3986 allows in a path; "/" stays.
[[nodiscard]] QString percentEncodedPath(const QString &text);
/// Undoes percent-encoding; a text whose bytes are no UTF-8 afterwards, or with a broken escape, comes back as it is.
[[nodiscard]] QString percentDecoded(const QString &text);
/// The scheme in front of ":" by RFC 3986 ("http"), or "" when the text is no valid URL or has none.
[[nodiscard]] QString urlScheme(const QString &text);
/// The target of a Markdown link: encoded where it is a path, always with "(" and ")" encoded.
[[nodiscard]] QString tm_pathEscapedForMarkdownLink(const QString &path);

/// The target (full, normalised or as a tomelet URL) as seen from a folder: "../Other/b.md", "./" for the folder.
/// A target that exists only in its percent-decoded form stays encoded.
[[nodiscard]] QString tm_makeRelativeToPath(const QString &target, const QString &folder);

/// A name that every file system takes: / \ : ? * < > " | & become "-", runs of "-" one, ends are trimmed.
[[nodiscard]] QString tm_escapeIllegalCharacters(const QString &name);
/// The stem, cut so that it makes a name of at most 255 bytes with the tail and that of its property file behind it.
[[nodiscard]] QString stemThatFits(const QString &stem, const QString &tail);
/// The name that a new file of that name gets where no other is in its way; with a number behind its stem above 0.
[[nodiscard]] QString safeFileName(const QString &name, qulonglong number = 0);
/// A free path in the folder for a file of that name: "a.md", else "a 1.md", "a 2.md" and so on. A stem that would
/// make the name longer than 255 bytes is cut.
[[nodiscard]] QString tm_uniqueNameForFileatPath(const QString &name, const QString &folder);
/// A backslash before every character that is not a letter.
[[nodiscard]] QString tm_stringByEscapingWildcards(const QString &text);

} // namespace tomelet
