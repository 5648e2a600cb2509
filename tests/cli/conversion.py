# SPDX-License-Identifier: GPL-3.0-or-later
"""Pages and texts through the commands: from files and standard input, to files, of broken input, used wrongly."""
import email.message
import os

from world import World

PAGE = "<!DOCTYPE html>"


class Pages(World):
    def both_engines(self):
        for converter in ("0", "1"):
            self.run_("settings", "set", "MarkdownConverter", converter)
            yield converter

    def test_render_by_the_settings_of_the_item(self):
        self.write("/B/Plan.md", "Plan\n\n- [x] done\n\n==x== [[Other.md]] {é}\n".encode())
        for converter in self.both_engines():
            page = self.run_("render", "B/Plan.md")
            self.assertTrue(page.startswith(PAGE), page[:60])
            for part in (">Plan</h1>", 'class="tm_checkbox_done"', "<mark>x</mark>", "{é}", "<title>Plan</title>", "</html>"):
                self.assertIn(part, page, converter)
            self.assertEqual(page, self.run_("render", "/B/Plan.md"), "another form of its name")
        self.run_("set", "B/Plan.md", "CSS", "CSS/High Contrast.css")
        self.assertNotEqual(self.run_("render", "B/Plan.md"), page)

    def test_render_to_pdf(self):
        self.write("/B/a.md", b"# A\n\n![](none.png)\n")
        self.write("/B/b.md", b"# B\n")
        if not os.path.exists(os.path.join(os.path.dirname(os.environ["TOMELET"]), "tomelet-print")):
            self.skipTest("this build leaves out what has a web engine")
        folder = self.base + "/printed"
        os.mkdir(folder)
        self.run_("render", "--pdf", "B/a.md", "B/b.md", "-o", folder)
        self.assertEqual(sorted(os.listdir(folder)), ["a.pdf", "b.pdf"])
        for name in os.listdir(folder):
            with open(os.path.join(folder, name), "rb") as file:
                self.assertTrue(file.read().startswith(b"%PDF-"))

    def test_render_to_files(self):
        self.write("/B/a.md", b"# A\n")
        self.write("/B/c.txt", b"C\nc\n")
        for target in (self.base + "/a.html", "b.html"):
            self.assertEqual(self.run_("render", "B/a.md", "-o", target), "")
            with open(os.path.join(self.base, target), encoding="utf-8") as file:
                self.assertEqual(file.read(), self.run_("render", "B/a.md"))
        folder = self.base + "/pages"
        os.mkdir(folder)
        self.run_("render", "B/a.md", "B/c.txt", "-o", folder)
        self.assertEqual(sorted(os.listdir(folder)), ["a.html", "c.html"])
        two = self.run_("render", "B/a.md", "B/c.txt")
        self.assertEqual(two.count(PAGE), 2, "one after the other")
        before = self.files()
        self.fails("render", "B/a.md", "B/c.txt", "-o", self.base + "/none", says="no folder")
        self.fails("render", "B/a.md", "-o", self.base + "/none/a.html", says="none")
        self.write("/C/a.md")
        before["root/C"] = None
        before["root/C/a.md"] = b"text\n"
        self.fails("render", "B/a.md", "C/a.md", "-o", folder, says="a.html")
        self.assertEqual(self.files(), before, "nothing was written")

    def test_show_every_kind(self):
        message = email.message.EmailMessage()
        message["Subject"] = "Grüße"
        message.set_content("first ü\n")
        message.add_alternative("<p>second <script>alert(1)</script></p>", subtype="html")
        for name, data, part in (("n.md", b"# N\n", ">N</h1>"), ("n.txt", b"a < b\n", "a &lt; b"),
                                 ("n.html", b"<html><body>as it is</body></html>", "<body>as it is</body>"),
                                 ("n.eml", bytes(message), "second"), ("n.png", b"\x89PNG", '/B/n.png?'),
                                 ("n.opml", b'<opml><body><outline text="o"/></body></opml>', "<li>o</li>"),
                                 ("n.zip", b"PK", "n.zip"), ("README", b"read\n", "read")):
            self.write("/B/" + name, data)
            page = self.run_("show", "B/" + name)
            self.assertIn(part, page, name)
            self.assertIn("</html>", page, name)

    def test_of_broken_files_there_is_a_page(self):
        for number, data in enumerate((b"", b"\x00", b"\xff\xfe", b"\xc3", b"<<<>>>[[[(((" * 500, b"```\n" + b"> " * 300,
                                       b"<body><style><table><!--", b"Content-Type: multipart/mixed; boundary=x\n\n--x\n",
                                       b"Subject: =?utf-8?B?=?=\n\n=C3=", b"<opml><body><outline")):
            for extension in ("md", "txt", "html", "eml", "opml", "png"):
                name = f"B/{number}.{extension}"
                self.write("/" + name, data)
                for command in ("show", "render"):
                    self.run_(command, name)

    def test_a_sheet_that_includes_itself_or_is_lost(self):
        self.write("/TMResources/CSS/mine.css", b'@tm_include: "mine.css";\np {color: red}\n')
        self.write("/a.md", b"text\n")
        for sheet, part in (("TMResources/CSS/mine.css", "color: red"), ("TMResources/CSS/gone.css", "<style")):
            self.run_("set", "a.md", "CSS", sheet)
            page = self.run_("show", "a.md")
            self.assertIn(part, page)
            self.assertNotIn("@tm_include", page)

    def test_what_cannot_be_shown(self):
        self.write("/B/a.md")
        secret = self.write("/B/secret.md")
        for command in ("show", "render"):
            self.fails(command, "B", says="book")
            self.fails(command, "B/gone.md", says="does not exist")
            self.fails(command, "B/gone\n.md", says="does not exist")
        self.as_nobody()
        os.chmod(secret, 0)
        for command in ("show", "render"):
            self.fails(command, "B/secret.md", says="cannot be read")
        self.fails("render", "B/a.md", "B/secret.md", "-o", self.base, says="cannot be read")

    def test_wrong_usage(self):
        for words in (["show"], ["show", "a", "b"], ["render"], ["render", "--bogus", "a"], ["render", "-o"],
                      ["markdownify", "a", "b"], ["plain", "--bogus"]):
            self.misused(*words)


