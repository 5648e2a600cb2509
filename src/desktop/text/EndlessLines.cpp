// SPDX-License-Identifier: GPL-3.0-or-later
// The plain text editor where a line is shown in pieces: the caret never stands inside of a soft break, so that no key
// cuts into one.
#include "desktop/text/TMLTTextView.h"

#include "editor/SoftBreaks.h"

#include <QKeyEvent>

#include <optional>
#include <utility>

namespace tomelet::desktop {

bool TMLTTextView::isPiece(const QTextBlock &block) const
{
    return m_hasSoftBreaks && isContinuation(block.text());
}

int TMLTTextView::numberOfLine(const QTextBlock &block) const
{
    if (!m_hasSoftBreaks) return block.blockNumber() + 1;
    int number = 0;
    for (QTextBlock line = block; line.isValid(); line = line.previous())
        if (!isPiece(line) || !line.previous().isValid()) ++number;
    return number;
}

// The place next to a soft break in place of one inside of it.
static int outsideOfSoftBreak(const QTextBlock &block, int position, bool backward)
{
    const int inBlock = position - block.position();
    if (inBlock == 0 && isContinuation(block.text())) return backward ? position - 2 : position + 1;
    const bool isAtEnd = inBlock > 0 && inBlock == block.length() - 1 && isContinuation(block.next().text());
    if (isAtEnd) return backward ? position - 1 : position + 2;
    return position;
}

void TMLTTextView::leaveSoftBreak()
{
    QTextCursor cursor = textCursor();
    const int place = cursor.position();
    const bool backward = place < std::exchange(m_lastCaret, place);
    if (!m_hasSoftBreaks) return;
    const int caret = outsideOfSoftBreak(cursor.block(), place, backward);
    const bool selects = cursor.hasSelection();
    const int anchor =
        selects ? outsideOfSoftBreak(document()->findBlock(cursor.anchor()), cursor.anchor(), place < cursor.anchor())
                : caret;
    if (caret == place && (!selects || anchor == cursor.anchor())) return;
    cursor.setPosition(anchor);
    cursor.setPosition(caret, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

// False for a text without endless lines, or where it cannot be shown in pieces.
bool TMLTTextView::insertInPieces(const QString &text)
{
    const QString shown = withSoftBreaks(text);
    if (shown.size() == text.size() || (!m_hasSoftBreaks && withoutSoftBreaks(shownText()) != shownText()))
        return false;
    m_hasSoftBreaks = true;
    const QTextCursor cursor = textCursor();
    replaceShown({cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart()}, shown);
    return true;
}

static std::optional<QTextCursor::MoveOperation> deletionOf(const QKeyEvent &event)
{
    if (event.matches(QKeySequence::Delete)) return QTextCursor::NextCharacter;
    if (event.matches(QKeySequence::DeleteEndOfWord)) return QTextCursor::NextWord;
    if (event.matches(QKeySequence::DeleteStartOfWord)) return QTextCursor::PreviousWord;
    if (event.matches(QKeySequence::DeleteEndOfLine)) return QTextCursor::EndOfBlock;
    return std::nullopt;
}

// True when the key deletes; a selection has its ends outside of soft breaks and goes as ever.
bool TMLTTextView::deleteForward(const QKeyEvent &event)
{
    const auto movement = deletionOf(event);
    QTextCursor cursor = textCursor();
    if (!movement || cursor.hasSelection()) return false;
    const int place = cursor.position();
    cursor.movePosition(*movement, QTextCursor::KeepAnchor);
    Range deleted = textRange(cursor.selectionStart(), cursor.selectionEnd());
    const QString text = documentText();
    if (deleted.length == 0 && cursor.position() > place && deleted.location < text.size())
        deleted.length = text[deleted.location].isHighSurrogate() ? 2 : 1; // what is behind the break
    if (deleted.length > 0) replaceRange(deleted, {});
    return true;
}

} // namespace tomelet::desktop
