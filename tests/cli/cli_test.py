# SPDX-License-Identifier: GPL-3.0-or-later
"""The command line as scripts rely on it: what each command prints, writes and leaves alone."""
import json
import os
import plistlib
import sys
import unittest

from bad_input import *  # noqa: F401,F403  the cases of damaged and hostile notebooks
from conversion import *  # noqa: F401,F403  the cases of pages and texts
from urls import *  # noqa: F401,F403  the cases of tomelet URLs
from world import World


class Frame(World):
    def test_help_and_version_need_no_notebook(self):
        self.assertEqual(self.call("--version")[:2], (0, "tomelet 1.0\n"))
        status, out, _ = self.call("--help")
        self.assertEqual(status, 0)
        names = [line.split()[0] for line in out.splitlines() if line.startswith("  ")]
        self.assertIn("undo-rm", names)
        for name in names:
            status, out, err = self.call(name, "--help")
            self.assertEqual((status, err), (0, ""), name)
            self.assertIn(name, out.splitlines()[0])
        self.assertEqual(self.files(), {"root": None}, "help writes nothing")

    def test_wrong_usage(self):
        for words in (["nonsense"], ["tree", "a", "b"], ["list", "--sort", "size"], ["list", "--smart", "x"],
                      ["mv", "a"], ["settings", "get"], ["tree", "--bogus"], ["ops", "x"], ["label", ".", "mauve"]):
            self.misused(*words)
        self.assertEqual(self.call("--root")[0], 2)
        self.assertEqual(self.call()[0], 2)

    def test_without_or_with_a_lost_notebook(self):
        for words in (["tree"], ["list"], ["book", "x"], ["mv", "a", "b"], ["get", "x"], ["undo-rm"], ["show", "x"]):
            self.fails(*words, at_root=False, says="no notebook")
            status, _, err = self.call("--root", self.base + "/gone", *words)
            self.assertEqual((status, err.count("\n")), (1, 1), words)
        self.fails("root", at_root=False)
        # Neither in the working folder nor at the lost place does anything appear.
        for words in (["tm_imagesFolderAtMyPath", "a/b.md"], ["tm_setProperty", "a.md", "x", "CSS"],
                      ["tm_moveItemToPath", "root", "x"]):
            self.assertEqual(self.call("op", *words)[0], 1, words)
            self.assertEqual(self.call("--root", self.base + "/gone", "op", *words)[0], 1, words)
        self.call("op", "tm_imagesFolderAtMyPath", "")
        self.assertEqual(self.files(), {"root": None})

    def test_root_is_stored_and_set_up_once(self):
        status, out, err = self.call("root", self.root)
        self.assertEqual((status, out, err), (0, "", ""))
        self.assertEqual(self.call("root")[1], self.root + "\n")
        self.assertEqual(self.call("--json", "root")[1], json.dumps(self.root) + "\n")
        for name in ("TMResources/CSS", "TMResources/BG", "TMResources/Misc", "Quickstart"):
            self.assertTrue(os.path.isdir(self.at("/" + name)), name)
        welcome = "/Quickstart/Welcome to Tomelet.html"
        self.assertEqual(self.plist(welcome + ".plist"), {"CSS": "CSS/Handbook.css", "lineSpacing": "1.2"})
        self.assertEqual(self.plist("/TMResources/Misc/RecentItems.txt"), [welcome])
        self.assertEqual(self.call("--json", "settings", "get", "installedVersion")[1], '"300"\n')
        for key in ("useNumericOrder", "contextsEnabled", "formatFirstLineAsTitle"):
            self.assertEqual(self.call("settings", "get", key)[1], "true\n", key)
        # What the person switched off stays off.
        self.call("settings", "unset", "contextsEnabled")
        self.call("root", self.root)
        self.assertEqual(self.call("--json", "settings", "get", "contextsEnabled")[1], "null\n")

    def test_root_for_one_call_leaves_the_stored_one(self):
        other = self.base + "/other"
        os.mkdir(other)
        self.call("root", self.root)
        before = self.files()
        for words in (["tree"], ["list"], ["list", "--smart", "recent"], ["list", "--smart", "modified"], ["get", "/"]):
            self.assertEqual(self.call("--root", other, *words)[0], 0, words)
        self.assertEqual(self.files(), before)
        self.assertEqual(self.call("--root", other, "root")[1], self.root + "\n")

    def test_what_only_reads_writes_nothing(self):
        self.write("/B/a.md")
        self.write_plist("/B/BookProperties.plist", {"Pinned": ["a.md"]})
        before = self.files()
        for words in (["tree"], ["tree", "B"], ["list", "B"], ["list", "--all"], ["list", "--smart", "recent"],
                      ["list", "--smart", "favorites"], ["show", "B/a.md"], ["get", "B"], ["get", "B/a.md", "Tags"],
                      ["settings", "list"], ["op", "tm_pathIsBook", "B"], ["--json", "list", "--context", "x"]):
            self.run_(*words)
        self.assertEqual(self.files(), before)


