// SPDX-License-Identifier: GPL-3.0-or-later
// What the preferences pane of the server does and shows, without its widgets.
#pragma once

#include "server/ServerControl.h"

#include <QString>

#include <functional>

namespace tomelet {

/// The texts of the pane's fields, named as the fields are; empty while the server is off.
struct ServerPreferencesFields
{
    QString startServerButton;
    QString usernameTitle;
    QString usernameField;
    QString passwordTitle;
    QString passwordField;
    QString connectionDetailsField;
};

class TMServerPreferences
{
public:
    using Show = std::function<void(const ServerPreferencesFields &fields)>;

    /// The tool tip of refreshPasswordButton.
    [[nodiscard]] static QString refreshPasswordToolTip();

    /// Both outlive the pane's logic; `show` fills the fields in.
    TMServerPreferences(ServerControl &control, Show show);

    void viewDidLoad() { updateConnectionDetails(); }
    /// The button was switched on or off.
    void toggleServer(bool on);
    /// A new password: clients that are connected are dropped and need it.
    void refreshPassword();
    void createNewPassword() { m_control.createNewPassword(); }
    void updateConnectionDetails();

private:
    [[nodiscard]] ServerPreferencesFields fields() const;

    ServerControl &m_control;
    Show m_show;
};

} // namespace tomelet
