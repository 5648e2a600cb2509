# SPDX-License-Identifier: GPL-3.0-or-later
"""Damaged stores, hostile names and failing disks: a clear message or silence, never a lost byte."""
import json
import os
import plistlib
import random
import resource
import signal
import subprocess
import time

from world import TOMELET, World

DAMAGED = {
    "empty": b"",
    "garbage": b"\x00\xff garbage",
    "truncated XML": plistlib.dumps({"URL": "old", "Pinned": ["a"]})[:-30],
    "truncated binary": plistlib.dumps({"URL": "old", "Pinned": ["a"]}, fmt=plistlib.FMT_BINARY)[:-9],
    "another type": plistlib.dumps("only a text"),
    "deep": b"<plist>" + b"<array>" * 200000,
}


class DamagedStores(World):
    def set_aside(self, path):
        """The contents of the files that were set aside for the store."""
        folder, name = os.path.split(self.at(path))
        return [os.path.join(folder, other) for other in os.listdir(folder) if other.startswith(name + ".unreadable-")]

    def test_reading_is_silent_and_changes_nothing(self):
        self.write("/B/n.md")
        for label, data in DAMAGED.items():
            for store in ("/B/n.md.plist", "/B/BookProperties.plist", "/TMResources/Misc/RecentItems.txt",
                          "/TMResources/Misc/Settings.txt"):
                self.write(store, data)
            before = self.files(self.root)
            for words in (["tree"], ["list", "B"], ["get", "B/n.md"], ["get", "--inherited", "B/n.md", "CSS"],
                          ["list", "--smart", "recent"], ["op", "tm_readLocationSpecificSettings"]):
                self.run_(*words)
            self.assertEqual(self.files(self.root), before, label)

    def test_writing_sets_the_damaged_store_aside_with_one_line(self):
        self.write("/B/n.md")
        for store, words in (("/B/n.md.plist", ["set", "B/n.md", "URL", "new"]),
                             ("/B/BookProperties.plist", ["pin", "B/n.md"]),
                             ("/TMResources/Misc/RecentItems.txt", ["op", "tm_addToRecentItems", "B/n.md"]),
                             ("/TMResources/Misc/Settings.txt",
                              ["op", "tm_setLocationSpecificSetting", "x", "defaultInbox"])):
            for label, data in DAMAGED.items():
                self.write(store, data)
                status, _, err = self.call("--root", self.root, *words)
                self.assertEqual((status, err.count("\n")), (0, 1), (store, label, err))
                aside = self.set_aside(store)
                self.assertEqual(len(aside), 1, (store, label))
                with open(aside[0], "rb") as file:
                    self.assertEqual(file.read(), data)
                os.unlink(aside[0])
                self.assertTrue(self.plist(store), (store, label))
        self.assertEqual(self.run_("list", "B"), "n.md\tpinned\n" if "n.md" in str(self.plist("/B/BookProperties.plist"))
                         else "n.md\n")

    def test_a_huge_store_is_set_aside_unread(self):
        self.write("/n.md")
        with open(self.write("/n.md.plist", b"<plist><dict>"), "r+b") as file:
            file.truncate(300 << 20)
        self.assertEqual(self.run_("get", "n.md"), "")
        self.assertEqual(self.call("--root", self.root, "set", "n.md", "URL", "new")[0], 0)
        self.assertEqual([os.path.getsize(name) for name in self.set_aside("/n.md.plist")], [300 << 20])

    def test_values_of_the_wrong_type_disturb_no_list(self):
        self.write("/n.md")
        self.write("/m.md")
        for value in ("text", 5, True, ["a", 5, {"x": 1}], {"x": [1]}, b"data", []):
            self.write_plist("/BookProperties.plist", {key: value for key in (
                "Pinned", "Notes", "Books", "sortOrderForNotes", "sortNotesDescending", "cellColor", "Tags")})
            self.write_plist("/n.md.plist", {key: value for key in (
                "Tags", "CreationDate", "cellColor", "Embedded Photos", "Backlinks", "ReferencedPath", "CSS")})
            for words in (["list"], ["tree"], ["get", "n.md"], ["show", "n.md"], ["duplicate", "n.md"],
                          ["op", "tm_creationDate", "n.md"], ["op", "tm_colorsAtPath", "n.md"]):
                self.run_(*words)
            self.assertIn("n.md", self.run_("list"))

    def test_damaged_settings_are_set_aside(self):
        folder = self.env["XDG_CONFIG_HOME"] + "/org.tomelet.app"
        self.run_("settings", "set", "key", "1")
        with open(folder + "/settings.ini", "ab") as file:
            file.write(b"[bro\nother={\"a\": \n")
        with open(folder + "/settings.ini", "rb") as file:
            data = file.read()
        status, _, err = self.call("settings", "set", "key", "2")
        self.assertEqual((status, err.count("\n")), (0, 1), err)
        aside = [name for name in os.listdir(folder) if ".unreadable-" in name]
        self.assertEqual(len(aside), 1)
        with open(folder + "/" + aside[0], "rb") as file:
            self.assertEqual(file.read(), data)
        self.assertEqual(self.run_("settings", "get", "key"), "2\n")