class Settings(World):
    def test_values_keep_their_types(self):
        for word, printed, value in (("true", "true", True), ("3", "3", 3), ("0.5", "0.5", 0.5), ('"3"', "3", "3"),
                                     ("plain text", "plain text", "plain text"), ('["a","ü"]', '["a","ü"]', ["a", "ü"]),
                                     ("", "", ""), ("-x", "-x", "-x"), ('{"a":1}', '{"a":1}', {"a": 1})):
            self.run_("settings", "set", "key", word)
            self.assertEqual(self.run_("settings", "get", "key"), printed + "\n")
            self.assertEqual(self.json("settings", "get", "key"), value)
        self.assertEqual(self.json("settings", "list"), {"key": {"a": 1}})
        self.run_("settings", "unset", "key")
        self.assertIsNone(self.json("settings", "get", "key"))
        self.assertEqual(self.run_("settings", "list"), "")


class Lists(World):
    def test_tree_shows_books_smart_ones_first(self):
        for name in ("/b/inner", "/A10", "/A9", "/.hidden", "/TMImages", "/x.numbers", "/TMResources/CSS"):
            os.makedirs(self.at(name))
        self.run_("settings", "set", "useNumericOrder", "true")
        self.assertEqual(self.run_("tree"), "Smart Books\n  Recent Items\n  Recently Modified\n"
                                            "Books\n  A9\n  A10\n  b\n    inner\n")
        self.assertEqual(self.run_("tree", "/b"), "b\n  inner\n")
        smart, books = self.json("tree")
        self.assertEqual([child["smartType"] for child in smart["children"]], [7, 8])
        self.assertEqual(books["path"], self.root)
        self.assertEqual(books["children"][2]["children"][0]["path"], self.at("/b/inner"))
        self.fails("tree", "nowhere")

    def test_rows_and_orders(self):
        for name, date in (("b.md", 3), ("a.md", 2), ("C.md", 1)):
            os.utime(self.write("/" + name), (date * 1000, date * 1000))
        self.write("/book/inside.md")
        self.write("/a.md.plist", b"<plist><dict><key>cellColor</key><string>red</string></dict></plist>")
        self.assertEqual(self.run_("list"), "a.md\nb.md\nC.md\n")
        self.assertEqual(self.run_("list", "--descending"), "C.md\nb.md\na.md\n")
        self.assertEqual(self.run_("list", "--sort", "modDate"), "C.md\na.md\nb.md\n")
        self.assertEqual(self.run_("list", "--filter", "B"), "b.md\n")
        self.assertEqual(self.run_("list", "--all", "--paths"),
                         "".join(self.at(name) + "\n" for name in ("/a.md", "/b.md", "/C.md", "/book/inside.md")))
        row = self.json("list")[0]
        self.assertEqual((row["title"], row["path"], row["parent"], row["cellColor"], row["modDate"], row["custom"]),
                         ("a.md", self.at("/a.md"), self.root, "red", "1970-01-01T00:33:20Z", "-0001"))
        self.run_("pin", "C.md")
        self.assertEqual(self.run_("list"), "C.md\tpinned\na.md\nb.md\n")
        self.run_("set", "/", "sortOrderForNotes", "custom")
        self.run_("set", "/", "Notes", '["b.md","C.md","a.md"]')
        self.assertEqual(self.run_("list"), "b.md\nC.md\tpinned\na.md\n")
        self.fails("list", "a.md", says="no book")

    def test_smart_books(self):
        for name in ("/in/x.md", "/fav.md"):
            self.write(name)
        self.assertEqual(self.run_("list", "--context", "_TMFAV", "--context", "none"), "")
        self.run_("settings", "set", "defaultInbox", '"/in"')
        self.assertEqual(self.run_("list", "--smart", "inbox"), "x.md\n")
        self.run_("op", "tm_addToRecentItems", "in/x.md")
        self.run_("op", "tm_addToRecentItems", "fav.md")
        self.assertEqual(self.run_("list", "--smart", "recent"), "fav.md\nx.md\n")
        self.assertEqual(self.run_("list", "--smart", "modified"), "fav.md\nx.md\n")
        for name in ("due", "contexts", "tasklists", "search", "conflicts"):
            self.assertEqual(self.json("list", "--smart", name), [])


