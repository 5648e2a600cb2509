// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/text/TextViewLooks.h"

#include "desktop/document/SpellChecker.h"
#include "desktop/text/TMLTTextView.h"
#include "desktop/text/TextCompleter.h"
#include "editor/SpelledWords.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"

#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QMenu>
#include <QPaintEvent>
#include <QPainter>
#include <QTextBlock>
#include <QTextLayout>

namespace tomelet::desktop {

// -- line numbers -----------------------------------------------------------------------------------------------------

LineNumbers::LineNumbers(TMLTTextView *view)
    : QWidget(view)
    , m_view(view)
{}

int LineNumbers::wantedWidth() const
{
    const qsizetype digits = QString::number(m_view->blockCount()).size();
    return 16 + fontMetrics().horizontalAdvance(QString(qMax<qsizetype>(digits, 2), u'9'));
}

void LineNumbers::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const QFontMetrics metrics(m_view->font());
    int number = 0;
    for (const auto &[block, top] : m_view->visibleBlocks()) {
        const bool isPiece = m_view->isPiece(block);
        if (number == 0) number = m_view->numberOfLine(block);
        else if (!isPiece) ++number;
        if (!isPiece)
            painter.drawText(0, int(top), width() - 8, metrics.height(), Qt::AlignRight, QString::number(number));
    }
}

// -- the view's own drawing -------------------------------------------------------------------------------------------

std::vector<std::pair<QTextBlock, double>> TMLTTextView::visibleBlocks() const
{
    std::vector<std::pair<QTextBlock, double>> blocks;
    double top = blockBoundingGeometry(firstVisibleBlock()).translated(contentOffset()).top();
    for (QTextBlock block = firstVisibleBlock(); block.isValid() && top < viewport()->height(); block = block.next()) {
        if (block.isVisible()) blocks.emplace_back(block, top);
        top += blockBoundingRect(block).height();
    }
    return blocks;
}

void TMLTTextView::applyViewSettings()
{
    // Of the numbers of this setting 1 holds the line in the middle.
    m_typewriter = settings().integer(QStringLiteral("centerCurrentLine")) == 1;
    m_marksLine = settings().boolean(QStringLiteral("highlightCurrentLine"));
    m_checksSpelling = settings().boolean(QStringLiteral("continuousSpellChecking"));
    m_numbers->setVisible(settings().boolean(QStringLiteral("showLineNumbers")));
    setCenterOnScroll(m_typewriter);
    placeNumbers();
    caretMoved();
    checkSpelling();
    viewport()->update();
}

void TMLTTextView::setColumnWidth(int width)
{
    m_columnWidth = width;
    placeNumbers();
}

void TMLTTextView::placeNumbers()
{
    const int numbers = m_numbers->isHidden() ? 0 : m_numbers->wantedWidth();
    const QRect inside = contentsRect();
    const int side = m_columnWidth > 0 ? qMax(0, (inside.width() - numbers - m_columnWidth) / 2) : 0;
    setViewportMargins(numbers + side, 0, side, 0);
    m_numbers->setGeometry(inside.left() + side, inside.top(), numbers, inside.height());
}

void TMLTTextView::caretMoved()
{
    leaveSoftBreak();
    m_completer->caretMoved();
    QList<QTextEdit::ExtraSelection> marks;
    if (m_marksLine) {
        QTextEdit::ExtraSelection line;
        QColor colour = palette().color(QPalette::Highlight);
        colour.setAlpha(24);
        line.format.setBackground(colour);
        line.format.setProperty(QTextFormat::FullWidthSelection, true);
        line.cursor = textCursor();
        line.cursor.clearSelection();
        marks.append(line);
    }
    setExtraSelections(marks);
    if (m_typewriter && hasFocus() && !textCursor().hasSelection()) centerCursor();
}

void TMLTTextView::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    placeNumbers();
}

// -- spelling ---------------------------------------------------------------------------------------------------------

static constexpr int longestCheckedLine = 20000;

