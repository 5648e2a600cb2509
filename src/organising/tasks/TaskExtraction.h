// SPDX-License-Identifier: GPL-3.0-or-later
// Tasks out of the text of a document.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// How a text is cut into the texts of tasks.
enum ExtractionMode {
    ExtractWhole = 0, ///< not at all: the document itself moves into the target
    ExtractLines = 1,
    ExtractParagraphs = 2, ///< empty lines between
    ExtractByRules = 3,    ///< lines of four and more hyphens between
    ExtractMarked = 4,     ///< lines that begin with the setting `markTaskWithCharacter`
};

/// Makes a document of each task text in the book of the document's name beside it, or else in its own book;
/// marked lines without such a book go to the inbox where `extractTasksToInbox` says so. With `inNewBook`
/// that book is made, a tasklist. A text that begins with "(OK) " or "✔ " is done, with "(X) " or "✘ "
/// canceled. What was extracted before is not made again. The encoding is a number of TextEncoding. Gives the
/// paths of the new documents.
QStringList extractTasks(const QString &text, const QString &path, int mode, qlonglong encoding, bool inNewBook);
/// The same; gives the document's path.
QString tm_extractTasksToPath(const QString &text, const QString &path, int mode, qlonglong encoding, bool inNewBook);

/// The command on a document in a list: reads it in its own encoding, a formatted one as plain text, and
/// extracts its marked lines. Nothing without a marker, or where the text does not hold it.
QStringList extractMarkedTasks(const QString &path);
/// The command on the text on display asks for more: the marker must begin a line other than the first.
[[nodiscard]] bool textHasMarkedLines(const QString &text);

} // namespace tomelet
