// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/LineEditing.h"

#include "editor/ListEditing.h"
#include "foundation/Collation.h"

#include <QStringList>

#include <algorithm>

namespace tomelet {

namespace {

struct Lines
{
    QStringList contents;
    QStringList ends; ///< of the same number
};

Lines linesOf(const QString &text)
{
    Lines lines;
    for (qsizetype start = 0; start < text.size();) {
        const Range line = paragraphRange(text, {start, 0});
        const Range content = withoutLineEnd(text, line);
        lines.contents += substring(text, content);
        lines.ends += text.mid(content.end(), line.end() - content.end());
        start = line.end();
    }
    return lines;
}

void sortLines(QStringList &lines, const EditorSettings &settings)
{
    const auto key = [&](const QString &line) { return settings.sortLinesCaseSensitive ? line : line.toCaseFolded(); };
    std::ranges::stable_sort(lines,
                             [&](const QString &a, const QString &b) { return localizedCompare(key(a), key(b)) < 0; });
    if (settings.sortLinesDescending) std::ranges::reverse(lines);
}

// Two neighbouring blocks of lines change places; each place keeps its line end. `offset` is what the selection moves
// by, given the length of the upper block as it comes to stand.
template <typename Offset>
bool swapLines(EditedText &edited, Range upper, Range lower, Offset offset)
{
    const Range selection = edited.selection();
    const auto first = firstNumberOfList(edited.text(), upper);
    const Range upperContent = withoutLineEnd(edited.text(), upper);
    const Range lowerContent = withoutLineEnd(edited.text(), lower);
    const QString between = edited.part({upperContent.end(), upper.end() - upperContent.end()});
    edited.tm_replaceCharactersInRange({upper.location, lowerContent.end() - upper.location},
                                       edited.part(lowerContent) + between + edited.part(upperContent));
    edited.select({selection.location + offset(lowerContent.length + between.size()), selection.length});
    // A list whose first item has moved begins with the number that it began with before.
    if (first) updateNumberedListAtRange(edited, {upper.location, 0}, std::max(1LL, *first));
    (void)tm_updateNumberedList(edited); // over an empty line the item came into another list
    return true;
}

} // namespace

bool tm_sortSelectionbyAlphabet(EditedText &edited, const EditorSettings &settings)
{
    const Range selection = edited.selection();
    const Range range = paragraphRange(edited.text(), selection);
    Lines lines = linesOf(edited.part(range));
    sortLines(lines.contents, settings);
    QString sorted;
    for (qsizetype i = 0; i < lines.contents.size(); ++i) sorted += lines.contents[i] + lines.ends[i];
    if (sorted == edited.part(range)) return false;
    edited.tm_replaceCharactersInRange(range, sorted);
    edited.select(selection);
    return true;
}

bool tm_moveLineDown(EditedText &edited)
{
    const Range block = paragraphRange(edited.text(), edited.selection());
    if (block.end() >= edited.text().size()) return false;
    const Range behind = paragraphRange(edited.text(), {block.end(), 0});
    return swapLines(edited, block, behind, [](qsizetype upperLength) { return upperLength; });
}

bool tm_moveLineUp(EditedText &edited)
{
    const Range block = paragraphRange(edited.text(), edited.selection());
    // Behind the last line end there is no line that could move.
    if (block.location == 0 || block.length == 0) return false;
    const Range above = paragraphRange(edited.text(), {block.location - 1, 0});
    return swapLines(edited, above, block, [&](qsizetype) { return -above.length; });
}

} // namespace tomelet
