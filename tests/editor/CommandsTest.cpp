// SPDX-License-Identifier: GPL-3.0-or-later
// Editing commands as three strings: the text, what is done, the text after. "¦" marks the caret, two of them the
// selection.
#include "editor/EditorCommands.h"
#include "editor/ListEditing.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>

#include <vector>

using namespace tomelet;

namespace {

constexpr QChar mark = u'¦';

EditedText unmarked(QString text)
{
    const qsizetype start = text.indexOf(mark);
    text.remove(start, 1);
    const qsizetype end = text.indexOf(mark);
    if (end >= 0) text.remove(end, 1);
    return {text, {start, end < 0 ? 0 : end - start}};
}

QString marked(const EditedText &edited)
{
    QString text = edited.text();
    const Range selection = edited.selection();
    if (selection.length > 0) text.insert(selection.end(), mark);
    return text.insert(selection.location, mark);
}

EditorSettings allOn()
{
    EditorSettings settings;
    settings.autoIndentLists = settings.indentWithTabs = settings.insertClosingCharacters = true;
    return settings;
}

// "type:(", "markdown:** **", "heading:2", or the command alone.
bool carryOut(EditedText &edited, const QString &action, const EditorSettings &settings)
{
    const QString argument = action.section(u':', 1);
    EditorArguments arguments{argument, {}, argument.toInt()};
    if (action.startsWith(u"markdown:")) arguments = {argument.section(u' ', 0, 0), argument.section(u' ', 1), 0};
    return applyEditorCommand(edited, *editorCommandNamed(action.section(u':', 0, 0)), arguments, settings);
}

struct EditCase
{
    const char16_t *before, *action, *after;
};

void check(const std::vector<EditCase> &cases, const EditorSettings &settings = allOn())
{
    for (const EditCase &wanted : cases) {
        EditedText edited = unmarked(QString::fromUtf16(wanted.before));
        const QString original = edited.text();
        carryOut(edited, QString::fromUtf16(wanted.action), settings);
        const QString what =
            QString::fromUtf16(wanted.before) + QStringLiteral(" -> ") + QString::fromUtf16(wanted.action);
        EXPECT_EQ(marked(edited).toStdString(), QString::fromUtf16(wanted.after).toStdString()) << what.toStdString();
        QString replayed = original;
        if (const Replacement change = edited.change(); change.range.isFound())
            replaceRange(replayed, change.range, change.text);
        EXPECT_EQ(replayed, edited.text()) << "as one replacement: " << what.toStdString();
    }
}

} // namespace

TEST(EditorCommands, listsGoOnAfterANewLine)
{
    check({
        {u"- one¦", u"newline", u"- one\n- ¦"},
        {u"  * one¦ two", u"newline", u"  * one\n  * ¦ two"},
        {u"- [x] done¦", u"newline", u"- [x] done\n- [ ] ¦"},
        {u"- [X] done¦", u"newline", u"- [X] done\n- [ ] ¦"},
        {u"3. three¦\n4. four", u"newline", u"3. three\n4. ¦\n5. four"},
        {u"9) nine¦", u"newline", u"9) nine\n10) ¦"},
        {u"> said¦", u"newline", u"> said\n> ¦"},
        {u": meaning¦", u"newline", u": meaning\n: ¦"},
        {u"// note¦", u"newline", u"// note\n// ¦"},
        {u"\tindented¦", u"newline", u"\tindented\n\t¦"},
        {u"plain¦", u"newline", u"plain\n¦"},
        {u"¦- one", u"newline", u"\n¦- one"},
        {u"-no blank¦", u"newline", u"-no blank\n¦"},
        {u"- o¦n¦e", u"newline", u"- o\n- ¦e"},
        {u"99999999999999999999. x¦", u"newline", u"99999999999999999999. x\n99999999999999999999. ¦"},
        // Blank items keep the indentation of the list, an empty line ends it.
        {u"- one\n  ¦", u"newline", u"- one\n  \n- ¦"},
        {u"- one\n- \n  ¦", u"newline", u"- one\n- \n  \n- ¦"},
        {u"- one\n\n  ¦", u"newline", u"- one\n\n  \n  ¦"},
        {u"text\n  ¦", u"newline", u"text\n  \n  ¦"},
        // With Shift the line is aligned under the text.
        {u"- one¦", u"shiftNewline", u"- one\n  ¦"},
        {u"\t12. one¦", u"shiftNewline", u"\t12. one\n\t    ¦"},
        // An item without text ends the list, or one level of it.
        {u"- one\n- ¦", u"newline", u"- one\n\n¦"},
        {u"- ¦\n- two", u"newline", u"\n¦- two"},
        {u"- one\n\t- ¦", u"newline", u"- one\n- ¦"},
        {u"- ¦one\n", u"newline", u"\n¦one\n"},
        {u"1. one\n\t1. ¦", u"newline", u"1. one\n2. ¦"},
        {u"- one\r\n- ¦\r\n", u"newline", u"- one\r\n\n¦"},
    });
    EditorSettings settings = allOn();
    settings.markTaskWithCharacter = QStringLiteral("(!)");
    check({{u"(!) call¦", u"newline", u"(!) call\n(!) ¦"}}, settings);
    settings.autoIndentLists = false;
    check({{u"- one¦", u"newline", u"- one\n¦"}}, settings);
}

