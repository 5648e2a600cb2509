// SPDX-License-Identifier: GPL-3.0-or-later
// Fetching from a server of this test's own, well-behaved and not.
#include "library/urls/PageFetcher.h"
#include "tests/support/Notebook.h"

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>

namespace tomelet {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class Fetching : public ::testing::Test
{
protected:
    Fetching()
    {
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            while (QTcpSocket *socket = server.nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(*socket); });
        });
        EXPECT_TRUE(server.listen(QHostAddress::LocalHost));
    }
    void answer(QTcpSocket &socket)
    {
        request += socket.readAll();
        if (!request.contains("\r\n\r\n")) return;
        const QByteArray path = request.split(' ').value(1);
        requests.append(request);
        request.clear();
        socket.write(answers.value(path));
        if (endless) pour(socket);
        else if (!silent) socket.disconnectFromHost();
    }
    // Again as soon as what was written is gone.
    static void pour(QTcpSocket &socket)
    {
        const auto more = [&socket] {
            if (socket.bytesToWrite() == 0) socket.write(QByteArray(100'000, 'x'));
        };
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, more);
        more();
    }
    static QByteArray ok(const QByteArray &headers, const QByteArray &body)
    {
        return "HTTP/1.1 200 OK\r\nConnection: close\r\n" + headers + "\r\n" + body;
    }
    FetchedPage fetch(const QUrl &url)
    {
        PageFetcher fetcher(limits);
        std::optional<FetchedPage> page;
        fetcher.fetch(url, [&page](const FetchedPage &fetched) { page = fetched; });
        while (!page) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return *page;
    }
    [[nodiscard]] QUrl at(const QString &path) const
    {
        return QUrl(QString(u"http://127.0.0.1:%1"_s).arg(server.serverPort()) + path);
    }

    QTcpServer server;
    QMap<QByteArray, QByteArray> answers;
    QByteArray request;
    QList<QByteArray> requests;
    bool endless = false;
    bool silent = false;
    FetchLimits limits;
};

} // namespace

TEST_F(Fetching, takesBodyAndHeaders)
{
    answers["/a"] = ok("Content-Type: Text/HTML; Charset=\"ISO-8859-1\"\r\nSet-Cookie: a=b\r\n", "\xe4");
    FetchedPage page = fetch(at(u"/a"_s));
    EXPECT_EQ(page.error, QString());
    EXPECT_EQ(page.body, "\xe4");
    EXPECT_EQ(page.mediaType, u"text/html"_s);
    EXPECT_EQ(page.charset, u"ISO-8859-1"_s);
    EXPECT_EQ(page.suggestedName, QString());

    answers["/b"] = ok("Content-Disposition: attachment; filename=\"a; b.pdf\"\r\n", "");
    EXPECT_EQ(fetch(at(u"/b"_s)).suggestedName, u"a; b.pdf"_s);
    answers["/c"] = ok("Content-Disposition: attachment; filename=x; filename*=UTF-8''%C3%A4%20b.pdf\r\n", "");
    EXPECT_EQ(fetch(at(u"/c"_s)).suggestedName, u"ä b.pdf"_s);
    for (const QByteArray &each : requests) EXPECT_FALSE(each.toLower().contains("cookie")) << each.toStdString();
}

TEST_F(Fetching, followsTheWebAlone)
{
    const auto redirected = [](const QByteArray &where) -> QByteArray {
        return "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\nLocation: " + where + "\r\n\r\n";
    };
    answers["/from"] = redirected("/to");
    answers["/to"] = ok({}, "there");
    const FetchedPage page = fetch(at(u"/from"_s));
    EXPECT_EQ(page.body, "there");
    EXPECT_EQ(page.address, at(u"/to"_s));
    answers["/circle"] = redirected("/circle");
    answers["/file"] = redirected("file:///etc/passwd");
    answers["/data"] = redirected("data:text/plain,x");
    for (const QUrl &url : {at(u"/circle"_s), at(u"/file"_s), at(u"/data"_s), QUrl(u"file:///etc/passwd"_s),
                            QUrl(u"data:text/plain,x"_s), QUrl(u"http:///"_s), at(u"/missing"_s)}) {
        const FetchedPage refused = fetch(url);
        EXPECT_NE(refused.error, QString()) << url.toString().toStdString();
        EXPECT_EQ(refused.body, "") << url.toString().toStdString();
    }
}

TEST_F(Fetching, failuresSayWhy)
{
    answers["/gone"] = "HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\nConnection: close\r\n\r\ngone";
    EXPECT_TRUE(fetch(at(u"/gone"_s)).error.contains(u"Not Found"));
    const QUrl nobody = at({});
    server.close();
    EXPECT_TRUE(fetch(nobody).error.contains(u"refused")) << fetch(nobody).error.toStdString();
}

TEST_F(Fetching, neitherEndlessNorSilentAnswersHoldItUp)
{
    limits = {1'000'000, 30s, 30s};
    endless = true;
    answers["/"] = ok({}, {});
    EXPECT_TRUE(fetch(at(u"/"_s)).error.contains(u"more than 0 MB"));
    endless = false;
    silent = true;
    limits = {1'000'000, 100ms, 30s};
    EXPECT_TRUE(fetch(at(u"/"_s)).error.contains(u"does not answer"));
    limits = {1'000'000, 30s, 100ms};
    EXPECT_TRUE(fetch(at(u"/"_s)).error.contains(u"too long"));
}

} // namespace tomelet
