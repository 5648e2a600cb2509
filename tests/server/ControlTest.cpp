// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/TMServerPreferences.h"

#include "foundation/Settings.h"
#include "server/Core/AcceptSocket.h"
#include "tests/server/RawClient.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tomelet;

namespace {

// Holds a port as another program would.
class TakenPort
{
public:
    explicit TakenPort(std::uint16_t port)
        : m_socket(std::make_shared<http::AcceptSocket>(
              m_context.get_executor(), [this] { return m_context.get_executor(); }, [](auto) {}))
    {
        http::SocketError error;
        while (!m_socket->acceptOnInterface("127.0.0.1", port, error)) ++port;
    }
    [[nodiscard]] std::uint16_t port() const { return m_socket->localPort(); }

private:
    asio::io_context m_context;
    std::shared_ptr<http::AcceptSocket> m_socket;
};

class ControlTest : public ::testing::Test
{
protected:
    ServerControl makeControl()
    {
        m_settings->setObject(serverKeys::root, m_root.path());
        ServerOverrides overrides;
        overrides.interface = QStringLiteral("127.0.0.1");
        return ServerControl(
            *m_settings, [this](const QString &title, const QString &) { m_alert = title; }, overrides);
    }
    qlonglong storedPort() const { return m_settings->integer(serverKeys::port); }

    QTemporaryDir m_root;
    std::unique_ptr<Settings> m_settings = makeMemorySettings();
    QString m_alert;
};

} // namespace

TEST_F(ControlTest, aTakenPortIsFollowedByTheNext)
{
    const TakenPort taken(8080);
    m_settings->setObject(serverKeys::port, taken.port());
    ServerControl control = makeControl();
    control.launchTomeletServer();
    ASSERT_TRUE(control.isRunning());
    EXPECT_GT(control.port(), taken.port());
    EXPECT_EQ(storedPort(), control.port());
}

TEST_F(ControlTest, aHighPortIsNotGivenUp)
{
    const TakenPort taken(9000);
    m_settings->setObject(serverKeys::port, taken.port());
    ServerControl control = makeControl();
    control.launchTomeletServer();
    EXPECT_FALSE(control.isRunning());
    EXPECT_EQ(m_alert, QStringLiteral("Could not Start Tomelet Server"));
    EXPECT_EQ(storedPort(), taken.port());
    EXPECT_NE(control.httpServer(), nullptr);
}

TEST_F(ControlTest, theFirstStartStoresItsPort)
{
    ServerControl control = makeControl();
    control.launchTomeletServer();
    ASSERT_TRUE(control.isRunning());
    EXPECT_GE(control.port(), 8080);
    EXPECT_EQ(storedPort(), control.port());
}

TEST_F(ControlTest, thePaneSwitchesTheServer)
{
    ServerControl control = makeControl();
    ServerPreferencesFields shown;
    TMServerPreferences pane(control, [&shown](const ServerPreferencesFields &fields) { shown = fields; });
    pane.viewDidLoad();
    EXPECT_EQ(shown.startServerButton, QStringLiteral("Start Tomeelet Server"));
    EXPECT_TRUE(shown.connectionDetailsField.isEmpty());

    pane.toggleServer(true);
    EXPECT_EQ(m_settings->string(serverKeys::launch), QStringLiteral("yes"));
    EXPECT_EQ(shown.startServerButton, QStringLiteral("Stop Tomelet Server"));
    EXPECT_EQ(shown.usernameField, QStringLiteral("Tomelet"));
    const QRegularExpression ninePlain(QStringLiteral("^[0-9a-f]{4}-[0-9a-f]{4}$"));
    EXPECT_TRUE(ninePlain.match(shown.passwordField).hasMatch()) << shown.passwordField.toStdString();
    EXPECT_TRUE(shown.connectionDetailsField.startsWith(
        QStringLiteral("Use the credentials above to connect to one of the given server addresses.\n\nhttp://")));
    EXPECT_TRUE(shown.connectionDetailsField.contains(QStringLiteral(".local:%1").arg(control.port())));

    pane.toggleServer(false);
    EXPECT_FALSE(m_settings->contains(serverKeys::launch));
    EXPECT_EQ(control.httpServer(), nullptr);
    EXPECT_TRUE(shown.passwordField.isEmpty());
}

TEST_F(ControlTest, aNewPasswordShutsTheOldOneOut)
{
    m_settings->setObject(serverKeys::password, QStringLiteral("secret"));
    ServerControl control = makeControl();
    TMServerPreferences pane(control, [](const ServerPreferencesFields &) {});
    pane.toggleServer(true);
    EXPECT_EQ(control.password(), QStringLiteral("secret"));
    test::RawClient client(control.port());
    EXPECT_EQ(client.request("OPTIONS", "/").status, 200);
    pane.refreshPassword();
    EXPECT_EQ(client.receive().status, 0);
    test::RawClient again(control.port());
    EXPECT_EQ(again.request("OPTIONS", "/").status, 401);
}
