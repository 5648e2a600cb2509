// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/text/TMLTTextView.h"

#include "desktop/text/HangingIndents.h"
#include "desktop/text/TextCompleter.h"
#include "desktop/text/TextHighlighter.h"
#include "desktop/text/TextViewLooks.h"
#include "editor/Marks.h"
#include "editor/SoftBreaks.h"
#include "editor/TextLinks.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"

#include <QKeyEvent>
#include <QTextBlock>

#include <algorithm>

namespace tomelet::desktop {

TMLTTextView::TMLTTextView(QWidget *parent)
    : QPlainTextEdit(parent)
    , m_highlighter(new TextHighlighter(document()))
    , m_completer(new TextCompleter(this))
    , m_numbers(new LineNumbers(this))
{
    setAccessibleName(localized(TOMELET_TEXT("Text")));
    setFrameShape(QFrame::NoFrame);
    document()->setDocumentLayout(new HangingIndents(document()));
    document()->setDocumentMargin(20);
    connect(document(), &QTextDocument::contentsChange, this, [this](int, int removed, int added) {
        if (m_loading || (removed == 0 && added == 0)) return;
        m_typing.start();
        Q_EMIT edited();
    });
    m_typing.setSingleShot(true);
    m_typing.setInterval(1000);
    connect(&m_typing, &QTimer::timeout, this, [this] {
        endStep();
        viewport()->update();
    });
    m_spelling.setSingleShot(true);
    m_spelling.setInterval(100);
    connect(&m_spelling, &QTimer::timeout, this, &TMLTTextView::checkSpelling);
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, &TMLTTextView::caretMoved);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &TMLTTextView::placeNumbers);
    connect(this, &QPlainTextEdit::updateRequest, m_numbers, qOverload<>(&QWidget::update));
    applyViewSettings();
}

// -- the text ---------------------------------------------------------------------------------------------------------

void TMLTTextView::setDocumentText(const QString &text, bool editable, const HighlightOptions &options)
{
    m_loading = true;
    m_completer->close();
    m_highlighter->pause(true);
    m_options = options;
    clear();
    const QString shown = withSoftBreaks(text);
    m_hasSoftBreaks = shown.size() != text.size();
    setPlainText(shown);
    setReadOnly(!editable);
    // A caret shows where one is, also where nothing can be typed.
    setTextInteractionFlags(textInteractionFlags() | Qt::TextSelectableByKeyboard);
    m_highlighter->pause(false);
    restyle();
    m_loading = false;
}

static QString withPlainLineEnds(QString text)
{
    return text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
}

void TMLTTextView::takeDocumentText(const QString &text, bool editable, const HighlightOptions &options)
{
    const QString plain = withPlainLineEnds(text);
    const QString shown = withSoftBreaks(plain);
    const bool isInPieces = m_hasSoftBreaks || shown.size() != plain.size();
    // Where a text has such marks of its own it cannot be told what they are.
    const bool isUnclear = isInPieces && (withoutSoftBreaks(plain) != plain ||
                                          (!m_hasSoftBreaks && withoutSoftBreaks(shownText()) != shownText()));
    if (isUnclear || !document()->isUndoAvailable()) {
        const Range caret = selection();
        setDocumentText(text, editable, options);
        return select(caret);
    }
    m_loading = true;
    m_completer->close();
    m_options = options;
    m_hasSoftBreaks = isInPieces;
    if (const Replacement change = smallestReplacement(shownText(), shown); change.range.isFound()) {
        replaceAt(QTextCursor(document()), change.range, change.text); // the caret is another one
    }
    setReadOnly(!editable);
    setTextInteractionFlags(textInteractionFlags() | Qt::TextSelectableByKeyboard);
    restyle();
    m_loading = false;
}

QString TMLTTextView::shownText() const
{
    return document()->toRawText().replace(QChar::ParagraphSeparator, u'\n');
}

QString TMLTTextView::documentText() const
{
    return m_hasSoftBreaks ? withoutSoftBreaks(shownText()) : shownText();
}

