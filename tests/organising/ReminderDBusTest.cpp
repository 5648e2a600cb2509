// SPDX-License-Identifier: GPL-3.0-or-later
// Reminders over a real session bus (dbus-run-session gives one), at whose other end stands a notification
// service that only takes notes.
#include "tests/organising/Tasklist.h"

#include "organising/dates/ReminderDBus.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

using namespace tomelet;
using tomelet::test::Tasklist;

class NotingService : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    QStringList bodies;
    QStringList actions;
    QVariantMap hints;
    QList<uint> closed;

public Q_SLOTS:
    uint Notify(const QString &, uint replaces, const QString &, const QString &, const QString &body,
                const QStringList &offered, const QVariantMap &given, int)
    {
        bodies.append(body);
        actions = offered;
        hints = given;
        return replaces ? replaces : uint(bodies.size());
    }
    void CloseNotification(uint id) { closed.append(id); }

Q_SIGNALS:
    void ActionInvoked(uint id, const QString &action);
    void NotificationClosed(uint id, uint reason);
};

class ReminderDBus : public Tasklist
{
protected:
    ReminderDBus()
        : bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("service")))
    {
        bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), &service,
                           QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
        EXPECT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.Notifications")));
    }
    ~ReminderDBus() override { bus.unregisterService(QStringLiteral("org.freedesktop.Notifications")); }
    template <typename Condition>
    static void waitFor(const Condition &condition)
    {
        while (!condition()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    QDBusConnection bus;
    NotingService service;
};

TEST_F(ReminderDBus, showsOpensAndWithdraws)
{
    DesktopReminders reminders;
    int opened = 0;
    const Reminder loud{task(QStringLiteral("Tea & <milk>.md")), now()};
    reminders.present(loud, {[&opened] { ++opened; }, [] { FAIL(); }});
    waitFor([this] { return service.bodies.size() == 1; });
    EXPECT_EQ(service.bodies.first(), u"Tea &amp; &lt;milk&gt;");
    EXPECT_TRUE(service.actions.contains(QStringLiteral("Open")));
    EXPECT_TRUE(service.hints.contains(QStringLiteral("sound-name")));

    const Reminder silent{task(QStringLiteral("b.md")), utc(QStringLiteral("2026-11-20T23:01:00Z"))};
    reminders.present(silent, {[] { FAIL() << "nobody chose this one"; }, [] { FAIL(); }});
    waitFor([this] { return service.bodies.size() == 2; });
    EXPECT_TRUE(service.hints.value(QStringLiteral("suppress-sound")).toBool());

    Q_EMIT service.ActionInvoked(1, QStringLiteral("elsewhere"));
    Q_EMIT service.ActionInvoked(99, QStringLiteral("open"));
    Q_EMIT service.ActionInvoked(1, QStringLiteral("open"));
    waitFor([&opened] { return opened == 1; });
    reminders.withdraw(silent.path);
    waitFor([this] { return service.closed == QList<uint>{1, 2}; });
}

TEST_F(ReminderDBus, failureIsTold)
{
    bus.unregisterService(QStringLiteral("org.freedesktop.Notifications"));
    DesktopReminders reminders;
    bool failed = false;
    reminders.present({task(QStringLiteral("a.md")), now()}, {[] {}, [&failed] { failed = true; }});
    waitFor([&failed] { return failed; });
}

#include "ReminderDBusTest.moc"
