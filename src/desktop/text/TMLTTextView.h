// SPDX-License-Identifier: GPL-3.0-or-later
// The plain text editor: keys and commands become transformations of the text, each one undo step.
#pragma once

#include "editor/EditorCommands.h"
#include "editor/Highlighting.h"

#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTimer>

#include <functional>
#include <utility>
#include <vector>

namespace tomelet::desktop {

class LineNumbers;
class TextCompleter;
class TextHighlighter;

class TMLTTextView final : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit TMLTTextView(QWidget *parent = nullptr);

    /// Shows a text from its start, with nothing to undo.
    void setDocumentText(const QString &text, bool editable, const HighlightOptions &options);
    /// The text as somebody else left it. What can be undone here stays so, with one step more; the caret stays as
    /// well.
    void takeDocumentText(const QString &text, bool editable, const HighlightOptions &options);
    /// The text as it stands, with LF for every line end.
    [[nodiscard]] QString documentText() const;
    /// Positions are those of this text, which is not quite what the widget holds: endless lines are shown in pieces.
    [[nodiscard]] Range selection() const;
    void select(Range selection);
    [[nodiscard]] QString selectedText() const;
    /// The block goes on with the line of the one above.
    [[nodiscard]] bool isPiece(const QTextBlock &block) const;
    /// Counted from 1.
    [[nodiscard]] int numberOfLine(const QTextBlock &block) const;
    [[nodiscard]] bool isBlankUpToCaretLine() const;
    /// Lays the highlighting anew, as after a change of theme.
    void restyle();
    /// The same by other options.
    void setHighlighting(const HighlightOptions &options);

    /// Prints the text in colours for paper, whatever those of the screen are.
    void printOnPaper(QPagedPaintDevice *printer) const;

    /// Carries out a command in one undo step. False: no rule of it applied, or the document takes no changes.
    bool apply(EditorCommand command, const EditorArguments &arguments = {});
    /// Makes the change of one line, which was edited apart, and takes its caret; nothing where no change may be made.
    void replaceInLine(const QTextBlock &line, const EditedText &edited);
    /// Asked before the text changes by anything but undo; "false" keeps it as it is.
    void setChangeGuard(std::function<bool()> guard) { m_mayChange = std::move(guard); }

    /// Line numbers, the mark of the current line, typewriter scrolling and spelling as the settings have them.
    void applyViewSettings();
    /// The widest that lines become, in pixels, in the middle of the view; 0 for the whole width.
    void setColumnWidth(int width);
    /// The blocks on the screen with the place of their upper edge in the viewport.
    [[nodiscard]] std::vector<std::pair<QTextBlock, double>> visibleBlocks() const;

    // -- finding; words without capitals are found in either case
    [[nodiscard]] static bool findsCase(const QString &wanted) { return wanted != wanted.toLower(); }
    /// Selects the next or previous place and goes round at the end; `stays` begins at the selection itself.
    bool findText(const QString &wanted, bool backward, bool stays);
    [[nodiscard]] qsizetype countOf(const QString &wanted) const;
    /// Replaces what is selected, if it is what was found.
    void replaceFound(const QString &wanted, const QString &with);
    /// All of them in one undo step.
    void replaceAll(const QString &wanted, const QString &with);

    [[nodiscard]] TextHighlighter &highlighter() { return *m_highlighter; }
    [[nodiscard]] TextCompleter &completer() { return *m_completer; }

Q_SIGNALS:
    /// The text was changed by a person.
    void edited();
    /// Pasted or dropped; the caret stands where it goes.
    void filesDropped(const QStringList &files);
    void imageDropped(const QImage &image);
    void linkDropped(const QString &address, const QString &title);
    /// A link was clicked with Ctrl held; the address is as it stands in the text.
    void linkWanted(const QString &address);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    [[nodiscard]] QMimeData *createMimeDataFromSelection() const override;
    [[nodiscard]] bool canInsertFromMimeData(const QMimeData *source) const override;
    void dropEvent(QDropEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    [[nodiscard]] bool mayChange() const { return !m_mayChange || m_mayChange(); }
    bool applyKey(const QKeyEvent &event);
    bool deletePair();
    void replaceRange(Range range, const QString &text);
    void replaceShown(Range range, const QString &text);
    void replaceAt(QTextCursor cursor, Range range, const QString &text);
    void endStep();
    void selectShown(Range selection);
    [[nodiscard]] QString shownText() const;
    [[nodiscard]] Range textRange(qsizetype shownStart, qsizetype shownEnd) const;
    void leaveSoftBreak();
    bool deleteForward(const QKeyEvent &event);
    bool insertInPieces(const QString &text);
    void placeNumbers();
    void caretMoved();
    void checkSpelling();
    [[nodiscard]] Range wordAt(const QPoint &position) const;
    void addSuggestions(QMenu *menu, Range place);

    TextHighlighter *m_highlighter;
    TextCompleter *m_completer;
    HighlightOptions m_options;
    std::function<bool()> m_mayChange;
    bool m_loading = false;
    bool m_hasSoftBreaks = false;
    int m_lastCaret = 0; // tells where the caret comes from
    LineNumbers *m_numbers;
    int m_columnWidth = 0;
    bool m_typewriter = false;
    bool m_marksLine = false;
    bool m_checksSpelling = false;
    QTimer m_typing;   // runs while somebody types: the word at the caret is not judged yet, the step goes on
    QTimer m_spelling; // looks words up when nothing else is to be done
};

} // namespace tomelet::desktop
