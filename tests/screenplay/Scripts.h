// SPDX-License-Identifier: GPL-3.0-or-later
// Screenplays for tests: elements as lines that can be compared at a glance, and random texts.
#pragma once

#include "screenplay/FNScript.h"

#include "tests/support/Notebook.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <random>

namespace tomelet::test {

/// "Scene Heading #1#: INT. ROOM" for each element, with "(centered)", "(dual)" and the depth where there are any.
inline QString described(const FNElement &element)
{
    QString text = element.elementType;
    if (element.isCentered) text += QStringLiteral(" (centered)");
    if (element.isDualDialogue) text += QStringLiteral(" (dual)");
    if (element.sectionDepth > 0) text += u' ' + QString::number(element.sectionDepth);
    if (element.sceneNumber) text += QStringLiteral(" #") + *element.sceneNumber + u'#';
    return text + QStringLiteral(": ") + QString(element.elementText).replace(u'\n', u'|');
}

inline QString described(const QList<FNElement> &elements)
{
    QStringList lines;
    for (const FNElement &element : elements) lines << described(element);
    return lines.join(u'\n');
}

/// Lines of all kinds in any order, which make sense only now and then.
inline QString randomLines(std::mt19937 &random, int count)
{
    static const char *const lines[] = {"",
                                        "",
                                        "",
                                        "",
                                        "",
                                        "  ",
                                        "   ",
                                        "\t ",
                                        "JANE",
                                        "JANE",
                                        "BOB ^",
                                        "BOB^ ",
                                        "@Jo",
                                        "@Jo ^",
                                        "(low)",
                                        " (x)",
                                        "hello.",
                                        "Hm. No! So?",
                                        "!SHOUT",
                                        "~la la",
                                        "~",
                                        "INT. A #1#",
                                        "ext. b ##",
                                        "I/E. C",
                                        ".BAR",
                                        ".BAR#2#",
                                        ". .x",
                                        "..",
                                        ".",
                                        "=",
                                        "= plan",
                                        " = p",
                                        "===",
                                        "====  ",
                                        "# one",
                                        "  ## two",
                                        "#",
                                        "[[note]]",
                                        "INT^",
                                        "> a< ",
                                        "\v===",
                                        "INT. >",
                                        "ANN  ",
                                        "[[ a ] b]]",
                                        "/* cut */",
                                        "/**/",
                                        "/*/",
                                        "/* open",
                                        "close */",
                                        "*/",
                                        "CUT TO:",
                                        "INT. X TO:",
                                        "> fade",
                                        ">mid<",
                                        "> mid <",
                                        ">",
                                        "><",
                                        " FADE OUT.",
                                        "Fade out.",
                                        "a: b",
                                        "KEY:",
                                        "1947",
                                        "JANE (cont'd)",
                                        "*so* _it_ is",
                                        "é\u0301 ü"};
    constexpr int kinds = int(std::size(lines));
    QString text;
    for (int i = 0; i < count; ++i) text += QString::fromUtf8(lines[random() % kinds]) + u'\n';
    return text;
}

/// A screenplay as somebody would write it, with every kind of element.
inline QString randomScreenplay(std::mt19937 &random, int scenes)
{
    const auto upTo = [&](int limit) { return int(random() % unsigned(limit)); };
    const auto sentences = [&](int count) {
        static const char *const words[] = {"rain", "falls", "on", "the", "harbour", "slowly", "*never*", "boat"};
        QString text;
        for (int i = 0; i < count; ++i) {
            text += QStringLiteral("So%1").arg(upTo(1000000));
            for (int word = upTo(14); word >= 0; --word) text += u' ' + QLatin1StringView(words[upTo(8)]);
            text += QLatin1StringView(i % 3 == 0 ? "? " : i % 3 == 1 ? ". " : "...! ");
        }
        return text.trimmed();
    };
    QString text = upTo(2) ? QStringLiteral("Title: T\nAuthors:\n\tA\n\tB\nContact:\n\tC\nSource: S\n\n") : QString();
    for (int scene = 1; scene <= scenes; ++scene) {
        text += QStringLiteral("\n%1%2\n\n")
                    .arg(QLatin1StringView(upTo(3) ? "INT. ROOM" : ".IN BETWEEN"),
                         upTo(2) ? QStringLiteral(" #%1A#").arg(scene) : QString());
        for (int part = upTo(8); part >= 0; --part) {
            const QString said = (upTo(3) ? QString() : QStringLiteral("(softly)\n")) + sentences(1 + upTo(30)) + u'\n';
            switch (upTo(14)) {
            case 0: text += QStringLiteral("~la la\n~lo lo\n\n~li\n\n"); break;
            case 1: text += QStringLiteral("/* cut */\n\n/*\nlong\n\ncut\n*/\n\n"); break;
            case 2: text += QStringLiteral("[[a note]]\n\n= a plan\n\n## A part\n\n"); break;
            case 3: text += QStringLiteral("> FLASH\n\nCUT TO:\n\n> the middle <\n\n"); break;
            case 4: text += QStringLiteral("===\n\n"); break;
            case 5:
                text += QStringLiteral("!BOOM\n\n") + sentences(60) + u'\n' + sentences(90) + QStringLiteral("\n\n");
                break;
            case 6: text += QStringLiteral("ANN\n%1\nBOB ^\n%2\n").arg(said, said); break;
            case 7: text += QStringLiteral("@McX\n%1  \nmore\n(x)\n%1\n").arg(said); break;
            case 8:
            case 9:
            case 10: text += QStringLiteral("ANN (O.S.)\n%1\n").arg(said); break;
            default: text += sentences(1 + upTo(9)) + QStringLiteral("\n\n");
            }
        }
    }
    return text;
}

} // namespace tomelet::test
