// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/FormattingBar.h"

#include "desktop/page/FormattingCommands.h"
#include "desktop/page/TMLTWebView.h"
#include "foundation/Localization.h"

#include <QComboBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QMenu>
#include <QToolButton>

namespace tomelet::desktop {

static const QString markColour = QStringLiteral("#ffef8a");

FormattingBar::FormattingBar(QWidget *parent)
    : QToolBar(parent)
    , m_styles(new QComboBox)
{
    setAccessibleName(localized(TOMELET_TEXT("Formatting")));
    addStyles();
    addMarks();
    addMenu(localized(TOMELET_TEXT("Table")), {QStringLiteral("table"),
                                               {},
                                               QStringLiteral("rowAbove"),
                                               QStringLiteral("rowBelow"),
                                               QStringLiteral("columnBefore"),
                                               QStringLiteral("columnAfter"),
                                               {},
                                               QStringLiteral("removeRows"),
                                               QStringLiteral("removeColumns")});
    QMenu *insert = addMenu(
        localized(TOMELET_TEXT("Insert")),
        {QStringLiteral("link"), QStringLiteral("unlink"), {}, QStringLiteral("image"), QStringLiteral("rule")});
    connect(insert->addAction(localized(TOMELET_TEXT("Contents Table"))), &QAction::triggered, this,
            &FormattingBar::contentsWanted);
    addSeparator();
    addCommand(this, QStringLiteral("clear"));
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    // The caret is to stay in the page.
    for (QToolButton *button : findChildren<QToolButton *>()) button->setFocusPolicy(Qt::NoFocus);
}

void FormattingBar::addStyles()
{
    const std::pair<const char *, const char *> styles[] = {
        {TOMELET_TEXT("Paragraph"), "p"},      {TOMELET_TEXT("Heading 1"), "h1"},
        {TOMELET_TEXT("Heading 2"), "h2"},     {TOMELET_TEXT("Heading 3"), "h3"},
        {TOMELET_TEXT("Heading 4"), "h4"},     {TOMELET_TEXT("Quotation"), "blockquote"},
        {TOMELET_TEXT("Preformatted"), "pre"},
    };
    for (const auto &[text, block] : styles) m_styles->addItem(localized(text), QString::fromLatin1(block));
    m_styles->setAccessibleName(localized(TOMELET_TEXT("Paragraph Style")));
    connect(m_styles, &QComboBox::activated, this,
            [this](int index) { Q_EMIT wanted(QStringLiteral("paragraph"), m_styles->itemData(index).toString()); });
    addWidget(m_styles);
    addSeparator();
}

void FormattingBar::addMarks()
{
    for (const char *name : {"bold", "italic", "underline", "strikeThrough"}) {
        QAction *action = addCommand(this, QString::fromLatin1(name));
        QFont font = action->font();
        font.setBold(*name == 'b');
        font.setItalic(*name == 'i');
        font.setUnderline(*name == 'u');
        font.setStrikeOut(*name == 's');
        action->setFont(font);
        if (QWidget *button = widgetForAction(action)) button->setFont(font);
        action->setCheckable(true);
    }
    QAction *mark = addAction(localized(TOMELET_TEXT("Highlight")));
    mark->setCheckable(true);
    m_actions.insert(QStringLiteral("mark"), mark);
    connect(mark, &QAction::triggered, this, [this](bool on) {
        Q_EMIT wanted(on ? QStringLiteral("mark") : QStringLiteral("unmark"), on ? markColour : QString());
    });
    addSeparator();
    for (const char *name : {"bullets", "numbers", "boxes"})
        addCommand(this, QString::fromLatin1(name))->setCheckable(true);
    for (const char *name : {"outdent", "indent"}) addCommand(this, QString::fromLatin1(name));
    addSeparator();
}

QAction *FormattingBar::addCommand(QWidget *owner, const QString &name, const QString &argument)
{
    for (const FormattingCommand &command : formattingCommands()) {
        if (name != QLatin1String(command.name)) continue;
        const QString label = QString::fromUtf8(command.label);
        const QString text = localized(command.text);
        auto *action = new QAction(owner == this && !label.isEmpty() ? label : text, owner);
        const QString keys = QKeySequence(QString::fromLatin1(command.keys)).toString(QKeySequence::NativeText);
        action->setToolTip(keys.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, keys));
        m_actions.insert(name, action);
        owner->addAction(action);
        connect(action, &QAction::triggered, this, [this, name, argument] {
            if (name == u"link") return askForLink();
            if (name == u"image") return askForImage();
            Q_EMIT wanted(name, argument);
        });
        return action;
    }
    return nullptr;
}

QMenu *FormattingBar::addMenu(const QString &title, const QStringList &names)
{
    auto *button = new QToolButton;
    auto *menu = new QMenu(button);
    button->setText(title);
    button->setMenu(menu);
    button->setPopupMode(QToolButton::InstantPopup);
    for (const QString &name : names) {
        if (name.isEmpty()) menu->addSeparator();
        else addCommand(menu, name);
    }
    addWidget(button);
    return menu;
}

void FormattingBar::askForLink()
{
    const QString address = QInputDialog::getText(this, localized(TOMELET_TEXT("Link")),
                                                  localized(TOMELET_TEXT("Address:")), QLineEdit::Normal);
    if (!address.isEmpty()) Q_EMIT wanted(QStringLiteral("link"), address);
}

void FormattingBar::askForImage()
{
    const QString file = QFileDialog::getOpenFileName(
        this, localized(TOMELET_TEXT("Image")), {},
        localized(TOMELET_TEXT("Images")) + QStringLiteral(" (*.png *.jpg *.jpeg *.gif *.svg *.webp *.bmp *.tiff)"));
    if (!file.isEmpty()) Q_EMIT wanted(QStringLiteral("image"), file);
}

void FormattingBar::show(const FormattingState &state)
{
    for (const char *name : {"bold", "italic", "underline", "strikeThrough"}) {
        const QString key = QString::fromLatin1(name);
        m_actions[key]->setChecked(state.active.value(key).toBool());
    }
    for (const char *name : {"bullets", "numbers", "boxes"})
        m_actions[QString::fromLatin1(name)]->setChecked(state.list == QLatin1String(name));
    m_actions[QStringLiteral("mark")]->setChecked(state.isMarked);
    for (const char *name : {"rowAbove", "rowBelow", "columnBefore", "columnAfter", "removeRows", "removeColumns"})
        m_actions[QString::fromLatin1(name)]->setEnabled(state.isInTable);
    const int style = m_styles->findData(state.block);
    m_styles->setCurrentIndex(style < 0 ? 0 : style);
}

} // namespace tomelet::desktop