class Items(World):
    def test_items_are_named_in_four_ways(self):
        path = self.write("/Book one/n.md")
        self.run_("set", "Book one/n.md", "URL", "u")
        for name in (path, "Book one/n.md", "/Book one/n.md", "tomelet://Book%20one/n.md",
                     "tomelet://show/Book one/n.md", "./Book one/n.md"):
            self.assertEqual(self.run_("get", name, "URL"), "u\n", name)
        self.assertEqual(self.run_("op", "tm_normalizedPath", "/"), "")

    def test_move_copy_and_duplicate_carry_what_belongs(self):
        self.write("/A/n.md", b"![](TMImages/p.png)\n")
        self.write("/A/TMImages/p.png", b"picture")
        self.run_("set", "A/n.md", "URL", "u")
        self.assertEqual(self.run_("book", "B"), self.at("/B") + "\n")
        self.assertEqual(self.run_("book", "In/ner", "--in", "B"), self.at("/B/In-ner") + "\n")
        self.assertEqual(self.run_("cp", "A/n.md", "B"), self.at("/B/n.md") + "\n")
        self.assertEqual(self.run_("duplicate", "B/n.md"), self.at("/B/n copy.md") + "\n")
        self.assertEqual(self.run_("duplicate", "B/n.md"), self.at("/B/n copy 1.md") + "\n")
        self.assertEqual(self.run_("mv", "B/n copy.md", "B/m.md"), self.at("/B/m.md") + "\n")
        for name in ("/B/n.md", "/B/m.md", "/B/n copy 1.md"):
            self.assertEqual(self.run_("get", name, "URL"), "u\n")
        self.assertTrue(os.path.exists(self.at("/B/TMImages/p.png")))
        self.assertEqual(self.run_("mv", "B", "Z"), self.at("/Z") + "\n")
        self.assertEqual(sorted(os.listdir(self.root)), ["A", "Z"])

    def test_nothing_is_overwritten(self):
        self.write("/a.md", b"a")
        self.write("/b.md", b"b")
        self.write("/B/a.md", b"inner")
        before = self.files(self.root)
        for words in (["mv", "a.md", "b.md"], ["cp", "a.md", "b.md"], ["mv", "a.md", "B"], ["cp", "a.md", "a.md"],
                      ["mv", "B", "B/C"], ["mv", "none.md", "x.md"], ["book", "B"], ["cp", "B", "B/a.md/x"],
                      ["book", "x", "--in", "a.md"], ["rm", "a.md", "none.md"], ["rm", "/"], ["duplicate", "x"]):
            self.fails(*words)
        self.assertEqual(self.files(self.root), before)

    def test_import(self):
        self.write("/B/n.enex", b"<en-export><note><title>N</title><content>t</content></note></en-export>")
        self.write("/B/o.opml", b"<opml><body><outline text='one'/></body></opml>")
        page = {"WebMainResource": {"WebResourceData": b"<p>saved</p>"}}
        outside = self.write_plist("/../p.webarchive", page, fmt=plistlib.FMT_BINARY)
        os.mkdir(self.at("/C"))
        self.assertEqual(self.run_("import", "B/n.enex", "/B/o.opml"), self.at("/B/N.html\n") + self.at("/B/o.html\n"))
        self.assertEqual(json.loads(self.run_("--json", "import", outside, "--book", "C")), [self.at("/C/p.html")])
        self.assertIn("<li>one</li>", self.run_("show", "B/o.html"))
        self.assertIn("CreationDate", self.run_("get", "B/o.html"))
        self.fails("import", "B/n.md", says="none of")
        self.fails("import", "B/gone.enex", says="no file")
        self.fails("import", "B/n.enex", "--book", "D", says="no book")
        self.write("/B/bad.webarchive", b"text")
        self.fails("import", "B/bad.webarchive")
        self.misused("import")

    def test_rm_and_undo(self):
        self.write("/B/n.md", b"kept")
        self.write("/m.md")
        self.run_("set", "m.md", "URL", "u")
        self.fails("undo-rm", says="no deletion")
        self.assertEqual(self.run_("rm", "B", "m.md"), "")
        self.assertEqual(os.listdir(self.root), [])
        self.run_("undo-rm")
        with open(self.at("/B/n.md"), "rb") as file:
            self.assertEqual(file.read(), b"kept")
        self.assertEqual(self.run_("get", "m.md", "URL"), "u\n")
        self.fails("undo-rm")
        self.run_("rm", "--permanent", "m.md")
        self.assertEqual(os.listdir(self.root), ["B"])
        self.fails("undo-rm")

    def test_undo_never_overwrites(self):
        self.write("/n.md", b"first")
        self.run_("rm", "n.md")
        self.write("/n.md", b"second")
        self.fails("undo-rm", says="n.md")
        os.rename(self.at("/n.md"), self.at("/other.md"))
        self.run_("undo-rm")
        with open(self.at("/n.md"), "rb") as file:
            self.assertEqual(file.read(), b"first")

    def test_answers_before_and_after_the_command(self):
        # Where there is no trash, a person is asked; nobody is here, so nothing is deleted.
        self.as_nobody()
        self.env["XDG_DATA_HOME"] = self.env["HOME"] = "/proc/nowhere"
        for number, words in enumerate((["--yes", "rm"], ["rm", "--yes"])):
            path = self.write(f"/{number}.md")
            self.give_away()
            self.fails("rm", path)
            self.fails("--no", "rm", path)
            self.fails("rm", "--no", path)
            self.assertTrue(os.path.exists(path))
            status, _, _ = self.call("--root", self.root, *words, path)
            self.assertEqual((status, os.path.exists(path)), (0, False))

    def test_properties(self):
        self.write("/B/n.md")
        self.run_("set", "B", "lineSpacing", "1.5")
        self.assertEqual(self.json("get", "B/n.md", "lineSpacing"), None)
        self.assertEqual(self.run_("get", "--inherited", "B/n.md", "lineSpacing"), "1.5\n")
        self.assertEqual(self.run_("get", "B/n.md", "Description"), "\n")
        self.assertEqual(self.run_("get", "B/n.md", "Backlinks"), "[]\n")
        self.run_("set", "B/n.md", "CreationDate", "2026-11-21T08:30:00Z")
        self.run_("set", "B/n.md", "Description", "-5")
        self.assertEqual(self.json("get", "B/n.md"), {"CreationDate": "2026-11-21T08:30:00Z", "Description": "-5"})
        stamp = os.stat(self.at("/B/n.md.plist")).st_mtime_ns
        self.run_("set", "B/n.md", "Description", "-5")
        self.assertEqual(os.stat(self.at("/B/n.md.plist")).st_mtime_ns, stamp, "an equal value writes nothing")
        self.run_("unset", "B/n.md", "Description")
        self.run_("label", "B/n.md", "red")
        self.assertEqual(self.run_("get", "B/n.md", "cellColor"), "red\n")
        self.run_("label", "B/n.md", "Auto")
        self.assertEqual(self.plist("/B/n.md.plist").keys(), {"CreationDate"})
        self.assertEqual(self.run_("pin", "B/n.md") + self.run_("pin", "B/n.md"), "pinned\nnot pinned\n")
        self.assertEqual(self.run_("favorite", "B/n.md"), "favorite\n")
        self.assertEqual(self.plist("/B/n.md.plist")["Tags"], ["_TMFAV"])


