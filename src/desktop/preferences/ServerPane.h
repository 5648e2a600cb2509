// SPDX-License-Identifier: GPL-3.0-or-later
// The preferences' tab of the server. Its texts and state are those of TMServerPreferences.
#pragma once

#include "server/TMServerPreferences.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace tomelet::desktop {

class ServerPane final : public QWidget
{
    Q_OBJECT

public:
    /// The control outlives the pane.
    explicit ServerPane(ServerControl &server);

private:
    void show(const ServerPreferencesFields &fields);

    TMServerPreferences m_logic;
    QPushButton *m_startServerButton;
    QLabel *m_usernameTitle;
    QLineEdit *m_usernameField;
    QLabel *m_passwordTitle;
    QLineEdit *m_passwordField;
    QPushButton *m_refreshPasswordButton;
    QLabel *m_connectionDetailsField;
};

} // namespace tomelet::desktop
