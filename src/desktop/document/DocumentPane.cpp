// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/document/DocumentPane.h"

#include "conversion/EmbeddedStyle.h"
#include "conversion/Page.h"
#include "conversion/Patterns.h"
#include "desktop/document/DocumentHeader.h"
#include "desktop/document/FindBar.h"
#include "desktop/page/FormattingBar.h"
#include "desktop/page/FormattingCommands.h"
#include "desktop/page/PageProfile.h"
#include "desktop/page/TMLTWebView.h"
#include "desktop/text/TMLTTextView.h"
#include "editor/FormattedPage.h"
#include "editor/PageBody.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/Resources.h"
#include "foundation/SafeWriter.h"
#include "library/Appearance.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "organising/links/DocumentReferences.h"
#include "organising/links/LostTarget.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QEvent>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <QWebEnginePage>

#include <functional>

namespace tomelet::desktop {

namespace {

using LinkFollower = std::function<void(const QUrl &, bool inNewTab)>;

// Takes the place of the window that a link asks for, until it knows the address.
class NewTab final : public QWebEnginePage
{
public:
    NewTab(QObject *parent, LinkFollower follow)
        : QWebEnginePage(pageProfile(), parent)
        , m_follow(std::move(follow))
    {
    }

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType, bool) override
    {
        m_follow(url, true);
        deleteLater();
        return false;
    }

private:
    LinkFollower m_follow;
};

class Page final : public QWebEnginePage
{
public:
    Page(QObject *parent, LinkFollower follow)
        : QWebEnginePage(pageProfile(), parent)
        , m_follow(std::move(follow))
    {
    }

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override
    {
        if (type != NavigationTypeLinkClicked || !isMainFrame) return true;
        const bool sameDocument = url.adjusted(QUrl::RemoveFragment) == this->url().adjusted(QUrl::RemoveFragment);
        if (sameDocument) return true;
        m_follow(url, false);
        return false;
    }
    QWebEnginePage *createWindow(WebWindowType) override { return new NewTab(this, m_follow); }

private:
    LinkFollower m_follow;
};

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

// The engine takes its scheme from the desktop at start and cannot be told another one per page, so the question for
// it is answered in the style sheets of the page's own head.
QString pageInScheme(const QString &html, const QPalette &palette)
{
    const bool dark = isDark(palette);
    const qsizetype end = html.indexOf(u"</head>");
    if (end < 0 || html.left(end).indexOf(u"<head>") < 0) return html;
    QString head = html.left(end);
    const QString yes = QStringLiteral("all");
    const QString no = QStringLiteral("not all");
    const QString question = QStringLiteral("\\(\\s*prefers-color-scheme\\s*:\\s*%1\\s*\\)");
    head = regexSweep(head, question.arg(QStringLiteral("dark")), dark ? yes : no);
    head = regexSweep(head, question.arg(QStringLiteral("light")), dark ? no : yes);
    head = regexSweep(head, QStringLiteral("color-scheme\\s*:\\s*light\\s+dark"),
                      dark ? QStringLiteral("color-scheme: dark") : QStringLiteral("color-scheme: light"));
    // The canvas of a dark page has a colour of its own otherwise; a sheet of the document's goes before this.
    const QString canvas = QStringLiteral("<head>\n<style>html { background-color: %1; }</style>")
                               .arg(palette.color(QPalette::Base).name());
    head.replace(head.indexOf(u"<head>"), 6, canvas);
    return head + html.mid(end);
}

QUrl addressOf(const QString &base)
{
    if (!base.startsWith(u'/')) return QUrl(base);
    return QUrl::fromLocalFile((isFolder(base) ? base : parentPath(base)) + u'/');
}

// The rule that longpage.js takes back; the first screens are laid out at once.
const QString longPageRule = QStringLiteral(
    "<style id=\"tm_long_page\">body > :nth-child(n+41) "
    "{ content-visibility: auto; contain-intrinsic-size: auto 4em; }</style>\n</head>");

QString withLongPageRule(QString page)
{
    const qsizetype end = page.indexOf(u"</head>");
    return end < 0 ? page : page.replace(end, 7, longPageRule);
}

// With what is needed to show it; nothing of this goes into a file.
QString pageToShow(const QString &html, const QUrl &address, const QPalette &palette)
{
    QString page = pageInScheme(html, palette);
    const qsizetype head = page.indexOf(u"<head>");
    if (head >= 0)
        page.replace(head, 6, QStringLiteral("<head>\n<base href=\"%1\">").arg(QString::fromLatin1(address.toEncoded())));
    return page;
}

} // namespace

