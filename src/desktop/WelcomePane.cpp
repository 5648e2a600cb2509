// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/WelcomePane.h"

#include "foundation/Localization.h"
#include "foundation/Resources.h"

#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace tomelet::desktop {

WelcomePane::WelcomePane(const WelcomeChoices &choices, QWidget *parent)
    : QWidget(parent)
{
    auto *picture = new QLabel;
    picture->setPixmap(QIcon(resourcePath(QStringLiteral("icons/org.tomelet.app.svg"))).pixmap(96, 96));
    auto *title = new QLabel(localized(TOMELET_TEXT("Welcome to Tomelet")));
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 2);
    title->setFont(font);
    auto *text =
        new QLabel(localized(TOMELET_TEXT("Your notebook is one folder of ordinary files. Where should it live?")));
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignCenter);

    auto *layout = new QVBoxLayout(this);
    layout->setSpacing(14);
    layout->addStretch(2);
    for (QLabel *label : {picture, title, text}) layout->addWidget(label, 0, Qt::AlignHCenter);
    layout->addSpacing(12);
    const auto addButton = [&](const QString &label, void (WelcomePane::*signal)(), bool highlighted) {
        auto *button = new QPushButton(label);
        button->setMinimumWidth(280);
        button->setDefault(highlighted);
        button->setAutoDefault(true);
        if (highlighted) button->setFocus();
        connect(button, &QPushButton::clicked, this, signal);
        layout->addWidget(button, 0, Qt::AlignHCenter);
    };
    if (!choices.cloudPath.isEmpty())
        addButton(QStringLiteral("iCloud"), &WelcomePane::cloudWanted,
                  choices.highlight == WelcomeChoices::CloudChoice);
    if (!choices.dropboxPath.isEmpty())
        addButton(QStringLiteral("Dropbox"), &WelcomePane::dropboxWanted,
                  choices.highlight == WelcomeChoices::DropboxChoice);
    addButton(localized(TOMELET_TEXT("Choose a Folder...")), &WelcomePane::folderWanted,
              choices.highlight == WelcomeChoices::FolderChoice);
    layout->addStretch(3);
}

} // namespace tomelet::desktop
