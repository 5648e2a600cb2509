// SPDX-License-Identifier: GPL-3.0-or-later
// What the document controller needs of the widgets that show a document: a plain text view, a page that can be edited,
// and the viewers for everything else. Positions in texts are UTF-16 units.
#pragma once

#include "foundation/Range.h"

#include <QString>
#include <QStringList>

namespace tomelet {

/// The numbers are those under which the views are known to scripts and settings.
enum class DocumentViewKind { None = 0, PlainText = 1, Formatted = 2, Pdf = 3, RemotePage = 4, Preview = 5 };

class DocumentView
{
public:
    virtual ~DocumentView();

    // -- showing
    virtual void showNothing() = 0;
    virtual void showPlainText(const QString &text, bool editable) = 0;
    /// A complete page; relative references are resolved against the base, a path or an address.
    virtual void showPage(const QString &html, const QString &base) = 0;
    /// A file or address as it is.
    virtual void showAddress(const QString &address) = 0;
    /// The page is counted from 0.
    virtual void showPdf(const QString &path, qlonglong page) = 0;
    virtual void showPreview(const QString &path) = 0;

    // -- the plain text view
    /// The text as it stands; a widget may give LF for every line end.
    [[nodiscard]] virtual QString text() const = 0;
    [[nodiscard]] virtual Range selection() const = 0;
    virtual void select(Range selection) = 0;
    /// Nothing but white space from the start of the text to the end of the caret's line.
    [[nodiscard]] virtual bool isBlankUpToCaretLine() const = 0;
    /// The look or the highlighting changed, the text did not.
    virtual void restylePlainText() = 0;

    // -- the formatted view
    [[nodiscard]] virtual QString innerHTML() const = 0;
    [[nodiscard]] virtual QString innerText() const = 0;
    /// The page as it was shown; nothing that showing it added is in it.
    [[nodiscard]] virtual QString pageSource() const = 0;
    /// Where the page is now; another address than the one loaded means that a link was followed.
    [[nodiscard]] virtual QString mainFrameURL() const = 0;
    [[nodiscard]] virtual bool canGoBack() const = 0;
    /// The page with another style; the view keeps caret and position.
    virtual void updateHTML() = 0;
    virtual void hideFormattingBar() = 0;
    /// The text of the paragraph that the caret, or the top of the page, is in.
    [[nodiscard]] virtual QString caretParagraph() const = 0;
    virtual void scrollToText(const QString &text) = 0;
    /// To the element of that name.
    virtual void scrollToAnchor(const QString &anchor) = 0;

    // -- either
    /// Highlights what was searched for and goes to its first place.
    virtual void showTerm(const QString &term) = 0;
    /// The caret of a text, the scroll position of a page, the page of a PDF.
    [[nodiscard]] virtual qlonglong readingOffset() const = 0;
    virtual void restoreOffset(qlonglong offset) = 0;
    virtual void setEdited(bool edited) = 0;
    virtual void beginEditing() = 0;
    [[nodiscard]] virtual bool isKeyWindow() const = 0;
    virtual void tm_showUnlockAlert() = 0;
    /// Tells that something which was asked for could not be done.
    virtual void showAlert(const QString &title, const QString &text) = 0;
    /// Tells something about the document on display, without getting into the person's way.
    virtual void showNotice(const QString &title, const QString &text) = 0;

    // -- the window around it
    [[nodiscard]] virtual bool isMainWindow() const = 0;
    virtual void addToBackList(const QString &path) = 0;
    /// The contexts whose items the list shows, none for another list.
    [[nodiscard]] virtual QStringList contextsOfList() const = 0;
};

} // namespace tomelet
