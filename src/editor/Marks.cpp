// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/Marks.h"

#include <algorithm>

namespace tomelet {

namespace {

const QString openingCharacters = QStringLiteral("([{`\"'");
const QString closingCharacters = QStringLiteral(")]}`\"'");

QString closingOf(QChar opening)
{
    const qsizetype place = openingCharacters.indexOf(opening);
    return place < 0 ? QString() : QString(closingCharacters[place]);
}

bool isEmphasis(const QString &mark)
{
    return !mark.isEmpty() && mark.size() <= 3 && (mark[0] == u'*' || mark[0] == u'_') &&
           mark.count(mark[0]) == mark.size();
}

QString asPreferred(const QString &mark, const EditorSettings &settings)
{
    return isEmphasis(mark) ? QString(mark.size(), settings.useUnderscoreToEmphasizeMD ? u'_' : u'*') : mark;
}

// "*" inside of "**" is no mark of its own.
bool isPartOfStrongerMark(const EditedText &edited, const QString &tag)
{
    if (tag.size() != 1 || !isEmphasis(tag)) return false;
    qsizetype run = 0;
    while (edited.at(edited.selection().location - run - 1) == tag[0]) ++run;
    return run % 2 == 0;
}

bool isSurrounded(const EditedText &edited, const QString &tag, const QString &closeTag)
{
    const Range selection = edited.selection();
    const QStringView text = edited.text();
    return text.first(selection.location).endsWith(tag) && text.sliced(selection.end()).startsWith(closeTag);
}

bool canBeTakenAway(const EditedText &edited, const QString &tag, const QString &closeTag)
{
    if (tag.isEmpty() || !isSurrounded(edited, tag, closeTag)) return false;
    if (edited.selection().length == 0) return tag.size() >= 2;
    return tag != u"[" && tag != u"{" && !isPartOfStrongerMark(edited, tag);
}

// A letter may take two units, or end in an accent of its own.
bool isPartOfWord(QChar first, QChar second)
{
    const char32_t point = first.isHighSurrogate() ? QChar::surrogateToUcs4(first, second) : second.unicode();
    return QChar::isLetterOrNumber(point) || QChar::isMark(point);
}

// Quotes open and close alike; next to a word they are apostrophes.
bool isPlainHere(const EditedText &edited, QChar typed)
{
    if (!QStringView(u"`\"'").contains(typed)) return false;
    const qsizetype caret = edited.selection().location;
    const QChar behind = edited.at(caret);
    return edited.at(caret - 1) == typed || isPartOfWord(edited.at(caret - 2), edited.at(caret - 1)) ||
           isPartOfWord(behind, behind.isHighSurrogate() ? edited.at(caret + 1) : behind);
}

bool stepsOver(QChar typed, QChar next)
{
    if (typed == u'"' && (next == u'\u201C' || next == u'\u201D')) return true;
    if (typed == u'\'' && (next == u'\u2018' || next == u'\u2019')) return true;
    return closingCharacters.contains(typed) && typed == next;
}

} // namespace

void insertMarkdownString(EditedText &edited, QString tag, QString closeTag, const EditorSettings &settings)
{
    tag = asPreferred(tag, settings);
    closeTag = asPreferred(closeTag, settings);
    const Range selection = edited.selection();
    const Range outer{selection.location - tag.size(), tag.size() + selection.length + closeTag.size()};
    if (canBeTakenAway(edited, tag, closeTag)) {
        edited.tm_replaceCharactersInRange(outer, edited.part(selection));
        return edited.select({outer.location, selection.length});
    }
    edited.tm_replaceCharactersInRange(selection, tag + edited.part(selection) + closeTag);
    edited.select({selection.location + tag.size(), selection.length});
}

bool typeWithClosingCharacters(EditedText &edited, QChar typed, const EditorSettings &settings)
{
    const Range selection = edited.selection();
    if (selection.length == 0 && stepsOver(typed, edited.at(selection.location))) {
        edited.select({selection.location + 1, 0});
        return true;
    }
    const QString closing = closingOf(typed);
    if (closing.isEmpty() || (selection.length == 0 && isPlainHere(edited, typed))) return false;
    insertMarkdownString(edited, QString(typed), closing, settings);
    return true;
}

bool deleteOpeningWithClosing(EditedText &edited)
{
    const Range selection = edited.selection();
    if (selection.length > 0) return false;
    const QString closing = closingOf(edited.at(selection.location - 1));
    if (closing.isEmpty() || edited.at(selection.location) != closing[0]) return false;
    edited.tm_replaceCharactersInRange({selection.location - 1, 2}, {});
    return true;
}

bool newLineBehindClosingBrackets(EditedText &edited)
{
    const Range selection = edited.selection();
    const QStringView behind = QStringView(edited.text()).sliced(selection.end());
    if (behind.isEmpty() || !QStringView(u")]}").contains(behind.front())) return false;
    const qsizetype run = behind.startsWith(u"]]") || behind.startsWith(u"}}") ? 2 : 1;
    edited.tm_replaceCharactersInRange(selection, {});
    const qsizetype place = selection.location + run;
    edited.tm_replaceCharactersInRange({place, 0}, QStringLiteral("\n"));
    edited.select({place + 1, 0});
    return true;
}

void tm_smartReplaceCharactersInRange(EditedText &edited, Range range, const QString &string)
{
    const bool inFront = range.location > 0 && !edited.at(range.location - 1).isSpace();
    const bool behind = range.end() < edited.text().size() && !edited.at(range.end()).isSpace();
    const QString replacement =
        (inFront ? QStringLiteral(" ") : QString()) + string + (behind ? QStringLiteral(" ") : QString());
    edited.tm_replaceCharactersInRange(range, replacement);
    edited.select({range.location + replacement.size(), 0});
}

} // namespace tomelet
