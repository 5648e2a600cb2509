// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/UrlShell.h"

#include "foundation/Platform.h"
#include "library/urls/PageFetcher.h"

#include <QEventLoop>

namespace tomelet::cli {

namespace {

class UrlShell final : public UrlActionShell
{
public:
    void fetch(const QUrl &address, Fetched done) override
    {
        PageFetcher fetcher;
        QEventLoop waiting;
        fetcher.fetch(address, [&](const FetchedPage &page) {
            done(page);
            waiting.quit();
        });
        waiting.exec();
    }
    bool bringToFront(const QString &) override { return false; }
    void showAlert(const QString &title, const QString &text) override
    {
        result.alert = QString(title + QStringLiteral(": ") + text).replace(u'\n', u' ');
    }
    void noteAdded(const QString &path) override { result.made = path; }
    void pageImported(const QString &path) override { result.made = path; }
    void actionFailed(const QString &why) override { result.failure = why; }

    UrlResult result;
};

} // namespace

UrlResult carryOut(const QString &url)
{
    UrlShell shell;
    const auto follow = [](const char *name, const char *key, auto take) {
        return notifications().observe(QString::fromLatin1(name), [key, take](const QVariantMap &payload) {
            take(payload.value(QLatin1StringView(key)).toString());
        });
    };
    UrlResult &result = shell.result;
    const auto show =
        follow("TMLTShowItemAtPathNotification", "path", [&](const QString &path) { result.shown = path; });
    const auto book =
        follow("TMLTNewBookSelectedNotification", "path", [&](const QString &path) { result.book = path; });
    const auto term =
        follow("TMStartSpotlightSearchNotification", "term", [&](const QString &text) { result.term = text; });
    handleTomeletURL(url, shell);
    drainPendingWork(); // the page is written on the queue
    return result;
}

} // namespace tomelet::cli
