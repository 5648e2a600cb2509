// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ListEditing.h"

#include "conversion/Patterns.h"
#include "foundation/Log.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace tomelet {

namespace {

struct Number
{
    Range digits; ///< in the whole text
    qsizetype indent = 0;
    qlonglong value = 0;
};

std::optional<Number> numberOf(const QString &text, Range paragraph)
{
    static const QString pattern = QStringLiteral(R"(^([ |\t]*)(\d+)([.|)][ |\t]+))");
    const PatternMatches matches = firstMatchOfPattern(text, pattern, PatternCaseInsensitive, paragraph);
    if (matches.isEmpty()) return std::nullopt;
    const Range digits = matches[0].group(2);
    if (digits.length > longestNumber) return std::nullopt;
    return Number{digits, matches[0].group(1).length, substring(text, digits).toLongLong()};
}

// A line without text; the last line counts as one while it holds a single character.
bool endsList(QStringView text, Range paragraph)
{
    const qsizetype content = withoutLineEnd(text, paragraph).length;
    return content == 0 || (content == 1 && lineEndLength(text.sliced(paragraph.location, paragraph.length)) == 0);
}

Range firstLineOfList(const QString &text, Range range)
{
    Range first = paragraphRange(text, {range.location, 0});
    while (first.location > 0) {
        const Range above = paragraphRange(text, {first.location - 1, 0});
        if (endsList(text, above)) break;
        first = above;
    }
    return first;
}

// The counts of the levels around the present line, the outermost first.
class Levels
{
public:
    explicit Levels(qlonglong first)
        : m_start(first)
    {}

    /// What the line's number is to be.
    qlonglong next(const Number &number)
    {
        enter(number.indent);
        Level &level = m_levels.back();
        if (level.count == 0) level.count = number.value;
        if (level.count == 0) level.count = 1;
        return level.count++;
    }

private:
    struct Level
    {
        qsizetype indent;
        qlonglong count;
    };

    void enter(qsizetype indent)
    {
        const qsizetype previous = std::exchange(m_indent, indent);
        if (m_levels.empty()) return m_levels.push_back({indent, m_start});
        if (indent > previous) return m_levels.push_back({indent, 1});
        while (m_levels.size() > 1 && indent < m_levels.back().indent) m_levels.pop_back();
        // Between two levels lines belong to the outer one; left of the first a line begins the list anew.
        if (indent < m_levels.back().indent) m_levels.back() = {indent, 0};
    }

    qlonglong m_start;
    qsizetype m_indent = 0; // of the line above
    std::vector<Level> m_levels;
};

} // namespace

void updateNumberedListAtRange(EditedText &edited, Range range, qlonglong count)
{
    const QString &text = edited.text();
    std::vector<Replacement> changes;
    Levels levels(count);
    Range line = firstLineOfList(text, range);
    while (!endsList(text, line)) {
        if (const auto number = numberOf(text, line)) {
            const qlonglong wanted = levels.next(*number);
            const QString digits = QString::number(wanted);
            if (substring(text, number->digits) != digits) changes.push_back({number->digits, digits});
        } else {
            logLine(QStringLiteral("no match: %1").arg(substring(text, line)));
        }
        if (line.end() >= text.size()) break;
        line = paragraphRange(text, {line.end(), 0});
    }
    edited.replaceAll(changes);
}

bool tm_updateNumberedList(EditedText &edited)
{
    const Range line = paragraphRange(edited.text(), {edited.selection().location, 0});
    if (!numberOf(edited.text(), line)) return false;
    updateNumberedListAtRange(edited, edited.selection());
    return true;
}

std::optional<qlonglong> firstNumberOfList(const QString &text, Range range)
{
    Range line = firstLineOfList(text, range);
    while (!endsList(text, line)) {
        if (const auto number = numberOf(text, line)) return number->value;
        if (line.end() >= text.size()) break;
        line = paragraphRange(text, {line.end(), 0});
    }
    return std::nullopt;
}

} // namespace tomelet
