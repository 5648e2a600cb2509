// SPDX-License-Identifier: GPL-3.0-or-later
// The readers of single header fields and targets, as tables of good and bad rows.
#include "server/Core/ByteRange.h"
#include "server/Core/HTTPAuthenticationRequest.h"
#include "server/Core/HTTPConnection.h"
#include "server/Core/HTTPMessage.h"
#include "server/Core/RequestPath.h"
#include "server/WebDAV/XMLBody.h"

#include <gtest/gtest.h>

using namespace tomelet::http;

using Ranges = std::vector<ByteRange>;

TEST(ByteRange, goodHeaders)
{
    const struct
    {
        const char *header;
        Ranges ranges;
    } rows[] = {
        {"bytes=0-9", {{0, 10}}},
        {"bytes=5-", {{5, 95}}},
        {"bytes=-3", {{97, 3}}},
        {"bytes=-100", {{0, 100}}},
        {"bytes=-0", {{100, 0}}},
        {"bytes=7", {{7, 1}}},
        {" BYTES = 0-0 ", {{0, 1}}},
        {"bytes=50-59,0-9", {{0, 10}, {50, 10}}},
        {"bytes=0-9,10-19", {{0, 10}, {10, 10}}},
        {"bytes=99-99,-0", {{99, 1}, {100, 0}}},
    };
    for (const auto &row : rows) EXPECT_EQ(parseRangeRequest(row.header, 100), row.ranges) << row.header;
}

TEST(ByteRange, badHeadersRejectTheWhole)
{
    for (const char *bad : {"",
                            "bytes",
                            "bytes=",
                            "bytes=-",
                            "bytes=a-b",
                            "items=0-9",
                            "bytes=0-100",
                            "bytes=100-",
                            "bytes=-101",
                            "bytes=9-0",
                            "bytes=100",
                            "bytes=0-9,",
                            "bytes=0-9, 20-29",
                            "bytes=0 -9",
                            "bytes=0-0,0-0",
                            "bytes=0-9,5-19",
                            "bytes=0-9,-95",
                            "bytes=0-1-2",
                            "bytes=+1-2",
                            "bytes=0-99999999999999999999"})
        EXPECT_EQ(parseRangeRequest(bad, 100), Ranges{}) << bad;
}

TEST(ByteRange, contentRangeFollowsItsFormula)
{
    EXPECT_EQ(contentRange({0, 10}, 100), "bytes 0-9/100");
    EXPECT_EQ(contentRange({100, 0}, 100), "bytes 100-99/100");
}

