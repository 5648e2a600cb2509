// SPDX-License-Identifier: GPL-3.0-or-later
// The document's pane: finding and replacing, counts, looks, printing.
#include "desktop/document/DocumentPane.h"

#include "conversion/TextUtilities.h"
#include "desktop/document/DocumentHeader.h"
#include "desktop/document/FindBar.h"
#include "desktop/page/FormattingCommands.h"
#include "desktop/page/PageProfile.h"
#include "desktop/page/TMLTWebView.h"
#include "desktop/text/TMLTTextView.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/SerialQueue.h"

#include <QFileDialog>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QStackedWidget>
#include <QWebEngineFindTextResult>
#include <QWebEnginePage>

namespace tomelet::desktop {

void DocumentPane::connectFinding()
{
    connect(m_find, &FindBar::findWanted, this, [this](bool backward) { find(backward, false); });
    connect(m_find, &FindBar::wordsChanged, this, [this] { find(false, true); });
    connect(m_find, &FindBar::replaceWanted, this, &DocumentPane::replaceFound);
    connect(m_find, &FindBar::replaceAllWanted, this, &DocumentPane::replaceAllFound);
    connect(m_find, &FindBar::closed, this, [this] {
        m_view->page()->findText({});
        shownWidget()->setFocus();
    });
    m_countTimer.setSingleShot(true);
    m_countTimer.setInterval(300);
    connect(&m_countTimer, &QTimer::timeout, this, &DocumentPane::count);
    connect(m_text, &TMLTTextView::textChanged, &m_countTimer, qOverload<>(&QTimer::start));
    connect(m_text, &TMLTTextView::selectionChanged, &m_countTimer, qOverload<>(&QTimer::start));
    connect(m_view, &TMLTWebView::edited, &m_countTimer, qOverload<>(&QTimer::start));
    connect(m_view, &TMLTWebView::ready, &m_countTimer, qOverload<>(&QTimer::start));
}

bool DocumentPane::showsText() const
{
    return m_stack->currentWidget() == m_text;
}

// -- finding ----------------------------------------------------------------------------------------------------------

void DocumentPane::openFind(bool replaces)
{
    const bool isPage = m_stack->currentWidget() == m_view;
    if (!isPage && !showsText()) return;
    const QString selected = showsText() ? m_text->selectedText() : m_view->selectedText();
    m_find->open(selected.left(200), replaces && (showsText() ? !m_text->isReadOnly() : m_view->isEditing()));
}

void DocumentPane::find(bool backward, bool stays)
{
    const QString wanted = m_find->wanted();
    if (showsText()) {
        m_text->findText(wanted, backward, stays);
        return m_find->showCount(m_text->countOf(wanted));
    }
    QWebEnginePage::FindFlags flags;
    if (backward) flags |= QWebEnginePage::FindBackward;
    if (TMLTTextView::findsCase(wanted)) flags |= QWebEnginePage::FindCaseSensitively;
    m_view->page()->findText(wanted, flags, m_life.guard([this](const QWebEngineFindTextResult &result) {
        m_find->showCount(result.numberOfMatches());
    }));
}

// What was searched for in the notebook is what "Find Next" goes on with.
void DocumentPane::showTerm(const QString &term)
{
    m_find->setWanted(term);
    if (showsText()) {
        m_text->select({0, 0});
        return find(false, true);
    }
    const auto highlight = [this, term] { m_view->page()->findText(term); };
    if (m_isLoading) connect(m_view->page(), &QWebEnginePage::loadFinished, this, highlight, Qt::SingleShotConnection);
    else
        m_view->page()->runJavaScript(QStringLiteral("0"), 1, m_life.guard([highlight](const QVariant &) {
            highlight(); // the page's new content has come by now
        }));
}

void DocumentPane::replaceFound()
{
    if (showsText()) {
        m_text->replaceFound(m_find->wanted(), m_find->replacement());
        return find(false, false);
    }
    m_view->page()->findText({});
    m_view->run(QStringLiteral("tm.replaceNext('%1', '%2')")
                    .arg(escapedForScript(m_find->wanted()), escapedForScript(m_find->replacement())));
}

void DocumentPane::replaceAllFound()
{
    if (showsText()) m_text->replaceAll(m_find->wanted(), m_find->replacement());
    else
        m_view->run(QStringLiteral("tm.replaceAll('%1', '%2')")
                        .arg(escapedForScript(m_find->wanted()), escapedForScript(m_find->replacement())));
    m_find->showCount(showsText() ? m_text->countOf(m_find->wanted()) : -1);
}

// -- counts -----------------------------------------------------------------------------------------------------------

// Off the main thread: words take a while in a long text.
void DocumentPane::count()
{
    static SerialQueue queue;
    const bool isPage = m_stack->currentWidget() == m_view && m_view->isReady();
    if (!showsText() && !isPage) return m_counts->hide();
    const QString selected = showsText() ? m_text->selectedText() : QString();
    const QString text = !selected.isEmpty() ? selected : showsText() ? m_text->documentText() : m_view->innerText();
    const auto show = m_life.guard([this, number = ++m_countNumber](qlonglong words, qsizetype characters) {
        if (m_countNumber == number) showCounts(words, characters);
    });
    queue.add([text, show] {
        const qlonglong words = tm_wordCount(text);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [show, words, characters = text.size()] { show(words, characters); },
            Qt::QueuedConnection);
    });
}

void DocumentPane::showCounts(qlonglong words, qlonglong characters)
{
    const QLocale locale;
    m_counts->setText(
        localized(words == 1 ? TOMELET_TEXT("%1 word, %2 characters") : TOMELET_TEXT("%1 words, %2 characters"))
            .arg(locale.toString(words), locale.toString(characters)));
    m_counts->show();
}

// -- looks ------------------------------------------------------------------------------------------------------------

void DocumentPane::applyViewSettings()
{
    m_text->applyViewSettings();
    checkSpellingOfPages(settings().boolean(QStringLiteral("continuousSpellChecking")));
}

void DocumentPane::setFullScreen(bool full)
{
    static constexpr int charactersInLine = 75;
    m_header->setVisible(!full);
    m_text->setColumnWidth(full ? charactersInLine * m_text->fontMetrics().averageCharWidth() : 0);
}

// -- printing ---------------------------------------------------------------------------------------------------------

void DocumentPane::print()
{
    auto *printer = new QPrinter(QPrinter::HighResolution);
    printer->setDocName(lastPathComponent(path()));
    if (!showsText()) printer->setPageLayout(paperForPages());
    QPrintDialog dialog(printer, this);
    if (dialog.exec() != QDialog::Accepted) {
        delete printer;
        return;
    }
    if (showsText()) {
        m_text->printOnPaper(printer);
        delete printer;
        return;
    }
    connect(
        m_view, &QWebEngineView::printFinished, this, [printer] { delete printer; }, Qt::SingleShotConnection);
    m_view->print(printer);
}

void DocumentPane::printToPdf()
{
    const QString name = pathWithoutExtension(lastPathComponent(path())) + QStringLiteral(".pdf");
    const QString file = QFileDialog::getSaveFileName(this, localized(TOMELET_TEXT("Save as PDF")), name,
                                                      localized(TOMELET_TEXT("PDF")) + QStringLiteral(" (*.pdf)"));
    if (file.isEmpty()) return;
    if (!showsText()) return m_view->page()->printToPdf(file, paperForPages());
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(file);
    m_text->printOnPaper(&printer);
}

} // namespace tomelet::desktop
