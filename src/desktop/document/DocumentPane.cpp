// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/document/DocumentPane.h"

#include "desktop/document/DocumentHeader.h"
#include "desktop/document/FindBar.h"
#include "desktop/page/FormattingBar.h"
#include "desktop/page/LinkPage.h"
#include "desktop/page/PageProfile.h"
#include "desktop/page/RemotePage.h"
#include "desktop/page/ShownPage.h"
#include "desktop/page/TMLTWebView.h"
#include "desktop/text/TMLTTextView.h"
#include "desktop/text/TextCompleter.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/Appearance.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/urls/FromOutside.h"
#include "library/urls/UrlAction.h"
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

namespace tomelet::desktop {

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
    m_page = new LinkPage(pageProfile(), this, linkFollower());
    m_view->setPage(m_page);
    m_view->setAccessibleName(localized(TOMELET_TEXT("Document")));
    m_page->setBackgroundColor(palette().color(QPalette::Base));
    connect(m_page, &QWebEnginePage::loadFinished, this, [this] {
        if (!m_remotePage) m_isLoading = false;
    });
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
    connect(m_header, &DocumentHeader::toggleWanted, this, &DocumentPane::toggleView);
    connect(m_header, &DocumentHeader::left, this, [this] { shownWidget()->setFocus(); });
    connect(m_text, &TMLTTextView::edited, this, [this] { m_controller.textDidChange(); });
    m_moves = notifications().observe(QStringLiteral("TMLTFileMovedNotification"), [this](const QVariantMap &move) {
        m_backList.follow(move.value(QStringLiteral("originalPath")).toString(),
                          move.value(QStringLiteral("newPath")).toString());
        updateTitle();
    });
}

DocumentPane::~DocumentPane()
{
    blockSignals(true); // who listens may be half gone
    settlePage();
    if (!m_controller.closeDocument()) keepRescue();
}

void DocumentPane::makeLayout()
{
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setForegroundRole(QPalette::PlaceholderText);

    m_notice->setWordWrap(true);
    m_notice->setContentsMargins(20, 8, 20, 8);
    m_notice->setAutoFillBackground(true);
    m_notice->setBackgroundRole(QPalette::Window);
    m_notice->setForegroundRole(QPalette::WindowText);
    m_notice->setTextFormat(Qt::RichText);
    colourNotice();
    m_notice->hide();

    for (QWidget *widget :
         {static_cast<QWidget *>(m_empty), static_cast<QWidget *>(m_view), static_cast<QWidget *>(m_text)})
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

void DocumentPane::showDocument(const QString &path, const Arrival &arrival, bool toggled)
{
    if (!mayLeave()) return;
    if (m_controller.openDocument(path, toggled, arrival)) m_backList.visit(path);
    updateTitle();
}

void DocumentPane::goBack()
{
    if (const QString path = m_backList.back(); !path.isEmpty()) showDocument(path);
}

void DocumentPane::goForward()
{
    if (const QString path = m_backList.forward(); !path.isEmpty()) showDocument(path);
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

void DocumentPane::createDocument(const QString &extension, const QString &book, const QStringList &contexts)
{
    if (!mayLeave()) return;
    m_contextsOfNew = contexts;
    m_controller.createNewDocument(extension, book);
    updateTitle();
}

void DocumentPane::renameToFirstLine()
{
    settlePage();
    (void)m_controller.tm_renameToFirstLineOfText(); // which tells why it could not
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
    m_header->setToggle(m_controller.toggleToolTip(), showsText());
    m_text->completer().setDocument(bookOfDocument(), path);
    Q_EMIT titleChanged(name);
}

void DocumentPane::bring(QWidget *shown)
{
    m_isLong = false;
    leaveRemotePage();
    // A document that is loaded anew right away does not take away what was just said about it.
    static constexpr qint64 readable = 10'000;
    if (m_noticePath != path() || m_noticeClock.elapsed() > readable) m_notice->hide();
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
    if (showsText() && !path().isEmpty() && m_textPath == path()) {
        m_keepsPlace = true;
        QTimer::singleShot(0, this, [this] { m_keepsPlace = false; });
        m_text->takeDocumentText(text, editable, highlightOptionsForItem(path()));
        // What is undone before the next key has to be saved as well.
        if (m_text->document()->isUndoAvailable()) (void)m_controller.textShouldBeginEditing();
    } else {
        m_text->setDocumentText(text, editable, highlightOptionsForItem(path()));
    }
    m_textPath = path();
    bring(m_text);
    updateTitle();
    m_warmUp.start();
}

// The item that an address of the program's own scheme means, with its anchor; "" for an action.
static QString itemOfAddress(const QString &address)
{
    const auto action = parseUrlAction(address);
    const bool isItem = action && action->kind == UrlAction::Show;
    return isItem ? itemFromOutside(percentDecoded(action->item)) : QString();
}

// The same for any address; "" for what lies outside of the notebook.
static QString itemOfLink(const QUrl &url)
{
    const QString fragment = url.fragment();
    if (url.isLocalFile()) {
        const QString path = QDir::cleanPath(url.toLocalFile());
        if (tm_itemIsChildOfTomelet(path)) return tm_pathByAppendingAnchor(path, fragment);
        // "/Book/Note.md" begins at the root, unless the disk has just that.
        return itemExists(path) ? QString() : tm_pathByAppendingAnchor(fullPathOf(path), fragment);
    }
    return itemOfAddress(QString::fromLatin1(url.toEncoded()));
}

// A page waits for its answer, so what may ask a question comes after it.
LinkFollower DocumentPane::linkFollower()
{
    return [this](const QString &address, bool inNewTab) {
        QTimer::singleShot(0, this, [this, address, inNewTab] { followAddress(address, inNewTab); });
    };
}

void DocumentPane::followLink(const QUrl &url, bool inNewTab)
{
    const QString item = itemOfLink(url);
    // An action of the program's own scheme comes back to the shell.
    if (item.isEmpty()) QDesktopServices::openUrl(url);
    else followItem(item, inNewTab);
}

// URL classes lower-case the first book of an item's address, and take no blank in it.
void DocumentPane::followAddress(const QString &address, bool inNewTab)
{
    if (const QString item = itemOfAddress(address); !item.isEmpty()) return followItem(item, inNewTab);
    followLink(addressOf(path().isEmpty() ? bookOfDocument() : path()).resolved(QUrl(address)), inNewTab);
}

void DocumentPane::followItem(const QString &wanted, bool inNewTab)
{
    QString item = wanted;
    if (!itemExists(tm_pathWithoutAnchor(item)) && !itemExists(item))
        item = tm_findAlternativePathExcludingOrPrompt(item, {path()}, path());
    if (item.isEmpty()) return;
    // The page of exported notes offers itself.
    if (item == path() && lowerExtension(item) == u"enex")
        return notifications().postPath(QStringLiteral("TMLTImportExportedNotes"), item);
    if (inNewTab) Q_EMIT newTabWanted(item);
    else notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), item);
}