TEST(EditorCommands, tabIndentsItems)
{
    check({
        {u"- ¦one", u"tab", u"\t- ¦one"},
        {u"- o¦ne", u"tab", u"- o¦ne"},
        {u"\t¦text", u"tab", u"\t\t¦text"},
        {u"text¦", u"tab", u"text¦"},
        {u"¦", u"tab", u"¦"},
        {u"¦a\nb¦\nc", u"tab", u"\t¦a\n\tb¦\nc"},
        {u"¦a\nb\n¦c", u"type:\t", u"\t¦a\n\tb\n¦c"},
        {u"1. a\n2. ¦b\n3. c", u"tab", u"1. a\n\t1. ¦b\n2. c"},
        {u"\t- o¦ne", u"shiftTab", u"- o¦ne"},
        {u"    - ¦one", u"shiftTab", u"- ¦one"},
        {u"  - ¦one", u"shiftTab", u"  - ¦one"},
        {u"\ta¦b\n\t\tcd\n    e¦f", u"shiftTab", u"a¦b\n\tcd\ne¦f"},
        {u"1. a\n\t1. ¦b\n2. c", u"shiftTab", u"1. a\n2. ¦b\n3. c"},
    });
    EditorSettings blanks = allOn();
    blanks.indentWithTabs = false;
    check({{u"1. ¦one", u"tab", u"    1. ¦one"}, {u"¦a\nb¦", u"tab", u"    ¦a\n    b¦"}}, blanks);
}

TEST(EditorCommands, numbersStayInOrder)
{
    const struct
    {
        const char16_t *before, *after;
        qlonglong count;
    } cases[] = {
        {u"1. a\n1. b\n7. c¦", u"1. a\n2. b\n3. c¦", 0},
        {u"5. a\n5. b¦", u"5. a\n6. b¦", 0},
        {u"0. a\n0. b¦", u"1. a\n2. b¦", 0},
        {u"intro\n4. a\ntext\n9. b¦", u"intro\n4. a\ntext\n5. b¦", 0},
        {u"1. a\n\t3. x\n\t3. y\n1. b\n\t8. z\n1. c¦", u"1. a\n\t1. x\n\t2. y\n2. b\n\t1. z\n3. c¦", 0},
        {u"    5. a\n9. b\n9. c¦", u"    5. a\n9. b\n10. c¦", 0},
        {u"1. a\n\t\t7. x\n\t7. b\n\t7. c\n7. d¦", u"1. a\n\t\t1. x\n\t2. b\n\t3. c\n4. d¦", 0},
        {u"8. a\n\n3. b\n3. c¦\n\n9. d", u"8. a\n\n3. b\n4. c¦\n\n9. d", 0},
        {u"9. ¦a\n9. b", u"3. ¦a\n4. b", 3},
        {u"8. a\n8. b\n8. c¦ d", u"8. a\n9. b\n10. c¦ d", 0},
    };
    for (const auto &wanted : cases) {
        EditedText edited = unmarked(QString::fromUtf16(wanted.before));
        updateNumberedListAtRange(edited, edited.selection(), wanted.count);
        EXPECT_EQ(marked(edited).toStdString(), QString::fromUtf16(wanted.after).toStdString());
    }
}

