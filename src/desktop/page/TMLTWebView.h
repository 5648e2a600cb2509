// SPDX-License-Identifier: GPL-3.0-or-later
// The formatted editor: a page that is edited in place. The live page is the document; this keeps what it
// last told of itself at hand, as scripts in a page answer in their own time.
#pragma once

#include "desktop/Lifetime.h"
#include "editor/PageBoxes.h"
#include "editor/PageParts.h"

#include <QImage>
#include <QTimer>
#include <QVariantMap>
#include <QWebEngineView>

#include <functional>

class QMimeData;

namespace tomelet::desktop {

/// What the formatting bar shows of the place that the caret is at.
struct FormattingState
{
    QString block;      ///< "p", "h1"
    QString list;       ///< "", "bullets", "numbers", "boxes"
    QVariantMap active; ///< by the name of the command: "bold" → true
    bool isMarked = false;
    bool isInTable = false;
    bool hasContents = false; ///< a contents table, which goes and comes with undo
};

class TMLTWebView final : public QWebEngineView
{
    Q_OBJECT

public:
    explicit TMLTWebView(QWidget *parent = nullptr);

    /// Before each page: whether the one that is loaded now may become editable. Forgets the one before it.
    void expectPage(bool mayBeEdited);
    /// After expectPage, for a page that is editable already: it gets the body of this one, and the caret stays.
    void takePage(const QString &page);
    /// Makes the page editable and puts the caret into it; a page that is still loading follows when it is
    /// there.
    void beginEditing(bool keepsContentsTable);
    void endEditing();
    /// What is not laid out has no text: to be called when all of a long page is.
    void readText();
    [[nodiscard]] bool isEditing() const { return m_editing; }
    /// The page told what it holds, so that editing can begin.
    [[nodiscard]] bool isReady() const { return m_ready; }

    // What the page held when it last answered.
    [[nodiscard]] const QString &innerHTML() const;
    [[nodiscard]] const QString &innerText() const;
    /// Of the caret; "" where there is none.
    [[nodiscard]] const QString &caretParagraph() const { return m_paragraph; }
    [[nodiscard]] const QString &selectedText() const { return m_selected; }

    /// Runs a command's script as one undo step; nothing happens in a page that is not being edited.
    void run(const QString &script);
    void undo() { ask(QStringLiteral("tm.undo()")); }
    void redo() { ask(QStringLiteral("tm.redo()")); }
    /// Another head for the page, as its inner HTML; caret, history and position stay.
    void restyle(const QString &head);
    /// The address of the link that the mouse is over, "" for none.
    void setHoveredLink(const QString &address) { m_hovered = address; }
    /// Has the page tell the last input, and waits for it, two seconds at most.
    void waitForPage();

Q_SIGNALS:
    /// A page that may be edited was clicked or typed on.
    void editingWanted(bool onLink);
    /// A key for a page that could not become editable.
    void typedInVain();
    /// The page told what it holds; once more for a long page when all of it has a text.
    void ready();
    /// The page holds something else than before.
    void edited();
    void stateChanged(const tomelet::desktop::FormattingState &state);
    void linkWanted(const QString &address);
    /// A check box of a page that cannot be edited was clicked; the page shows it as before.
    void boxClicked(const tomelet::PageBox &box);
    void imagePasted(const QImage &image);
    void filesDropped(const QStringList &paths);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    // Out of the page's own reach, and also there where pages run no scripts.
    static constexpr quint32 editorWorld = 1;

    void ask(const QString &script, std::function<void()> then = {});
    void take(const QVariantMap &answer);
    void takeChanges(const QVariantMap &changes);
    void loaded(bool fine);
    void start(const QString &script);
    bool keyPressed(const QKeyEvent &event);
    bool mouseReleased(const QMouseEvent &event);
    void lookForBox(const QString &place);
    bool pasteImage();
    bool takeFilesOrPicture(const QMimeData &given);
    [[nodiscard]] bool takesDrop(const QMimeData &given) const;
    void dropped(QDropEvent &event);
    void takeOverPaste(QMenu *menu);
    void addSuggestions(QMenu *menu);
    void inputHappened();
    [[nodiscard]] bool takesKey(const QKeyEvent &event) const;

    bool m_mayBeEdited = false;
    bool m_ready = false;
    bool m_editing = false;
    bool m_hasSteps = false; // that can be undone in a page that is not being edited
    bool m_beginsWhenReady = false;
    bool m_waiting = false;
    int m_page = 0; // counts the pages, as answers come late
    QList<PagePart> m_parts;
    mutable QString m_html; ///< of the parts, or of the page as it was loaded; null where it is to be joined anew
    mutable QString m_text; ///< the same
    QString m_paragraph;
    QString m_selected;
    QString m_hovered;
    QTimer m_afterInput; // lets the page take the input before it is asked
    QTimer m_watch;      // for what no key tells, such as the menu of the page
    Lifetime m_life;
};

} // namespace tomelet::desktop