class Search(World):
    def test_search_and_index(self):
        self.write("/B/Pear.md", b"An apple\n")
        self.write("/Apple.txt", b"A core\n")
        self.assertEqual(self.json("index"), {"read": 2, "removed": 0, "documents": 2})
        self.assertEqual(self.run_("index"), "0 of 2 documents read\n")
        self.assertEqual(self.run_("search", "apple"), "/Apple.txt\n/B/Pear.md\n")
        self.assertEqual(self.run_("search", "--title", "appl"), "/Apple.txt\n")
        self.assertEqual(self.run_("search", "--content", '"an app'), "/B/Pear.md\n")
        self.assertEqual(self.run_("search", "--title", "--content", "--in", "B", "apple"), "/B/Pear.md\n")
        self.assertEqual([row["title"] for row in self.json("list", "--smart", "search")], ["Pear.md"])
        self.assertEqual(self.json("search", '""', "“”"), [])
        self.assertEqual(self.run_("list", "--smart", "search"), "Pear.md\n", "no terms, no search")
        self.assertEqual(self.run_("search", "nothing like it"), "")
        self.write("/New.md", b"apples\n")
        self.assertEqual(self.run_("search", "apples"), "/New.md\n")
        self.fails("search", "--in", "nowhere", "apple", says="no book")
        self.misused("search")

    def test_an_index_that_cannot_be_written(self):
        self.write("/a.md", b"apple\n")
        with open(self.base + "/XDG_CACHE_HOME", "w", encoding="utf-8"):
            pass
        status, out, err = self.call("--root", self.root, "search", "apple")
        self.assertEqual((status, out), (0, "/a.md\n"))
        self.assertIn("without the index", err)
        self.assertEqual(self.json("op", "startSpotlightSearchWithString", "apple"), [self.at("/a.md")])
        self.fails("index")


