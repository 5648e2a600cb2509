// SPDX-License-Identifier: GPL-3.0-or-later
// Lines of nested lists and quotes that every level around them will mark once more. They are put aside and marked
// once, at the end, by the number of levels: the text that each level handles stays as short as its own words.
#pragma once

#include <QString>

#include <vector>

namespace tomelet {

class LaterLines
{
public:
    /// How a line is marked: list lines by four blanks more, quoted lines by "> " more.
    enum Marking { Lists, Quotes };

    /// Texts that hold the sign of a placeholder themselves are handled without any.
    LaterLines(Marking marking, const QString &text)
        : m_marking(marking)
        , m_used(!text.contains(sign))
    {}

    /// The text with all lines but the first and the last put aside, which must not change any more but by marking. Of
    /// lists, which lose their empty lines level by level, these and the lines behind them stay as well.
    [[nodiscard]] QString putAside(const QString &text);
    /// The lines put aside in this text get one mark more.
    void mark(const QString &text);
    /// The text with all that was put aside in its place again.
    [[nodiscard]] QString restored(const QString &text) const;

private:
    static constexpr QChar sign{0xFDD0}; // a noncharacter, for use inside a program
    static constexpr qsizetype placeholderSize = 3;

    struct Block
    {
        QString text;
        qsizetype marks = 0;
    };

    [[nodiscard]] QString placeholderFor(const QString &lines);
    [[nodiscard]] size_t indexAt(const QString &text, qsizetype at) const;
    [[nodiscard]] qsizetype markPosition(const QString &text, qsizetype lineStart) const;
    void appendMarked(QString &result, const QString &text, qsizetype from, qsizetype end, qsizetype marks) const;

    Marking m_marking;
    bool m_used;
    std::vector<Block> m_blocks;
};

} // namespace tomelet