class HostileNames(World):
    NAMES = ["line\nbreak.md", "tab\t.md", "n" * 246 + ".md", "trailing .md ", " leading.md", "..two.md", "-dash.md",
             "quote\"'.md", "%20.md", "#.md", "a\\b.md", "nfc é.md", "nfd e\u0301.md", "\U0001d11e.md", "@at.md"]

    def test_every_operation_takes_every_name(self):
        for name in self.NAMES:
            path = self.write("/B/" + name, name.encode())
            with self.subTest(name=name):
                self.run_("set", path, "URL", "u")
                self.assertEqual(self.run_("get", path, "URL"), "u\n")
                titles = [row["title"] for row in self.json("list", "B")]
                self.assertEqual(titles, [name])
                self.run_("mv", path, self.at("/moved"))
                self.run_("mv", self.at("/moved"), path)
                self.assertEqual(self.run_("get", path, "URL"), "u\n")
                self.run_("rm", path)
                self.assertEqual(os.listdir(self.at("/B")), [])
                self.run_("undo-rm")
                with open(path, "rb") as file:
                    self.assertEqual(file.read(), name.encode())
                self.run_("rm", "--permanent", path)

    def test_both_normal_forms_stand_side_by_side(self):
        for name in ("\u00e9.md", "e\u0301.md"):
            self.write("/" + name, name.encode())
        self.assertEqual(len(self.json("list")), 2)
        self.run_("set", "\u00e9.md", "URL", "composed")
        self.assertEqual(self.run_("get", "e\u0301.md", "URL"), "\n")

    def test_names_at_the_limit_fail_clearly_where_no_room_is_left(self):
        path = self.write("/" + "n" * 252 + ".md", b"kept")
        self.fails("set", path, "URL", "u", says="too long")
        self.fails("pin", "B" * 300, says="does not exist")
        self.fails("mv", path, self.at("/" + "m" * 256))
        with open(path, "rb") as file:
            self.assertEqual(file.read(), b"kept")

    def test_invalid_utf_8_is_listed_and_never_harmed(self):
        path = os.fsencode(self.root) + b"/B/bad\xff.md"
        self.write("/B/good.md")
        with open(path, "wb") as file:
            file.write(b"kept")
        self.assertEqual(len(self.json("list", "B")), 2)
        name = self.json("list", "B")[0]["path"]
        for words in (["rm", name], ["mv", name, "x.md"], ["cp", "B", "C"]):
            self.fails(*words)
        self.run_("mv", "B", "D")
        self.run_("rm", "D")
        self.run_("undo-rm")
        with open(path.replace(b"/B/", b"/D/"), "rb") as file:
            self.assertEqual(file.read(), b"kept")
        self.assertEqual(os.listdir(self.root), ["D"], "the copy that failed left nothing behind")

    def test_links_that_lead_back_up(self):
        self.write("/B/n.md")
        os.symlink("..", self.at("/B/up"))
        os.symlink("self", self.at("/self"))
        os.symlink("nowhere", self.at("/dangling.md"))
        for words in (["tree"], ["list"], ["list", "--all"], ["list", "--smart", "modified"]):
            self.run_(*words)
        self.run_("cp", "B", "C")
        self.assertTrue(os.path.islink(self.at("/C/up")))
        self.run_("rm", "--permanent", "B/up")
        self.run_("rm", "--permanent", "C")
        self.assertTrue(os.path.exists(self.at("/B/n.md")))
        self.run_("rm", "self", "dangling.md")


