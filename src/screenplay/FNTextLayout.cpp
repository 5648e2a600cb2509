// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenplay/FNTextLayout.h"

#include <optional>

namespace tomelet {

int columnsInWidth(const FNFont &font, int width)
{
    constexpr double signWidth = 0.6; // of the point size, in all cuts of this face
    return qMax(1, int(width / (font.pointSize * signWidth)));
}

FNMeasuredText::FNMeasuredText(const QString &text)
    : m_text(text)
    , m_end(text.size())
{
    while (m_end > 0 && m_text[m_end - 1].isSpace()) --m_end;
}

// -- lines ------------------------------------------------------------------------------------------------------------

// Accents and the second halves of pairs stand over the sign in front.
static bool takesColumn(QChar c)
{
    return !c.isLowSurrogate() && !c.isMark();
}

// The blanks that hang over its end and its line end included. Words go to the next line whole, unless they are longer
// than a line.
qsizetype FNMeasuredText::endOfLine(qsizetype from, int columns) const
{
    qsizetype wordStart = from;
    int used = 0;
    for (qsizetype i = from; i < m_text.size(); ++i) {
        const QChar c = m_text[i];
        if (c == u'\n') return i + 1;
        if (c.isSpace()) {
            wordStart = i + 1;
            ++used;
        } else if (takesColumn(c) && ++used > columns) {
            return wordStart > from ? wordStart : i;
        }
    }
    return m_text.size();
}

int FNMeasuredText::lines(qsizetype from, int columns, int most) const
{
    if (from < m_text.size() && from >= m_end) return 1;
    int lines = 0;
    for (qsizetype position = from; position < m_end && lines < most; ++lines) position = endOfLine(position, columns);
    return lines;
}

qsizetype FNMeasuredText::endOfLines(qsizetype from, int columns, int lines) const
{
    qsizetype position = from;
    for (int i = 0; i < lines && position < m_end; ++i) position = endOfLine(position, columns);
    return position >= m_end ? m_text.size() : position;
}

// -- sentences --------------------------------------------------------------------------------------------------------

static bool endsSentence(QChar c)
{
    return c == u'.' || c == u'?' || c == u'!';
}

static qsizetype skipMarks(const QString &text, qsizetype i)
{
    while (i < text.size() && endsSentence(text[i])) ++i;
    return i;
}

static qsizetype skipBlanks(const QString &text, qsizetype i)
{
    while (i < text.size() && text[i].isSpace()) ++i;
    return i;
}

namespace {

struct Sentence
{
    qsizetype words; ///< the end without the blanks behind it
    qsizetype end;
};

} // namespace

// The sentence that begins at `from`; nothing when it does not end in front of `limit`.
static std::optional<Sentence> sentenceAt(const QString &text, qsizetype from, qsizetype limit)
{
    qsizetype i = from + 1;
    while (i < limit && !endsSentence(text[i]) && text[i - 1] != u'\n') ++i;
    if (text[i - 1] == u'\n') return Sentence{i - 1, i};
    if (i >= limit) return std::nullopt;
    Sentence sentence{};
    // A "!" at the start of a page would be taken for the mark that forces action.
    do {
        sentence.words = skipMarks(text, i);
        i = sentence.end = skipBlanks(text, sentence.words);
    } while (i < text.size() && text[i] == u'!');
    return sentence;
}

qsizetype FNMeasuredText::endOfSentences(qsizetype from, qsizetype end) const
{
    qsizetype last = from;
    while (last < end) {
        const auto sentence = sentenceAt(m_text, last, end);
        if (!sentence || sentence->words > end || sentence->end >= m_text.size()) break;
        last = sentence->end;
    }
    return last;
}

} // namespace tomelet