TEST(EditorCommands, linesOnAndOff)
{
    check({
        {u"- a¦\n- b\n- c¦", u"toggleList", u"1. a¦\n1. b\n1. c¦"},
        {u"1. a¦", u"toggleList", u"- [ ] a¦"},
        {u"- [ ] a¦", u"toggleList", u"a¦"},
        {u"- [x] a¦", u"toggleList", u"a¦"},
        {u"  a¦", u"toggleList", u"  - a¦"},
        {u"¦", u"toggleList", u"- ¦"},
        {u"a\n¦\nb", u"toggleList", u"a\n- ¦\nb"},
        {u"a¦\r\nb", u"toggleComment", u"// a¦\r\nb"},
        {u"¦a\nb¦", u"toggleComment", u"// ¦a\n// b¦"},
        {u"// a¦\nb", u"toggleComment", u"a¦\nb"},
        {u"// ¦a\n  // b¦", u"toggleComment", u"¦a\nb¦"},
        {u"//a¦", u"toggleComment", u"//a¦"},
        {u"ti¦tle", u"heading:2", u"## ti¦tle"},
        {u"#### ti¦tle", u"heading:1", u"# ti¦tle"},
        {u"# ¦title", u"heading:0", u"¦title"},
        {u"a\n¦", u"heading:9", u"a\n###### ¦"},
    });
}

TEST(EditorCommands, linesSorted)
{
    check({
        {u"¦b\nA\nc¦", u"sortLines", u"¦A\nb\nc¦"},
        {u"¦b\nA¦\nc\n", u"sortLines", u"¦A\nb¦\nc\n"},
        {u"¦b\r\na¦\nc", u"sortLines", u"¦a\r\nb¦\nc"},
        {u"x\n¦ö\nz\no¦", u"sortLines", u"x\n¦o\nö\nz¦"},
        {u"b¦\na", u"sortLines", u"b¦\na"},
    });
    EditorSettings settings = allOn();
    settings.sortLinesDescending = true;
    check({{u"¦b\nA\nc\n¦", u"sortLines", u"¦c\nb\nA\n¦"}}, settings);
    settings.sortLinesDescending = false;
    settings.sortLinesCaseSensitive = true;
    check({{u"¦A\na¦", u"sortLines", u"¦a\nA¦"}}, settings);
}

TEST(EditorCommands, linesMove)
{
    check({
        {u"a¦\nb\nc", u"moveLineDown", u"b\na¦\nc"},
        {u"a\nb¦\nc", u"moveLineDown", u"a\nc\nb¦"},
        {u"a\nb¦", u"moveLineDown", u"a\nb¦"},
        {u"a\nb¦\n", u"moveLineDown", u"a\nb¦\n"},
        {u"x\n¦a\nb¦\nc\n", u"moveLineDown", u"x\nc\n¦a\nb¦\n"},
        {u"a\nb\nc¦", u"moveLineUp", u"a\nc¦\nb"},
        {u"a¦\nb", u"moveLineUp", u"a¦\nb"},
        {u"a\n¦", u"moveLineUp", u"a\n¦"},
        {u"a\r\nb¦\nc", u"moveLineUp", u"b¦\r\na\nc"},
        {u"1. a¦\n2. b\n3. c", u"moveLineDown", u"1. b\n2. a¦\n3. c"},
        {u"4. a\n5. b¦\n6. c", u"moveLineUp", u"4. b¦\n5. a\n6. c"},
        {u"0. a¦\n7. b", u"moveLineDown", u"1. b\n2. a¦"},
        {u"1. a¦\n\n5. x", u"moveLineDown", u"\n1. a¦\n2. x"},
        {u"1. a\n\n5. x¦\n6. y", u"moveLineUp", u"1. a\n2. x¦\n\n6. y"},
    });
}

TEST(EditorCommands, closingCharacters)
{
    check({
        {u"¦", u"type:(", u"(¦)"},
        {u"[¦]", u"type:[", u"[[¦]]"},
        {u"(¦)", u"type:)", u"()¦"},
        {u"(¦ ", u"type:)", u"()¦ "},
        {u"a ¦", u"type:\"", u"a \"¦\""},
        {u"don¦", u"type:'", u"don'¦"},
        {u"¦word", u"type:\"", u"\"¦word"},
        {u"cafe\u0301¦", u"type:'", u"cafe\u0301'¦"},
        {u"\U0001D400¦\U0001D400", u"type:'", u"\U0001D400'¦\U0001D400"},
        {u"\U0001F44D¦", u"type:'", u"\U0001F44D'¦'"},
        {u"\"¦\"", u"type:\"", u"\"\"¦"},
        {u"“a¦”", u"type:\"", u"“a”¦"},
        {u"‘a¦’", u"type:'", u"‘a’¦"},
        {u"a ¦word¦ b", u"type:(", u"a (¦word¦) b"},
        {u"a ¦word¦ b", u"type:\"", u"a \"¦word¦\" b"},
        {u"[¦word¦]", u"type:[", u"[[¦word¦]]"},
        {u"(¦)", u"deleteBackward", u"¦"},
        {u"'¦'", u"deleteBackward", u"¦"},
        {u"(¦]", u"deleteBackward", u"¦]"},
        {u"(a¦)", u"deleteBackward", u"(¦)"},
        {u"¦a", u"deleteBackward", u"¦a"},
        {u"a¦bc¦d", u"deleteBackward", u"a¦d"},
        {u"a\U0001F44D\U0001F3FD¦", u"deleteBackward", u"a¦"},
        {u"a\r\n¦b", u"deleteBackward", u"a¦b"},
        {u"see (a¦)", u"newline", u"see (a)\n¦"},
        {u"- see [[a¦]] b", u"newline", u"- see [[a]]\n- ¦ b"},
        {u"see (a¦)", u"shiftNewline", u"see (a\n¦)"},
    });
    EditorSettings off = allOn();
    off.insertClosingCharacters = false;
    check({{u"¦", u"type:(", u"(¦"}, {u"(¦)", u"deleteBackward", u"¦)"}, {u"(a¦)", u"newline", u"(a\n¦)"}}, off);
}

