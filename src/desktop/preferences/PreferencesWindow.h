// SPDX-License-Identifier: GPL-3.0-or-later
// The preferences: one tab a subject. What is chosen holds at once.
#pragma once

#include <QDialog>

#include <functional>

namespace tomelet {
class ServerControl;
}

namespace tomelet::desktop {

class PreferencesWindow final : public QDialog
{
    Q_OBJECT

public:
    /// The control outlives the window. `appearanceChanged` is called when light or dark was chosen.
    PreferencesWindow(ServerControl &server, std::function<void()> appearanceChanged, QWidget *parent);
};

} // namespace tomelet::desktop
