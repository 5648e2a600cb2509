// SPDX-License-Identifier: GPL-3.0-or-later
// What a person sees before there is a notebook: choosing where it is to live.
#pragma once

#include "library/AppDelegate.h"

#include <QWidget>

namespace tomelet::desktop {

class WelcomePane final : public QWidget
{
    Q_OBJECT

public:
    explicit WelcomePane(const WelcomeChoices &choices, QWidget *parent = nullptr);

Q_SIGNALS:
    void folderWanted();
    void cloudWanted();
    void dropboxWanted();
};

} // namespace tomelet::desktop
