// SPDX-License-Identifier: GPL-3.0-or-later
// Lines that are shown in pieces, under everything that keys and mouse do.
#include "tests/desktop/TextViewFixture.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>

#include <random>

using namespace tomelet;
using tomelet::test::TextView;

TEST_F(TextView, endlessLinesAreEditedInPieces)
{
    const QString line = QStringLiteral("0123456789").repeated(3000);
    const QString text = QStringLiteral("first\n") + line + QStringLiteral("\nlast\n");
    load(text);
    view.resize(800, 600);
    view.show();
    ASSERT_GT(view.blockCount(), 4); // in pieces
    EXPECT_EQ(view.documentText(), text);
    EXPECT_FALSE(view.document()->isUndoAvailable());
    EXPECT_EQ(view.numberOfLine(view.document()->lastBlock()), 4);

    // Every key at every side of a soft break changes what it says, and no more.
    const qsizetype edge = 6 + 4000;
    struct Row
    {
        int key;
        Qt::KeyboardModifiers modifiers;
        qsizetype from, to; ///< of the text that goes
    };
    for (const Row &row : {Row{Qt::Key_Backspace, Qt::NoModifier, edge - 1, edge},
                           Row{Qt::Key_Delete, Qt::NoModifier, edge, edge + 1}}) {
        for (const bool fromLeft : {true, false}) {
            load(text);
            view.select({fromLeft ? edge - 1 : edge + 1, 0});
            QTest::keyClick(&view, fromLeft ? Qt::Key_Right : Qt::Key_Left);
            ASSERT_EQ(view.selection(), (Range{edge, 0}));
            QTest::keyClick(&view, Qt::Key(row.key), row.modifiers);
            EXPECT_TRUE(view.documentText() == QString(text).remove(row.from, row.to - row.from))
                << row.key << fromLeft;
            view.undo();
            EXPECT_TRUE(view.documentText() == text);
            view.select({edge, 0});
            QTest::keyClicks(&view, QStringLiteral("x"));
            EXPECT_TRUE(view.documentText() == QString(text).insert(edge, u'x'));
            QTest::keyClick(&view, Qt::Key_Return);
            EXPECT_TRUE(view.documentText() == QString(text).insert(edge, QStringLiteral("x\n")));
        }
    }
    // Selections by keys, as far as they go.
    load(text);
    view.select({6, 0});
    for (int i = 0; i < 60; ++i) QTest::keyClick(&view, Qt::Key_Down, Qt::ShiftModifier);
    const Range selected = view.selection();
    EXPECT_GT(selected.length, 4000);
    EXPECT_TRUE(view.selectedText() == text.mid(selected.location, selected.length));
    view.copy();
    EXPECT_TRUE(QApplication::clipboard()->text() == view.selectedText());
    QTest::keyClick(&view, Qt::Key_Delete);
    EXPECT_TRUE(view.documentText() == QString(text).remove(selected.location, selected.length));
    EXPECT_TRUE(view.documentText().startsWith(QStringLiteral("first\n")));
    view.undo();
    EXPECT_TRUE(view.findText(QStringLiteral("9\nlast"), false, false));
    QTest::keyClick(&view, Qt::Key_Delete, Qt::ControlModifier); // a selection goes by any of these
    EXPECT_TRUE(view.documentText() == QString(text).remove(6 + line.size() - 1, 6));
}

TEST_F(TextView, endlessLinesArePastedInPieces)
{
    load(QStringLiteral("one\ntwo"));
    const QString line = QStringLiteral("0123456789").repeated(3000);
    QApplication::clipboard()->setText(line + QStringLiteral("\nend"));
    view.select({3, 1});
    view.paste();
    EXPECT_GT(view.blockCount(), 6);
    EXPECT_TRUE(view.documentText() == QString(QStringLiteral("one") + line + QStringLiteral("\nendtwo")));
    view.undo();
    EXPECT_EQ(view.documentText(), QStringLiteral("one\ntwo"));
}

// What another view saved is one step more, also where lines are shown in pieces before or after it.
TEST_F(TextView, endlessLinesOfAnotherViewKeepTheSteps)
{
    const QString line = QStringLiteral("0123456789").repeated(3000);
    const QString other = QStringLiteral("other") + line + QStringLiteral("\r\nend");
    const QString plain = QString(other).remove(u'\r');
    for (const QString &text : {QStringLiteral("one\n"), QString(line + QStringLiteral("\nend")), plain}) {
        load(text);
        view.select({1, 0});
        QTest::keyClicks(&view, QStringLiteral("x"));
        const QString typed = view.documentText();
        view.takeDocumentText(other, true, highlightOptions(QStringLiteral("md")));
        EXPECT_TRUE(view.documentText() == plain);
        EXPECT_GT(view.blockCount(), 6);
        view.undo();
        EXPECT_TRUE(view.documentText() == typed);
        view.undo();
        EXPECT_TRUE(view.documentText() == text);
        view.redo();
        view.redo();
        EXPECT_TRUE(view.documentText() == plain);
    }
}

// Whatever somebody does with caret and selection: only what is selected goes, and only what is typed comes.
TEST_F(TextView, noKeyCutsIntoASoftBreak)
{
    load(QStringLiteral("first\n") + QStringLiteral("some words, ").repeated(2500) + QStringLiteral("\nlast\n"));
    view.resize(600, 500);
    view.show();
    std::mt19937 random(3);
    const auto pick = [&](int count) { return int(random() % unsigned(count)); };
    const Qt::Key moves[] = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up,      Qt::Key_Down,
                             Qt::Key_Home, Qt::Key_End,   Qt::Key_PageDown};
    const auto move = [&] {
        const Qt::KeyboardModifiers modifiers(pick(3) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
        const QPoint place(20 + pick(500), 20 + pick(450));
        switch (pick(8)) {
        case 0: return QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, place);
        case 1: return QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, place);
        case 2: // to an edge
            view.select({6 + 4000 * (1 + pick(6)) + pick(3) - 1, 0});
            break;
        default: break;
        }
        QTest::keyClick(&view, moves[pick(7)], modifiers | (pick(3) == 0 ? Qt::ControlModifier : Qt::NoModifier));
    };
    for (int step = 0; step < 600; ++step) {
        for (int i = pick(4); i >= 0; --i) move();
        const QString before = view.documentText();
        const Range selected = view.selection();
        QString after = QString(before).remove(selected.location, selected.length);
        const int what = pick(6);
        switch (what) {
        case 0:
            QTest::keyClicks(&view, QStringLiteral("x"));
            after.insert(selected.location, u'x');
            break;
        case 1: QTest::keyClick(&view, Qt::Key_Delete); break;
        case 2: QTest::keyClick(&view, Qt::Key_Backspace); break;
        case 3: QTest::keyClick(&view, Qt::Key_Delete, Qt::ControlModifier); break;
        case 4: QTest::keyClick(&view, Qt::Key_Backspace, Qt::ControlModifier); break;
        case 5: view.cut(); break;
        }
        QString text = view.documentText();
        const qsizetype gone = after.size() - text.size();
        if (selected.length == 0 && (what == 1 || what == 3)) after.remove(selected.location, gone);
        if (selected.length == 0 && (what == 2 || what == 4)) after.remove(selected.location - gone, gone);
        ASSERT_TRUE(text == after) << "step " << step << ", action " << what << " at " << selected.location;
        if (what != 0 && selected.length > 3000) view.undo(); // or soon nothing is left
        else if (pick(3) == 0) view.undo();
    }
}
