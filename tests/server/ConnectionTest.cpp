// SPDX-License-Identifier: GPL-3.0-or-later
// One connection byte by byte: limits, framing, keep-alive, authentication.
#include "tests/server/ServerFixture.h"

#include <thread>

using namespace tomelet;
using namespace tomelet::test;

class ConnectionTest : public ServerFixture
{
protected:
    void SetUp() override
    {
        ServerFixture::SetUp();
        put("a.txt", "0123456789");
        startDAV();
    }
};

TEST_F(ConnectionTest, requestSplitAtEveryByte)
{
    RawClient client(port());
    client.sendByByte(client.authorized("GET", "/a.txt"));
    EXPECT_EQ(client.receive().body, "0123456789");
    const std::string head = client.authorized("PUT", "/b", "Transfer-Encoding: chunked\r\n");
    client.sendByByte(head + "3;x=y\r\nabc\r\n0A\r\n0123456789\r\n0\r\nTrailer: 1\r\n\r\n");
    EXPECT_EQ(client.receive().status, 201);
    EXPECT_EQ(get("b"), "abc0123456789");
}

TEST_F(ConnectionTest, pipelinedRequestsAreAnsweredInOrder)
{
    RawClient client(port());
    std::string requests = client.authorized("GET", "/a.txt");
    requests += client.authorized("PUT", "/b", {}, "xyz");
    requests += client.authorized("HEAD", "/b");
    requests += client.authorized("GET", "/none");
    requests += client.authorized("GET", "/b");
    client.send(requests);
    EXPECT_EQ(client.receive().body, "0123456789");
    EXPECT_EQ(client.receive().status, 201);
    EXPECT_EQ(client.receive(true).header("Content-Length"), "3");
    EXPECT_EQ(client.receive().status, 404);
    EXPECT_EQ(client.receive().body, "xyz");
}

TEST_F(ConnectionTest, limitsHoldWithoutAReply)
{
    const std::string start = "GET / HTTP/1.1\r\n";
    const auto lines = [](int count) {
        std::string text;
        for (int i = 0; i < count; ++i) text += "A: b\r\n";
        return text;
    };
    std::string emptyLines;
    for (int i = 0; i < 101; ++i) emptyLines += "\r\n";
    const auto longLine = [](std::size_t length) { return "A: " + std::string(length - 5, 'x') + "\r\n"; };
    const struct
    {
        const char *what;
        std::string bytes;
        bool dropped;
    } rows[] = {
        {"a line of 8190 bytes", start + longLine(8190) + "\r\n", false},
        {"a line of 8191 bytes", start + longLine(8191), true},
        {"a line without an end", std::string(9000, 'x'), true},
        {"100 lines", start + lines(99) + "\r\n", false},
        {"101 lines", start + lines(100), true},
        {"empty lines without an end", emptyLines, true},
        {"a chunk line of 201 bytes", "PUT /b HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n" + std::string(201, '0'),
         true},
        {"trailers without an end", "PUT /b HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n" + lines(100), true},
    };
    for (const auto &row : rows) {
        RawClient client(port());
        client.send(row.bytes);
        if (row.dropped) EXPECT_TRUE(client.isDropped()) << row.what;
        else EXPECT_EQ(client.receive().status, 401) << row.what;
    }
}

TEST_F(ConnectionTest, badRequestsAreToldAndClosed)
{
    const std::string chunked = " HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";
    const struct
    {
        const char *what;
        std::string bytes;
        int status;
    } rows[] = {
        {"malformed", "GET /\r\n\r\n", 400},
        {"white space before a colon", "GET / HTTP/1.1\r\nA : b\r\n\r\n", 400},
        {"two lengths", "PUT /b HTTP/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\nxx", 400},
        {"no length", "PUT /b HTTP/1.1\r\n\r\n", 400},
        {"no number", "PUT /b HTTP/1.1\r\nContent-Length: 1x\r\n\r\n", 400},
        {"beyond all numbers", "PUT /b HTTP/1.1\r\nContent-Length: 18446744073709551615\r\n\r\n", 400},
        {"a body for GET", "GET / HTTP/1.1\r\nContent-Length: 3\r\n\r\nabc", 400},
        {"no chunk size", "PUT /b" + chunked + "xyz\r\n", 400},
        {"no chunk trailer", "PUT /b" + chunked + "3\r\nabcX\r\n", 400},
        {"unknown method", "PATCH / HTTP/1.1\r\n\r\n", 405},
        {"lower case", "get / HTTP/1.1\r\n\r\n", 405},
    };
    for (const auto &row : rows) {
        RawClient client(port());
        client.send(row.bytes);
        const Reply reply = client.receive();
        EXPECT_EQ(reply.status, row.status) << row.what;
        EXPECT_EQ(reply.header("Connection"), "close") << row.what;
        EXPECT_TRUE(client.isDropped()) << row.what;
    }
    EXPECT_EQ(itemsInRoot(), 1U);
}

