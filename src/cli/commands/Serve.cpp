// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet serve [--port N] [--password P] [--interface ADDR]`
#include "cli/Invocation.h"
#include "cli/commands/AllCommands.h"

#include "foundation/Directories.h"
#include "foundation/Settings.h"
#include "server/Core/Log.h"
#include "server/LocalAddresses.h"
#include "server/ServerControl.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <csignal>
#include <cstdio>

#include <sys/resource.h>

namespace tomelet::cli {

namespace {

// Two descriptors for each client that reads a file: the usual 1024 are soon gone.
void raiseDescriptorLimit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

QStringList addressesOf(const ServerControl &control, const QString &interface)
{
    QStringList hosts{interface.contains(u':') ? u'[' + interface + u']' : interface};
    if (interface.isEmpty())
        hosts = QStringList{localHostName()} + localIPv4Addresses() + QStringList{QStringLiteral("localhost")};
    QStringList addresses;
    for (const QString &host : hosts) addresses += QStringLiteral("http://%1:%2").arg(host).arg(control.port());
    return addresses;
}

void printAccess(const Invocation &call, const ServerControl &control, const QStringList &addresses)
{
    if (call.json) {
        writeJson(QJsonObject{{QStringLiteral("addresses"), QJsonArray::fromStringList(addresses)},
                              {QStringLiteral("port"), control.port()},
                              {QStringLiteral("user"), serverUser},
                              {QStringLiteral("password"), control.password()}});
    } else {
        for (const QString &address : addresses) writeLine(address);
        writeLine(QStringLiteral("User: ") + serverUser);
        writeLine(QStringLiteral("Password: ") + control.password());
    }
    std::fflush(stdout);
}

// SIGINT and SIGTERM are blocked before the first thread is made, so that they all are, and taken here alone.
sigset_t blockEndSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

int serve(const Invocation &call, Settings &settings, const ServerOverrides &overrides)
{
    QString failure;
    ServerControl control(
        settings,
        [&failure](const QString &title, const QString &text) { failure = title + QStringLiteral(": ") + text; },
        overrides);
    if (control.password().isEmpty()) control.createNewPassword();
    const sigset_t endSignals = blockEndSignals();
    raiseDescriptorLimit();
    control.launchTomeletServer();
    if (!control.isRunning()) return fail(failure);
    settings.synchronize();
    printAccess(call, control, addressesOf(control, overrides.interface));
    int taken = 0;
    sigwait(&endSignals, &taken);
    control.terminateTomeletServer();
    return Done;
}

} // namespace

int runServe(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Serves the notebook over HTTP and WebDAV until it is interrupted."));
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("The port; 0 lets the system choose."),
                                  QStringLiteral("N"));
    const QCommandLineOption password(
        QStringLiteral("password"), QStringLiteral("The password of this run; other users of the machine can see it."),
        QStringLiteral("P"));
    const QCommandLineOption interface(QStringLiteral("interface"),
                                       QStringLiteral("Listens on this address or network interface alone."),
                                       QStringLiteral("ADDR"));
    parser.addOptions({port, password, interface});
    if (const auto status = parse(call, parser)) return *status;
    if (!parser.positionalArguments().isEmpty()) return wrongUsage(call, QStringLiteral("serve takes no arguments"));

    ServerOverrides overrides;
    if (parser.isSet(port)) {
        bool isNumber = false;
        overrides.port = parser.value(port).toUShort(&isNumber);
        if (!isNumber) return wrongUsage(call, QStringLiteral("\"%1\" is no port").arg(parser.value(port)));
    }
    if (parser.isSet(password) && parser.value(password).isEmpty())
        return wrongUsage(call, QStringLiteral("the password is empty"));
    overrides.password = parser.value(password);
    overrides.interface = parser.value(interface);

    const auto settings = openSettings(configDirectory() + QStringLiteral("/settings.ini"));
    const QString root = call.root.isEmpty() ? settings->string(serverKeys::root) : call.root;
    overrides.root = QFileInfo(root).canonicalFilePath();
    if (root.isEmpty()) return fail(QStringLiteral("no notebook is set: give one with --root DIR"));
    if (!QFileInfo(overrides.root).isDir()) return fail(QStringLiteral("there is no folder %1").arg(root));
    if (call.quiet) http::setLogSink([](const std::string &) {});
    return serve(call, *settings, overrides);
}

} // namespace tomelet::cli
