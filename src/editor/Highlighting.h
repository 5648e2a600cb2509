// SPDX-License-Identifier: GPL-3.0-or-later
// What Markdown means in a plain text, as ranges with marks. One ordered table of patterns runs over a range of the
// text; each row lays its marks over those of the rows before it. Positions are UTF-16 units.
#pragma once

#include "editor/HighlightRows.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace tomelet {

/// Longer lines are not for reading: a view leaves them without marks, which would be laid out anew at each key.
inline constexpr qsizetype longestStyledLine = 50000;

/// What decides which rows run.
struct HighlightOptions
{
    QString extension; ///< of the document, in lower case
    bool isCombinedMarkdown = false;
    bool highlightMarkdown = true;
    bool contexts = false;
    QString contextMarkers;
    QStringList excludedContexts;
    bool ignoreCommentsForWordCount = false;
    bool autoIndentLists = false;
    QString markTaskWithCharacter;
};

/// By the settings as they stand, for a document with that extension.
[[nodiscard]] HighlightOptions highlightOptions(const QString &extension);
/// The same for a document on disk, with the setting `HighlightMarkdown`.
[[nodiscard]] HighlightOptions highlightOptionsForItem(const QString &path);

/// A match: a range of the text that a row of the table marks.
struct Highlight
{
    Range range;
    int row = 0;
    friend bool operator==(const Highlight &, const Highlight &) = default;
};

/// A part of a match with what is to be laid over it.
struct StyledRange
{
    Range range;
    HighlightStyle style;
};

/// All matches in the range, in the order in which they are laid. The patterns see the range alone. A range outside of
/// the text leaves a log line. The cost grows with the length of the range: on a text that is made to be slow a row
/// stops early.
[[nodiscard]] std::vector<Highlight> tm_highlightStringinRange(const QString &text, Range range,
                                                               const HighlightOptions &options);
/// The same as what a view lays over its text.
[[nodiscard]] std::vector<StyledRange> stylesInRange(const QString &text, Range range, const HighlightOptions &options);
/// The paragraphs around the selection, which are styled anew at each edit.
[[nodiscard]] Range tm_highlightCurrentLine(const QString &text, Range selection);

} // namespace tomelet
