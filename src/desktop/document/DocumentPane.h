// SPDX-License-Identifier: GPL-3.0-or-later
// The right-hand pane: a document as text to write in or as a page. Pages run no script and load nothing from the
// network, but for the page behind a web address that the notebook holds.
#pragma once

#include "desktop/Lifetime.h"
#include "desktop/page/LinkPage.h"
#include "editor/BackList.h"
#include "editor/DocumentView.h"
#include "editor/EditorCommands.h"
#include "editor/PageBoxes.h"
#include "editor/TMLTDocumentViewController.h"
#include "foundation/NotificationCenter.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QUrl>
#include <QWidget>

class QImage;
class QLabel;
class QStackedWidget;

namespace tomelet::desktop {

class DocumentHeader;
class FindBar;
class FormattingBar;
class ItemActions;
class RemotePage;
class TMLTTextView;
class TMLTWebView;

class DocumentPane final : public QWidget, private DocumentView
{
    Q_OBJECT

public:
    explicit DocumentPane(ItemActions &actions, bool isOfMainWindow = true, QWidget *parent = nullptr);
    ~DocumentPane() override;

    /// Saves what is on display and shows the document; an empty path shows what to do next. A document that cannot be
    /// saved stays. `toggled`: in the other of its two views.
    void showDocument(const QString &path, const Arrival &arrival = {}, bool toggled = false);
    /// To a part of the page on display ("part" or "#part").
    void scrollToAnchor(const QString &anchor) override;
    /// The document that was on display before or, after going back, behind this one; nothing where there is none.
    void goBack();
    void goForward();
    /// Saves what is on display and shows nothing; false when it could not be saved and stays.
    bool closeDocument();
    /// What was typed goes into the file now.
    void saveTyping();
    [[nodiscard]] const QString &path() const { return m_controller.path(); }
    [[nodiscard]] TMLTWebView *view() { return m_view; }
    [[nodiscard]] TMLTTextView *textView() { return m_text; }
    [[nodiscard]] DocumentHeader *header() { return m_header; }
    [[nodiscard]] TMLTDocumentViewController &controller() { return m_controller; }
    /// The page or text that keys go to.
    [[nodiscard]] QWidget *shownWidget() const;

    /// Between text and page, at the same paragraph.
    void toggleView();
    /// A command on the text, or its like on a page that is being edited.
    void applyToText(EditorCommand command, const EditorArguments &arguments = {});
    /// A document without a file yet; an empty extension is the preferred one's, an empty book the inbox. It will have
    /// the contexts.
    void createDocument(const QString &extension, const QString &book, const QStringList &contexts = {});
    void renameToFirstLine();
    /// In place of the selection; false where the document takes no text.
    [[nodiscard]] bool insertText(const QString &text);
    /// The bar for finding, and for replacing where the document can be changed.
    void openFind(bool replaces);
    /// The next place of what the bar has; `stays` begins at the selection itself.
    void find(bool backward, bool stays);
    /// Asks for a printer, or for a file.
    void print();
    void printToPdf();
    void setFullScreen(bool full);
    /// What the settings say about line numbers, the current line, scrolling and spelling.
    void applyViewSettings();
    /// Larger and smaller letters; 0 for the actual size.
    void zoom(int steps);

    /// Where copies of texts lie that could not be saved.
    [[nodiscard]] static QString folderOfUnsaved();
    /// Saves what is on display. Where that cannot be, the person is asked what is to become of it; false: it stays.
    [[nodiscard]] bool mayLeave();

protected:
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void titleChanged(const QString &title);
    /// A link was clicked in the way that asks for a tab of its own.
    void newTabWanted(const QString &path);

private:
    void makeLayout();
    void colourNotice();
    void updateTitle();
    void bring(QWidget *shown);
    /// Runs once when the page that is being loaded is laid out, at once where none is.
    void load(const QString &page, const QUrl &address);
    void showFile(const QString &file, const QUrl &address);
    void expectLoad(const QString &base);
    void showRemotePage(const QString &address);
    void leaveRemotePage();
    [[nodiscard]] LinkFollower linkFollower();
    void warmUp();
    void layOutMore();
    void runWhenLoaded(const QString &script);
    void followLink(const QUrl &url, bool inNewTab);
    void followAddress(const QString &address, bool inNewTab);
    void followItem(const QString &item, bool inNewTab);
    void unlock();
    void toggleBox(const PageBox &box);
    void connectEditor();
    void connectFinding();
    [[nodiscard]] bool showsText() const;
    void replaceFound();
    void replaceAllFound();
    void count();
    void showCounts(qlonglong words, qlonglong characters);
    /// Tells the controller the last input before the page goes.
    void settlePage();
    void beginEditingPage(bool onLink);
    void sortLines();
    void runCommand(const QString &command, const QString &argument = {});
    void toggleContentsTable();
    void takeContentsTable(bool on);
    void insertFiles(const QStringList &files);
    void insertImage(const QImage &image);
    void connectDrops();
    void insertIntoText(const QString &text);
    void tellNotStored(const QString &what);
    [[nodiscard]] QString nameOfDocument() const;
    [[nodiscard]] bool askAboutUnsaved();
    [[nodiscard]] bool saveElsewhere();
    void keepRescue();
    void dropRescue();
    [[nodiscard]] QString bookOfDocument() const;
    [[nodiscard]] bool showsContentsTable() const;