Range TMLTTextView::textRange(qsizetype shownStart, qsizetype shownEnd) const
{
    if (!m_hasSoftBreaks) return {shownStart, shownEnd - shownStart};
    const QString shown = shownText();
    const qsizetype start = textPosition(shown, shownStart);
    return {start, textPosition(shown, shownEnd) - start};
}

Range TMLTTextView::selection() const
{
    const QTextCursor cursor = textCursor();
    return textRange(cursor.selectionStart(), cursor.selectionEnd());
}

QString TMLTTextView::selectedText() const
{
    const Range range = selection();
    return range.length == 0 ? QString() : documentText().mid(range.location, range.length);
}

void TMLTTextView::select(Range selection)
{
    if (!m_hasSoftBreaks) return selectShown(selection);
    const QString shown = shownText();
    const qsizetype start = shownPosition(shown, selection.location);
    selectShown({start, shownPosition(shown, selection.end()) - start});
}

void TMLTTextView::selectShown(Range selection)
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

void TMLTTextView::setHighlighting(const HighlightOptions &options)
{
    m_options = options;
    restyle();
}

void TMLTTextView::restyle()
{
    m_highlighter->restyle(m_options, palette());
}

void TMLTTextView::changeEvent(QEvent *event)
{
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_highlighter) restyle();
    if (event->type() == QEvent::FontChange && m_numbers) placeNumbers();
}

// -- commands ---------------------------------------------------------------------------------------------------------

bool TMLTTextView::apply(EditorCommand command, const EditorArguments &arguments)
{
    if (!mayChange()) return false;
    EditedText edited(documentText(), selection());
    const bool handled = applyEditorCommand(edited, command, arguments, editorSettings());
    const Replacement change = edited.change();
    if (change.range.isFound()) replaceRange(change.range, change.text);
    select(edited.selection());
    return handled;
}

void TMLTTextView::replaceInLine(const QTextBlock &line, const EditedText &edited)
{
    const Replacement change = edited.change();
    if (!change.range.isFound() || !mayChange()) return;
    const int start = line.position();
    replaceShown({start + change.range.location, change.range.length}, change.text);
    selectShown({start + edited.selection().location, edited.selection().length});
}

void TMLTTextView::replaceRange(Range range, const QString &text)
{
    if (!m_hasSoftBreaks) return replaceShown(range, text);
    const QString shown = shownText();
    const qsizetype start = shownPosition(shown, range.location);
    replaceShown({start, shownPosition(shown, range.end()) - start}, text);
}

void TMLTTextView::replaceShown(Range range, const QString &text)
{
    replaceAt(textCursor(), range, text);
}

void TMLTTextView::replaceAt(QTextCursor cursor, Range range, const QString &text)
{
    endStep();
    cursor.beginEditBlock();
    cursor.setPosition(int(range.location));
    cursor.setPosition(int(range.end()), QTextCursor::KeepAnchor);
    cursor.insertText(text);
    cursor.endEditBlock();
    endStep();
}

// What is typed joins the step before it, unless the document stands as it was saved.
void TMLTTextView::endStep()
{
    document()->setModified(false);
}

// -- finding ----------------------------------------------------------------------------------------------------------

static Qt::CaseSensitivity caseFor(const QString &wanted)
{
    return TMLTTextView::findsCase(wanted) ? Qt::CaseSensitive : Qt::CaseInsensitive;
}

bool TMLTTextView::findText(const QString &wanted, bool backward, bool stays)
{
    if (wanted.isEmpty()) return false;
    const QString text = documentText();
    const Range now = selection();
    const auto look = [&](qsizetype from) {
        return backward ? text.lastIndexOf(wanted, from, caseFor(wanted)) : text.indexOf(wanted, from, caseFor(wanted));
    };
    const qsizetype from = stays ? now.location : backward ? now.location - 1 : now.end();
    qsizetype found = backward && from < 0 ? -1 : look(from);
    if (found < 0) found = look(backward ? -1 : 0);
    if (found >= 0) select({found, wanted.size()});
    return found >= 0;
}

