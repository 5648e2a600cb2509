// SPDX-License-Identifier: GPL-3.0-or-later
// A document's widgets without widgets: what the controller shows is kept, what a person would type is set.
#pragma once

#include "editor/DocumentView.h"

#include <QStringList>

class FakeDocumentView final : public tomelet::DocumentView
{
public:
    void showNothing() override { shown = QStringLiteral("nothing"); }
    void showPlainText(const QString &newText, bool newEditable) override
    {
        shown = QStringLiteral("text");
        plainText = newText;
        editable = newEditable;
        ++loads;
    }
    void showPage(const QString &html, const QString &newBase) override
    {
        shown = QStringLiteral("page");
        page = html;
        base = frame = newBase;
        ++loads;
    }
    void showAddress(const QString &address) override { shown = address; }
    void showPdf(const QString &, qlonglong number) override
    {
        shown = QStringLiteral("pdf");
        offset = number;
    }
    void showPreview(const QString &) override { shown = QStringLiteral("preview"); }

    // As a widget does, every line end is LF.
    QString text() const override
    {
        QString normalized = plainText;
        return normalized.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    }
    tomelet::Range selection() const override { return selected; }
    void select(tomelet::Range range) override { selected = range; }
    bool isBlankUpToCaretLine() const override { return plainText.trimmed().isEmpty(); }
    void restylePlainText() override { ++restyles; }

    QString innerHTML() const override { return body; }
    QString innerText() const override { return visibleText; }
    QString pageSource() const override { return page; }
    QString mainFrameURL() const override { return frame; }
    bool canGoBack() const override { return false; }
    void updateHTML() override { ++restyles; }
    void hideFormattingBar() override { barHidden = true; }
    QString caretParagraph() const override { return visibleText; }
    void scrollToText(const QString &text) override { scrolledTo = text; }
    void scrollToAnchor(const QString &anchor) override { scrolledTo = anchor; }
    void showTerm(const QString &term) override { scrolledTo = term; }

    qlonglong readingOffset() const override { return offset; }
    void restoreOffset(qlonglong newOffset) override { offset = newOffset; }
    void setEdited(bool newEdited) override { edited = newEdited; }
    void beginEditing() override { ++begun; }
    bool isKeyWindow() const override { return isKey; }
    void tm_showUnlockAlert() override { ++unlockAlerts; }
    void showAlert(const QString &title, const QString &) override { alerts += title; }
    void showNotice(const QString &title, const QString &) override { alerts += title; }
    bool isMainWindow() const override { return true; }
    void addToBackList(const QString &path) override { backList += path; }
    QStringList contextsOfList() const override { return contexts; }

    QString shown, plainText, page, base, frame, body, visibleText, scrolledTo;
    QStringList alerts, backList, contexts;
    tomelet::Range selected{0, 0};
    qlonglong offset = 0;
    bool editable = false, edited = false, barHidden = false, isKey = true;
    int loads = 0, restyles = 0, begun = 0, unlockAlerts = 0;
};