namespace {

void drawWave(QPainter &painter, double from, double to, double y)
{
    static constexpr double step = 2;
    QPolygonF wave;
    bool up = false;
    for (double x = from; x <= to; x += step, up = !up) wave << QPointF(x, up ? y - step : y);
    painter.drawPolyline(wave);
}

void drawUnder(QPainter &painter, const QTextBlock &block, double top, Range word)
{
    const QTextLayout &layout = *block.layout();
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        const int start = qMax(line.textStart(), int(word.location));
        const int end = qMin(line.textStart() + line.textLength(), int(word.end()));
        if (start >= end) continue;
        const double left = layout.position().x();
        drawWave(painter, left + line.cursorToX(start), left + line.cursorToX(end), top + line.y() + line.ascent() + 3);
    }
}

} // namespace

// Words are looked up when typing pauses, a few milliseconds at a time; drawing only asks for what is known.
void TMLTTextView::checkSpelling()
{
    static constexpr int slice = 8;
    if (!m_checksSpelling || !SpellChecker::shared().isAvailable()) return;
    QElapsedTimer clock;
    clock.start();
    for (const auto &[block, top] : visibleBlocks()) {
        const QString text = block.text();
        if (text.size() > longestCheckedLine) continue;
        for (const Range word : spelledWords(text)) {
            (void)SpellChecker::shared().isRight(text.mid(word.location, word.length));
            if (clock.elapsed() < slice) continue;
            viewport()->update();
            return m_spelling.start();
        }
    }
    viewport()->update();
}

void TMLTTextView::paintEvent(QPaintEvent *event)
{
    QPlainTextEdit::paintEvent(event);
    if (!m_checksSpelling || !SpellChecker::shared().isAvailable()) return;
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(0xd0, 0x30, 0x30));
    const int caret = hasFocus() ? textCursor().position() : -1;
    bool unknown = false;
    for (const auto &[block, top] : visibleBlocks()) {
        const QString text = block.text();
        if (text.size() > longestCheckedLine) continue;
        const int inBlock = caret - block.position();
        for (const Range word : spelledWords(text)) {
            const auto right = SpellChecker::shared().remembered(text.mid(word.location, word.length));
            unknown = unknown || !right;
            const bool isTyped = inBlock > word.location && inBlock <= word.end() && m_typing.isActive();
            if (right && !*right && !isTyped) drawUnder(painter, block, top, word);
        }
    }
    if (unknown && !m_spelling.isActive()) m_spelling.start();
}

Range TMLTTextView::wordAt(const QPoint &position) const
{
    const QTextCursor cursor = cursorForPosition(position);
    const int inBlock = cursor.positionInBlock();
    for (const Range word : spelledWords(cursor.block().text()))
        if (inBlock >= word.location && inBlock <= word.end()) {
            const qsizetype start = cursor.block().position() + word.location;
            return textRange(start, start + word.length);
        }
    return Range{Range::notFound, 0};
}

void TMLTTextView::addSuggestions(QMenu *menu, Range place)
{
    static constexpr qsizetype most = 6;
    const QString word = documentText().mid(place.location, place.length);
    if (SpellChecker::shared().isRight(word)) return;
    QAction *first = menu->actions().value(0);
    const auto add = [&](const QString &text, auto action) {
        auto *made = new QAction(text, menu);
        connect(made, &QAction::triggered, this, action);
        menu->insertAction(first, made);
    };
    if (!isReadOnly())
        for (const QString &better : SpellChecker::shared().suggestions(word).mid(0, most))
            add(better, [this, place, better] { replaceRange(place, better); });
    add(localized(TOMELET_TEXT("Add to Dictionary")), [this, word] {
        SpellChecker::shared().learn(word);
        viewport()->update();
    });
    add(localized(TOMELET_TEXT("Ignore Spelling")), [this, word] {
        SpellChecker::shared().ignore(word);
        viewport()->update();
    });
    menu->insertSeparator(first);
}

void TMLTTextView::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = createStandardContextMenu(event->pos());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const Range word = wordAt(event->pos());
    if (m_checksSpelling && word.isFound()) addSuggestions(menu, word);
    menu->popup(event->globalPos());
}

} // namespace tomelet::desktop
