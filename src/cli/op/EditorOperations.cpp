// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's commands and its highlighting as operations on texts.
#include "cli/Items.h"
#include "cli/op/Registry.h"

#include "editor/DocumentForms.h"
#include "editor/EditorCommands.h"
#include "editor/Highlighting.h"

#include <stdexcept>

namespace tomelet::cli {

namespace {

Range rangeOf(const QVariant &given)
{
    const QVariantList numbers = given.toList();
    if (numbers.size() == 2) return {fromVariant<qlonglong>(numbers[0]), fromVariant<qlonglong>(numbers[1])};
    if (const auto range = rangeFromText(given.toString())) return *range;
    throw std::invalid_argument("a selection is written [location, length]");
}

QVariantList listOf(Range range)
{
    return {range.location, range.length};
}

EditorCommand commandOf(const QString &name)
{
    if (const auto command = editorCommandNamed(name)) return *command;
    const QString known = editorCommandNames().join(QStringLiteral(", "));
    throw std::invalid_argument(QStringLiteral("\"%1\" is no command; there are %2").arg(name, known).toStdString());
}

void requireArguments(EditorCommand command, qsizetype given)
{
    const qsizetype wanted =
        command == EditorCommand::Markdown ? 2
        : command == EditorCommand::Type || command == EditorCommand::SmartReplace || command == EditorCommand::Heading
            ? 1
            : 0;
    // Sorting may be told both of its settings.
    const bool fits = given == wanted || (command == EditorCommand::SortLines && given == 2);
    if (!fits)
        throw std::invalid_argument(
            QStringLiteral("arguments wanted: %1, given: %2").arg(wanted).arg(given).toStdString());
}

QVariant editorApply(const QString &text, const QVariant &selection, const QString &name, const QVariantList &given)
{
    const EditorCommand command = commandOf(name);
    requireArguments(command, given.size());
    EditorSettings settings = editorSettings();
    EditorArguments arguments{fromVariant<QString>(given.value(0)), fromVariant<QString>(given.value(1))};
    if (command == EditorCommand::Heading) arguments.level = fromVariant<int>(given[0]);
    if (command == EditorCommand::SortLines && given.size() == 2) {
        settings.sortLinesCaseSensitive = fromVariant<bool>(given[0]);
        settings.sortLinesDescending = fromVariant<bool>(given[1]);
    }
    EditedText edited(text, rangeOf(selection));
    const bool handled = applyEditorCommand(edited, command, arguments, settings);
    return QVariantMap{{QStringLiteral("text"), edited.text()},
                       {QStringLiteral("selection"), listOf(edited.selection())},
                       {QStringLiteral("handled"), handled}};
}

QVariantList highlightsOf(const QString &text, const QString &extension)
{
    QVariantList list;
    for (const Highlight &highlight : tm_highlightStringinRange(text, {0, text.size()}, highlightOptions(extension)))
        list.append(QVariantMap{{QStringLiteral("range"), listOf(highlight.range)},
                                {QStringLiteral("mark"), highlightName(highlight.row)},
                                {QStringLiteral("row"), highlight.row}});
    return list;
}

} // namespace

void addEditorOperations(Registry &add)
{
    add.text("editor_apply", "text, selection, command",
             [](const QString &text, const QVariant &selection, const QString &command) {
                 return editorApply(text, selection, command, {});
             });
    add.text("editor_apply", "text, selection, command, argument",
             [](const QString &text, const QVariant &selection, const QString &command, const QVariant &argument) {
                 // The arguments may also come as one list.
                 const bool isList = argument.typeId() == QMetaType::QVariantList;
                 return editorApply(text, selection, command, isList ? argument.toList() : QVariantList{argument});
             });
    add.text("editor_apply", "text, selection, command, first, second",
             [](const QString &text, const QVariant &selection, const QString &command, const QVariant &first,
                const QVariant &second) {
                 return editorApply(text, selection, command, {first, second});
             });
    add.text("tm_generatorIsTomelet", "page", tm_generatorIsTomelet);
    add.text("tm_writeToFile", "text, path, atomically, encoding",
             [](const QString &text, const QString &path, bool atomically, TextEncoding encoding) {
                 return tm_writeToFile(text, itemPath(path), atomically, encoding);
             });
    add.text("tm_highlightString", "text",
             [](const QString &text) { return highlightsOf(text, QStringLiteral("md")); });
    add.text("tm_highlightString", "text, extension",
             [](const QString &text, const QString &extension) { return highlightsOf(text, extension.toLower()); });
}

} // namespace tomelet::cli