TEST_F(ConnectionTest, aReplyArrivesThoughMoreIsSentThanRead)
{
    RawClient client(port());
    std::thread sender([&client] { client.send("POST / HTTP/1.1\r\n\r\n" + std::string(1 << 20, 'x')); });
    EXPECT_EQ(client.receive().status, 405);
    sender.join();
}

TEST_F(ConnectionTest, versionsAndKeepAlive)
{
    const struct
    {
        const char *request;
        int status;
        bool stays;
    } rows[] = {
        {"GET / HTTP/1.1\r\n\r\n", 401, true},
        {"GET / HTTP/1.1\r\nConnection: Close\r\n\r\n", 401, false},
        {"GET / HTTP/1.0\r\n\r\n", 401, false},
        {"GET / HTTP/1.0\r\nconnection: keep-ALIVE\r\n\r\n", 401, true},
        {"GET / HTTP/2.0\r\n\r\n", 505, true},
        {"GET / HTTP/1.2\r\nConnection: close\r\n\r\n", 505, true},
        {"GET /chat HTTP/1.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n\r\n", 404, true},
    };
    for (const auto &row : rows) {
        RawClient client(port());
        client.send(row.request);
        EXPECT_EQ(client.receive().status, row.status) << row.request;
        if (!row.stays) EXPECT_TRUE(client.isDropped()) << row.request;
        else EXPECT_EQ(client.request("GET", "/a.txt").status, 200) << row.request;
    }
}

TEST_F(ConnectionTest, chunksWinOverALength)
{
    RawClient client(port());
    // A PUT without a body of its own says "Content-Length: 0".
    client.send(client.authorized("PUT", "/b", "Transfer-Encoding: CHUNKED\r\n") + "2\r\nhi\r\n0\r\n\r\n");
    EXPECT_EQ(client.receive().status, 201);
    EXPECT_EQ(get("b"), "hi");
}

TEST_F(ConnectionTest, clientsThatWaitAreToldToContinue)
{
    RawClient client(port());
    const std::string request = client.authorized("PUT", "/b", "Expect: 100-continue\r\n", "abc");
    client.send(request.substr(0, request.size() - 3));
    client.send("abc");
    EXPECT_EQ(client.receive().status, 201); // behind the interim reply, which receive() steps over
}

TEST_F(ConnectionTest, ranges)
{
    RawClient client(port());
    Reply reply = client.request("GET", "/a.txt", "Range: bytes=2-4\r\n");
    EXPECT_EQ(reply.status, 206);
    EXPECT_EQ(reply.header("Content-Range") + " " + reply.body, "bytes 2-4/10 234");

    reply = client.request("GET", "/a.txt", "Range: bytes=-2,0-0,-0\r\n");
    EXPECT_EQ(reply.status, 206);
    const std::string type = reply.header("Content-Type");
    ASSERT_TRUE(type.starts_with("multipart/byteranges; boundary="));
    const std::string line = "\r\n--" + type.substr(31);
    EXPECT_EQ(reply.body, line + "\r\nContent-Range: bytes 0-0/10\r\n\r\n0" + line +
                              "\r\nContent-Range: bytes 8-9/10\r\n\r\n89" + line +
                              "\r\nContent-Range: bytes 10-9/10\r\n\r\n" + line + "--\r\n");

    reply = client.request("GET", "/a.txt", "Range: bytes=0-0,0-0\r\n");
    EXPECT_EQ(std::to_string(reply.status) + reply.body, "2000123456789");
    reply = client.request("GET", "/a.txt", "Range: bytes=10-\r\n");
    EXPECT_EQ(reply.status, 200);
    reply = client.request("GET", "/a.txt", "Range: bytes=-0\r\n");
    EXPECT_EQ(std::to_string(reply.status) + reply.header("Content-Range"), "206bytes 10-9/10");
    reply = client.request("HEAD", "/a.txt", "Range: bytes=1-3\r\n");
    EXPECT_EQ(reply.header("Content-Length"), "3");
    EXPECT_EQ(client.request("GET", "/a.txt").status, 200);
}

