// SPDX-License-Identifier: GPL-3.0-or-later
// The document's pane: pages that are edited in place.
#include "desktop/document/DocumentPane.h"

#include "desktop/actions/ItemActions.h"
#include "desktop/page/FormattingBar.h"
#include "desktop/page/FormattingCommands.h"
#include "desktop/page/ShownPage.h"
#include "desktop/page/TMLTWebView.h"
#include "desktop/text/SortOptions.h"
#include "desktop/text/TMLTTextView.h"
#include "editor/DroppedText.h"
#include "editor/PastedImages.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/PathForms.h"
#include "library/Properties.h"

#include <QBuffer>
#include <QStackedWidget>
#include <QWebEnginePage>

#include <utility>

namespace tomelet::desktop {

void DocumentPane::connectEditor()
{
    connect(m_view, &TMLTWebView::editingWanted, this, &DocumentPane::beginEditingPage);
    connect(m_view, &TMLTWebView::typedInVain, this, [this] {
        if (isReadOnlyDocument(path())) tm_showUnlockAlert();
    });
    connect(m_view, &TMLTWebView::edited, this, [this] { m_controller.textDidChange(); });
    connect(m_view, &TMLTWebView::stateChanged, m_bar, qOverload<const FormattingState &>(&FormattingBar::show));
    connect(m_view, &TMLTWebView::stateChanged, this,
            [this](const FormattingState &state) { takeContentsTable(state.hasContents); });
    connect(m_view, &TMLTWebView::boxClicked, this, &DocumentPane::toggleBox);
    connect(m_view, &TMLTWebView::linkWanted, this, [this](const QString &address) { followAddress(address, false); });
    connect(m_view, &TMLTWebView::imagePasted, this, &DocumentPane::insertImage);
    connect(m_view, &TMLTWebView::filesDropped, this, &DocumentPane::insertFiles);
    // As on the page that the text would make.
    connect(m_text, &TMLTTextView::linkWanted, this, [this](const QString &address) { followAddress(address, false); });
    connectDrops();
    connect(m_page, &QWebEnginePage::linkHovered, m_view, &TMLTWebView::setHoveredLink);
    connect(m_page, &QWebEnginePage::renderProcessTerminated, this, [this] {
        m_liveAddress.clear();
        m_isLoading = false;
        m_controller.writeTextToFile();
        m_controller.showDocument();
    });
    connect(m_bar, &FormattingBar::wanted, this, &DocumentPane::runCommand);
    connect(m_bar, &FormattingBar::contentsWanted, this, &DocumentPane::toggleContentsTable);
}

// The white space around a body is its file's; the engine adds what stands behind the body to it.
QString DocumentPane::innerHTML() const
{
    return m_view->innerHTML().trimmed();
}
QString DocumentPane::innerText() const
{
    return m_view->innerText();
}

QString DocumentPane::caretParagraph() const
{
    return m_view->caretParagraph().isEmpty() ? m_paragraphOnTop : m_view->caretParagraph();
}

void DocumentPane::hideFormattingBar()
{
    m_bar->hide();
    m_view->endEditing();
}

// -- beginning and ending ---------------------------------------------------------------------------------------------

void DocumentPane::beginEditing()
{
    shownWidget()->setFocus();
    if (m_stack->currentWidget() == m_view) beginEditingPage(false);
}

void DocumentPane::beginEditingPage(bool onLink)
{
    if (!m_view->isReady()) return m_view->beginEditing(false); // comes back when the page is there
    if (!m_controller.shouldBeginEditingInDOMRange(onLink)) return;
    m_hasContents = showsContentsTable();
    m_view->beginEditing(m_hasContents);
    m_bar->show();
}

void DocumentPane::settlePage()
{
    if (m_isSettling) return;
    m_isSettling = true;
    m_view->waitForPage();
    m_isSettling = false;
}

// What is typed in another view of the text goes into the file first, as the box is found there.
void DocumentPane::toggleBox(const PageBox &box)
{
    if (!m_controller.showsMarkdown()) return;
    if (isReadOnlyDocument(path())) return tm_showUnlockAlert();
    notifications().post(QStringLiteral("TMLTSaveCurrentDocument"));
    switch (m_actions.toggleBox(path(), box)) {
    case BoxResult::Toggled: return;
    case BoxResult::NotFound:
        return showNotice(localized(TOMELET_TEXT("This box cannot be ticked here")),
                          localized(TOMELET_TEXT("Its line is not in the text of this document.")));
    case BoxResult::NotWritten: return showAlert(localized(TOMELET_TEXT("Saving Error")), path());
    }
}

// -- commands ---------------------------------------------------------------------------------------------------------

// What the commands of the text are on a page; "" where a page has none.
static QString scriptOfTextCommand(EditorCommand command, const EditorArguments &arguments)
{
    static const QHash<QString, QString> marks{{QStringLiteral("**"), QStringLiteral("bold")},
                                               {QStringLiteral("*"), QStringLiteral("italic")},
                                               {QStringLiteral("~~"), QStringLiteral("strikeThrough")},
                                               {QStringLiteral("`"), QStringLiteral("code")}};
    switch (command) {
    case EditorCommand::Markdown:
        if (const auto mark = marks.constFind(arguments.first); mark != marks.cend()) return scriptOfCommand(*mark);
        return scriptForMarks(arguments.first, arguments.second);
    case EditorCommand::Heading:
        return scriptOfCommand(QStringLiteral("paragraph"),
                               arguments.level == 0 ? QStringLiteral("p") : QStringLiteral("h%1").arg(arguments.level));
    case EditorCommand::ToggleList: return scriptOfCommand(QStringLiteral("list"));
    default: return {};
    }
}

void DocumentPane::applyToText(EditorCommand command, const EditorArguments &arguments)
{
    if (showsText() && command == EditorCommand::SortLines) sortLines();
    else if (showsText()) m_text->apply(command, arguments);
    else if (const QString script = scriptOfTextCommand(command, arguments); !script.isEmpty()) m_view->run(script);
}

void DocumentPane::sortLines()
{
    if (!m_controller.shouldChangeText(false)) return;
    askForSortOptions(m_text, [this] { m_text->apply(EditorCommand::SortLines); });
}

void DocumentPane::runCommand(const QString &command, const QString &argument)
{
    m_view->setFocus();
    if (command == u"image") return insertFiles({argument});
    m_view->run(scriptOfCommand(command, argument));
}

bool DocumentPane::showsContentsTable() const
{
    return !path().isEmpty() && tm_propertyForKey(path(), QStringLiteral("TOC")).toString() == u"1";
}

void DocumentPane::toggleContentsTable()
{
    m_view->run(m_hasContents ? QStringLiteral("tm.setContents(false)") : QStringLiteral("tm.setContents(true)"));
}

// The property, "1" or absent, follows the page, also where the step was undone.
void DocumentPane::takeContentsTable(bool on)
{
    if (on == std::exchange(m_hasContents, on) || path().isEmpty()) return;
    if (on) tm_setProperty(path(), QStringLiteral("1"), QStringLiteral("TOC"));
    else tm_removePropertyForKey(path(), QStringLiteral("TOC"));
}

// -- pictures and files -----------------------------------------------------------------------------------------------

QString DocumentPane::bookOfDocument() const
{
    return path().isEmpty() ? m_controller.parentPath() : parentPath(path());
}

void DocumentPane::connectDrops()
{
    connect(m_text, &TMLTTextView::filesDropped, this, &DocumentPane::insertFiles);
    connect(m_text, &TMLTTextView::imageDropped, this, &DocumentPane::insertImage);
    connect(m_text, &TMLTTextView::linkDropped, this, [this](const QString &address, const QString &title) {
        insertIntoText(textForLink(dropTargetFor(path(), bookOfDocument()), address, title));
    });
}

void DocumentPane::insertIntoText(const QString &text)
{
    if (!text.isEmpty()) m_text->apply(EditorCommand::SmartReplace, {text, {}, 0});
}

bool DocumentPane::insertText(const QString &text)
{
    if (showsText()) {
        if (m_text->isReadOnly() || !m_controller.shouldChangeText(false)) return false;
        insertIntoText(text);
        return true;
    }
    if (m_stack->currentWidget() != m_view || isReadOnlyDocument(path())) return false;
    if (!m_view->isEditing()) beginEditingPage(false);
    if (!m_view->isEditing()) return false;
    const QString html = QString(text.toHtmlEscaped()).replace(u'\n', QStringLiteral("<br>"));
    m_view->run(scriptOfCommand(QStringLiteral("html"), html));
    return true;
}

void DocumentPane::tellNotStored(const QString &what)
{
    showAlert(localized(TOMELET_TEXT("Saving Error")), what);
}

void DocumentPane::insertFiles(const QStringList &files)
{
    QStringList failed;
    if (showsText()) {
        insertIntoText(textForDroppedFiles(dropTargetFor(path(), bookOfDocument()), files, failed));
    } else {
        const QString html = htmlForDroppedFiles(bookOfDocument(), files, failed);
        if (!html.isEmpty()) m_view->run(scriptOfCommand(QStringLiteral("html"), html));
    }
    if (!failed.isEmpty())
        tellNotStored(localized(TOMELET_TEXT("%1 could not be copied.")).arg(failed.join(QStringLiteral(", "))));
}

void DocumentPane::insertImage(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!image.save(&buffer, "PNG")) return;
    const QString inserted = showsText() ? textForPastedImage(dropTargetFor(path(), bookOfDocument()), bytes)
                                         : storeInImages(bookOfDocument(), nameForPastedImage(), bytes);
    if (inserted.isEmpty())
        return tellNotStored(localized(TOMELET_TEXT("Nothing could be written in %1.")).arg(bookOfDocument()));
    if (showsText()) insertIntoText(inserted);
    else m_view->run(scriptOfCommand(QStringLiteral("image"), inserted));
}

} // namespace tomelet::desktop
