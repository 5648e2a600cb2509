// SPDX-License-Identifier: GPL-3.0-or-later
// The plain text editor: keys and commands become transformations of the text, each one undo step.
#pragma once

#include "editor/EditorCommands.h"
#include "editor/Highlighting.h"

#include <QPlainTextEdit>

#include <functional>

namespace tomelet::desktop {

class TextHighlighter;

class TMLTTextView final : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit TMLTTextView(QWidget *parent = nullptr);

    /// Shows a text from its start, with nothing to undo.
    void setDocumentText(const QString &text, bool editable, const HighlightOptions &options);
    /// The text as it stands, with LF for every line end.
    [[nodiscard]] QString documentText() const;
    [[nodiscard]] Range selection() const;
    void select(Range selection);
    [[nodiscard]] bool isBlankUpToCaretLine() const;
    /// Lays the highlighting anew, as after a change of theme.
    void restyle();

    /// Carries out a command in one undo step. False: no rule of it applied, or the document takes no changes.
    bool apply(EditorCommand command, const EditorArguments &arguments = {});
    /// Asked before the text changes by anything but undo; "false" keeps it as it is.
    void setChangeGuard(std::function<bool()> guard) { m_mayChange = std::move(guard); }

    [[nodiscard]] TextHighlighter &highlighter() { return *m_highlighter; }

Q_SIGNALS:
    /// The text was changed by a person.
    void edited();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    void changeEvent(QEvent *event) override;

private:
    [[nodiscard]] bool mayChange() const { return !m_mayChange || m_mayChange(); }
    bool applyKey(const QKeyEvent &event);

    TextHighlighter *m_highlighter;
    HighlightOptions m_options;
    std::function<bool()> m_mayChange;
    bool m_loading = false;
};

} // namespace tomelet::desktop
