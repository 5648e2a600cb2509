// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/document/FindBar.h"

#include "foundation/Localization.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace tomelet::desktop {

namespace {

template <typename Receiver, typename Slot>
QToolButton *button(const char *text, Receiver *receiver, Slot slot)
{
    auto *made = new QToolButton;
    made->setText(localized(text));
    made->setAutoRaise(true);
    QObject::connect(made, &QToolButton::clicked, receiver, slot);
    return made;
}

} // namespace

FindBar::FindBar(QWidget *parent)
    : QWidget(parent)
    , m_words(new QLineEdit)
    , m_replacement(new QLineEdit)
    , m_replacing(new QWidget)
    , m_count(new QLabel)
{
    m_words->setPlaceholderText(localized(TOMELET_TEXT("Find")));
    m_replacement->setPlaceholderText(localized(TOMELET_TEXT("Replace with")));
    auto *replacing = new QHBoxLayout(m_replacing);
    replacing->setContentsMargins(0, 0, 0, 0);
    replacing->addWidget(m_replacement, 1);
    replacing->addWidget(button(TOMELET_TEXT("Replace"), this, &FindBar::replaceWanted));
    replacing->addWidget(button(TOMELET_TEXT("Replace All"), this, &FindBar::replaceAllWanted));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->addWidget(m_words, 1);
    layout->addWidget(m_count);
    layout->addWidget(button(TOMELET_TEXT("Previous"), this, [this] { Q_EMIT findWanted(true); }));
    layout->addWidget(button(TOMELET_TEXT("Next"), this, [this] { Q_EMIT findWanted(false); }));
    layout->addWidget(m_replacing, 1);
    layout->addWidget(button(TOMELET_TEXT("Close"), this, &FindBar::close));
    setTabOrder(m_words, m_replacement);
    connect(m_words, &QLineEdit::textEdited, this, &FindBar::wordsChanged);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Window);
    hide();
}

void FindBar::open(const QString &selected, bool replaces)
{
    const QString line = selected.section(u'\n', 0, 0);
    if (!line.isEmpty()) m_words->setText(line);
    m_replacing->setVisible(replaces);
    show();
    m_words->setFocus();
    m_words->selectAll();
    if (!wanted().isEmpty()) Q_EMIT wordsChanged();
}

void FindBar::close()
{
    hide();
    Q_EMIT closed();
}

void FindBar::setWanted(const QString &words)
{
    const QSignalBlocker quiet(m_words);
    m_words->setText(words);
}

QString FindBar::wanted() const
{
    return m_words->text();
}
QString FindBar::replacement() const
{
    return m_replacement->text();
}

void FindBar::showCount(qsizetype count)
{
    m_count->setText(count < 0 || wanted().isEmpty() ? QString() : localized(TOMELET_TEXT("%1 found")).arg(count));
}

void FindBar::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape) return close();
    if (!enter) return QWidget::keyPressEvent(event);
    if (m_replacement->hasFocus()) Q_EMIT replaceWanted();
    else Q_EMIT findWanted(event->modifiers() & Qt::ShiftModifier);
}

} // namespace tomelet::desktop