// -- text -------------------------------------------------------------------------------------------------------------

QString DocumentPane::text() const
{
    return m_text->documentText();
}
Range DocumentPane::selection() const
{
    return m_text->selection();
}
void DocumentPane::select(Range selection)
{
    m_text->select(selection);
}
bool DocumentPane::isBlankUpToCaretLine() const
{
    return m_text->isBlankUpToCaretLine();
}
void DocumentPane::restylePlainText()
{
    m_text->setHighlighting(highlightOptionsForItem(path()));
}

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

// -- the window -------------------------------------------------------------------------------------------------------

bool DocumentPane::isKeyWindow() const
{
    return isActiveWindow() || !QApplication::activeWindow();
}

void DocumentPane::showAlert(const QString &title, const QString &text)
{
    if (m_isLeaving) return; // the question says it
    // As an informative text it would be no wider than the title.
    auto *box = new QMessageBox(QMessageBox::NoIcon, title,
                                QStringLiteral("<b>%1</b><p>%2</p>").arg(title.toHtmlEscaped(), text.toHtmlEscaped()),
                                QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

// The colours of a tool tip are those of the page in some themes.
void DocumentPane::colourNotice()
{
    static constexpr float share = 0.2F;
    const QColor base = palette().color(QPalette::Base);
    const QColor mark = palette().color(QPalette::Highlight);
    const auto mix = [](float a, float b) { return a + (b - a) * share; };
    QPalette colours = m_notice->palette();
    colours.setColor(QPalette::Window,
                     QColor::fromRgbF(mix(base.redF(), mark.redF()), mix(base.greenF(), mark.greenF()),
                                      mix(base.blueF(), mark.blueF())));
    colours.setColor(QPalette::WindowText, palette().color(QPalette::Text));
    m_notice->setPalette(colours);
}

void DocumentPane::showNotice(const QString &title, const QString &text)
{
    m_notice->setText(QStringLiteral("<b>%1</b><br>%2").arg(title.toHtmlEscaped(), text.toHtmlEscaped()));
    m_notice->show();
    m_noticePath = path();
    m_noticeClock.start();
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

// A document that was named anew, or for the first time.
void DocumentPane::addToBackList(const QString &path)
{
    m_textPath = path;
    m_backList.visit(path);
    updateTitle();
}

} // namespace tomelet::desktop
