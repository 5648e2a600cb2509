// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/text/TextCompleter.h"

#include "desktop/text/TMLTTextView.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextBlock>

namespace tomelet::desktop {

TextCompleter::TextCompleter(TMLTTextView *view)
    : QObject(view)
    , m_view(view)
    , m_completer(new QCompleter(this))
    , m_offered(new QStringListModel(m_completer))
{
    m_completer->setModel(m_offered);
    m_completer->setWidget(view);
    m_completer->setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    connect(m_completer, qOverload<const QString &>(&QCompleter::activated), this,
            [this](const QString &chosen) { insert(chosen); });
    m_pause.setSingleShot(true);
    m_pause.setInterval(120);
    connect(&m_pause, &QTimer::timeout, this, &TextCompleter::offer);
}

void TextCompleter::setDocument(const QString &book, const QString &document)
{
    m_book = book;
    m_document = document;
}

bool TextCompleter::isOpen() const
{
    return m_completer->popup()->isVisible();
}

QStringList TextCompleter::offered() const
{
    return m_offered->stringList();
}

void TextCompleter::close()
{
    m_pause.stop();
    m_completer->popup()->hide();
    m_place.reset();
    m_refusedAt = -1;
}

std::optional<CompletionPlace> TextCompleter::place() const
{
    const QTextCursor cursor = m_view->textCursor();
    if (cursor.hasSelection() || m_view->isReadOnly()) return std::nullopt;
    return completionPlace(cursor.block().text(), cursor.positionInBlock());
}

// The folder, the list of contexts or the sheet is read once a place.
QStringList TextCompleter::completions(const CompletionPlace &place)
{
    if (!m_place || m_place->start != place.start || !haveSameCandidates(*m_place, place))
        m_candidates = completionCandidates(place, m_book, m_document);
    m_place = place;
    QStringList found = completionsFor(m_candidates, place);
    for (const QString &path : completionsFromEverywhere(place))
        if (!found.contains(path) && path != place.typed) found.append(path);
    return found;
}

// The notebook is listed meanwhile, where it has to be; its documents come when that is done.
QStringList TextCompleter::completionsFromEverywhere(const CompletionPlace &place)
{
    static constexpr size_t most = 50;
    if (place.kind != CompletionKind::WikiPath || place.typed.isEmpty() || place.typed.contains(u'/')) return {};
    m_names.want([this] { offer(); });
    return completionsFromLibrary(m_names.beginningWith(place.typed, most), m_book);
}

// -- the list ---------------------------------------------------------------------------------------------------------

void TextCompleter::open(const QStringList &completions)
{
    if (completions.isEmpty()) return m_completer->popup()->hide();
    if (isOpen() && completions == offered()) return;
    m_offered->setStringList(completions);
    QAbstractItemView *popup = m_completer->popup();
    QRect place = m_view->cursorRect();
    place.translate(m_view->viewport()->pos());
    place.setWidth(popup->sizeHintForColumn(0) + popup->verticalScrollBar()->sizeHint().width() + 8);
    m_completer->complete(place);
    popup->setCurrentIndex({});
}

void TextCompleter::offer()
{
    const auto here = place();
    const int start = here ? m_view->textCursor().block().position() + int(here->start) : -1;
    if (here && start == m_refusedAt) return;
    if (!here || !m_view->hasFocus()) return close();
    open(completions(*here));
}

void TextCompleter::typed()
{
    if (isOpen()) return offer();
    if (place()) m_pause.start();
    else m_place.reset();
}

void TextCompleter::caretMoved()
{
    if (isOpen() && !place()) close();
}

// -- keys -------------------------------------------------------------------------------------------------------------

void TextCompleter::refuse()
{
    const auto here = place();
    close();
    if (here) m_refusedAt = m_view->textCursor().block().position() + int(here->start);
}

bool TextCompleter::takeKey(const QKeyEvent &event)
{
    const QModelIndex chosen = m_completer->popup()->currentIndex();
    switch (event.key()) {
    case Qt::Key_Escape: return refuse(), true;
    case Qt::Key_Tab: insert(chosen.isValid() ? chosen.data().toString() : offered().value(0)); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!chosen.isValid()) return close(), false;
        insert(chosen.data().toString());
        return true;
    default: return false;
    }
}

bool TextCompleter::completeByTab()
{
    const auto here = place();
    if (!here) return false;
    m_place.reset(); // who asks wants what is there now
    const QStringList found = completions(*here);
    if (found.isEmpty()) return false;
    if (found.size() == 1) return insert(found.first()), true;
    QStringList nearby = found; // what lies elsewhere only has its name in common
    nearby.removeIf([&](const QString &path) { return !path.startsWith(here->typed, Qt::CaseInsensitive); });
    const QString common = commonBeginning(nearby, here->typed);
    if (common.size() > here->typed.size()) insert(common, false);
    open(found);
    return true;
}

void TextCompleter::insert(const QString &completion, bool isWhole)
{
    const auto here = place();
    m_completer->popup()->hide();
    if (!here || completion.isEmpty()) return;
    const QTextBlock block = m_view->textCursor().block();
    EditedText line(block.text(), {m_view->textCursor().positionInBlock(), 0});
    complete(line, *here, completion, isWhole);
    m_view->replaceInLine(block, line);
    if (isWhole && completion.endsWith(u'/')) m_pause.start(); // and what is in the folder
}

} // namespace tomelet::desktop
