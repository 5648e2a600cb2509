// SPDX-License-Identifier: GPL-3.0-or-later
// The formatted editor: keys, the mouse, what is pasted and dropped, the menu of the page.
#include "desktop/page/FormattingCommands.h"
#include "desktop/page/TMLTWebView.h"
#include "foundation/Localization.h"

#include <QApplication>
#include <QChildEvent>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QRegularExpression>
#include <QWebEngineContextMenuRequest>
#include <QWebEnginePage>

namespace tomelet::desktop {

// -- input ------------------------------------------------------------------------------------------------------------

// Keys and the mouse go to a child that the engine makes when it likes.
bool TMLTWebView::event(QEvent *event)
{
    if (event->type() == QEvent::ChildPolished || event->type() == QEvent::ChildAdded) {
        auto *child = static_cast<QChildEvent *>(event)->child();
        if (child->isWidgetType()) child->installEventFilter(this);
    }
    return QWebEngineView::event(event);
}

void TMLTWebView::inputHappened()
{
    if (m_editing && !m_afterInput.isActive()) m_afterInput.start();
}

namespace {

bool isTyping(const QKeyEvent &event)
{
    const bool plain = !(event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier | Qt::GroupSwitchModifier));
    return plain && !event.text().isEmpty() && event.key() != Qt::Key_Escape;
}

// Keys that the editor takes for itself, before menus and the engine do.
QString commandOfKey(const QKeyEvent &event)
{
    const QKeySequence keys(event.keyCombination());
    for (const FormattingCommand &command : formattingCommands())
        if (*command.keys && keys == QKeySequence(QString::fromLatin1(command.keys)))
            return QString::fromLatin1(command.name);
    return {};
}

bool isHistoryKey(const QKeyEvent &event)
{
    return event.matches(QKeySequence::Undo) || event.matches(QKeySequence::Redo);
}

QStringList localFiles(const QMimeData *data)
{
    QStringList paths;
    for (const QUrl &url : data->urls())
        if (url.isLocalFile()) paths.append(url.toLocalFile());
    return paths;
}

// A picture of a table's or text editor's comes with its text, which is what was meant; that of a browser's with its
// address or its tag alone.
bool isPicture(const QMimeData &data)
{
    if (!data.hasImage()) return false;
    if (!data.hasHtml()) return !data.hasFormat(QStringLiteral("text/plain"));
    QString html = data.html();
    html.remove(QRegularExpression(QStringLiteral("<!--.*?-->|<img\\b[^>]*>|</?(?:html|head|body|meta|a)\\b[^>]*>"),
                                   QRegularExpression::CaseInsensitiveOption));
    return html.trimmed().isEmpty();
}

bool holdsFilesOrPicture(const QMimeData &data)
{
    return !localFiles(&data).isEmpty() || isPicture(data);
}

} // namespace

bool TMLTWebView::takesKey(const QKeyEvent &event) const
{
    if (isHistoryKey(event)) return m_editing || m_hasSteps;
    return m_editing && (event.matches(QKeySequence::Paste) || !commandOfKey(event).isEmpty());
}

bool TMLTWebView::keyPressed(const QKeyEvent &event)
{
    if (!m_editing) {
        const bool goesBack = m_hasSteps && isHistoryKey(event);
        if (!m_ready || !(goesBack || isTyping(event))) return false;
        Q_EMIT editingWanted(false);
        if (!m_editing) Q_EMIT typedInVain();
        if (!m_editing || !goesBack) return false;
    }
    inputHappened();
    if (event.matches(QKeySequence::Undo)) return undo(), true;
    if (event.matches(QKeySequence::Redo)) return redo(), true;
    if (event.matches(QKeySequence::Paste)) return pasteImage();
    if (const QString command = commandOfKey(event); !command.isEmpty()) return run(scriptOfCommand(command)), true;
    const bool back = event.key() == Qt::Key_Backtab;
    if (event.key() == Qt::Key_Tab || back)
        return run(back ? QStringLiteral("tm.tab(true)") : QStringLiteral("tm.tab(false)")), true;
    return false;
}

bool TMLTWebView::mouseReleased(const QMouseEvent &event)
{
    if (event.button() != Qt::LeftButton) return false;
    const QPointF at = event.position() / zoomFactor();
    const QString place = QStringLiteral("(%1, %2)").arg(at.x()).arg(at.y());
    if (!m_mayBeEdited) return lookForBox(place), false;
    if (m_editing && event.modifiers() == Qt::ControlModifier) {
        page()->runJavaScript(QStringLiteral("tm.linkAt") + place, editorWorld,
                              m_life.guard([this](const QVariant &address) {
                                  if (!address.toString().isEmpty()) Q_EMIT linkWanted(address.toString());
                              }));
        return false;
    }
    if (!m_editing) Q_EMIT editingWanted(!m_hovered.isEmpty());
    run(QStringLiteral("tm.click") + place);
    return false;
}

