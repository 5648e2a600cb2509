// SPDX-License-Identifier: GPL-3.0-or-later
// Every WebDAV method over the wire, with the statuses that clients rely on.
#include "tests/server/ServerFixture.h"

#include "server/Core/TemporaryItem.h"

#include <gmock/gmock.h>

#include <fstream>

#include <sys/stat.h>
#include <sys/xattr.h>

using namespace tomelet;
using namespace tomelet::test;
using ::testing::HasSubstr;
using ::testing::Not;

namespace fs = std::filesystem;

class DAVTest : public ServerFixture
{
protected:
    void SetUp() override
    {
        ServerFixture::SetUp();
        put("a.txt", "old");
        put("book/b.txt", "b");
        startDAV();
    }
    Reply ask(const std::string &method, const std::string &uri, const std::string &fields = {},
              const std::string &body = {})
    {
        RawClient client(port());
        return client.request(method, uri, fields, body);
    }
    int status(const std::string &method, const std::string &uri, const std::string &fields = {},
               const std::string &body = {})
    {
        return ask(method, uri, fields, body).status;
    }
    static std::string to(const std::string &path)
    {
        return "Depth: infinity\r\nDestination: http://test" + path + "\r\n";
    }
};

TEST_F(DAVTest, putMakesAndReplacesFiles)
{
    EXPECT_EQ(status("PUT", "/new.txt", {}, "new"), 201);
    EXPECT_EQ(status("PUT", "/new.txt", {}, "newer"), 200);
    EXPECT_EQ(get("new.txt"), "newer");
    EXPECT_EQ(status("PUT", "/empty"), 201);
    EXPECT_TRUE(exists("empty"));
    EXPECT_EQ(status("PUT", "/none/x", {}, "x"), 403);
    EXPECT_EQ(status("PUT", "/book", {}, "x"), 403);
    EXPECT_EQ(status("PUT", "/", {}, "x"), 403);
    EXPECT_EQ(status("PUT", "/a.txt", "Content-Range: bytes 0-0/3\r\n", "x"), 400);
    EXPECT_EQ(get("a.txt"), "old");
}

TEST_F(DAVTest, bodiesOfAMegabyteAndMore)
{
    for (const std::size_t size : {http::DAVConnection::maxBodyInMemory, http::DAVConnection::maxBodyInMemory + 1}) {
        RawClient client(port());
        const std::string request = client.authorized("PUT", "/large", {}, std::string(size, 'L'));
        client.send(request.substr(0, request.size() - 10));
        // The old file, or none, stays until the new one is whole; no listing shows what is not.
        EXPECT_THAT(ask("PROPFIND", "/", "Depth: 1\r\n").body, Not(HasSubstr("upload")));
        client.send(request.substr(request.size() - 10));
        EXPECT_EQ(client.receive().status, size == http::DAVConnection::maxBodyInMemory ? 201 : 200);
        EXPECT_EQ(get("large"), std::string(size, 'L'));
    }
    EXPECT_EQ(itemsInRoot(), 3U);
}

