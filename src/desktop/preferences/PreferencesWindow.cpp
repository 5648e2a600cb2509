// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/preferences/PreferencesWindow.h"

#include "desktop/preferences/Panes.h"
#include "desktop/preferences/ServerPane.h"
#include "foundation/Localization.h"

#include <QDialogButtonBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace tomelet::desktop {

PreferencesWindow::PreferencesWindow(ServerControl &server, std::function<void()> appearanceChanged, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(localized(TOMELET_TEXT("Preferences")));
    auto *tabs = new QTabWidget;
    tabs->addTab(makeGeneralPane(std::move(appearanceChanged)), localized(TOMELET_TEXT("General")));
    tabs->addTab(makeWritingPane(), localized(TOMELET_TEXT("Writing")));
    tabs->addTab(makeMarkdownPane(), localized(TOMELET_TEXT("Markdown")));
    tabs->addTab(makeOrganisingPane(), localized(TOMELET_TEXT("Organizing")));
    tabs->addTab(new ServerPane(server), localized(TOMELET_TEXT("Server")));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabs, 1);
    layout->addWidget(buttons);
    resize(560, 480);
}

} // namespace tomelet::desktop
