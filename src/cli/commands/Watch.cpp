// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet watch`: follows the notebook and prints each routed change as a line and delivers
// reminders, until it is interrupted.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Platform.h"
#include "foundation/Signals.h"
#include "library/ItemPath.h"
#include "library/OutlineController.h"
#include "library/PathForms.h"
#include "organising/dates/ReminderDBus.h"
#include "organising/search/FileIndex.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonObject>
#include <QProcess>

namespace tomelet::cli {

namespace {

class ChangePrinter
{
public:
    explicit ChangePrinter(bool json)
        : m_json(json)
    {
        follow("TMLTFileModifiedOnDiskNotification", "changed", "path");
        follow("TMLTFileDeletedFromDiskNotification", "deleted", "path");
        follow("TMLTFileMovedNotification", "moved", "newPath");
    }

private:
    void follow(const char *notification, const char *word, const char *key)
    {
        m_subscriptions.push_back(
            notifications().observe(QString::fromLatin1(notification), [this, word, key](const QVariantMap &payload) {
                print(QLatin1StringView(word), payload.value(QStringLiteral("originalPath")).toString(),
                      payload.value(QLatin1StringView(key)).toString());
            }));
    }

    void print(QLatin1StringView word, const QString &from, const QString &path) const
    {
        if (m_json) {
            QJsonObject line{{QStringLiteral("event"), word}, {QStringLiteral("path"), path}};
            if (!from.isEmpty()) line.insert(QStringLiteral("from"), from);
            writeJson(line);
        } else {
            writeLine(word + u'\t' + (from.isEmpty() ? path : from + u'\t' + path));
        }
        std::fflush(stdout);
    }

    bool m_json;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
};

// There is no window here: whatever program of the desktop takes our addresses shows the item.
void openInDesktop(const QVariantMap &payload)
{
    const QString path = payload.value(QStringLiteral("path")).toString();
    const QString url = QStringLiteral("tomelet://show") + percentEncodedPath(tm_normalizedPath(path));
    QProcess::startDetached(QStringLiteral("xdg-open"), {url});
}

} // namespace

int runWatch(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Follows the notebook; prints each change as a line and delivers reminders."));
    if (const auto status = parse(call, parser)) return *status;
    if (const auto status = openNotebook(call)) return *status;

    // Before the first thread: one that takes the signals would end the program on the spot.
    QuitOnSignals::hold();
    releaseWarnings();
    OutlineView nobodyLooks;
    TMLTOutlineController controller(nobodyLooks);
    controller.initFileCoordinationAndTaskLists();
    controller.settle();
    const ChangePrinter printer(call.json);
    FileIndex index;
    index.present();
    DesktopReminders desktop;
    const ReminderDelivery delivery(desktop);
    const auto opener = notifications().observe(QStringLiteral("TMLTShowItemAtPathNotification"), openInDesktop);
    note(call, QStringLiteral("following the notebook; Ctrl+C ends it"));
    const QuitOnSignals quitter;
    const int status = QCoreApplication::exec();
    drainPendingWork();
    return status;
}

} // namespace tomelet::cli