class FailingDisks(World):
    def test_what_cannot_be_read(self):
        self.as_nobody()
        for name in ("/locked/n.md", "/closed.md", "/open/n.md", "/mixed/closed.md", "/mixed/n.md"):
            self.write(name)
        self.give_away()
        for name in ("/locked", "/closed.md", "/mixed/closed.md"):
            os.chmod(self.at(name), 0)
        self.assertIn("locked", self.run_("tree"))
        for words in (["list", "locked"], ["list", "--all"], ["list", "--smart", "modified"]):
            self.run_(*words)
        self.fails("show", "closed.md", says="cannot be read")
        self.fails("cp", "mixed", "copy")
        self.fails("cp", "locked", "copy")
        self.assertEqual(sorted(os.listdir(self.root)), ["closed.md", "locked", "mixed", "open"])

    def test_a_notebook_that_cannot_be_written(self):
        self.as_nobody()
        self.write("/B/n.md")
        self.give_away()
        self.run_("set", "B/n.md", "URL", "u")
        for folder in ("", "/B"):
            os.chmod(self.at(folder), 0o500)
        before = self.files(self.root)
        for words in (["set", "B/n.md", "URL", "new"], ["set", "B", "CSS", "x"], ["unset", "B/n.md", "URL"],
                      ["pin", "B/n.md"], ["favorite", "B/n.md"], ["label", "B/n.md", "red"], ["book", "x"],
                      ["mv", "B/n.md", "B/m.md"], ["cp", "B/n.md", "B/m.md"], ["duplicate", "B"],
                      ["rm", "--no", "B/n.md"], ["rm", "--permanent", "B/n.md"], ["root", self.root]):
            self.fails(*words)
        for words in (["tree"], ["list", "B"], ["get", "B/n.md", "URL"], ["show", "B/n.md"]):
            self.run_(*words)
        self.assertEqual(self.files(self.root), before)

    def test_a_full_disk(self):
        self.write("/n.md")
        self.run_("set", "n.md", "URL", "old")
        self.run_("settings", "set", "key", "old")
        before = self.files()

        def no_room():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))

        for words in (["set", "n.md", "URL", "new"], ["pin", "n.md"], ["cp", "n.md", "m.md"], ["duplicate", "n.md"],
                      ["settings", "set", "key", "new"]):
            status, out, err = self.call("--root", self.root, *words, preexec_fn=no_room, restore_signals=False)
            self.assertEqual((status, out, err.count("\n")), (1, "", 1), (words, err))
        self.assertEqual(self.files(), before)

    def test_a_full_file_system(self):
        disk = self.base + "/disk"
        os.mkdir(disk)
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=1m", "none", disk], capture_output=True,
                                 check=False).returncode == 0
        if not mounted:
            self.skipTest("no file system can be mounted here")
        self.addCleanup(subprocess.run, ["umount", disk], check=True)
        self.root = disk
        self.write("/n.md", b"kept")
        self.run_("set", "n.md", "URL", "old")
        with open(disk + "/filler", "wb", buffering=0) as file:
            try:
                while True:
                    file.write(b"x" * 4096)
            except OSError:
                pass
        self.fails("set", "n.md", "URL", "new", says="No space left")
        self.fails("cp", "filler", "more")
        self.fails("pin", "n.md", says="No space left")
        self.assertEqual(self.run_("get", "n.md", "URL"), "old\n")
        self.assertEqual(sorted(os.listdir(disk)), ["filler", "n.md", "n.md.plist"])

    def test_a_folder_whose_disk_is_not_mounted(self):
        self.call("root", self.root)
        self.call("op", "tm_addToRecentItems", self.write("/n.md"))
        self.call("settings", "set", "defaultInbox", '"/Quickstart"')
        self.call("pin", "n.md")
        before = self.files()
        os.rename(self.root, self.root + "-away")
        os.mkdir(self.root)
        for words in (["tree"], ["list"], ["list", "--smart", "recent"], ["list", "--smart", "inbox"],
                      ["op", "verifiedListOfRecentItems"], ["op", "tm_writeLocationSpecificSettings"]):
            self.call(*words)
        self.assertEqual(os.listdir(self.root), [])
        os.rmdir(self.root)
        os.rename(self.root + "-away", self.root)
        self.assertEqual(self.files(), before)

    def test_a_hundred_kills_leave_every_store_old_or_new(self):
        self.write("/n.md")
        texts = ["a" * 20000, "b" * 30000]
        lines = "".join(json.dumps(line) + "\n" for text in texts * 200 for line in
                        (["tm_setProperty", "n.md", text, "URL"], ["tm_setProperty", "/", text, "CSS"],
                         ["$set", "key", text[:1000]], ["tm_addToRecentItems", "/n.md" + text[0]])).encode()
        self.ops(["$set", "key", texts[0][:1000]], ["tm_setProperty", "n.md", texts[0], "URL"], ["tm_setProperty", "/", texts[0], "CSS"])
        randomness = random.Random(1)
        for _ in range(100):
            with subprocess.Popen([TOMELET, "--root", self.root, "ops"], env=self.env, stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
                os.set_blocking(process.stdin.fileno(), False)
                view = memoryview(lines)
                view = view[os.write(process.stdin.fileno(), view[:65536]):]
                process.stdout.read1(1)  # a slow build is not killed before it has begun
                until = time.monotonic() + randomness.uniform(0, 0.05)
                while time.monotonic() < until:
                    try:
                        view = view[os.write(process.stdin.fileno(), view[:65536]):]
                    except BlockingIOError:
                        time.sleep(0.0005)
                process.kill()
            self.assertIn(self.plist("/n.md.plist")["URL"], texts)
            self.assertIn(self.plist("/BookProperties.plist")["CSS"], texts)
        self.assertIn(self.json("settings", "get", "key"), [text[:1000] for text in texts])
        self.assertTrue(set(self.plist("/TMResources/Misc/RecentItems.txt")) <= {"/n.mda", "/n.mdb"})
        self.assertEqual([name for name in self.files() if ".unreadable-" in name], [])
