// SPDX-License-Identifier: GPL-3.0-or-later
// `pages_in_webview [--scripts] FOLDER`: loads every page of a folder in the engine that shows documents, cut
// off from the network as in the document pane, and prints what the pages say on the console. Status 1 when
// one says anything or does not load. With --scripts the pages' own scripts run, which the document pane does
// not let them.
#include <QDir>
#include <QGuiApplication>
#include <QTextStream>
#include <QUrl>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineSettings>
#include <QWebEngineUrlRequestInterceptor>

using namespace Qt::StringLiterals;

namespace {

class NetworkBlocker final : public QWebEngineUrlRequestInterceptor
{
public:
    void interceptRequest(QWebEngineUrlRequestInfo &info) override
    {
        const QString scheme = info.requestUrl().scheme();
        if (scheme != u"file" && scheme != u"data" && scheme != u"about") info.block(true);
    }
};

class ListeningPage final : public QWebEnginePage
{
public:
    using QWebEnginePage::QWebEnginePage;

    int messages = 0;

    void say(const QString &what)
    {
        ++messages;
        QTextStream(stdout) << url().fileName() << ": " << what << Qt::endl;
    }

protected:
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString &message, int line,
                                  const QString &) override
    {
        say(message + u" (line "_s + QString::number(line) + u')');
    }
};

} // namespace

int main(int count, char **words)
{
    const QGuiApplication application(count, words);
    QStringList arguments = QCoreApplication::arguments();
    const bool scripts = arguments.removeAll(u"--scripts"_s) > 0;
    if (arguments.size() != 2) return qWarning("one folder, please"), 2;
    QStringList files;
    const QDir folder(arguments[1]);
    for (const QString &name : folder.entryList({u"*.html"_s}, QDir::Files))
        files.append(folder.absoluteFilePath(name));

    NetworkBlocker blocker;
    QWebEngineProfile profile;
    profile.setUrlRequestInterceptor(&blocker);
    profile.settings()->setAttribute(QWebEngineSettings::JavascriptEnabled, scripts);
    ListeningPage page(&profile);
    qsizetype next = 0;
    const auto loadNext = [&] {
        if (next < files.size()) page.load(QUrl::fromLocalFile(files[next++]));
        else QCoreApplication::quit();
    };
    QObject::connect(&page, &QWebEnginePage::loadFinished, [&](bool done) {
        if (!done) page.say(u"did not load"_s);
        QMetaObject::invokeMethod(&page, loadNext, Qt::QueuedConnection);
    });
    loadNext();
    QGuiApplication::exec();
    QTextStream(stdout) << files.size() << " pages, " << page.messages << " messages" << Qt::endl;
    return page.messages > 0 || files.isEmpty() ? 1 : 0;
}
