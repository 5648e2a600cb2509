// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/document/ContextsField.h"

#include "foundation/Localization.h"
#include "organising/contexts/ContextStores.h"
#include "organising/contexts/Contexts.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QStringListModel>

namespace tomelet::desktop {

ContextsField::ContextsField(QWidget *parent)
    : QLineEdit(parent)
    , m_completer(new QCompleter(this))
    , m_known(new QStringListModel(m_completer))
{
    setPlaceholderText(localized(TOMELET_TEXT("Contexts")));
    setAccessibleName(localized(TOMELET_TEXT("Contexts")));
    setFrame(false);
    m_completer->setModel(m_known);
    m_completer->setWidget(this);
    m_completer->setCaseSensitivity(Qt::CaseInsensitive);
    m_completer->setFilterMode(Qt::MatchContains);
    connect(m_completer, qOverload<const QString &>(&QCompleter::activated), this, &ContextsField::insertCompletion);
    connect(this, &QLineEdit::textEdited, this, &ContextsField::completeWord);
    connect(this, &QLineEdit::editingFinished, this, &ContextsField::finish);
}

void ContextsField::setContexts(const QStringList &words)
{
    m_words = words;
    // What is being typed stays; the words shown now come back with the next document.
    if (!hasFocus()) setText(words.join(u' '));
}

void ContextsField::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    QStringList known = tm_listOfAllAvailableTags();
    known.removeAll(favoriteContext);
    m_known->setStringList(known);
}

static qsizetype beginOfWord(const QString &text, qsizetype caret)
{
    return text.lastIndexOf(u' ', std::max<qsizetype>(caret - 1, 0)) + 1;
}

void ContextsField::completeWord()
{
    const qsizetype begin = beginOfWord(text(), cursorPosition());
    const QString typed = text().mid(begin, cursorPosition() - begin);
    if (typed.isEmpty()) return m_completer->popup()->hide();
    m_completer->setCompletionPrefix(typed);
    m_completer->complete();
    m_completer->popup()->setCurrentIndex(m_completer->completionModel()->index(0, 0));
}

void ContextsField::insertCompletion(const QString &word)
{
    const qsizetype begin = beginOfWord(text(), cursorPosition());
    const QString rest = text().mid(cursorPosition()).trimmed();
    const QString before = text().left(begin) + word + u' ';
    setText(before + rest);
    setCursorPosition(static_cast<int>(before.size()));
}

void ContextsField::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Escape || m_completer->popup()->isVisible()) return QLineEdit::keyPressEvent(event);
    setText(m_words.join(u' '));
    clearFocus();
}

void ContextsField::finish()
{
    const QStringList words = text().split(u' ', Qt::SkipEmptyParts);
    if (words == m_words || m_completer->popup()->isVisible()) return;
    m_words = words;
    Q_EMIT contextsEdited(words);
}

} // namespace tomelet::desktop
