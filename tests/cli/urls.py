# SPDX-License-Identifier: GPL-3.0-or-later
"""URLs of the program's own scheme, and pages fetched from a server of the test's own."""
import http.server
import threading
import urllib.parse

from world import World


class Pages(http.server.BaseHTTPRequestHandler):
    pages = {
        "/dir/page": ("text/html; charset=ISO-8859-1", "<head><title>Ä page</title></head>".encode("latin-1")),
        "/pic.jpg": ("image/jpeg", b"\xff\xd8"),
    }

    def do_GET(self):
        kind, body = self.pages.get(self.path.split("?")[0], (None, b""))
        self.send_response(200 if kind else 404)
        if kind:
            self.send_header("Content-Type", kind)
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


class Urls(World):
    def setUp(self):
        super().setUp()
        self.write("/My Book/Doc.md", b"a needle\n")
        self.write("/Other.md", b"a needle too\n")

    def serve(self):
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Pages)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return "http://127.0.0.1:%d" % server.server_address[1]

    def test_show_prints_the_path(self):
        for url in ("tomelet://show/My%20Book/Doc.md#Part", "tomelet://My%20Book/Doc.md#Part",
                    "TOMELET://My Book/Doc#Part"):
            self.assertEqual(self.run_("url", url), self.at("/My Book/Doc.md#Part") + "\n", url)
        self.assertEqual(self.json("url", "tomelet://Other.md"), self.at("/Other.md"))
        self.fails("url", "tomelet://show/None.md", says="/None.md does not exist")
        self.fails("url", "tomelet://show/../elsewhere", says="does not exist")
        self.assertEqual(self.run_("--yes", "url", "tomelet://show/Made.md"), self.at("/Made.md") + "\n")

    def test_search_prints_rows(self):
        self.assertEqual(self.run_("url", "tomelet://search/needle"), self.run_("search", "needle"))
        self.assertEqual(self.run_("url", "tomelet://search/needle&scope=/My%20Book"), "/My Book/Doc.md\n")
        self.assertEqual([row["title"] for row in self.json("url", "tomelet://search/%22needle%20too%22")], ["Other.md"])
        self.assertEqual(self.run_("url", "tomelet://search/"), "")

    def test_addnote(self):
        out = self.run_("url", "tomelet://addnote/First%20line%0ASecond&parent=My%20Book")
        self.assertEqual(out, self.at("/My Book/First line.txt") + "\n")
        with open(out.strip(), encoding="utf-8") as file:
            self.assertEqual(file.read(), "First line\nSecond")
        self.assertIn("CreationDate", self.plist("/My Book/First line.txt.plist"))
        before = self.files(self.base)
        for url in ("tomelet://addnote/", "mailto:a", "tomelet://wifi_sharing", "tomelet://grab/file:///etc/passwd"):
            self.fails("url", url)
        self.assertEqual(self.run_("url", "tomelet://append/text&title=Other.md"), "")
        self.assertEqual(self.files(self.base), before)
        for parent in ("../..", "%2e%2e", "/etc"):
            self.assertTrue(self.run_("url", "tomelet://addnote/x&title=a&parent=" + parent).startswith(self.root + "/a"))

    def test_grab(self):
        address = self.serve()
        url = "tomelet://grab/" + urllib.parse.quote(address, safe="") + "/dir/page?a=b&parent=My%20Book&c=d"
        self.assertEqual(self.run_("url", url), self.at("/My Book/Ä page.html") + "\n")
        page = self.files(self.root)["My Book/Ä page.html"].decode()
        self.assertIn('<head>\n<base href="%s/dir/page?a=b&c=d">\n<title>Ä page<' % address, page)
        self.assertEqual(self.plist("/My Book/Ä page.html.plist")["URL"], address + "/dir/page?a=b&c=d")
        self.assertEqual(self.ops(["handleTomeletURL", "tomelet://grab/" + address + "/pic.jpg&title=A/b"]), [{"result": None}])
        self.assertEqual(self.files(self.root)["A-b.jpeg"], b"\xff\xd8")
        self.fails("url", "tomelet://grab/" + address + "/gone", says="Not Found")
        self.fails("url", "tomelet://grab/no-such-host.invalid/", says="error: http://no-such-host.invalid/")

    def test_others_say_what_they_are_for(self):
        self.assertEqual(self.fails("url", "tomelet://addnewsketch/x"),
                         'tomelet: Unsupported URL Scheme "addnewsketch": '
                         'This scheme is intended for Tomelet on an iPad or iPhone.\n')
        self.misused("url")
        self.misused("url", "tomelet://a", "tomelet://b")