// A page that is given as text travels as a URL of at most 2 MB after escaping; longer ones go by way of a file.
static constexpr qsizetype longestTextPage = 500 * 1024;
// A page made from Markdown that is longer is laid out bit by bit.
static constexpr qsizetype longestPageAtOnce = 300 * 1024;
static constexpr int layOutDelay = 300; // milliseconds after which the rest follows
static constexpr int layOutPause = 30;  // between two bits
static constexpr int warmUpDelay = 300; // milliseconds; the text comes first

DocumentPane::DocumentPane(ItemActions &actions, bool isOfMainWindow, QWidget *parent)
    : QWidget(parent)
    , m_actions(actions)
    , m_isOfMainWindow(isOfMainWindow)
    , m_header(new DocumentHeader(actions))
    , m_notice(new QLabel)
    , m_empty(new QLabel(localized(TOMELET_TEXT("Select a document to read it here."))))
    , m_find(new FindBar)
    , m_counts(new QLabel)
    , m_stack(new QStackedWidget)
    , m_view(new TMLTWebView)
    , m_bar(new FormattingBar)
    , m_text(new TMLTTextView)
    , m_controller(*this)
{
    // The page waits for its answer, so what may ask a question comes after it.
    auto *page = new Page(m_view, [this](const QUrl &url, bool inNewTab) {
        QTimer::singleShot(0, this, [this, url, inNewTab] { followLink(url, inNewTab); });
    });
    m_view->setPage(page);
    m_view->setAccessibleName(localized(TOMELET_TEXT("Document")));
    page->setBackgroundColor(palette().color(QPalette::Base));
    connect(page, &QWebEnginePage::loadFinished, this, [this] { m_isLoading = false; });
    m_layOut.setSingleShot(true);
    connect(&m_layOut, &QTimer::timeout, this, &DocumentPane::layOutMore);
    m_warmUp.setSingleShot(true);
    m_warmUp.setInterval(warmUpDelay);
    connect(&m_warmUp, &QTimer::timeout, this, &DocumentPane::warmUp);
    makeLayout();
    m_text->setChangeGuard([this] { return m_controller.shouldChangeText(false); });
    connectEditor();
    connectFinding();
    applyViewSettings();
    connect(m_header, &DocumentHeader::left, this, [this] { shownWidget()->setFocus(); });
    connect(m_text, &TMLTTextView::edited, this, [this] { m_controller.textDidChange(); });
}

DocumentPane::~DocumentPane()
{
    blockSignals(true); // who listens may be half gone
    settlePage();
    m_controller.closeDocument();
}

void DocumentPane::makeLayout()
{
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setForegroundRole(QPalette::PlaceholderText);

    m_notice->setWordWrap(true);
    m_notice->setMargin(10);
    m_notice->setAutoFillBackground(true);
    m_notice->setBackgroundRole(QPalette::ToolTipBase);
    m_notice->setForegroundRole(QPalette::ToolTipText);
    m_notice->setTextFormat(Qt::PlainText);
    m_notice->hide();

    for (QWidget *widget : {static_cast<QWidget *>(m_empty), static_cast<QWidget *>(m_view),
                            static_cast<QWidget *>(m_text)})
        m_stack->addWidget(widget);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_header);
    layout->addWidget(m_bar);
    layout->addWidget(m_notice);
    m_bar->hide();
    layout->addWidget(m_stack, 1);
    layout->addWidget(m_find);
    layout->addWidget(m_counts);
    m_counts->setAlignment(Qt::AlignRight);
    m_counts->setMargin(4);
    m_counts->setForegroundRole(QPalette::PlaceholderText);
    m_counts->hide();
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    setFocusProxy(m_view);
}