class Operations(World):
    def test_receivers(self):
        self.write("/B/n.md")
        with open(self.base + "/text", "w", encoding="utf-8") as file:
            file.write("a/b\n")
        self.assertEqual(self.run_("op", "tm_escapeIllegalCharacters", "a/b"), "a-b")
        self.assertEqual(self.run_("op", "tm_escapeIllegalCharacters", "@" + self.base + "/text"), "a-b\n")
        self.assertEqual(self.run_("op", "tm_escapeIllegalCharacters", "-", stdin="ü/".encode()), "ü")
        self.assertEqual(self.run_("op", "tm_escapeIllegalCharacters", ""), "")
        self.assertEqual(self.run_("op", "tm_pathIsBook", ""), "false\n")
        self.assertEqual(self.run_("op", "tm_plistPath", "/B/n.md"), self.at("/B/n.md.plist"))
        self.fails("op", "tm_escapeIllegalCharacters", "@/nowhere", says="/nowhere")

    def test_arguments_and_results(self):
        self.write("/n.md")
        for given, stored in (("true", True), ("3", 3), ('"text"', "text"), ("plain", "plain"), ('["a","b"]', ["a", "b"]),
                              ('{"a":1}', {"a": 1}), ("[unfinished", "[unfinished")):
            self.assertEqual(self.run_("op", "tm_setProperty", "n.md", given, "URL"), "")
            self.assertEqual(self.plist("/n.md.plist")["URL"], stored)
        self.run_("op", "tm_setProperty", "n.md", "null", "URL")
        self.assertEqual(self.plist("/n.md.plist"), {})
        self.assertEqual(self.run_("op", "tm_propertyForKey", "n.md", "Tags"), "null\n")
        self.assertEqual(self.run_("op", "tm_propertyForKey", "n.md", "Description"), "")
        self.assertEqual(self.json("op", "tm_propertyForKey", "n.md", "Description"), "")
        self.assertEqual(self.run_("op", "tm_linespacingAtPath", "n.md").strip(), "1")
        self.run_("op", "tm_setCreationDate", "n.md", "2026-11-21T09:30:00+01:00")
        self.assertEqual(self.run_("op", "tm_creationDate", "n.md"), "2026-11-21T08:30:00Z")
        self.assertEqual(self.run_("op", "tm_stringByEscapingWildcards", "a1"), "a\\1")
        # A text parameter takes words that would be JSON as they were typed.
        self.assertEqual(self.run_("op", "tm_pathByAppendingAnchor", "n.md", "1.0"), self.at("/n.md#1.0"))

    def test_unknown_names_and_wrong_counts(self):
        self.misused("op", "tm_pathIsBok", "x", says="tm_pathIsBook")
        self.misused("op", "tm_setProperty", "x", says="value")
        self.misused("op", "tm_pathIsBook", "x", "y", "z")
        listed = self.run_("op", "--list").splitlines()
        self.assertIn("tm_setProperty(path, value, key)", listed)
        self.assertEqual(len(self.json("op", "--list")), len(listed))

    def test_many_in_one_process(self):
        self.write("/n.md")
        answers = self.ops(
            ["tm_setProperty", "n.md", "u", "URL"],
            ["tm_propertyForKey", "n.md", "URL"],
            ["nonsense", "x"],
            ["tm_setProperty", "n.md"],
            [],
            ["$now", "2026-11-21T08:30:00Z"],
            ["tm_setCreationDate", "n.md"],
            ["tm_creationDate", "n.md"],
            ["$set", "useNumericOrder", True],
            ["tm_sortByParameter", [{"title": "10", "pinnedSequence": 9}, {"title": "9", "pinnedSequence": 9}], "title",
             False],
            ["$unset", "useNumericOrder"],
            ["$now", "yesterday"],
            ["$bogus"],
            ["tm_escapeIllegalCharacters", "@home"],
            ["tm_escapeIllegalCharacters", "-a"],
            ["$drain"])
        errors = [index for index, answer in enumerate(answers) if "error" in answer]
        self.assertEqual(errors, [2, 3, 4, 11, 12])
        self.assertEqual(answers[1], {"result": "u"})
        self.assertEqual(answers[7], {"result": "2026-11-21T08:30:00Z"})
        self.assertEqual([row["title"] for row in answers[9]["result"]], ["9", "10"])
        self.assertEqual(answers[13], {"result": "@home"})
        self.assertEqual(answers[14], {"result": "a"})
        self.assertEqual(self.run_("settings", "list"), "", "a setting that was taken back is not kept")
        status, out, _ = self.call("--root", self.root, "ops", stdin=b'no json\n\n["tm_pathIsBook","/"]')
        self.assertEqual((status, out.count("\n")), (0, 2))
        self.assertIn("error", out.splitlines()[0])
        self.assertEqual(json.loads(out.splitlines()[1]), {"result": True})

    def test_settings_of_ops_are_kept(self):
        self.ops(["$set", "recentItemCount", 2])
        self.assertEqual(self.json("settings", "get", "recentItemCount"), 2)

    def test_regular_expressions(self):
        for words, result in (
                (["isMatchedByRegex", "abc", "B"], False),
                (["isMatchedByRegex", "abc", "B", "2", "null"], True),
                (["isMatchedByRegex", "abc", "^c", "{2, 1}"], True),
                (["rangeOfRegex", "a𝄞bXb", "X"], "{4, 1}"),
                (["rangeOfRegex", "aXbX", "X", "{2, 2}"], "{3, 1}"),
                (["rangeOfRegex", "abc", "z"], "{9223372036854775807, 0}"),
                (["rangeOfRegex", "abc", "a(b)", "1"], "{1, 1}"),
                (["rangeOfRegex", "aBc", "(b)", "2", "{1, 2}", "1"], "{1, 1}"),
                (["stringByMatching", "abc", "(b)(z)?", "1"], "b"),
                (["stringByMatching", "abc", "(b)(z)?", "2"], None),
                (["componentsMatchedByRegex", "1 22 3", r"\d+"], ["1", "22", "3"]),
                (["captureComponentsMatchedByRegex", "abc", "(b)(z)?"], ["b", "b", ""]),
                (["arrayOfCaptureComponentsMatchedByRegex", "a1b2", r"(\w)(\d)"], [["a1", "a", "1"], ["b2", "b", "2"]]),
                (["componentsSeparatedByRegex", "a, b,c", r",\s*"], ["a", "b", "c"]),
                (["componentsSeparatedByRegex", "a1b", "[1]"], ["a", "b"]),
                (["stringByReplacingOccurrencesOfRegex", "aXbX", "(X)", "<$1>"], "a<X>b<X>"),
                (["stringByReplacingOccurrencesOfRegex", "aXbX", "X", "", "{0, 2}"], "abX"),
                (["replaceOccurrencesOfRegex", "aXbX", "X", "y"], 2),
                (["dictionaryByMatchingRegex", "k=v", r"(\w)=(\w)", '["key",1,"value",2]'], {"key": "k", "value": "v"}),
                (["arrayOfDictionariesByMatchingRegex", "a b", r"\w", "0", "null", '{"w":0}'], [{"w": "a"}, {"w": "b"}]),
                (["captureCount", "(a)(b)"], 2),
                (["isRegexValid", "("], False),
                (["isRegexValid", "(a)"], True),
                (["matchesOfPattern", "Ab\nab", "^(a)", "17"], [["{0, 1}"] * 2, ["{3, 1}"] * 2]),
                (["regexSweep", "a-b", "-", "+", "0"], "a+b")):
            self.assertEqual(self.json("op", *words), result, words)
        for words in (["isMatchedByRegex", "x", "("], ["captureCount", "("], ["stringByMatching", "x", "(\n", "0"],
                      ["stringByReplacingOccurrencesOfRegex", "x", "(", "y"]):
            self.fails("op", *words, says="There was an error compiling the regular expression.")
        self.fails("op", "stringByMatching", "x", "x", "3", says="The capture argument is not valid.")
        self.fails("op", "isMatchedByRegex", "x", "x", "{5, 1}", says="Range or index out of bounds.")
        self.fails("op", "isMatchedByRegex", "x", "null", says="The regular expression argument is NULL.")
        self.fails("op", "isMatchedByRegex", "x", "x", "5", says="{location, length}")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[1:]], verbosity=1)