TEST(RequestPath, targetsInsideTheRoot)
{
    const struct
    {
        const char *target;
        const char *path;
    } rows[] = {
        {"/", "/root"},
        {"/a/b.txt", "/root/a/b.txt"},
        {"/a/", "/root/a"},
        {"//a///b", "/root/a/b"},
        {"/a/./b/../c", "/root/a/c"},
        {"/a%20b%2Fc?x=/../..#y", "/root/a b/c"},
        {"http://host:80/a", "/root/a"},
        {"http://host", "/root"},
        {"*", "/root/*"},
        {"/..a/a..", "/root/..a/a.."},
        {"/..\\..\\x", "/root/..\\..\\x"},
        {"/%C3%A4?%zz", "/root/ä"},
        {"/%252e%252e/x", "/root/%2e%2e/x"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(pathForTarget(row.target, "/root").path, row.path) << row.target;
        EXPECT_EQ(pathForTarget(row.target, "/root").fault, PathFault::None) << row.target;
    }
    EXPECT_EQ(pathForTarget("/etc", "/").path, "/etc");
}

TEST(RequestPath, targetsThatNameNothing)
{
    for (const char *outside : {"/..", "/../root-evil/x", "/%2e%2e/x", "/a/%2E%2e/../x", "/..%2fx", "/../root/x",
                                "http://host/../x", "/./../x", "..", "/a/../../root/a"})
        EXPECT_EQ(pathForTarget(outside, "/root").fault, PathFault::OutsideRoot) << outside;
    for (const char *malformed : {"/a%00b", "/%c0%ae%c0%ae/x", "/%e0%80%ae/x", "/%ff", "/%", "/%2", "/%gg"})
        EXPECT_EQ(pathForTarget(malformed, "/root").fault, PathFault::Malformed) << malformed;
}

TEST(RequestPath, aLongerNameIsNotInside)
{
    EXPECT_TRUE(isInsideRoot("/root", "/root"));
    EXPECT_TRUE(isInsideRoot("/root/a", "/root"));
    EXPECT_FALSE(isInsideRoot("/root-evil", "/root"));
    EXPECT_FALSE(isInsideRoot("/roo", "/root"));
}

TEST(HTTPMessage, takesBytesInAnyPieces)
{
    const std::string text = "\r\nPUT /a HTTP/1.1\r\nHost:  x \r\nx-A: 1\r\nX-a: 2\r\nEmpty:\r\n\r\nbody";
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
        HTTPMessage message;
        ASSERT_TRUE(message.appendData(text.substr(0, cut)));
        ASSERT_TRUE(message.appendData(text.substr(cut)));
        ASSERT_TRUE(message.isHeaderComplete());
        EXPECT_EQ(message.method() + message.url() + message.version(), "PUT/aHTTP/1.1");
        EXPECT_EQ(message.headerField("HOST"), "x");
        EXPECT_EQ(message.headerField("X-A"), "1, 2");
        EXPECT_TRUE(message.allHeaderFields().contains("empty"));
        EXPECT_EQ(message.body(), "body");
    }
}

TEST(HTTPMessage, refusesWhatTwoReadersCouldReadTwoWays)
{
    for (const char *bad :
         {"GET /\r\n", "GET  / HTTP/1.1\r\n", "GET / HTTP/1.1 \r\n", "GET / HTTX/1.1\r\n", "GET / HTTP/1\r\n",
          "G(T / HTTP/1.1\r\n", " GET / HTTP/1.1\r\n", "GET /a\tb HTTP/1.1\r\n", "GET / HTTP/1.1\nX: y\r\n"}) {
        HTTPMessage message;
        EXPECT_FALSE(message.appendData(bad)) << bad;
    }
    for (const char *bad :
         {"X : y", ": y", "nothing", " folded", "X: a\rb", "X: a\nY: b", "X: a\x01", "X\xC3: y", "Content-Length: 2"}) {
        HTTPMessage message;
        ASSERT_TRUE(message.appendData("PUT / HTTP/1.1\r\nContent-Length: 1\r\ncontent-length: 1\r\n"));
        EXPECT_FALSE(message.appendData(std::string(bad) + "\r\n")) << bad;
    }
}

TEST(HTTPMessage, writesWhatItHolds)
{
    HTTPMessage message = HTTPMessage::responseWithStatusCode(404, {}, "HTTP/1.1");
    message.setHeaderField("A", "1");
    message.setHeaderField("a", "2");
    message.setBody("x");
    EXPECT_EQ(message.messageData(), "HTTP/1.1 404 Not Found\r\nA: 2\r\n\r\nx");
    EXPECT_EQ(HTTPMessage::requestWithMethod("GET", "/", "HTTP/1.0").messageData(), "GET / HTTP/1.0\r\n\r\n");
}