// -- what is on display -----------------------------------------------------------------------------------------------

void DocumentPane::showDocument(const QString &path, const QString &anchor)
{
    if (m_isSettling) return;
    settlePage();
    const bool opened = m_controller.openDocument(path);
    updateTitle();
    if (opened && !anchor.isEmpty()) scrollToAnchor(anchor);
}

static QString longPageScript()
{
    static const QString script = QString::fromUtf8(
        readFile(resourcePath(QStringLiteral("editor/longpage.js"))).value_or(QByteArray()));
    return script;
}

bool DocumentPane::closeDocument()
{
    showDocument({});
    return path().isEmpty() && !m_controller.isEdited();
}

void DocumentPane::saveTyping()
{
    settlePage();
    m_controller.saveTyping();
}

void DocumentPane::createDocument(const QString &extension, const QString &book)
{
    if (m_isSettling) return;
    settlePage();
    m_controller.createNewDocument(extension, book);
    updateTitle();
}

void DocumentPane::scrollToAnchor(const QString &anchor)
{
    const QString name = percentDecoded(anchor.startsWith(u'#') ? anchor.mid(1) : anchor);
    const QString list = QString::fromUtf8(QJsonDocument(QJsonArray{name}).toJson(QJsonDocument::Compact));
    runWhenLoaded(QStringLiteral("document.getElementById(%1[0])?.scrollIntoView()").arg(list));
}

void DocumentPane::updateTitle()
{
    const QString &path = m_controller.path();
    const QString name = path.isEmpty() ? QString() : lastPathComponent(path);
    m_header->setDocument(path, m_isEdited);
    Q_EMIT titleChanged(name);
}

void DocumentPane::bring(QWidget *shown)
{
    m_isLong = false;
    m_notice->hide();
    m_bar->hide();
    m_counts->hide();
    m_view->expectPage(false);
    m_stack->setCurrentWidget(shown);
    setFocusProxy(shown == m_empty ? m_view : shown);
}

QWidget *DocumentPane::shownWidget() const
{
    return m_stack->currentWidget() == m_text ? static_cast<QWidget *>(m_text) : m_view;
}

void DocumentPane::showNothing()
{
    bring(m_empty);
    updateTitle();
}

void DocumentPane::showPlainText(const QString &text, bool editable)
{
    const Font font = tm_fontForPath(path());
    if (!font.face.startsWith(u"System")) m_text->setFont(QFont(font.face, int(font.size)));
    m_text->setDocumentText(text, editable, highlightOptionsForItem(path()));
    bring(m_text);
    updateTitle();
    m_warmUp.start();
}

// Puts a page in the place of another that has the same address, without a flicker and at a fraction of the time.
static QString scriptForContent(const QString &page, bool keepsPlace)
{
    return QStringLiteral("{ const page = new DOMParser().parseFromString('%1', 'text/html');"
                          "if (document.head.innerHTML !== page.head.innerHTML)"
                          " document.head.innerHTML = page.head.innerHTML;"
                          "document.body.replaceWith(page.body); %2 }")
        .arg(escapedForScript(page), keepsPlace ? QString() : QStringLiteral("window.scrollTo(0, 0);"));
}

// The head but for the title, which follows the text.
static QString lookOf(const QString &page)
{
    return regexSweep(headOfPage(page), QStringLiteral("(?s)<title>.*?</title>"), {});
}

