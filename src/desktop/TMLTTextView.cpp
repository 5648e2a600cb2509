// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/TMLTTextView.h"

#include "desktop/TextHighlighter.h"
#include "foundation/Localization.h"

#include <QKeyEvent>
#include <QMimeData>
#include <QTextBlock>

#include <algorithm>

namespace tomelet::desktop {

TMLTTextView::TMLTTextView(QWidget *parent)
    : QPlainTextEdit(parent)
    , m_highlighter(new TextHighlighter(document()))
{
    setAccessibleName(localized(TOMELET_TEXT("Text")));
    setFrameShape(QFrame::NoFrame);
    document()->setDocumentMargin(20);
    connect(document(), &QTextDocument::contentsChange, this, [this](int, int removed, int added) {
        if (!m_loading && (removed > 0 || added > 0)) Q_EMIT edited();
    });
}

// Looking for words to break at takes seconds in a line of a million units.
static bool hasEndlessLine(const QString &text)
{
    static constexpr qsizetype longest = 50000;
    for (qsizetype start = 0, end = 0; end >= 0; start = end + 1) {
        end = text.indexOf(u'\n', start);
        if ((end < 0 ? text.size() : end) - start > longest) return true;
    }
    return false;
}

// -- the text ---------------------------------------------------------------------------------------------------------

void TMLTTextView::setDocumentText(const QString &text, bool editable, const HighlightOptions &options)
{
    m_loading = true;
    m_highlighter->pause(true);
    m_options = options;
    clear();
    setWordWrapMode(hasEndlessLine(text) ? QTextOption::WrapAnywhere : QTextOption::WrapAtWordBoundaryOrAnywhere);
    setPlainText(text);
    setReadOnly(!editable);
    // A caret shows where one is, also where nothing can be typed.
    setTextInteractionFlags(textInteractionFlags() | Qt::TextSelectableByKeyboard);
    m_highlighter->pause(false);
    restyle();
    m_loading = false;
}

QString TMLTTextView::documentText() const
{
    return document()->toRawText().replace(QChar::ParagraphSeparator, u'\n');
}

Range TMLTTextView::selection() const
{
    const QTextCursor cursor = textCursor();
    return {cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart()};
}

void TMLTTextView::select(Range selection)
{
    const int last = document()->characterCount() - 1;
    QTextCursor cursor = textCursor();
    cursor.setPosition(int(std::clamp<qsizetype>(selection.location, 0, last)));
    cursor.setPosition(int(std::clamp<qsizetype>(selection.end(), 0, last)), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    ensureCursorVisible();
}

bool TMLTTextView::isBlankUpToCaretLine() const
{
    for (QTextBlock block = textCursor().block(); block.isValid(); block = block.previous())
        if (!block.text().trimmed().isEmpty()) return false;
    return true;
}

void TMLTTextView::restyle()
{
    m_highlighter->restyle(m_options, palette());
}

void TMLTTextView::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_highlighter) restyle();
}

// -- commands ---------------------------------------------------------------------------------------------------------

bool TMLTTextView::apply(EditorCommand command, const EditorArguments &arguments)
{
    if (!mayChange()) return false;
    EditedText edited(documentText(), selection());
    const bool handled = applyEditorCommand(edited, command, arguments, editorSettings());
    const Replacement change = edited.change();
    if (change.range.isFound()) {
        QTextCursor cursor = textCursor();
        cursor.beginEditBlock();
        cursor.setPosition(int(change.range.location));
        cursor.setPosition(int(change.range.end()), QTextCursor::KeepAnchor);
        cursor.insertText(change.text);
        cursor.endEditBlock();
    }
    select(edited.selection());
    return handled;
}

namespace {

// Keys for third characters come with a modifier of their own.
constexpr Qt::KeyboardModifiers forTyping = Qt::ShiftModifier | Qt::KeypadModifier | Qt::GroupSwitchModifier;

bool isPlainKey(const QKeyEvent &event)
{
    return !(event.modifiers() & ~forTyping);
}

// Characters that closing ones have to do with; all others need no look at the text.
bool concernsClosing(const QString &typed)
{
    return typed.size() == 1 && QStringView(u"()[]{}`\"'").contains(typed[0]);
}

} // namespace

// True when the key was a command's.
bool TMLTTextView::applyKey(const QKeyEvent &event)
{
    const bool shift = event.modifiers() & Qt::ShiftModifier;
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        apply(shift ? EditorCommand::ShiftNewLine : EditorCommand::NewLine);
        return true;
    case Qt::Key_Tab: return apply(EditorCommand::Tab);
    case Qt::Key_Backtab:
        apply(EditorCommand::ShiftTab);
        return true;
    case Qt::Key_Backspace:
        apply(EditorCommand::DeleteBackward);
        return true;
    default: break;
    }
    if (!concernsClosing(event.text())) return false;
    apply(EditorCommand::Type, {event.text(), {}, 0});
    return true;
}

void TMLTTextView::keyPressEvent(QKeyEvent *event)
{
    const bool changes = !event->text().isEmpty() && isPlainKey(*event) && event->key() != Qt::Key_Escape;
    if (changes && !mayChange()) return event->accept();
    if (changes && applyKey(*event)) return event->accept();
    QPlainTextEdit::keyPressEvent(event);
}

void TMLTTextView::inputMethodEvent(QInputMethodEvent *event)
{
    if (mayChange()) QPlainTextEdit::inputMethodEvent(event);
}

// Editing begins before the first change, whatever makes it.
void TMLTTextView::focusInEvent(QFocusEvent *event)
{
    if (!isReadOnly()) (void)mayChange();
    QPlainTextEdit::focusInEvent(event);
}

void TMLTTextView::insertFromMimeData(const QMimeData *source)
{
    if (mayChange()) QPlainTextEdit::insertFromMimeData(source);
}

} // namespace tomelet::desktop
