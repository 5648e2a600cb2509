// SPDX-License-Identifier: GPL-3.0-or-later
// The preferences: one tab a subject.
#pragma once

#include "server/TMServerPreferences.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace tomelet::desktop {

class PreferencesWindow final : public QDialog
{
    Q_OBJECT

public:
    /// The control outlives the window. `appearanceChanged` is called when light or dark was chosen.
    PreferencesWindow(ServerControl &server, std::function<void()> appearanceChanged, QWidget *parent);

private:
    [[nodiscard]] QWidget *makeGeneralPane();
    [[nodiscard]] QWidget *makeServerPane();
    void showServer(const ServerPreferencesFields &fields);
    void chooseAppearance(int index);

    TMServerPreferences m_serverLogic;
    std::function<void()> m_appearanceChanged;
    QPushButton *m_startServerButton = nullptr;
    QLabel *m_usernameTitle = nullptr;
    QLineEdit *m_usernameField = nullptr;
    QLabel *m_passwordTitle = nullptr;
    QLineEdit *m_passwordField = nullptr;
    QPushButton *m_refreshPasswordButton = nullptr;
    QLabel *m_connectionDetailsField = nullptr;
};

} // namespace tomelet::desktop
