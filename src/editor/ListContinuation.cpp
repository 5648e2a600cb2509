// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ListEditing.h"

#include "conversion/Patterns.h"
#include "library/PathForms.h"

#include <QStringList>

namespace tomelet {

namespace {

// A mark at the start of a line. The order decides: a check box is a bullet too.
QStringList markPatterns(const EditorSettings &settings)
{
    QStringList patterns{
        QStringLiteral(R"(^([ |\t]*(- \[[ |x|X]\])(?: |\t)?))"),
        QStringLiteral(R"(^([ |\t]*(\d+[\.|)])(?: |\t)+))"),
        QStringLiteral(R"(^([ |\t]*([-—+\*•>:]){0,1}(?: |\t)+))"),
        QStringLiteral(R"(^([ |\t]*(//)(?: |\t)+))"),
    };
    if (!settings.markTaskWithCharacter.isEmpty())
        patterns += QStringLiteral(R"(^([ |\t]*(%1)(?: |\t)+))")
                        .arg(tm_stringByEscapingWildcards(settings.markTaskWithCharacter));
    return patterns;
}

struct Item
{
    QString line; ///< without its line end
    QString mark; ///< with the indentation in front and the white space behind
    [[nodiscard]] bool isMarkAlone() const { return line.size() <= mark.size(); }
    [[nodiscard]] bool isBlank() const { return line.trimmed().isEmpty(); }
};

Item itemOf(const QString &line, const EditorSettings &settings)
{
    for (const QString &pattern : markPatterns(settings)) {
        const Range mark = rangeOfPattern(line, pattern, PatternCaseInsensitive);
        if (mark.isFound()) return {line, substring(line, mark)};
    }
    return {line, {}};
}

QString lineAt(const EditedText &edited, Range paragraph)
{
    return edited.part(withoutLineEnd(edited.text(), paragraph));
}

// A line of white space takes after the item above it, so that a list keeps its indentation over blank items.
Item itemToContinue(const EditedText &edited, Range paragraph, const EditorSettings &settings)
{
    const Item first = itemOf(lineAt(edited, paragraph), settings);
    if (!first.isBlank() || first.mark.isEmpty()) return first;
    while (paragraph.location > 0) {
        paragraph = paragraphRange(edited.text(), {paragraph.location - 1, 0});
        const Item above = itemOf(lineAt(edited, paragraph), settings);
        if (above.line.isEmpty() || above.mark.isEmpty()) return first;
        if (!above.isMarkAlone()) return above;
    }
    return first;
}

QString raised(const QString &mark)
{
    const Range digits = rangeOfPattern(mark, QStringLiteral(R"(\d+)"));
    if (digits.length > longestNumber) return mark;
    const qlonglong number = substring(mark, digits).toLongLong() + 1;
    return QString(mark.left(digits.location) + QString::number(number) + mark.mid(digits.end()));
}

bool isNumbered(const QString &mark)
{
    return rangeOfPattern(mark, QStringLiteral(R"(^[ |\t]*\d+[\.|)])")).isFound();
}

void continueList(EditedText &edited, const QString &mark, bool shiftKeyPressed)
{
    const Range caret{edited.selection().location, 0};
    if (shiftKeyPressed)
        return edited.tm_replaceCharactersInRange(caret,
                                                  regexSweep(mark, QStringLiteral(R"([\S])"), QStringLiteral(" ")));
    QString next = mark;
    next.replace(u'x', u' ').replace(u'X', u' ');
    if (!isNumbered(mark)) return edited.tm_replaceCharactersInRange(caret, next);
    edited.tm_replaceCharactersInRange(caret, raised(next));
    updateNumberedListAtRange(edited, edited.selection());
}

// Return on an item without text. What stood behind the caret stays, without the mark.
void endItem(EditedText &edited, Range paragraph, const EditorSettings &settings)
{
    const qsizetype lineEnd = lineEndLength(edited.part(paragraph));
    edited.tm_replaceCharactersInRange({paragraph.end() - lineEnd, lineEnd}, {});
    if (tabButtonPressedForceIndent(edited, settings, false, true)) return;
    const qsizetype caret = edited.selection().location;
    const Range line = paragraphRange(edited.text(), {caret, 0});
    const bool textFollows = caret < withoutLineEnd(edited.text(), line).end();
    edited.tm_replaceCharactersInRange(textFollows ? Range{line.location, caret - line.location} : line,
                                       QStringLiteral("\n"));
}

} // namespace

bool tryToInsertListItem(EditedText &edited, const EditorSettings &settings, bool shiftKeyPressed)
{
    const qsizetype caret = edited.selection().location;
    if (caret == 0) return false;
    const Range paragraph = paragraphRange(edited.text(), {caret - 1, 0});
    const Item own = itemOf(lineAt(edited, paragraph), settings);
    if (own.mark.isEmpty()) return false;
    if (own.isMarkAlone() && !own.isBlank()) {
        endItem(edited, paragraph, settings);
        return true;
    }
    continueList(edited, itemToContinue(edited, paragraph, settings).mark, shiftKeyPressed);
    return true;
}

} // namespace tomelet
