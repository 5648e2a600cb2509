// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/FormattingCommands.h"

#include "foundation/Localization.h"

#include <algorithm>
#include <iterator>

namespace tomelet::desktop {

namespace {

constexpr FormattingCommand commands[] = {
    {"bold", TOMELET_TEXT("Bold"), "B", "Ctrl+B", "document.execCommand('bold')"},
    {"italic", TOMELET_TEXT("Italic"), "I", "Ctrl+I", "document.execCommand('italic')"},
    {"underline", TOMELET_TEXT("Underline"), "U", "Ctrl+U", "document.execCommand('Underline')"},
    {"strikeThrough", TOMELET_TEXT("Struck Out"), "S", "Ctrl+Shift+X", "document.execCommand('strikeThrough')"},
    {"code", TOMELET_TEXT("Code"), "", "Ctrl+Shift+C", "tm.code()"},
    {"mark", TOMELET_TEXT("Highlight"), "", "",
     "document.execCommand('backColor', false, '%1'); document.execCommand('foreColor', false, '#000')"},
    {"unmark", TOMELET_TEXT("Remove Highlight"), "", "",
     "document.execCommand('backColor', false, 'transparent'); document.execCommand('foreColor', false, "
     "'inherit');"},
    {"paragraph", TOMELET_TEXT("Paragraph Style"), "", "",
     "tm.setBlock('%1') || document.execCommand('formatblock', false, '%1')"},
    {"list", TOMELET_TEXT("List"), "", "Ctrl+L", "tm.toggleList()"},
    {"bullets", TOMELET_TEXT("Bullets"), "\u2022", "", "tm.setList(false)"},
    {"numbers", TOMELET_TEXT("Numbers"), "1.", "", "tm.setList(true)"},
    {"boxes", TOMELET_TEXT("Check Boxes"), "\u2610", "", "tm.toggleBoxes()"},
    {"done", TOMELET_TEXT("Done"), "", "Ctrl+Shift+L", "tm.toggleDone()"},
    {"outdent", TOMELET_TEXT("Outdent"), "\u2190", "", "tm.indent(true) || document.execCommand('outdent')"},
    {"indent", TOMELET_TEXT("Indent"), "\u2192", "", "tm.indent(false) || document.execCommand('indent')"},
    {"table", TOMELET_TEXT("Insert Table"), "", "", "tm.insertTable(3, 3)"},
    {"rowAbove", TOMELET_TEXT("Insert Row Above"), "", "", "tm.insertRow(false)"},
    {"rowBelow", TOMELET_TEXT("Insert Row Below"), "", "", "tm.insertRow(true)"},
    {"columnBefore", TOMELET_TEXT("Insert Column Before"), "", "", "tm.insertColumn(false)"},
    {"columnAfter", TOMELET_TEXT("Insert Column After"), "", "", "tm.insertColumn(true)"},
    {"removeRows", TOMELET_TEXT("Remove Rows"), "", "", "tm.removeRows()"},
    {"removeColumns", TOMELET_TEXT("Remove Columns"), "", "", "tm.removeColumns()"},
    {"link", TOMELET_TEXT("Link..."), "", "", "tm.wholeLink(); document.execCommand('createLink', false, '%1')"},
    {"unlink", TOMELET_TEXT("Remove Link"), "", "", "tm.wholeLink(); document.execCommand('unLink', false, false)"},
    {"image", TOMELET_TEXT("Image..."), "", "", "document.execCommand('insertHTML', false, '<img src=\"%1\">')"},
    {"rule", TOMELET_TEXT("Horizontal Rule"), "", "", "document.execCommand('insertHorizontalRule')"},
    {"html", TOMELET_TEXT("HTML"), "", "", "document.execCommand('insertHTML', false, '%1')"},
    {"text", TOMELET_TEXT("Text"), "", "", "document.execCommand('insertText', false, '%1')"},
    {"named", TOMELET_TEXT("Command"), "", "", "document.execCommand('%1')"},
    {"class", TOMELET_TEXT("Style Class"), "", "",
     "var el = window.getSelection().anchorNode.parentNode;if (el.tagName.toLowerCase() != 'body')"
     "\t\tel.classList.toggle('%1');"},
    {"clear", TOMELET_TEXT("Clear Format"), "", "", "tm.clearFormat()"},
};

} // namespace

std::span<const FormattingCommand> formattingCommands()
{
    return commands;
}

QString escapedForScript(const QString &text)
{
    QString escaped = text;
    for (const auto &[from, to] : {std::pair{u"\\", u"\\\\"},
                                   {u"'", u"\\'"},
                                   {u"\n", u"\\n"},
                                   {u"\r", u"\\r"},
                                   {u"\u2028", u"\\u2028"},
                                   {u"\u2029", u"\\u2029"}})
        escaped.replace(QString::fromUtf16(from), QString::fromUtf16(to));
    return escaped;
}

QString scriptOfCommand(const QString &name, const QString &argument)
{
    const auto found =
        std::ranges::find_if(commands, [&](const FormattingCommand &c) { return name == QLatin1String(c.name); });
    if (found == std::end(commands)) return {};
    return QString::fromUtf8(found->script).replace(QStringLiteral("%1"), escapedForScript(argument));
}

QString scriptForMarks(const QString &leading, const QString &trailing)
{
    return QStringLiteral("tm.enclose('") + escapedForScript(leading) + QStringLiteral("', '") +
           escapedForScript(trailing) + QStringLiteral("')");
}

} // namespace tomelet::desktop
