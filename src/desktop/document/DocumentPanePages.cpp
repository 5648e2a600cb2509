// SPDX-License-Identifier: GPL-3.0-or-later
// The document's pane: pages on their way to the screen, and positions in them.
#include "desktop/document/DocumentPane.h"

#include "conversion/EmbeddedStyle.h"
#include "conversion/Page.h"
#include "desktop/page/RemotePage.h"
#include "desktop/page/ShownPage.h"
#include "desktop/page/TMLTWebView.h"
#include "desktop/text/TMLTTextView.h"
#include "editor/FormattedPage.h"
#include "editor/PageBody.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/SafeWriter.h"
#include "import/WebArchive.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"

#include <QEvent>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStackedWidget>
#include <QWebEnginePage>

namespace tomelet::desktop {

// A page that is given as text travels as a URL of at most 2 MB after escaping; longer ones go by way of a file.
static constexpr qsizetype longestTextPage = 500 * 1024;
// A longer page is laid out bit by bit.
static constexpr qsizetype longestPageAtOnce = 300 * 1024;
static constexpr int layOutDelay = 300; // milliseconds after which the rest follows
static constexpr int layOutPause = 30;  // between two bits

// Pages of others know of no dark theme: what they leave to the viewer is black.
static QPalette coloursFor(const QString &path, const QPalette &palette)
{
    if (!opensAsWebArchive(path)) return palette;
    QPalette paper = palette;
    paper.setColor(QPalette::Base, Qt::white);
    paper.setColor(QPalette::Text, Qt::black);
    return paper;
}

QString DocumentPane::mainFrameURL() const
{
    return m_base;
}

void DocumentPane::showPage(const QString &html, const QString &base)
{
    const QUrl address = addressOf(base);
    const bool isMarkdown = m_controller.showsMarkdown();
    const bool isInPlace = isMarkdown && !m_isLoading && m_liveAddress == address;
    const bool isShown = m_stack->currentWidget() == m_view && !path().isEmpty() && m_livePath == path();
    const bool isEditor = !isMarkdown && isShown && m_view->isReady();
    const bool hasNewLook = isEditor && lookOf(html) != lookOf(m_source);
    m_keepsPlace = isShown && (isInPlace || isEditor);
    m_base = base;
    m_source = html;
    bring(m_view);
    updateTitle();
    m_view->expectPage(path().isEmpty() || (lowerExtension(path()).startsWith(u"htm") && !isCombinedMarkdown(path())));
    m_livePath = path();
    m_liveAddress = isMarkdown ? address : QUrl();
    m_isLong = html.size() > longestPageAtOnce;
    const QPalette colours = coloursFor(path(), palette());
    m_view->page()->setBackgroundColor(colours.color(QPalette::Base));
    QString page = pageToShow(html, address, colours);
    QTimer::singleShot(0, this, [this] { m_keepsPlace = false; });
    if (hasNewLook) m_view->restyle(headOfPage(page));
    if (isEditor) return m_view->takePage(html);
    if (m_isLong) page = withLongPageRule(page);
    if (isInPlace) m_view->page()->runJavaScript(scriptForContent(page, m_keepsPlace), 1);
    else load(page, address);
    if (m_isLong) runWhenLoaded(longPageScript());
    m_layOut.start(layOutDelay);
}

void DocumentPane::layOutMore()
{
    if (!m_isLong) return;
    if (m_isLoading) return m_layOut.start(layOutDelay);
    m_view->page()->runJavaScript(QStringLiteral("tmLongPage.goOn()"), 1, m_life.guard([this](const QVariant &more) {
        if (more.toBool()) m_layOut.start(layOutPause);
        else m_view->readText();
    }));
}

// While Markdown is shown as text its page gets a place to come to, so that the person does not wait for the engine.
void DocumentPane::warmUp()
{
    const QUrl address = addressOf(path());
    if (!showsText() || !hasMarkdownExtension(path()) || m_isLoading || m_liveAddress == address) return;
    load(QStringLiteral("<html><head></head><body></body></html>"), address);
    m_livePath.clear();
    m_liveAddress = address;
}

void DocumentPane::load(const QString &page, const QUrl &address)
{
    m_isLoading = true;
    if (page.size() < longestTextPage) return m_view->setHtml(page, address);

    const QString pages = joinPath(workingDirectory(), QStringLiteral("pages"));
    makeFolder(pages);
    const QString file = joinPath(pages, QString::number(quintptr(this), 36) + QStringLiteral(".html"));
    if (writeFile(file, page.toUtf8())) m_view->load(QUrl::fromLocalFile(file));
}

void DocumentPane::showAddress(const QString &address)
{
    if (itemExists(address)) return showFile(address, QUrl::fromLocalFile(address));
    showRemotePage(address);
}

// Without the network the address itself is what there is to see.
void DocumentPane::showRemotePage(const QString &address)
{
    expectLoad(address);
    m_remotePage = new RemotePage(this, linkFollower());
    m_view->setPage(m_remotePage);
    connect(m_remotePage, &QWebEnginePage::loadFinished, this, [this](bool fine) {
        m_isLoading = false;
        if (fine) return;
        showPage(pageForItem(path()), path());
        showNotice(localized(TOMELET_TEXT("The page cannot be loaded")), lastPathComponent(path()));
    });
    m_view->load(QUrl(address));
}

void DocumentPane::leaveRemotePage()
{
    if (!m_remotePage) return;
    m_view->setPage(m_page);
    m_remotePage->disconnect(this);
    std::exchange(m_remotePage, nullptr)->deleteLater();
}

void DocumentPane::showFile(const QString &file, const QUrl &address)
{
    expectLoad(file);
    m_view->load(address);
}

// For what is no page of this program's making.
void DocumentPane::expectLoad(const QString &base)
{
    m_base = base;
    bring(m_view);
    updateTitle();
    m_livePath.clear();
    m_liveAddress.clear();
    m_isLoading = true;
}

void DocumentPane::showPdf(const QString &path, qlonglong page)
{
    QUrl address = QUrl::fromLocalFile(path);
    if (page > 0) address.setFragment(QStringLiteral("page=%1").arg(page + 1));
    showFile(path, address);
}

void DocumentPane::showPreview(const QString &path)
{
    showPage(pageForItem(path), path);
}

void DocumentPane::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || !m_view->page()) return;
    colourNotice();
    updateTitle();
    m_page->setBackgroundColor(palette().color(QPalette::Base));
    if (m_controller.viewThatIsVisible() == DocumentViewKind::Formatted) updateHTML();
}