TEST(Authorization, fieldsAreFoundWhereverTheyStand)
{
    const auto auth =
        parseAuthorization("Digest cnonce=\"c\", nonce=\"n\",uri=\"/a,b?nonce=x\" , qop=\"auth\", nc=0000000a, "
                           "response=\"r\",username=\"Tomelet\", algorithm=MD5");
    EXPECT_TRUE(auth.isDigest);
    EXPECT_EQ(auth.username + "|" + auth.nonce + "|" + auth.cnonce + "|" + auth.uri, "Tomelet|n|c|/a,b?nonce=x");
    EXPECT_EQ(auth.qop + auth.nc + auth.response, "auth0000000ar");

    const auto odd = parseAuthorization("Digest username=Tomelet, nc=\"1\", uri=\"/unclosed");
    EXPECT_EQ(odd.username + odd.nc + odd.uri, "");
    EXPECT_FALSE(parseAuthorization("digest username=\"Tomelet\"").isDigest);
    EXPECT_EQ(parseAuthorization("Basic  eDp5 ").base64Credentials, "eDp5");
}

TEST(Authorization, digestOfTheStandardsExample)
{
    HTTPAuthenticationRequest auth; // RFC 2617, 3.5
    auth.username = "Mufasa";
    auth.nonce = "dcd98b7102dd2f0e8b11d0f600bfb0c093";
    auth.uri = "/dir/index.html";
    auth.qop = "auth";
    auth.nc = "00000001";
    auth.cnonce = "0a4f113b";
    EXPECT_EQ(digestResponse(auth, "testrealm@host.com", "Circle Of Life", "GET"), "6629fae49393a05397450978507c4ef1");
}

TEST(NonceList, forgetsByTimeAndNumber)
{
    NonceList list;
    const NonceList::Time start{};
    const std::string first = list.generateNonce(start);
    EXPECT_TRUE(list.hasRecentNonce(first, start + std::chrono::seconds(299)));
    EXPECT_FALSE(list.hasRecentNonce("0", start));
    EXPECT_FALSE(list.hasRecentNonce(first, start + NonceList::life));

    const std::string second = list.generateNonce(start);
    std::string last;
    for (std::size_t i = 0; i < NonceList::capacity; ++i) last = list.generateNonce(start);
    EXPECT_FALSE(list.hasRecentNonce(second, start));
    EXPECT_TRUE(list.hasRecentNonce(last, start));
}

TEST(Params, valuesAreDecoded)
{
    const auto params = HTTPConnection::parseParams("a=b%20c&=x&d&e=%zz&f=1=2");
    const HTTPConnection::Params wanted{{"a", "b c"}, {"d", ""}, {"e", std::nullopt}, {"f", "1=2"}};
    EXPECT_EQ(params, wanted);
}

TEST(XMLBody, selectedProperties)
{
    const struct
    {
        const char *body;
        unsigned properties;
    } rows[] = {
        {"", AllProperties},
        {"<propfind xmlns='DAV:'><allprop/></propfind>", AllProperties},
        {"<D:propfind xmlns:D='DAV:'><D:prop><D:getcontentlength/><D:resourcetype/></D:prop></D:propfind>", 9},
        {"<propfind><prop><getetag/><creationdate/></prop></propfind>", CreationDate},
        {"<propfind><prop><getetag/></prop></propfind>", AllProperties},
        {"<propfind><prop><getlastmodified/>", LastModified},
        {"<other><prop><getlastmodified/></prop></other>", AllProperties},
        {"no xml", AllProperties},
        {"<!DOCTYPE a [<!ENTITY b SYSTEM "
         "'file:///etc/passwd'>]><propfind><prop>&b;<resourcetype/></prop></propfind>",
         1},
    };
    for (const auto &row : rows) EXPECT_EQ(selectedProperties(row.body), row.properties) << row.body;
}

TEST(XMLBody, lockInfo)
{
    const auto info = parseLockInfo("<?xml version='1.0'?>\n<lockinfo xmlns='DAV:'>\n<lockscope> <shared/></lockscope>"
                                    "<locktype><write/></locktype><owner><href>a &amp; b</href></owner></lockinfo>");
    ASSERT_TRUE(info);
    EXPECT_EQ(info->scope + "|" + info->type + "|" + info->owner, "shared|write|a & b");
    EXPECT_FALSE(parseLockInfo("<propfind/>"));
}
