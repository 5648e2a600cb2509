// SPDX-License-Identifier: GPL-3.0-or-later
// Endless lines in pieces: the text comes back as it was, and so does every position.
#include "editor/SoftBreaks.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace tomelet;

TEST(SoftBreaks, theTextComesBack)
{
    const QString endless = QStringLiteral("some words \U0001F44D").repeated(5000); // pairs at every place of a piece
    const QStringList texts{QString(),
                            QStringLiteral("short\nlines\n"),
                            endless,
                            endless + u'\n',
                            u'\n' + endless,
                            endless + QStringLiteral("\n\nnext\n") + endless + QStringLiteral("\n"),
                            QString(30000, u'x'),
                            endless + QChar(0x206a)};
    for (const QString &text : texts) {
        const QString shown = withSoftBreaks(text);
        const bool isMarked = text.contains(QChar(0x206a));
        EXPECT_EQ(shown == text, text.size() < 100 || isMarked);
        if (isMarked) continue; // shown as it is, for better or worse
        EXPECT_TRUE(withoutSoftBreaks(shown) == text);
        EXPECT_TRUE(shown.isValidUtf16());
        for (const QString &line : shown.split(u'\n')) EXPECT_LT(line.size(), 20001);
    }
}

TEST(SoftBreaks, positionsAreFoundAgain)
{
    const QString text = QStringLiteral("a\n") + QString(20010, u'b') + QStringLiteral("\nc");
    const QString shown = withSoftBreaks(text);
    for (qsizetype at = 0; at <= text.size(); ++at) {
        const qsizetype there = shownPosition(shown, at);
        ASSERT_EQ(textPosition(shown, there), at);
        if (at == text.size()) break;
        ASSERT_EQ(shown[there], text[at]) << at; // behind a break, not in front of it
    }
    for (qsizetype there = 1; there <= shown.size(); ++there)
        ASSERT_LE(textPosition(shown, there) - textPosition(shown, there - 1), 1);
}

TEST(SoftBreaks, cutBreaksCostNoLineEnd)
{
    const QString mark(QChar(0x206a));
    EXPECT_EQ(withoutSoftBreaks(QStringLiteral("a") + mark + QStringLiteral("b")), QStringLiteral("ab"));
    EXPECT_EQ(withoutSoftBreaks(QStringLiteral("a\n") + mark + QStringLiteral("b")), QStringLiteral("a\nb"));
    EXPECT_EQ(withoutSoftBreaks(mark + u'\n' + mark + mark + u'\n' + mark + u'\n'), QStringLiteral("\n"));
}
