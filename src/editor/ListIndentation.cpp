// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ListEditing.h"

#include "conversion/Patterns.h"

#include <algorithm>
#include <array>

namespace tomelet {

namespace {

const QString fourBlanks = QStringLiteral("    ");

// Where the tab key finds an item. Unlike for continuing a list, bare indentation is one too.
qsizetype markLength(const QString &line)
{
    static const std::array patterns{
        QStringLiteral(R"(^([ |\t]*(- \[[ |x|X]\])(?: |\t)?))"),
        QStringLiteral(R"(^([ |\t]*(\d+[\.|)])(?: |\t)+))"),
        QStringLiteral(R"(^([ |\t]*([-—+*•])*(?: |\t)+))"),
    };
    for (const QString &pattern : patterns) {
        const Range mark = rangeOfPattern(line, pattern, PatternCaseInsensitive);
        if (mark.isFound()) return mark.length;
    }
    return 0;
}

// The starts of the lines in the paragraphs.
std::vector<qsizetype> lineStarts(const QString &text, Range paragraphs)
{
    std::vector<qsizetype> starts;
    qsizetype start = paragraphs.location;
    do {
        starts.push_back(start);
        start = paragraphRange(text, {start, 0}).end();
    } while (start < paragraphs.end());
    return starts;
}

qsizetype removableIndent(QStringView line)
{
    if (line.startsWith(fourBlanks)) return fourBlanks.size();
    return line.startsWith(u'\t') ? 1 : 0;
}

bool outdentLines(EditedText &edited, const std::vector<qsizetype> &starts)
{
    const QStringView text = edited.text();
    if (removableIndent(text.sliced(starts.front())) == 0) return false;
    std::vector<Replacement> removals;
    for (const qsizetype start : starts)
        if (const qsizetype indent = removableIndent(text.sliced(start))) removals.push_back({{start, indent}, {}});
    edited.replaceAll(removals);
    return true;
}

void indentLines(EditedText &edited, const std::vector<qsizetype> &starts, const EditorSettings &settings)
{
    const Range before = edited.selection();
    const QString indent = settings.indentWithTabs ? QStringLiteral("\t") : fourBlanks;
    std::vector<Replacement> insertions;
    for (const qsizetype start : starts) insertions.push_back({{start, 0}, indent});
    edited.replaceAll(insertions);
    const qsizetype added = indent.size() * qsizetype(starts.size());
    edited.select({before.location + indent.size(), before.length + added - indent.size()});
}

} // namespace

bool tabButtonPressedForceIndent(EditedText &edited, const EditorSettings &settings, bool forceIndent, bool outdent)
{
    const Range selection = edited.selection();
    const Range paragraphs = paragraphRange(edited.text(), selection);
    const QString lines = edited.part(withoutLineEnd(edited.text(), paragraphs));
    if (lines.isEmpty()) return false;
    const qsizetype mark = markLength(lines);
    if (mark == 0 && !forceIndent) return false;

    const std::vector<qsizetype> starts = lineStarts(edited.text(), paragraphs);
    const bool caretBehindMark = selection == Range{paragraphs.location + mark, 0};
    if (outdent) {
        if (!outdentLines(edited, starts)) return false;
    } else {
        if (!forceIndent && !caretBehindMark) return false;
        indentLines(edited, starts, settings);
    }
    tm_updateNumberedList(edited);
    return true;
}

} // namespace tomelet