void DocumentPane::showPage(const QString &html, const QString &base)
{
    const QUrl address = addressOf(base);
    const bool isMarkdown = m_controller.showsMarkdown();
    const bool isInPlace = isMarkdown && !m_isLoading && m_liveAddress == address;
    const bool isShown = m_stack->currentWidget() == m_view && !path().isEmpty() && m_livePath == path();
    const bool isEditor = !isMarkdown && isShown && m_view->isReady() && lookOf(html) == lookOf(m_source);
    m_keepsPlace = isShown && (isInPlace || isEditor);
    m_base = base;
    m_source = html;
    bring(m_view);
    updateTitle();
    m_view->expectPage(path().isEmpty() || (lowerExtension(path()).startsWith(u"htm") && !isCombinedMarkdown(path())));
    m_livePath = path();
    m_liveAddress = isMarkdown ? address : QUrl();
    m_isLong = isMarkdown && html.size() > longestPageAtOnce;
    QString page = pageToShow(html, address, palette());
    if (m_isLong) page = withLongPageRule(page);
    QTimer::singleShot(0, this, [this] { m_keepsPlace = false; });
    if (isEditor) return m_view->takePage(html);
    if (isInPlace) m_view->page()->runJavaScript(scriptForContent(page, m_keepsPlace), 1);
    else load(page, address);
    if (m_isLong) runWhenLoaded(longPageScript());
    m_layOut.start(layOutDelay);
}

void DocumentPane::layOutMore()
{
    if (!m_isLong) return;
    if (m_isLoading) return m_layOut.start(layOutDelay);
    m_view->page()->runJavaScript(QStringLiteral("tmLongPage.goOn()"), 1, [self = QPointer(this)](const QVariant &more) {
        if (self && more.toBool()) self->m_layOut.start(layOutPause);
    });
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

// Pages of the network are another program's work.
void DocumentPane::showAddress(const QString &)
{
    showPage(pageForItem(path()), path());
}

void DocumentPane::showPdf(const QString &path, qlonglong page)
{
    m_base = path;
    bring(m_view);
    updateTitle();
    m_livePath.clear();
    m_liveAddress.clear();
    QUrl address = QUrl::fromLocalFile(path);
    if (page > 0) address.setFragment(QStringLiteral("page=%1").arg(page + 1));
    m_isLoading = true;
    m_view->load(address);
}

void DocumentPane::showPreview(const QString &path)
{
    showPage(pageForItem(path), path);
}

void DocumentPane::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || !m_view->page()) return;
    m_view->page()->setBackgroundColor(palette().color(QPalette::Base));
    if (m_controller.viewThatIsVisible() == DocumentViewKind::Formatted) updateHTML();
}

void DocumentPane::runWhenLoaded(const QString &script)
{
    if (!m_isLoading) return m_view->page()->runJavaScript(script, 1);
    connect(m_view->page(), &QWebEnginePage::loadFinished, this,
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

// The item of the notebook that an address means, with its anchor; "" for what lies outside.
static QString itemOfLink(const QUrl &url)
{
    const QString fragment = url.fragment();
    if (url.isLocalFile()) {
        const QString path = QDir::cleanPath(url.toLocalFile());
        if (tm_itemIsChildOfTomelet(path)) return tm_pathByAppendingAnchor(path, fragment);
        // "/Book/Note.md" begins at the root, unless the disk has just that.
        return itemExists(path) ? QString() : tm_pathByAppendingAnchor(fullPathOf(path), fragment);
    }
    const QString text = url.toString(QUrl::FullyDecoded);
    if (url.scheme() != u"tomelet" || tm_isTomeletURLSchemeAction(text)) return {};
    return QDir::cleanPath(fullPathOf(withoutTomeletScheme(text)));
}

void DocumentPane::followLink(const QUrl &url, bool inNewTab)
{
    QString item = itemOfLink(url);
    if (item.isEmpty()) {
        QDesktopServices::openUrl(url);
        return;
    }
    if (!itemExists(tm_pathWithoutAnchor(item)) && !itemExists(item))
        item = tm_findAlternativePathExcludingOrPrompt(item, {path()}, path());
    if (item.isEmpty()) return;
    if (inNewTab) Q_EMIT newTabWanted(item);
    else notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), item);
}

