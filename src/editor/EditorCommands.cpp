// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/EditorCommands.h"

#include "editor/LineEditing.h"
#include "editor/ListEditing.h"
#include "editor/Marks.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace tomelet {

namespace {

constexpr struct
{
    EditorCommand command;
    const char16_t *name;
} names[] = {
    {EditorCommand::NewLine, u"newline"},
    {EditorCommand::ShiftNewLine, u"shiftNewline"},
    {EditorCommand::Type, u"type"},
    {EditorCommand::DeleteBackward, u"deleteBackward"},
    {EditorCommand::Tab, u"tab"},
    {EditorCommand::ShiftTab, u"shiftTab"},
    {EditorCommand::ToggleList, u"toggleList"},
    {EditorCommand::ToggleComment, u"toggleComment"},
    {EditorCommand::SortLines, u"sortLines"},
    {EditorCommand::MoveLineDown, u"moveLineDown"},
    {EditorCommand::MoveLineUp, u"moveLineUp"},
    {EditorCommand::SmartReplace, u"smartReplace"},
    {EditorCommand::Markdown, u"markdown"},
    {EditorCommand::Heading, u"heading"},
};

void insertPlainly(EditedText &edited, const QString &text)
{
    const Range selection = edited.selection();
    edited.tm_replaceCharactersInRange(selection, text);
    edited.select({selection.location + text.size(), 0});
}

bool newLine(EditedText &edited, const EditorSettings &settings, bool shift)
{
    const bool moved = settings.insertClosingCharacters && !shift && newLineBehindClosingBrackets(edited);
    if (!moved) insertPlainly(edited, QStringLiteral("\n"));
    const bool continued = settings.autoIndentLists && tryToInsertListItem(edited, settings, shift);
    return moved || continued;
}

bool typeText(EditedText &edited, const QString &text, const EditorSettings &settings)
{
    if (text == u"\n") return newLine(edited, settings, false);
    // Lines that are selected from end to end are meant to be indented, not replaced.
    const Range selection = edited.selection();
    if (text == u"\t" && edited.part(selection).contains(u'\n'))
        return tabButtonPressedForceIndent(edited, settings, true, false);
    if (settings.insertClosingCharacters && text.size() == 1 && typeWithClosingCharacters(edited, text[0], settings))
        return true;
    insertPlainly(edited, text);
    return false;
}

bool tab(EditedText &edited, const EditorSettings &settings, bool outdent)
{
    const bool overLines = edited.part(edited.selection()).contains(u'\n');
    return tabButtonPressedForceIndent(edited, settings, overLines && !outdent, outdent);
}

qsizetype startOfCharacterBefore(const EditedText &edited, qsizetype position)
{
    // Within its line, so that the cost does not grow with the text.
    const qsizetype line = paragraphRange(edited.text(), {position - 1, 0}).location;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, edited.part({line, position - line}));
    finder.toEnd();
    return line + std::max<qsizetype>(0, finder.toPreviousBoundary());
}

bool deleteBackward(EditedText &edited, const EditorSettings &settings)
{
    if (settings.insertClosingCharacters && deleteOpeningWithClosing(edited)) return true;
    const Range selection = edited.selection();
    if (selection.length > 0) {
        edited.tm_replaceCharactersInRange(selection, {});
    } else if (selection.location > 0) {
        const qsizetype start = startOfCharacterBefore(edited, selection.location);
        edited.tm_replaceCharactersInRange({start, selection.location - start}, {});
    }
    return false;
}

bool smartReplace(EditedText &edited, const QString &string)
{
    tm_smartReplaceCharactersInRange(edited, edited.selection(), string);
    return true;
}

bool encloseInMarks(EditedText &edited, const EditorArguments &arguments, const EditorSettings &settings)
{
    insertMarkdownString(edited, arguments.first, arguments.second, settings);
    return true;
}

} // namespace

bool applyEditorCommand(EditedText &edited, EditorCommand command, const EditorArguments &arguments,
                        const EditorSettings &settings)
{
    switch (command) {
    case EditorCommand::NewLine: return newLine(edited, settings, false);
    case EditorCommand::ShiftNewLine: return newLine(edited, settings, true);
    case EditorCommand::Type: return typeText(edited, arguments.first, settings);
    case EditorCommand::DeleteBackward: return deleteBackward(edited, settings);
    case EditorCommand::Tab: return tab(edited, settings, false);
    case EditorCommand::ShiftTab: return tab(edited, settings, true);
    case EditorCommand::ToggleList: return tm_toggleList(edited);
    case EditorCommand::ToggleComment: return tm_toggleComment(edited);
    case EditorCommand::SortLines: return tm_sortSelectionbyAlphabet(edited, settings);
    case EditorCommand::MoveLineDown: return tm_moveLineDown(edited);
    case EditorCommand::MoveLineUp: return tm_moveLineUp(edited);
    case EditorCommand::SmartReplace: return smartReplace(edited, arguments.first);
    case EditorCommand::Markdown: return encloseInMarks(edited, arguments, settings);
    case EditorCommand::Heading: return insertMarkdownHeading(edited, arguments.level);
    }
    return false;
}

std::optional<EditorCommand> editorCommandNamed(const QString &name)
{
    for (const auto &entry : names)
        if (name == QStringView(entry.name)) return entry.command;
    return std::nullopt;
}

QStringList editorCommandNames()
{
    QStringList all;
    for (const auto &entry : names) all.append(QString::fromUtf16(entry.name));
    return all;
}

} // namespace tomelet