void DocumentPane::runWhenLoaded(const QString &script)
{
    if (!m_isLoading) return m_view->page()->runJavaScript(script, 1);
    connect(
        m_view->page(), &QWebEnginePage::loadFinished, this,
        [this, script] { m_view->page()->runJavaScript(script, 1); }, Qt::SingleShotConnection);
}

// A page that is being edited takes the new head alone, and keeps caret, history and position.
void DocumentPane::updateHTML()
{
    if (m_view->isEditing()) {
        const QString fresh = path().isEmpty() ? m_source : formattedPageFor(path()).html;
        if (tm_removeGeneratorTomelet(fresh) != tm_removeGeneratorTomelet(m_source))
            logLine(QStringLiteral("reloading after updateHTML"));
        m_source = fresh;
        return m_view->restyle(headOfPage(pageToShow(fresh, addressOf(m_base), palette())));
    }
    const qlonglong offset = readingOffset();
    if (const FormattedPage page = formattedPageFor(path()); !page.html.isEmpty()) showPage(page.html, page.base);
    restoreOffset(offset);
}

// -- positions --------------------------------------------------------------------------------------------------------

qlonglong DocumentPane::readingOffset() const
{
    if (m_stack->currentWidget() == m_text) return m_text->textCursor().position();
    return qlonglong(m_view->page()->scrollPosition().y());
}

void DocumentPane::restoreOffset(qlonglong offset)
{
    if (m_keepsPlace) return;
    if (m_stack->currentWidget() == m_text) return m_text->select({offset, 0});
    m_wantedOffset = offset;
    // The last wish of a load counts.
    QTimer::singleShot(0, this, [this] {
        const QString scroll =
            m_isLong ? QStringLiteral("tmLongPage.scrollTo(%1)") : QStringLiteral("window.scrollTo(0, %1)");
        if (m_wantedOffset >= 0) runWhenLoaded(scroll.arg(m_wantedOffset));
        m_wantedOffset = -1;
    });
}

// Compared by letters and digits, so that marks and blanks do not matter.
static const QString paragraphs = QStringLiteral("'p, li, h1, h2, h3, h4, h5, h6, td, th, pre, dt, dd'");
static const QString letters = QStringLiteral("const letters = t => t.replace(/[^\\p{L}\\p{N}]/gu, '');"
                                              "const paragraphs = [...document.querySelectorAll(%1)];")
                                   .arg(paragraphs);

void DocumentPane::scrollToText(const QString &text)
{
    const QString list = QString::fromUtf8(QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact));
    runWhenLoaded(QStringLiteral("{ %1 const wanted = letters(%2[0]);"
                                 "const found = paragraphs.find(e => letters(e.textContent) === wanted) ||"
                                 "paragraphs.find(e => letters(e.textContent).includes(wanted));"
                                 "if (found) found.scrollIntoView({block: 'center'}); }")
                      .arg(letters, list));
}

// The page tells its topmost paragraph in its own time; then the text is shown at it.
void DocumentPane::toggleView()
{
    if (m_stack->currentWidget() == m_text) return m_controller.tm_togglePlainTextAndFormattedView();
    settlePage();
    const QString script = QStringLiteral("{ let top = null;"
                                          "for (let y = 2; y < innerHeight && !top && scrollY > 0; y += 8)"
                                          " top = document.elementFromPoint(innerWidth / 2, y)?.closest(%1);"
                                          "top ? top.innerText : ''; }")
                               .arg(paragraphs);
    m_view->page()->runJavaScript(script, 1, m_life.guard([this](const QVariant &paragraph) {
        m_paragraphOnTop = paragraph.toString();
        m_controller.tm_togglePlainTextAndFormattedView();
        beginEditing();
    }));
}

} // namespace tomelet::desktop