// -- text -------------------------------------------------------------------------------------------------------------

QString DocumentPane::text() const { return m_text->documentText(); }
Range DocumentPane::selection() const { return m_text->selection(); }
void DocumentPane::select(Range selection) { m_text->select(selection); }
bool DocumentPane::isBlankUpToCaretLine() const { return m_text->isBlankUpToCaretLine(); }
void DocumentPane::restylePlainText() { m_text->restyle(); }
QString DocumentPane::mainFrameURL() const { return m_base; }

void DocumentPane::zoom(int steps)
{
    static constexpr double step = 1.1;
    m_view->setZoomFactor(steps == 0 ? 1 : m_view->zoomFactor() * (steps > 0 ? step : 1 / step));
    if (steps != 0) m_text->zoomIn(steps);
    else m_text->setFont(QFont(m_text->font().family(), int(tm_fontForPath(path()).size)));
}

void DocumentPane::setEdited(bool edited)
{
    if (edited == m_isEdited) return;
    m_isEdited = edited;
    updateTitle();
}

// -- positions --------------------------------------------------------------------------------------------------------

qlonglong DocumentPane::readingOffset() const
{
    if (m_stack->currentWidget() == m_text) return m_text->textCursor().position();
    return qlonglong(m_view->page()->scrollPosition().y());
}

void DocumentPane::restoreOffset(qlonglong offset)
{
    if (m_stack->currentWidget() == m_text) return m_text->select({offset, 0});
    if (m_keepsPlace) return;
    m_wantedOffset = offset;
    // The last wish of a load counts.
    QTimer::singleShot(0, this, [this] {
        const QString scroll = m_isLong ? QStringLiteral("tmLongPage.scrollTo(%1)") : QStringLiteral("window.scrollTo(0, %1)");
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
    m_view->page()->runJavaScript(script, 1, [self = QPointer(this)](const QVariant &paragraph) {
        if (!self) return;
        self->m_paragraphOnTop = paragraph.toString();
        self->m_controller.tm_togglePlainTextAndFormattedView();
        self->beginEditing();
    });
}

// -- the window -------------------------------------------------------------------------------------------------------

bool DocumentPane::isKeyWindow() const
{
    return isActiveWindow() || !QApplication::activeWindow();
}

void DocumentPane::showAlert(const QString &title, const QString &text)
{
    auto *box = new QMessageBox(QMessageBox::NoIcon, title, QStringLiteral("<b>%1</b>").arg(title.toHtmlEscaped()),
                                QMessageBox::Ok, this);
    box->setInformativeText(text);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void DocumentPane::showNotice(const QString &title, const QString &text)
{
    m_notice->setText(title + u'\n' + text);
    m_notice->show();
}

void DocumentPane::unlock()
{
    tm_removePropertyForKey(path(), QStringLiteral("R/O"));
    m_controller.showDocument();
}

void DocumentPane::tm_showUnlockAlert()
{
    if (findChild<QMessageBox *>()) return; // one for all the keys that are pressed meanwhile
    const QString title = localized(TOMELET_TEXT("This document is write-protected"));
    if (tm_propertyForKey(path(), QStringLiteral("R/O")).toString() != u"1") return showAlert(title, path());
    auto *box = new QMessageBox(QMessageBox::NoIcon, title, QStringLiteral("<b>%1</b>").arg(title.toHtmlEscaped()),
                                QMessageBox::Cancel, this);
    QPushButton *open = box->addButton(localized(TOMELET_TEXT("Unlock")), QMessageBox::AcceptRole);
    connect(open, &QPushButton::clicked, this, &DocumentPane::unlock);
    box->setDefaultButton(QMessageBox::Cancel); // the next key of somebody who is typing decides nothing
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void DocumentPane::addToBackList(const QString &)
{
    updateTitle(); // a document that was named anew
}

} // namespace tomelet::desktop
