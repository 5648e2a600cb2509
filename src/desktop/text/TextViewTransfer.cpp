// SPDX-License-Identifier: GPL-3.0-or-later
// The plain text editor: what comes into it from other programs, and what goes to them and to paper.
#include "desktop/text/TMLTTextView.h"

#include "desktop/actions/DragData.h"
#include "desktop/text/TextHighlighter.h"
#include "foundation/Platform.h"

#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QUrl>

namespace tomelet::desktop {

// -- printing ---------------------------------------------------------------------------------------------------------

// The palette of no theme: dark letters, since paper is white.
static QPalette paperColours()
{
    QPalette colours;
    colours.setColor(QPalette::Base, Qt::white);
    colours.setColor(QPalette::Text, Qt::black);
    colours.setColor(QPalette::PlaceholderText, QColor(0x70, 0x70, 0x70));
    colours.setColor(QPalette::Link, QColor(0x1a, 0x5f, 0xb4));
    return colours;
}

void TMLTTextView::printOnPaper(QPagedPaintDevice *printer) const
{
    QTextDocument copy;
    QFont letters = font();
    if (const auto size = settings().integer(QStringLiteral("printFontSize")); size > 0)
        letters.setPointSize(int(size));
    copy.setDefaultFont(letters);
    copy.setPlainText(documentText());
    TextHighlighter marks(&copy);
    marks.restyleAtOnce(m_options, paperColours());
    copy.print(printer);
}

// -- pasting and dropping ---------------------------------------------------------------------------------------------

namespace {

// A picture of a text editor's or table's comes with its text, which is what was meant.
bool isImageAlone(const QMimeData &data)
{
    return data.hasImage() && !data.hasText();
}

// An address that a browser gives away is a link; one that was copied as text is that text.
QUrl linkIn(const QMimeData &data)
{
    const QList<QUrl> urls = data.urls();
    return urls.size() == 1 && !urls.first().isLocalFile() && data.hasFormat(QStringLiteral("text/uri-list"))
               ? urls.first()
               : QUrl();
}

// Browsers send the address and the title in two lines of UTF-16.
QString titleOfLink(const QMimeData &data)
{
    const QByteArray bytes = data.data(QStringLiteral("text/x-moz-url"));
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(bytes.constData()), bytes.size() / 2)
        .section(u'\n', 1, 1);
}

} // namespace

QMimeData *TMLTTextView::createMimeDataFromSelection() const
{
    if (!m_hasSoftBreaks) return QPlainTextEdit::createMimeDataFromSelection();
    auto *copied = new QMimeData;
    copied->setText(selectedText());
    return copied;
}

bool TMLTTextView::canInsertFromMimeData(const QMimeData *source) const
{
    return source->hasUrls() || source->hasImage() || QPlainTextEdit::canInsertFromMimeData(source);
}

void TMLTTextView::insertFromMimeData(const QMimeData *source)
{
    if (!mayChange()) return;
    leaveSoftBreak();
    if (const QStringList files = pathsIn(source); !files.isEmpty()) return Q_EMIT filesDropped(files);
    if (isImageAlone(*source)) return Q_EMIT imageDropped(qvariant_cast<QImage>(source->imageData()));
    const QUrl link = linkIn(*source);
    if (link.isValid()) return Q_EMIT linkDropped(QString::fromLatin1(link.toEncoded()), titleOfLink(*source));
    endStep();
    if (!insertInPieces(source->text())) QPlainTextEdit::insertFromMimeData(source);
    endStep();
}

// Where a document is dropped it is linked: it stays where it came from.
void TMLTTextView::dropEvent(QDropEvent *event)
{
    QPlainTextEdit::dropEvent(event);
    setFocus();
    if (!event->mimeData()->hasUrls()) return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

} // namespace tomelet::desktop
