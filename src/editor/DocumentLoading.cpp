// SPDX-License-Identifier: GPL-3.0-or-later
// The document controller: documents on the screen, from opening to closing.
#include "editor/TMLTDocumentViewController.h"

#include "conversion/MarkdownToHtml.h"
#include "conversion/TextUtilities.h"
#include "editor/DocumentFacts.h"
#include "editor/DocumentViewChoice.h"
#include "editor/EditedText.h"
#include "editor/FormattedPage.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "organising/links/Backlinks.h"
#include "organising/search/PdfPages.h"

#include <QFileInfo>

namespace tomelet {

using namespace std::chrono_literals;

namespace {

QString bookForNewDocument(const QString &book)
{
    if (!book.isEmpty() && pathIsPlainBook(book)) return book;
    const QString inbox = settings().string(QStringLiteral("defaultInbox"));
    const QString path = inbox.isEmpty() ? QString() : fullPathOf(inbox);
    return !path.isEmpty() && isFolder(path) ? path : tomeletRoot();
}

// A text that would not come back as the bytes it was read from, or that no text widget holds, is shown and no more.
bool canBeEdited(const DecodedText &decoded, const QByteArray &bytes)
{
    if (decoded.text.contains(QChar::Null)) return false;
    return encodeText(decoded.text, decoded.encoding, decoded.byteOrderMark) == bytes;
}

} // namespace

TMLTDocumentViewController::TMLTDocumentViewController(DocumentView &view)
    : m_view(view)
{
    observe();
}

TMLTDocumentViewController::~TMLTDocumentViewController()
{
    m_save.reset();
    cancelPendingSave();
    for (const auto *call : {"reshowDocument", "updateHTML", "beginEditing"})
        platform().delayedCalls.cancel(QString::fromLatin1(call), callArgument());
}

// -- opening and closing ----------------------------------------------------------------------------------------------

bool TMLTDocumentViewController::leaveDocument()
{
    writeTextToFile();
    if (m_isEdited) return false;
    saveCurrentDocumentOffset();
    m_isNew = false;
    m_presentingToggledView = false;
    m_fileExtensionForNewDoc.clear();
    return true;
}

bool TMLTDocumentViewController::openDocument(const QString &path, bool toggled, const Arrival &arrival)
{
    if (!leaveDocument()) return false;
    m_presentingToggledView = toggled;
    m_path = path;
    m_parentPath = path.isEmpty() ? QString() : tomelet::parentPath(path);
    m_arrival = arrival;
    showDocument();
    m_arrival = {};
    return true;
}

bool TMLTDocumentViewController::createNewDocument(const QString &extension, const QString &book)
{
    if (!leaveDocument()) return false;
    const QString chosen = settings().string(QStringLiteral("DefaultDocumentType"));
    m_fileExtensionForNewDoc = !extension.isEmpty() ? extension : !chosen.isEmpty() ? chosen : QStringLiteral("html");
    m_path.clear();
    m_parentPath = bookForNewDocument(book);
    m_isNew = true;
    showDocument();
    const auto delay = m_kind == DocumentViewKind::Formatted ? 200ms : 0ms;
    platform().delayedCalls.schedule(QStringLiteral("beginEditing"), callArgument(), delay,
                                     [this] { m_view.beginEditing(); });
    return true;
}

void TMLTDocumentViewController::clearState()
{
    m_save.reset(); // what it wrote disappears
    cancelPendingSave();
    m_form = {};
    m_md5hash.clear();
    m_md5OfFile.clear();
    m_shownText.clear();
    m_formattedMainFrameURL.clear();
    m_titleIsFirstLineOfText = m_isEditable = m_isEdited = m_forcedSave = m_isForeignPage = false;
    m_failure.clear();
    m_kind = DocumentViewKind::None;
    m_canToggle = false;
    m_embeddedContexts.clear();
    m_referencedDocuments.clear();
    m_currentPlist.clear();
    m_modDateOfPresentedDocument = m_modDateOfPresentedPlist = {};
    m_stampOfPresentedDocument.reset();
}

void TMLTDocumentViewController::showDocument()
{
    clearState();
    m_view.setEdited(false);
    if (m_isNew) return showNewDocument();
    if (m_path.isEmpty()) return m_view.showNothing();
    const ViewChoice choice = viewForDocument(m_path, m_presentingToggledView);
    m_kind = choice.kind;
    m_canToggle = choice.canToggle;
    m_currentPlist = relevantInheritedProperties();
    m_referencedDocuments = tm_refreshBacklinksForReferencedDocuments(m_path);
    if (m_kind == DocumentViewKind::PlainText) loadPlainText();
    else if (m_kind == DocumentViewKind::Formatted) loadFormatted();
    else if (m_kind == DocumentViewKind::Pdf) m_view.showPdf(m_path, pageToShow());
    else m_view.showPreview(m_path);
    noteFile();
    restoreReadingPosition();
}

void TMLTDocumentViewController::showNewDocument()
{
    const ViewChoice choice = viewForNewDocument(m_fileExtensionForNewDoc);
    m_kind = choice.kind;
    m_isEditable = true;
    if (m_kind == DocumentViewKind::PlainText) return m_view.showPlainText({}, true);
    m_formattedMainFrameURL = m_parentPath;
    m_view.showPage(tm_createFormattedDocWithBody(m_parentPath, {}), m_parentPath);
}

// -- plain text -------------------------------------------------------------------------------------------------------

QString TMLTDocumentViewController::plainTextOf(const QString &stored) const
{
    if (isCombinedMarkdown(m_path)) return tm_htmlToPlainText(stored);
    if (!lowerExtension(m_path).startsWith(u"htm") || !tm_generatorIsTomelet(stored)) return stored;
    const QString body = tm_getInnerHTML(stored);
    return settings().boolean(QStringLiteral("showHTMLHeader")) ? tm_createFormattedDocWithBody(m_path, body) : body;
}

void TMLTDocumentViewController::loadPlainText()
{
    if (const auto bytes = readFile(m_path)) return showReadText(*bytes);
    m_form.encoding = TextEncoding::Ascii;
    m_view.showPlainText({}, false);
    m_view.showNotice(localized(TOMELET_TEXT("The document cannot be read")),
                      localized(TOMELET_TEXT("%1 is left as it is.")).arg(m_path));
}

void TMLTDocumentViewController::showReadText(const QByteArray &bytes)
{
    const DecodedText decoded = decodeText(bytes);
    m_form = {decoded.encoding, decoded.byteOrderMark};
    m_md5OfFile = md5OfBytes(bytes);
    m_shownText = plainTextOf(decoded.text);
    m_isEditable = canBeEdited(decoded, bytes);
    m_titleIsFirstLineOfText = tm_stringMatchesFirstLineOfText(nameWithoutExtension(m_path), m_shownText);
    m_embeddedContexts = contextsEmbeddedIn(m_path, m_shownText);
    m_view.showPlainText(m_shownText, m_isEditable && !isReadOnlyDocument(m_path));
    if (!m_isEditable)
        m_view.showNotice(localized(TOMELET_TEXT("This is no plain text")),
                          localized(TOMELET_TEXT("%1 holds bytes that no text has. It is shown, but cannot be edited."))
                              .arg(lastPathComponent(m_path)));
}

// -- pages ------------------------------------------------------------------------------------------------------------

bool TMLTDocumentViewController::showsMarkdown() const
{
    if (m_kind != DocumentViewKind::Formatted || m_path.isEmpty()) return false;
    return isCombinedMarkdown(m_path) || (hasPlainTextExtension(m_path) && !lowerExtension(m_path).startsWith(u"htm"));
}

void TMLTDocumentViewController::loadFormatted()
{
    const FormattedPage page = formattedPageFor(m_path);
    m_formattedMainFrameURL = page.base;
    m_isEditable = page.isEditable && QFileInfo(m_path).isReadable();
    m_isForeignPage = page.isForeign;
    if (page.isXml || (page.html.isEmpty() && !page.isEditable)) return m_view.showAddress(page.base);
    if (page.isEditable) {
        const auto bytes = readFile(m_path);
        const DecodedText decoded = decodeText(bytes.value_or(QByteArray()));
        m_form = {decoded.encoding, decoded.byteOrderMark};
        m_md5OfFile = bytes ? md5OfBytes(*bytes) : QString();
        if (readsContexts(m_path))
            m_embeddedContexts = contextsEmbeddedIn(m_path, tm_htmlToPlainQuick(tm_getInnerHTML(decoded.text)));
        if (!page.isForeign) checkEmbeddedImagesInText(m_path, page.html);
    } else if (const auto source = showsMarkdown() ? readFile(m_path) : std::nullopt) {
        m_md5OfFile = md5OfBytes(*source);
    }
    m_view.showPage(page.html, page.base);
}

// -- positions --------------------------------------------------------------------------------------------------------

void TMLTDocumentViewController::noteFile()
{
    m_modDateOfPresentedDocument = QFileInfo(m_path).lastModified();
    m_stampOfPresentedDocument = fileStamp(m_path);
    m_modDateOfPresentedPlist = QFileInfo(tm_plistPath(m_path)).lastModified();
}

static QString offsetKey(DocumentViewKind kind)
{
    switch (kind) {
    case DocumentViewKind::PlainText: return QStringLiteral("CharacterOffset");
    case DocumentViewKind::Formatted: return QStringLiteral("Offset");
    case DocumentViewKind::Pdf: return QStringLiteral("CurrentPDFPage");
    default: return {};
    }
}

// Kept as text. The start of a document needs no note, and makes no property file.
void TMLTDocumentViewController::saveCurrentDocumentOffset()
{
    const QString key = offsetKey(m_kind);
    if (m_path.isEmpty() || key.isEmpty() || !itemExists(m_path)) return;
    const qlonglong offset = m_view.readingOffset();
    if (offset > 0) tm_setProperty(m_path, QString::number(offset), key);
    else if (tm_propertyForKey(m_path, key).isValid()) tm_removePropertyForKey(m_path, key);
    m_modDateOfPresentedPlist = QFileInfo(tm_plistPath(m_path)).lastModified();
}

qlonglong TMLTDocumentViewController::pageToShow() const
{
    if (!m_arrival.searchKey.isEmpty())
        if (const auto page = pageOfPdfWith(m_path, m_arrival.searchKey)) return *page;
    static const QString numbered = QStringLiteral("page=");
    if (m_arrival.anchor.startsWith(numbered))
        return std::max(QStringView(m_arrival.anchor).sliced(numbered.size()).toLongLong() - 1, 0LL);
    return tm_propertyForKey(m_path, QStringLiteral("CurrentPDFPage")).toString().toLongLong();
}

void TMLTDocumentViewController::arriveAtAnchor()
{
    if (m_kind != DocumentViewKind::PlainText) return m_view.scrollToAnchor(m_arrival.anchor);
    const qsizetype position = positionOfHeading(m_view.text(), m_arrival.anchor);
    if (position >= 0) m_view.select({position, 0});
}

void TMLTDocumentViewController::restoreReadingPosition()
{
    if (m_kind == DocumentViewKind::PlainText || m_kind == DocumentViewKind::Formatted) {
        if (!m_arrival.searchKey.isEmpty()) return m_view.showTerm(m_arrival.searchKey);
        if (!m_arrival.anchor.isEmpty()) return arriveAtAnchor();
    }
    const QString key = offsetKey(m_kind);
    if (key.isEmpty() || m_kind == DocumentViewKind::Pdf) return;
    const qlonglong offset = tm_propertyForKey(m_path, key).toString().toLongLong();
    if (offset > 0) m_view.restoreOffset(offset);
}

void TMLTDocumentViewController::tm_togglePlainTextAndFormattedView()
{
    if (!m_view.isKeyWindow()) return logLine(QStringLiteral("not key window, ignoring toggle"));
    if (!m_canToggle || m_path.isEmpty()) return;
    QString paragraph;
    if (m_kind == DocumentViewKind::PlainText) {
        const EditedText edited(m_view.text(), m_view.selection());
        paragraph = edited.part(paragraphRange(edited.text(), {edited.selection().location, 0}));
    } else {
        paragraph = m_view.caretParagraph();
    }
    writeTextToFile();
    if (m_isEdited) return; // it could not be saved, and the other view shows what is on disk
    saveCurrentDocumentOffset();
    m_presentingToggledView = !m_presentingToggledView;
    showDocument();
    lookUpParagraph(paragraph);
}

QString TMLTDocumentViewController::toggleToolTip() const
{
    if (!m_canToggle) return {};
    if (m_kind == DocumentViewKind::PlainText) return localized(TOMELET_TEXT("Show as page"));
    return m_isForeignPage ? localized(TOMELET_TEXT("Show HTML source code")) : localized(TOMELET_TEXT("Show as text"));
}

void TMLTDocumentViewController::lookUpParagraph(const QString &paragraph)
{
    if (paragraph.trimmed().isEmpty()) return;
    if (m_kind != DocumentViewKind::PlainText)
        return m_view.scrollToText(tm_convertMarkdownToPlainText(paragraph).trimmed());
    const qsizetype position = positionOfParagraph(m_view.text(), paragraph);
    if (position >= 0) m_view.select({position, 0});
}

} // namespace tomelet