bool TMLTWebView::pasteImage()
{
    const QMimeData *copied = QApplication::clipboard()->mimeData();
    return copied && takeFilesOrPicture(*copied);
}

bool TMLTWebView::takeFilesOrPicture(const QMimeData &given)
{
    if (const QStringList files = localFiles(&given); !files.isEmpty()) return Q_EMIT filesDropped(files), true;
    if (!isPicture(given)) return false;
    Q_EMIT imagePasted(qvariant_cast<QImage>(given.imageData()));
    return true;
}

// It comes in where it was let go; a document that takes no changes stores nothing either.
void TMLTWebView::dropped(QDropEvent &event)
{
    event.acceptProposedAction();
    if (!m_editing) Q_EMIT editingWanted(false);
    if (!m_editing) return Q_EMIT typedInVain();
    const QPointF at = event.position() / zoomFactor();
    ask(QStringLiteral("tm.caretAt(%1, %2)").arg(at.x()).arg(at.y()));
    takeFilesOrPicture(*event.mimeData());
}

bool TMLTWebView::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (!takesKey(*static_cast<QKeyEvent *>(event))) break;
        event->accept();
        return true;
    case QEvent::KeyPress:
        if (keyPressed(*static_cast<QKeyEvent *>(event))) return true;
        break;
    case QEvent::MouseButtonRelease:
        inputHappened();
        if (mouseReleased(*static_cast<QMouseEvent *>(event))) return true;
        break;
    case QEvent::InputMethod: inputHappened(); break;
    default: break;
    }
    return QWebEngineView::eventFilter(watched, event);
}

// -- drops ------------------------------------------------------------------------------------------------------------

void TMLTWebView::dragEnterEvent(QDragEnterEvent *event)
{
    if (takesDrop(*event->mimeData())) event->acceptProposedAction();
    else QWebEngineView::dragEnterEvent(event);
}

void TMLTWebView::dragMoveEvent(QDragMoveEvent *event)
{
    if (takesDrop(*event->mimeData())) event->acceptProposedAction();
    else QWebEngineView::dragMoveEvent(event);
}

void TMLTWebView::dropEvent(QDropEvent *event)
{
    inputHappened();
    if (takesDrop(*event->mimeData())) dropped(*event);
    else QWebEngineView::dropEvent(event);
}

bool TMLTWebView::takesDrop(const QMimeData &given) const
{
    return m_mayBeEdited && holdsFilesOrPicture(given);
}

// The engine would put a picture into the page itself.
void TMLTWebView::takeOverPaste(QMenu *menu)
{
    QAction *engines = page()->action(QWebEnginePage::Paste);
    if (!menu->actions().contains(engines)) return;
    auto *own = new QAction(engines->icon(), engines->text(), menu);
    own->setEnabled(engines->isEnabled() || takesDrop(*QApplication::clipboard()->mimeData()));
    connect(own, &QAction::triggered, this, [this] {
        if (!pasteImage()) page()->triggerAction(QWebEnginePage::Paste);
    });
    menu->insertAction(engines, own);
    menu->removeAction(engines);
}

void TMLTWebView::addSuggestions(QMenu *menu)
{
    const QWebEngineContextMenuRequest *request = lastContextMenuRequest();
    if (!request || request->misspelledWord().isEmpty()) return;
    QAction *first = menu->actions().value(0);
    for (const QString &better : request->spellCheckerSuggestions()) {
        auto *action = new QAction(better, menu);
        connect(action, &QAction::triggered, this, [this, better] { page()->replaceMisspelledWord(better); });
        menu->insertAction(first, action);
    }
    menu->insertSeparator(first);
}

void TMLTWebView::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (m_editing) {
        // The engine's own history knows nothing of commands.
        for (const auto action : {QWebEnginePage::Undo, QWebEnginePage::Redo})
            menu->removeAction(page()->action(action));
        takeOverPaste(menu);
        addSuggestions(menu);
        menu->addSeparator();
        for (const FormattingCommand &command : formattingCommands()) {
            const QString name = QString::fromLatin1(command.name);
            if (!name.startsWith(u"row") && !name.startsWith(u"column") && !name.startsWith(u"remove")) continue;
            menu->addAction(localized(command.text), this, [this, name] { run(scriptOfCommand(name)); });
        }
    }
    menu->popup(event->globalPos());
}

} // namespace tomelet::desktop
