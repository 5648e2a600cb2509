// SPDX-License-Identifier: GPL-3.0-or-later
// A web address in the notebook shows its page, which reaches nothing else; pages of the notebook reach no web.
#include "tests/support/Notebook.h"

#include "desktop/actions/ItemActions.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/page/TMLTWebView.h"

#include <QEventLoop>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QWebEnginePage>

#include <memory>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

// Answers every request with the page that stands under its path, and notes what was asked for.
class Site
{
public:
    Site()
    {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            QTcpSocket *socket = server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(*socket); });
        });
    }
    [[nodiscard]] QByteArray address() const { return "http://127.0.0.1:" + QByteArray::number(server.serverPort()); }

    QTcpServer server;
    QHash<QByteArray, QByteArray> pages; // the header's end and the body
    QByteArrayList asked;

private:
    void answer(QTcpSocket &socket)
    {
        asked.append(socket.readAll().split(' ').value(1));
        socket.write("HTTP/1.0 " + pages.value(asked.last(), "404 Not Found\r\n\r\n"));
        socket.disconnectFromHost();
    }
};

class WebAddress : public tomelet::test::Notebook
{
protected:
    WebAddress()
    {
        pane.resize(600, 400);
        pane.show();
    }
    void openAddress(const QByteArray &path)
    {
        write(QStringLiteral("/Site.url"), "[InternetShortcut]\nURL=" + site.address() + path + "\n");
        pane.showDocument(at(QStringLiteral("/Site.url")));
    }
    // A page that is on its way out answers late or not at all. The engine needs a loop that does not doze.
    [[nodiscard]] QString shown()
    {
        QEventLoop loop;
        const auto text = std::make_shared<QString>();
        pane.view()->page()->toPlainText([text, target = QPointer(&loop)](const QString &now) {
            *text = now;
            if (target) target->quit();
        });
        QTimer::singleShot(100, &loop, &QEventLoop::quit);
        loop.exec();
        return *text;
    }
    [[nodiscard]] bool comesToShow(const QString &text)
    {
        return QTest::qWaitFor([&] { return shown().contains(text); }, 20'000);
    }

    Site site;
    ItemActions actions;
    DocumentPane pane{actions};
};

} // namespace

TEST_F(WebAddress, showsItsPageWithoutScriptsAndFiles)
{
    write(QStringLiteral("/secret.txt"), "of the notebook");
    site.pages["/moved"] = "302 Found\r\nLocation: /page\r\n\r\n";
    site.pages["/page"] = "200 OK\r\nContent-Type: text/html\r\n\r\n<p>A page</p><script>document.body.innerHTML = "
                          "'script';</script><iframe src='file://" +
                          at(QStringLiteral("/secret.txt")).toUtf8() +
                          "'></iframe><iframe src='/inner'></iframe><meta http-equiv='refresh' content='0;url=file://" +
                          at(QStringLiteral("/secret.txt")).toUtf8() + "'>";
    openAddress("/moved");
    EXPECT_TRUE(comesToShow(QStringLiteral("A page")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return site.asked.contains("/inner"); }));
    QTest::qWait(200);
    EXPECT_FALSE(shown().contains(u"script"));
    EXPECT_FALSE(shown().contains(u"of the notebook"));
    EXPECT_EQ(pane.view()->page()->url().path(), QStringLiteral("/page"));
}

TEST_F(WebAddress, ofAPageThatDoesNotComeIsShownItself)
{
    site.server.close();
    openAddress("/page");
    EXPECT_TRUE(comesToShow(QString::fromLatin1(site.address())));
}

TEST_F(WebAddress, leavesTheOtherPagesWithoutTheWeb)
{
    site.pages["/page"] = "200 OK\r\nContent-Type: text/html\r\n\r\n<p>A page</p>";
    openAddress("/page");
    EXPECT_TRUE(comesToShow(QStringLiteral("A page")));
    site.asked.clear();
    write(QStringLiteral("/Mail.html"), "<p>A letter</p><img src='" + site.address() +
                                            "/pixel.png'><meta http-equiv='refresh' content='0;url=" + site.address() +
                                            "/page'>");
    pane.showDocument(at(QStringLiteral("/Mail.html")));
    EXPECT_TRUE(comesToShow(QStringLiteral("A letter")));
    QTest::qWait(200);
    EXPECT_TRUE(shown().contains(u"A letter"));
    EXPECT_EQ(site.asked, QByteArrayList());
}

// The button above a document tells what the other view is; one kind of page is the work of another program.
TEST_F(WebAddress, hasNoOtherView)
{
    const auto toolTip = [this](const char *name, const QByteArray &content) {
        write(QString::fromLatin1(name), content);
        pane.showDocument(at(QString::fromLatin1(name)));
        const auto buttons = pane.findChildren<QToolButton *>();
        for (const QToolButton *button : buttons)
            if (button->isVisible() && button->toolTip().startsWith(u"Show ")) return button->toolTip();
        return QString();
    };
    EXPECT_EQ(toolTip("/a.html", "<p>Foreign</p>"), QStringLiteral("Show HTML source code"));
    EXPECT_EQ(toolTip("/b.md", "# Title\n"), QStringLiteral("Show as text"));
    EXPECT_EQ(toolTip("/c.txt", "Text\n"), QStringLiteral("Show as page"));
    EXPECT_EQ(toolTip("/d.url", "URL=" + site.address() + "\n"), QString());
}