TEST(EditorCommands, marksAndBlanks)
{
    check({
        {u"a ¦word¦ b", u"markdown:** **", u"a **¦word¦** b"},
        {u"a **¦word¦** b", u"markdown:** **", u"a ¦word¦ b"},
        {u"a **¦word¦** b", u"markdown:* *", u"a ***¦word¦*** b"},
        {u"a *¦word¦* b", u"markdown:* *", u"a ¦word¦ b"},
        {u"¦", u"markdown:** **", u"**¦**"},
        {u"**¦**", u"markdown:** **", u"¦"},
        {u"*¦*", u"markdown:* *", u"**¦**"},
        {u"¦x¦", u"markdown:__ __", u"**¦x¦**"},
        {u"¦x¦", u"markdown:{++ ++}", u"{++¦x¦++}"},
        {u"a¦b", u"smartReplace:x", u"a x ¦b"},
        {u"¦b", u"smartReplace:x", u"x ¦b"},
        {u"a ¦b¦", u"smartReplace:x", u"a x¦"},
        {u"a¦\nb", u"smartReplace:x", u"a x¦\nb"},
    });
    EditorSettings underscores = allOn();
    underscores.useUnderscoreToEmphasizeMD = true;
    check({{u"¦x¦", u"markdown:* *", u"_¦x¦_"}, {u"¦x¦", u"markdown:~~ ~~", u"~~¦x¦~~"}}, underscores);
}

// Whatever is done to whatever text: the selection stays inside, and the one replacement gives the same text.
TEST(EditorCommands, holdOnAnyText)
{
    QRandomGenerator random(7);
    const QString pieces = QStringLiteral("-* 1.)\t \n\r\n[x]#/'\"(a\u2029\U0001F44D");
    for (int run = 0; run < 3000; ++run) {
        QString text;
        for (int i = random.bounded(24); i > 0; --i) text += pieces[random.bounded(pieces.size())];
        const qsizetype start = random.bounded(text.size() + 1);
        EditedText edited(text, {start, random.bounded(text.size() - start + 1)});
        const QStringList commands = editorCommandNames();
        const QString action = commands[random.bounded(commands.size())] + u':' + pieces[random.bounded(pieces.size())];
        carryOut(edited, action, allOn());
        ASSERT_GE(edited.selection().location, 0);
        ASSERT_LE(edited.selection().end(), edited.text().size());
        if (const Replacement change = edited.change(); change.range.isFound())
            replaceRange(text, change.range, change.text);
        ASSERT_EQ(text, edited.text()) << action.toStdString();
    }
}

TEST(EditorCommands, theSmallestReplacement)
{
    const auto changed = [](const char16_t *from, const char16_t *to) {
        return smallestReplacement(QStringView(from), QStringView(to));
    };
    EXPECT_EQ(changed(u"one two", u"one 2 two"), (Replacement{{4, 0}, QStringLiteral("2 ")}));
    EXPECT_EQ(changed(u"aaa", u"aa"), (Replacement{{2, 1}, QString()}));
    EXPECT_EQ(changed(u"", u"new"), (Replacement{{0, 0}, QStringLiteral("new")}));
    EXPECT_FALSE(changed(u"same", u"same").range.isFound());
    EXPECT_EQ(changed(u"a\U0001F600b", u"a\U0001F601b"), (Replacement{{1, 2}, QStringLiteral("\U0001F601")}));
    EXPECT_EQ(changed(u"\U0001F600", u"\U0001FA00"), (Replacement{{0, 2}, QStringLiteral("\U0001FA00")}));
}