class Filters(World):
    def test_markdownify(self):
        page = "<html><body><h1>T</h1><p>a <b>b</b> ü</p><ul><li>x<ul><li>y</li></ul></li></ul></body></html>"
        wanted = "# T\n\na **b** ü\n\n- x\n    - y"
        file = self.write("/p.html", page.encode())
        for words, stdin in ((["markdownify", file], b""), (["markdownify"], page.encode()), (["markdownify", "-"], page.encode())):
            status, out, err = self.call(*words, stdin=stdin)
            self.assertEqual((status, out.strip(), err), (0, wanted, ""), words)
        self.run_("settings", "set", "useUnderscoreToEmphasizeMD", "true")
        self.assertIn("__b__", self.run_("markdownify", file), "by the settings")

    def test_plain(self):
        page = b"<html><head><title>t</title></head><body><p>a &amp; b</p><script>x</script></body></html>"
        file = self.write("/p.html", page)
        for words, stdin in ((["plain", file], b""), (["plain"], page)):
            status, out, err = self.call(*words, stdin=stdin)
            self.assertEqual((status, out.strip(), err), (0, "a & b", ""), words)
        self.write("/n.md", b"# N\n\na --> b\n")
        self.run_("settings", "set", "createCombinedMarkdown", "true")
        combined = self.run_("render", "n.md")
        self.assertEqual(self.run_("plain", stdin=combined.encode()).strip(), "# N\n\na --> b", "the Markdown in it")

    def test_screenplay(self):
        text = "Title: T\n\nINT. A #1#\n\nJANE\nHm.\n\n> out\n".encode()
        file = self.write("/B/s.fountain", text)
        for words, stdin in (([file], b""), (["B/s.fountain"], b""), (["-"], text)):
            page = self.run_("screenplay", *words, stdin=stdin)
            self.assertTrue(page.startswith(PAGE) and "<p class='dialogue'>Hm.</p>" in page, words)
            self.assertEqual(self.run_("screenplay", "--to", "fountain", *words, stdin=stdin).encode(), text)
        for command in ("show", "render"):
            self.assertIn("<p class='character'>JANE</p>", self.run_(command, "B/s.fountain"), command)
        self.assertEqual(self.run_("screenplay", "-", "--to", "fountain"), "")
        self.assertEqual(self.json("op", "numberOfPages", "a\n\n===\n\nb"), 2)
        parsed = self.json("op", "parseContents", text.decode())
        self.assertEqual(parsed["titlePage"], [{"title": ["T"]}])
        self.assertEqual([element["elementType"] for element in parsed["elements"]],
                         ["Scene Heading", "Character", "Dialogue", "Transition"])
        self.assertEqual(parsed["elements"][0]["sceneNumber"], "1")

        for data in (b"caf\xe9", b"a\0b"):
            self.fails("screenplay", self.write("/x.fountain", data), says="no text in UTF-8")
        self.fails("screenplay", self.base + "/gone", says="cannot read")
        self.fails("screenplay", self.base, says="cannot read")
        for words in ([], ["a", "b"], ["a", "--to", "pdf"]):
            self.misused("screenplay", *words)

    def test_broken_input(self):
        for data in (b"", b"\x00\xff\xfe", b"<p", b"<table><tr><td><table>" * 200, b"</p></ul></table>" * 200, b"&#;&", b"<!--"):
            for command in ("markdownify", "plain"):
                status, _, err = self.call(command, stdin=data)
                self.assertEqual((status, err), (0, ""), (command, data[:20]))
        for command in ("markdownify", "plain"):
            self.fails(command, self.base + "/gone", says="gone", at_root=False)
            self.fails(command, self.base, says="cannot read", at_root=False)

    def test_there_and_back(self):
        text = "# T\n\na **b** *c*\n\n- one\n    - two\n- three\n\n> quote\n\n[l](https://x.org/)\n"
        self.write("/n.md", text.encode())
        self.run_("settings", "set", "MarkdownConverter", "1")
        back = self.run_("markdownify", stdin=self.run_("render", "n.md").encode())
        for part in ("# T", "a **b** *c*", "- one\n\n    - two\n- three", "> quote", "[l](https://x.org/)"):
            self.assertIn(part, back)