qsizetype TMLTTextView::countOf(const QString &wanted) const
{
    if (wanted.isEmpty()) return 0;
    const QString text = documentText();
    qsizetype count = 0;
    for (qsizetype at = text.indexOf(wanted, 0, caseFor(wanted)); at >= 0;
         at = text.indexOf(wanted, at + wanted.size(), caseFor(wanted)))
        ++count;
    return count;
}

void TMLTTextView::replaceFound(const QString &wanted, const QString &with)
{
    const Range now = selection();
    const QString selected = selectedText();
    if (wanted.isEmpty() || selected.compare(wanted, caseFor(wanted)) != 0 || isReadOnly() || !mayChange()) return;
    replaceRange(now, with);
    select({now.location + with.size(), 0});
}

void TMLTTextView::replaceAll(const QString &wanted, const QString &with)
{
    if (wanted.isEmpty() || isReadOnly() || !mayChange()) return;
    QString text = documentText();
    const qsizetype first = text.indexOf(wanted, 0, caseFor(wanted));
    if (first < 0) return;
    const qsizetype end = text.lastIndexOf(wanted, -1, caseFor(wanted)) + wanted.size();
    QString changed = text.mid(first, end - first);
    changed.replace(wanted, with, caseFor(wanted));
    replaceRange({first, end - first}, changed);
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

// An opening character behind the caret goes with its closing one.
bool TMLTTextView::deletePair()
{
    const QString line = textCursor().block().text();
    const int caret = textCursor().positionInBlock();
    EditedText behind(line.mid(caret, 2), {1, 0});
    if (textCursor().hasSelection() || !editorSettings().insertClosingCharacters || !deleteOpeningWithClosing(behind))
        return false;
    const qsizetype place = selection().location;
    replaceRange({place, 2}, {});
    return true;
}

// True when the key was a command's.
bool TMLTTextView::applyKey(const QKeyEvent &event)
{
    const bool shift = event.modifiers() & Qt::ShiftModifier;
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: apply(shift ? EditorCommand::ShiftNewLine : EditorCommand::NewLine); return true;
    case Qt::Key_Tab: return m_completer->completeByTab() || apply(EditorCommand::Tab);
    case Qt::Key_Backtab: apply(EditorCommand::ShiftTab); return true;
    case Qt::Key_Backspace: apply(EditorCommand::DeleteBackward); return true;
    default: break;
    }
    if (!concernsClosing(event.text())) return false;
    apply(EditorCommand::Type, {event.text(), {}, 0});
    return true;
}

void TMLTTextView::keyPressEvent(QKeyEvent *event)
{
    if (m_completer->isOpen() && m_completer->takeKey(*event)) return event->accept();
    const bool changes = !event->text().isEmpty() && isPlainKey(*event) && event->key() != Qt::Key_Escape;
    if (changes && !mayChange()) return event->accept();
    if (changes && applyKey(*event)) event->accept();
    else if (event->matches(QKeySequence::Delete) && mayChange() && deletePair()) event->accept();
    else if (m_hasSoftBreaks && mayChange() && deleteForward(*event)) event->accept();
    else QPlainTextEdit::keyPressEvent(event);
    if (changes && event->key() != Qt::Key_Tab) m_completer->typed();
}

void TMLTTextView::mouseReleaseEvent(QMouseEvent *event)
{
    QPlainTextEdit::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton || event->modifiers() != Qt::ControlModifier || textCursor().hasSelection())
        return;
    const QTextCursor clicked = cursorForPosition(event->position().toPoint());
    const QString address = addressOfLinkAt(clicked.block().text(), clicked.positionInBlock());
    if (!address.isEmpty()) Q_EMIT linkWanted(address);
}

void TMLTTextView::inputMethodEvent(QInputMethodEvent *event)
{
    if (!mayChange()) return;
    QPlainTextEdit::inputMethodEvent(event);
    if (!event->commitString().isEmpty()) m_completer->typed();
}

// Editing begins before the first change, whatever makes it.
void TMLTTextView::focusInEvent(QFocusEvent *event)
{
    if (!isReadOnly()) (void)mayChange();
    QPlainTextEdit::focusInEvent(event);
}

} // namespace tomelet::desktop