    // What the controller asks of its view.
    void showNothing() override;
    void showPlainText(const QString &text, bool editable) override;
    void showPage(const QString &html, const QString &base) override;
    void showAddress(const QString &address) override;
    void showPdf(const QString &path, qlonglong page) override;
    void showPreview(const QString &path) override;
    [[nodiscard]] QString text() const override;
    [[nodiscard]] Range selection() const override;
    void select(Range selection) override;
    [[nodiscard]] bool isBlankUpToCaretLine() const override;
    void restylePlainText() override;
    [[nodiscard]] QString innerHTML() const override;
    [[nodiscard]] QString innerText() const override;
    [[nodiscard]] QString pageSource() const override { return m_source; }
    [[nodiscard]] QString mainFrameURL() const override;
    [[nodiscard]] bool canGoBack() const override { return false; }
    void updateHTML() override;
    void hideFormattingBar() override;
    [[nodiscard]] QString caretParagraph() const override;
    void scrollToText(const QString &text) override;
    void showTerm(const QString &term) override;
    [[nodiscard]] qlonglong readingOffset() const override;
    void restoreOffset(qlonglong offset) override;
    void setEdited(bool edited) override;
    void beginEditing() override;
    [[nodiscard]] bool isKeyWindow() const override;
    void tm_showUnlockAlert() override;
    void showAlert(const QString &title, const QString &text) override;
    void showNotice(const QString &title, const QString &text) override;
    [[nodiscard]] bool isMainWindow() const override { return m_isOfMainWindow; }
    void addToBackList(const QString &path) override;
    [[nodiscard]] QStringList contextsOfList() const override { return m_contextsOfNew; }

    ItemActions &m_actions;
    BackList m_backList;
    QStringList m_contextsOfNew; ///< for the document without a file yet
    bool m_isOfMainWindow;
    DocumentHeader *m_header;
    QLabel *m_notice; ///< about the document on display, hidden when there is nothing to say
    QString m_noticePath;
    QElapsedTimer m_noticeClock;
    QLabel *m_empty;
    FindBar *m_find;
    QLabel *m_counts; ///< words and characters
    QTimer m_countTimer;
    int m_countNumber = 0; // of the latest count; older ones come too late
    QStackedWidget *m_stack;
    TMLTWebView *m_view;
    FormattingBar *m_bar;
    TMLTTextView *m_text;
    LinkPage *m_page;                   ///< of the notebook's own documents
    RemotePage *m_remotePage = nullptr; ///< in its place while a web address is on display
    QString m_base;                     ///< of the page on display
    QString m_source;                   ///< the page as it was loaded
    bool m_hasContents = false;         ///< of the page that is being edited
    bool m_isSettling = false;
    bool m_isLeaving = false;
    QString m_rescue;   ///< the copy of a text that could not be saved; "" for none
    QString m_textPath; ///< of the document whose text the text view holds
    QString m_livePath; ///< of the document whose page the view holds
    QUrl m_liveAddress; ///< that pages made from Markdown can be put into without loading
    bool m_isLoading = false;
    bool m_isLong = false;     ///< the page is laid out bit by bit
    bool m_keepsPlace = false; ///< the page was put in place of its older self, and is scrolled as that was
    QTimer m_warmUp;
    QTimer m_layOut;
    qlonglong m_wantedOffset = -1; ///< the page scrolls there next
    QString m_paragraphOnTop;
    bool m_isEdited = false;
    TMLTDocumentViewController m_controller;
    NotificationCenter::Subscription m_moves; // after the controller, which takes the new path
    Lifetime m_life;
};

} // namespace tomelet::desktop
