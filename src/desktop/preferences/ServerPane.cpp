// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/preferences/ServerPane.h"

#include "foundation/Localization.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace tomelet::desktop {

static QLineEdit *readOnlyField(const char *accessibleName)
{
    auto *field = new QLineEdit;
    field->setReadOnly(true);
    field->setAccessibleName(localized(accessibleName));
    return field;
}

ServerPane::ServerPane(ServerControl &server)
    : m_logic(server, [this](const ServerPreferencesFields &fields) { show(fields); })
    , m_startServerButton(new QPushButton)
    , m_usernameTitle(new QLabel)
    , m_usernameField(readOnlyField(TOMELET_TEXT("User")))
    , m_passwordTitle(new QLabel)
    , m_passwordField(readOnlyField(TOMELET_TEXT("Password")))
    , m_refreshPasswordButton(new QPushButton(QStringLiteral("↻")))
    , m_connectionDetailsField(new QLabel)
{
    m_startServerButton->setCheckable(true);
    m_refreshPasswordButton->setToolTip(TMServerPreferences::refreshPasswordToolTip());
    m_refreshPasswordButton->setAccessibleName(TMServerPreferences::refreshPasswordToolTip());
    m_connectionDetailsField->setWordWrap(true);
    m_connectionDetailsField->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_connectionDetailsField->setAlignment(Qt::AlignTop);
    auto *description = new QLabel(localized(TOMELET_TEXT(
        "The server lets other devices in your network read and write the notebook over HTTP and WebDAV.")));
    description->setWordWrap(true);
    description->setForegroundRole(QPalette::PlaceholderText);

    auto *password = new QHBoxLayout;
    password->addWidget(m_passwordField, 1);
    password->addWidget(m_refreshPasswordButton);
    auto *form = new QFormLayout(this);
    form->addRow(description);
    form->addRow(m_startServerButton);
    form->addRow(m_usernameTitle, m_usernameField);
    form->addRow(m_passwordTitle, password);
    form->addRow(m_connectionDetailsField);
    connect(m_startServerButton, &QPushButton::clicked, this, [this](bool on) { m_logic.toggleServer(on); });
    connect(m_refreshPasswordButton, &QPushButton::clicked, this, [this] { m_logic.refreshPassword(); });
    m_logic.viewDidLoad();
}

void ServerPane::show(const ServerPreferencesFields &fields)
{
    const bool running = !fields.usernameField.isEmpty();
    m_startServerButton->setText(fields.startServerButton);
    m_startServerButton->setChecked(running);
    m_usernameTitle->setText(fields.usernameTitle);
    m_usernameField->setText(fields.usernameField);
    m_passwordTitle->setText(fields.passwordTitle);
    m_passwordField->setText(fields.passwordField);
    m_connectionDetailsField->setText(fields.connectionDetailsField);
    for (QWidget *field : {static_cast<QWidget *>(m_usernameField), static_cast<QWidget *>(m_passwordField),
                           static_cast<QWidget *>(m_refreshPasswordButton)})
        field->setVisible(running);
}

} // namespace tomelet::desktop