TEST_F(ConnectionTest, onlyThePasswordLetsIn)
{
    const auto status = [this](const std::string &authorization, const std::string &uri = "/a.txt") {
        RawClient client(port());
        client.send("GET " + uri + " HTTP/1.1\r\nAuthorization: " + authorization + "\r\n\r\n");
        const Reply reply = client.receive();
        EXPECT_EQ(reply.status == 401, !nonceOf(reply).empty());
        return reply.status;
    };
    RawClient asking(port());
    asking.send("GET /none HTTP/1.1\r\n\r\n");
    const Reply challenge = asking.receive();
    EXPECT_EQ(challenge.status, 401); // a missing path asks for the password first
    const std::string nonce = nonceOf(challenge);

    EXPECT_EQ(status(digestHeader("GET", "/a.txt", nonce, "00000001")), 200);
    EXPECT_EQ(status(digestHeader("GET", "/a.txt", nonce, "00000001", "wrong")), 401);
    EXPECT_EQ(status(digestHeader("PUT", "/a.txt", nonce, "00000001")), 401);
    EXPECT_EQ(status(digestHeader("GET", "/b.txt", nonce, "00000001")), 401);
    EXPECT_EQ(status(digestHeader("GET", "/a.txt", nonce, "00000000")), 401);
    EXPECT_EQ(status(digestHeader("GET", "/a.txt", nonce, "zz")), 401);
    EXPECT_EQ(status(digestHeader("GET", "/a.txt", "11111111-2222-3333-4444-555555555555", "00000001")), 401);
    EXPECT_EQ(status(digestHeader("GET", "/a.txt", "", "00000001")), 401);
    EXPECT_EQ(status("Basic VG9tZWxldDpzZWNyZXQ="), 401);
    EXPECT_EQ(status("Digest"), 401);
    passTime(std::chrono::seconds(300));
    EXPECT_EQ(status(digestHeader("GET", "/a.txt", nonce, "00000002")), 401);
}

TEST_F(ConnectionTest, aCountIsGoodOnceOnAConnection)
{
    RawClient client(port());
    const std::string first = client.authorized("GET", "/a.txt");
    const std::string second = client.authorized("GET", "/a.txt");
    client.send(second + first + second);
    EXPECT_EQ(client.receive().status, 200);
    EXPECT_EQ(client.receive().status, 401);
    const Reply again = client.receive();
    EXPECT_EQ(again.status, 401);
    EXPECT_NE(nonceOf(again), client.nonce);
    // A refusal leaves the connection's nonce alone, and time does not take it away from the connection.
    passTime(std::chrono::seconds(1000));
    EXPECT_EQ(client.request("GET", "/a.txt").status, 200);
    client.nonce = nonceOf(again);
    client.nc = 0;
    EXPECT_EQ(client.request("GET", "/a.txt").status, 401);
}

TEST_F(ConnectionTest, aBodyWithoutThePasswordIsNotStored)
{
    RawClient client(port());
    client.send("PUT /b HTTP/1.1\r\nContent-Length: 2000000\r\n\r\n" + std::string(1999999, 'x'));
    EXPECT_EQ(itemsInRoot(), 1U);
    client.send("x");
    EXPECT_EQ(client.receive().status, 401);
    EXPECT_EQ(client.request("GET", "/a.txt").status, 200);
    EXPECT_FALSE(exists("b"));
}

TEST_F(ConnectionTest, clientsThatVanishLeaveNothingBehind)
{
    put("large", std::string(8 << 20, 'x'));
    for (int i = 0; i < 20; ++i) {
        RawClient reader(port());
        reader.send(reader.authorized("GET", "/large"));
        RawClient writer(port());
        const std::string request = writer.authorized("PUT", "/a.txt", {}, std::string(3 << 20, 'y'));
        writer.send(request.substr(0, request.size() - 1));
        if (i % 2) reader.abort();
        writer.abort();
    }
    RawClient client(port());
    EXPECT_EQ(client.request("GET", "/a.txt").status, 200); // it comes behind all the others
    for (int i = 0; i < 100 && (m_server.numberOfHTTPConnections() > 1 || itemsInRoot() > 2); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_LE(m_server.numberOfHTTPConnections(), 1U);
    EXPECT_EQ(itemsInRoot(), 2U);
    EXPECT_EQ(client.request("GET", "/a.txt").body, "0123456789");
}

TEST_F(ConnectionTest, stopDropsClientsAndStartTakesThemAgain)
{
    RawClient client(port());
    EXPECT_EQ(client.request("GET", "/a.txt").status, 200);
    m_server.stop();
    EXPECT_FALSE(m_server.isRunning());
    std::string bytes;
    client.send("GET / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.receive().status, 0);
    startDAV();
    RawClient other(port());
    EXPECT_EQ(other.request("GET", "/a.txt").status, 200);
}

TEST_F(ConnectionTest, theLogKnowsNoPassword)
{
    RawClient client(port());
    client.request("GET", "/none");
    client.send("BAD /%0Ax HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.receive().status, 405);
    EXPECT_NE(logged().find("HTTP Server: Error 405 - Method Not Allowed: BAD (/%0Ax)"), std::string::npos);
    EXPECT_EQ(logged().find("secret"), std::string::npos);
}

class TimeoutTest : public ServerFixture
{};

TEST_F(TimeoutTest, slowHeadersAreDroppedAndSlowBodiesAreNot)
{
    put("a.txt", "0123456789");
    startDAV(std::chrono::milliseconds(300));
    RawClient silent(port());
    RawClient slow(port());
    slow.send("GET / HTTP/1.1\r\nHos");
    RawClient body(port());
    const std::string request = body.authorized("PUT", "/b", {}, "abc");
    body.send(request.substr(0, request.size() - 1));
    EXPECT_TRUE(silent.isDropped());
    EXPECT_TRUE(slow.isDropped());
    body.send("c");
    EXPECT_EQ(body.receive().status, 201);
}