TEST_F(DAVTest, aReplacedFileKeepsItsAttributes)
{
    const std::string path = (m_root / "a.txt").string();
    chmod(path.c_str(), 0640);
    const bool hasAttributes = setxattr(path.c_str(), "user.label", "red", 3, 0) == 0;
    fs::create_symlink("a.txt", m_root / "link");
    EXPECT_EQ(status("PUT", "/link", {}, "through"), 200);
    EXPECT_EQ(get("a.txt"), "through");
    EXPECT_TRUE(fs::is_symlink(m_root / "link"));
    struct stat info
    {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
    char value[4] = {};
    EXPECT_EQ(getxattr(path.c_str(), "user.label", value, sizeof value) == 3, hasAttributes);
}

TEST_F(DAVTest, deleteRemovesWhatIsThere)
{
    fs::create_directory_symlink(m_folder / "root-evil", m_root / "out");
    std::ofstream(m_folder / "root-evil/kept").put('x');
    EXPECT_EQ(status("GET", "/out/kept"), 200); // the user's own links are followed
    EXPECT_EQ(status("DELETE", "/out"), 200);
    EXPECT_TRUE(fs::exists(m_folder / "root-evil/kept"));
    EXPECT_EQ(status("DELETE", "/book"), 200);
    EXPECT_EQ(status("DELETE", "/book"), 404);
    for (const char *root : {"/", "//", "/.", "/book/.."}) EXPECT_EQ(status("DELETE", root), 404) << root;
    EXPECT_EQ(status("DELETE", "/../root-evil"), 404);
    EXPECT_TRUE(exists("a.txt"));
}

TEST_F(DAVTest, optionsClaimClassTwoForOneClient)
{
    EXPECT_EQ(ask("OPTIONS", "/").header("DAV"), "1");
    EXPECT_EQ(ask("OPTIONS", "/", "User-Agent: WebDAVFS/3.0\r\n").header("DAV"), "1, 2");
    EXPECT_EQ(ask("OPTIONS", "/", "User-Agent: x WebDAVFS/3.0\r\n").header("DAV"), "1");
}

TEST_F(DAVTest, propfindListsFolders)
{
    put("ü & <x>.md", "12345");
    put(".hidden", "");
    Reply reply = ask("PROPFIND", "/", "Depth: 1\r\n");
    EXPECT_EQ(reply.status, 207);
    EXPECT_EQ(reply.header("Content-Type"), "application/xml; charset=\"utf-8\"");
    EXPECT_TRUE(reply.body.starts_with("<?xml version=\"1.0\" encoding=\"utf-8\" ?><D:multistatus xmlns:D=\"DAV:\">\n"
                                       "<D:response><D:href>/</D:href><D:propstat><D:prop>"
                                       "<D:resourcetype><D:collection/></D:resourcetype>"));
    EXPECT_TRUE(reply.body.ends_with("</D:multistatus>"));
    EXPECT_THAT(reply.body, HasSubstr("<D:href>/%C3%BC%20%26%20%3Cx%3E.md</D:href>"));
    EXPECT_THAT(reply.body, HasSubstr("<D:getcontentlength>5</D:getcontentlength>"));
    EXPECT_THAT(reply.body, HasSubstr("<D:href>/.hidden</D:href>"));
    EXPECT_THAT(reply.body, HasSubstr("<D:href>/book</D:href>"));
    EXPECT_THAT(reply.body, Not(HasSubstr("b.txt")));
    EXPECT_THAT(ask("PROPFIND", "/book", "Depth: 1\r\n").body, HasSubstr("<D:href>/book/</D:href>"));
    EXPECT_THAT(ask("PROPFIND", "/book/", "Depth: 0\r\n").body, HasSubstr("<D:href>/book</D:href>"));
    EXPECT_THAT(ask("PROPFIND", "/a.txt", "Depth: 1\r\n").body, HasSubstr("<D:href>/a.txt</D:href>"));
}

TEST_F(DAVTest, propfindSelectsAndRefuses)
{
    const std::string body = "<propfind xmlns='DAV:'><prop><getcontentlength/></prop></propfind>";
    EXPECT_THAT(ask("PROPFIND", "/a.txt", "Depth: 0\r\n", body).body,
                HasSubstr("<D:prop><D:getcontentlength>3</D:getcontentlength></D:prop>"));
    EXPECT_EQ(status("PROPFIND", "/", "Depth: infinity\r\n"), 404);
    EXPECT_EQ(status("PROPFIND", "/"), 404);
    EXPECT_EQ(status("PROPFIND", "/none", "Depth: 0\r\n"), 404);
    EXPECT_EQ(status("PROPFIND", "/", "Depth: 0\r\n", std::string(5 << 20, ' ')), 207); // too long to be read
}

TEST_F(DAVTest, mkcol)
{
    EXPECT_EQ(status("MKCOL", "/made"), 200);
    EXPECT_EQ(status("MKCOL", "/made"), 405);
    EXPECT_EQ(status("MKCOL", "/none/made"), 409);
    EXPECT_EQ(status("MKCOL", "/a.txt/made"), 409);
    EXPECT_EQ(status("MKCOL", "/"), 405);
    EXPECT_EQ(status("MKCOL", "/../made"), 404);
}

TEST_F(DAVTest, copyAndMove)
{
    EXPECT_EQ(status("COPY", "/book", to("/copy")), 201);
    EXPECT_EQ(get("copy/b.txt"), "b");
    EXPECT_EQ(status("MOVE", "/copy/b.txt", to("/moved%20b.txt")), 201);
    EXPECT_EQ(get("moved b.txt"), "b");
    EXPECT_FALSE(exists("copy/b.txt"));
    EXPECT_EQ(itemsInRoot(), 4U);

    const struct
    {
        const char *what;
        const char *method;
        const char *uri;
        std::string fields;
        int status;
    } rows[] = {
        {"onto a file", "MOVE", "/book", to("/a.txt"), 404},
        {"onto a file, allowed", "COPY", "/book", to("/a.txt") + "Overwrite: T\r\n", 404},
        {"onto itself", "COPY", "/a.txt", to("/a.txt"), 404},
        {"a depth of 0", "COPY", "/book", "Depth: 0\r\nDestination: http://test/x\r\n", 404},
        {"no depth", "COPY", "/book", "Destination: http://test/x\r\n", 404},
        {"another host", "MOVE", "/book", "Destination: http://other/x\r\n", 404},
        {"no destination", "MOVE", "/book", {}, 404},
        {"no source", "MOVE", "/none", to("/x"), 404},
        {"no parent", "MOVE", "/book", to("/none/x"), 409},
        {"a file as parent", "COPY", "/book", to("/a.txt/x"), 409},
        {"out of the root", "MOVE", "/book", to("/%2e%2e/root-evil/x"), 404},
        {"into itself", "MOVE", "/book", to("/book/x"), 403},
        {"a copy into itself", "COPY", "/book", to("/book/x"), 403},
        {"the root", "MOVE", "/", to("/x"), 404},
        {"the root's copy", "COPY", "/", to("/x"), 404},
        {"a hidden name", "MOVE", "/a.txt", to("/.tomelet-upload-01234567-89AB-CDEF-0123-456789ABCDEF"), 404},
    };
    for (const auto &row : rows) EXPECT_EQ(status(row.method, row.uri, row.fields), row.status) << row.what;
    EXPECT_EQ(get("a.txt") + get("book/b.txt"), "oldb");
    EXPECT_EQ(itemsInRoot(), 4U);
}

TEST_F(DAVTest, locksAreGivenAndForgotten)
{
    const auto body = [](const std::string &scope) {
        return "<lockinfo xmlns='DAV:'><lockscope><" + scope +
               "/></lockscope><locktype><write/></locktype>"
               "<owner><href>me &lt;&amp;</href></owner></lockinfo>";
    };
    const Reply reply = ask("LOCK", "/new%20one", "Depth: 0\r\nTimeout: Second-600\r\n", body("exclusive"));
    EXPECT_EQ(reply.status, 200);
    EXPECT_TRUE(exists("new one"));
    EXPECT_TRUE(reply.body.starts_with(
        "<?xml version=\"1.0\" encoding=\"utf-8\" ?><D:prop "
        "xmlns:D=\"DAV:\">\n<D:lockdiscovery>\n<D:activelock>\n"
        "<D:locktype><D:write/></D:locktype>\n<D:lockscope><D:exclusive/></D:lockscope>\n<D:depth>0</"
        "D:depth>\n"
        "<D:owner><D:href>me &lt;&amp;</D:href></D:owner>\n<D:timeout>Second-600</D:timeout>\n"
        "<D:locktoken><D:href>urn:uuid:"));
    EXPECT_THAT(reply.body, HasSubstr("<D:lockroot><D:href>http://test/new one</D:href></D:lockroot>"));
    EXPECT_EQ(status("LOCK", "/new%20one", "Depth: 0\r\n", body("exclusive")), 200);
    EXPECT_EQ(status("PUT", "/new%20one", {}, "no token needed"), 200);

    EXPECT_THAT(ask("LOCK", "/a.txt", "If: (<urn:uuid:1>)\r\n").body,
                HasSubstr("<D:locktoken><D:href>urn:uuid:1</D:href></D:locktoken>"));
    EXPECT_EQ(get("a.txt"), "old");
    EXPECT_EQ(status("LOCK", "/a.txt"), 403);
    EXPECT_EQ(status("LOCK", "/a.txt", "Depth: 0\r\n", body("shared")), 403);
    EXPECT_EQ(status("LOCK", "/a.txt", "Depth: infinity\r\n", body("exclusive")), 403);
    EXPECT_EQ(status("LOCK", "/none/x", "Depth: 0\r\n", body("exclusive")), 403);
    EXPECT_EQ(status("UNLOCK", "/a.txt", "Lock-Token: <urn:uuid:1>\r\n"), 204);
    EXPECT_EQ(status("UNLOCK", "/a.txt"), 400);
    EXPECT_EQ(status("UNLOCK", "/none", "Lock-Token: x\r\n"), 404);
}

TEST_F(DAVTest, getServesRegularFilesAlone)
{
    ASSERT_EQ(mkfifo((m_root / "pipe").c_str(), 0600), 0);
    fs::create_symlink("nowhere", m_root / "dangling");
    for (const char *path : {"/pipe", "/dangling", "/book", "/", "/a.txt/x", "/none"})
        EXPECT_EQ(status("GET", path), 404) << path;
    put(".tomelet-upload-01234567-89AB-CDEF-0123-456789ABCDEF", "unfinished");
    EXPECT_EQ(status("GET", "/.tomelet-upload-01234567-89AB-CDEF-0123-456789ABCDEF"), 404);
}

TEST_F(DAVTest, whatACrashLeftIsGoneAfterTheNextStart)
{
    const std::string left = ".tomelet-upload-01234567-89AB-CDEF-0123-456789ABCDEF";
    put(left, "unfinished");
    http::TemporaryItem inUse(http::TemporaryItem::Kind::File, m_root.string());
    m_server.stop();
    startDAV();
    EXPECT_FALSE(exists(left));
    EXPECT_TRUE(fs::exists(inUse.path()));
}

TEST_F(DAVTest, aVanishedRootIsAnError)
{
    RawClient client(port());
    EXPECT_EQ(client.request("GET", "/a.txt").status, 200);
    fs::rename(m_root, m_folder / "gone");
    EXPECT_EQ(client.request("GET", "/a.txt").status, 404);
    EXPECT_EQ(client.request("PUT", "/b", {}, "x").status, 403);
    EXPECT_EQ(client.request("PUT", "/b", {}, std::string(2 << 20, 'x')).status, 403);
    EXPECT_EQ(client.request("PROPFIND", "/", "Depth: 1\r\n").status, 404);
    EXPECT_EQ(client.request("MKCOL", "/b").status, 409);
}

TEST_F(ServerFixture, withoutARootNothingIsServedOrStored)
{
    m_root.clear();
    startServer([](auto socket, auto config) {
        return std::make_shared<http::DAVConnection>(std::move(socket), std::move(config));
    });
    RawClient client(port());
    EXPECT_EQ(client.request("GET", "/etc/passwd").status, 404);
    EXPECT_EQ(client.request("PUT", "/b", {}, std::string(2 << 20, 'x')).status, 404);
    EXPECT_EQ(client.request("PROPFIND", "/", "Depth: 1\r\n").status, 404);
    EXPECT_NE(logged().find("No configured document root"), std::string::npos);
}
