// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/PreferencesWindow.h"

#include "foundation/Localization.h"
#include "foundation/Platform.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

namespace tomelet::desktop {

namespace {

const QString manualKey = QStringLiteral("selectAppearanceManually");
const QString darkKey = QStringLiteral("darkTheme");

// A box for a setting of which only presence counts: off removes the key.
QCheckBox *settingBox(const char *text, const QString &key)
{
    auto *box = new QCheckBox(localized(text));
    box->setChecked(settings().boolean(key));
    QObject::connect(box, &QCheckBox::toggled, box, [key](bool on) {
        settings().setObject(key, on ? QVariant(true) : QVariant());
        notifications().post(QStringLiteral("TMLTReloadCurrentBook"));
    });
    return box;
}

QLineEdit *readOnlyField(const char *accessibleName)
{
    auto *field = new QLineEdit;
    field->setReadOnly(true);
    field->setAccessibleName(localized(accessibleName));
    return field;
}

} // namespace

PreferencesWindow::PreferencesWindow(ServerControl &server, std::function<void()> appearanceChanged, QWidget *parent)
    : QDialog(parent)
    , m_serverLogic(server, [this](const ServerPreferencesFields &fields) { showServer(fields); })
    , m_appearanceChanged(std::move(appearanceChanged))
{
    setWindowTitle(localized(TOMELET_TEXT("Preferences")));
    auto *tabs = new QTabWidget;
    tabs->addTab(makeGeneralPane(), localized(TOMELET_TEXT("General")));
    tabs->addTab(makeServerPane(), localized(TOMELET_TEXT("Server")));
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabs, 1);
    layout->addWidget(buttons);
    resize(560, 420);
    m_serverLogic.viewDidLoad();
}

// -- general ----------------------------------------------------------------------------------------------------------

QWidget *PreferencesWindow::makeGeneralPane()
{
    auto *appearance = new QComboBox;
    appearance->addItems(
        {localized(TOMELET_TEXT("As the desktop")), localized(TOMELET_TEXT("Light")), localized(TOMELET_TEXT("Dark"))});
    const bool manual = settings().contains(manualKey);
    appearance->setCurrentIndex(!manual ? 0 : settings().boolean(darkKey) ? 2 : 1);
    connect(appearance, &QComboBox::currentIndexChanged, this, &PreferencesWindow::chooseAppearance);

    auto *recent = new QComboBox;
    for (const int count : {10, 20, 30, 40}) recent->addItem(QString::number(count));
    recent->setCurrentIndex(int(settings().integer(QStringLiteral("recentItemCount"))));
    connect(recent, &QComboBox::currentIndexChanged, this, [](int index) {
        settings().setObject(QStringLiteral("recentItemCount"), index == 0 ? QVariant() : QVariant(qlonglong(index)));
    });

    auto *pane = new QWidget;
    auto *form = new QFormLayout(pane);
    form->addRow(localized(TOMELET_TEXT("Appearance")), appearance);
    form->addRow(localized(TOMELET_TEXT("Number of Recent Items")), recent);
    form->addRow(settingBox(TOMELET_TEXT("Show file extensions"), QStringLiteral("showFileExtensions")));
    form->addRow(settingBox(TOMELET_TEXT("Order names by the numbers in them"), QStringLiteral("useNumericOrder")));
    form->addRow(settingBox(TOMELET_TEXT("In a custom order, show new documents at the top"),
                            QStringLiteral("manualSortNewAtTop")));
    form->addRow(
        settingBox(TOMELET_TEXT("Open the last document at launch"), QStringLiteral("openMostRecentDocOnLaunch")));
    form->addRow(settingBox(TOMELET_TEXT("Move pictures that nothing refers to to the trash"),
                            QStringLiteral("cleanUpAttachments")));
    return pane;
}

void PreferencesWindow::chooseAppearance(int index)
{
    settings().setObject(manualKey, index == 0 ? QVariant() : QVariant(QStringLiteral("yes")));
    if (index > 0) settings().setObject(darkKey, index == 2 ? QVariant(true) : QVariant());
    m_appearanceChanged();
}

// -- server -----------------------------------------------------------------------------------------------------------

QWidget *PreferencesWindow::makeServerPane()
{
    m_startServerButton = new QPushButton;
    m_startServerButton->setCheckable(true);
    m_usernameTitle = new QLabel;
    m_usernameField = readOnlyField(TOMELET_TEXT("User"));
    m_passwordTitle = new QLabel;
    m_passwordField = readOnlyField(TOMELET_TEXT("Password"));
    m_refreshPasswordButton = new QPushButton(QStringLiteral("↻"));
    m_refreshPasswordButton->setToolTip(TMServerPreferences::refreshPasswordToolTip());
    m_refreshPasswordButton->setAccessibleName(TMServerPreferences::refreshPasswordToolTip());
    m_connectionDetailsField = new QLabel;
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
    auto *pane = new QWidget;
    auto *form = new QFormLayout(pane);
    form->addRow(description);
    form->addRow(m_startServerButton);
    form->addRow(m_usernameTitle, m_usernameField);
    form->addRow(m_passwordTitle, password);
    form->addRow(m_connectionDetailsField);
    connect(m_startServerButton, &QPushButton::clicked, this, [this](bool on) { m_serverLogic.toggleServer(on); });
    connect(m_refreshPasswordButton, &QPushButton::clicked, this, [this] { m_serverLogic.refreshPassword(); });
    return pane;
}

void PreferencesWindow::showServer(const ServerPreferencesFields &fields)
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
