# SPDX-License-Identifier: GPL-3.0-or-later
"""Tasks through the program `tomelet`: commands, operations by name, reminders, and stores that other programs wrote."""
import datetime
import signal
import subprocess
import unittest

from world import TOMELET, World


class Tasks(World):
    def setUp(self):
        super().setUp()
        for name in ("a.md", "b.md", "c.md"):
            self.write("/L/" + name)
        self.run_("tasklist", "on", "L")

    def test_a_day_with_tasks(self):
        self.assertEqual(self.run_("task", "toggle", "L/a.md", "/L/b.md"), "task-started\ntask-started\n")
        self.assertEqual(self.run_("task", "toggle", "L/a.md"), "task-done\n")
        self.run_("task", "due", "L/b.md", "2020-02-29")
        self.run_("task", "due", "L/c.md", "2999-01-31T09:30:45")
        self.run_("task", "repeat", "L/c.md", "when", "done", "2", "months")
        self.assertEqual(self.run_("task", "repeat", "L/c.md"), " 2 months after completion\n")
        self.assertEqual(self.json("task", "due", "L/c.md"), "2999-01-31T08:30:00Z")
        self.assertEqual([row["title"] for row in self.json("tasks", "L")], ["b.md", "c.md", "a.md"])
        for words in (["due"], ["list", "--smart", "due"]):
            rows = self.json(*words)
            self.assertEqual([row["title"] for row in rows], ["b.md"], words)
        self.assertEqual(rows[0]["DueDate"], "2020-02-28T23:01:00Z")
        reminders = self.json("reminders")
        self.assertEqual([(one["path"], one["fireDate"], one["informativeText"]) for one in reminders],
                         [(self.at("/L/c.md"), "2999-01-31T08:30:00Z", "c")])
        row = self.ops(["tm_dictionaryForItemAsTask", "/L/a.md", True, {"DueDate": "2020-01-01T00:00:00Z"}, []])
        self.assertEqual(row[0]["result"]["taskIcon"], "task-open-due")
        self.assertIn("Due Tasks", self.run_("tree"))
        self.run_("task", "clear-due", "L/b.md")
        self.assertEqual(self.json("due"), [])
        self.run_("task", "not-a-task", "L/b.md")
        self.assertEqual([row["title"] for row in self.json("tasks", "L")], ["c.md", "a.md"])

    def test_moves_and_switches(self):
        self.run_("task", "toggle", "L/a.md")
        self.run_("mv", "L/a.md", "L/z.md")
        self.assertEqual(self.plist("/L/TMTasklistDetails.plist")["z.md"]["State"], "started")
        self.run_("book", "Shelf")
        self.run_("mv", "L", "Shelf/L")
        self.run_("task", "due", "Shelf/L/z.md", "2020-01-01")
        self.assertEqual([row["parent"] for row in self.json("due")], [self.at("/Shelf/L")])
        self.assertEqual(self.call("--root", self.root, "--no", "tasklist", "reset", "Shelf/L")[0], 0)
        self.assertIn("z.md", self.plist("/Shelf/L/TMTasklistDetails.plist"))
        self.run_("--yes", "tasklist", "reset", "Shelf/L")
        self.assertEqual(self.plist("/Shelf/L/TMTasklistDetails.plist"), {})
        self.run_("tasklist", "off", "Shelf/L")
        self.fails("tasks", "Shelf/L", says="is no tasklist")
        self.fails("task", "toggle", "Shelf/L/z.md", says="lies in no tasklist")
        self.fails("task", "toggle", "L/gone.md", says="lies in no tasklist")
        self.misused("task", "repeat", "Shelf/L/z.md", "sometimes", "day", "1")
        self.misused("tasklist", "away", "L")

    def test_operations_at_a_fixed_time(self):
        item = "/L/a.md"
        answers = self.ops(
            ["$now", "2026-03-28T10:00:00Z"], ["tm_setDueDate", item, "2026-03-27T10:00:30Z"],
            ["tm_setRepeatDetails", item, ["when due", "day", "1"]], ["tm_iconForTask", item],
            ["tm_toggleTaskWithDate", item, "2026-03-28T09:00:00Z"], ["tm_toggleTask", item], ["$drain"],
            ["tm_dueDateForTask", item], ["tm_doneDateForTask", item], ["tm_readableRepeatDetails", item],
            ["tm_allOpenTasksCountingDescendants", "/L", False], ["tm_arrayOfDueTasksAsNumbers", "/", True],
            ["tm_thatDayMidnight", "2026-03-29T10:00:00Z"], ["tm_weekdayString", "2026-03-27T10:00:00Z"],
            ["tm_dictionaryByMergingWithTaskDetails", {"x": {"Changed": "2026-01-01T00:00:00Z"}},
             {"x": {"Changed": "2026-01-02T00:00:00Z", "State": "done"}}],
            ["tm_repostAllNotifications", ""], ["tm_listOfTasklists", "/"])
        answers = [answer["result"] for answer in answers]
        self.assertEqual(answers[3], "task-open-due")
        self.assertEqual(answers[4:6], ["task-started-due", "task-done"])
        # Noon of a day that is an hour shorter.
        self.assertEqual(answers[7:10], ["2026-03-29T09:00:00Z", "2026-03-28T10:00:00Z", "Every Day "])
        self.assertEqual(answers[10], {"totalTasks": "4", "dueTasks": "0", "doneTasks": "1"})
        self.assertEqual(answers[11:14], [[0, 0], "2026-03-28T23:00:00Z", "Yesterday, 11:00\u202fAM"])
        self.assertEqual(answers[14]["x"]["State"], "done")
        self.assertEqual(answers[16], ["/L"])
        self.assertEqual(self.json("settings", "get", "allTaskLists"), ["/L"])

    def test_extraction(self):
        self.run_("settings", "set", "markTaskWithCharacter", "*")
        self.run_("settings", "set", "DefaultDocumentType", "txt")
        self.write("/L/Notes.md", "Notes\n* Käse\n*  ✘ no\n".encode())
        self.assertEqual(self.run_("extract", "L/Notes.md"), "/L/Käse.txt\n/L/no.txt\n")
        self.assertEqual(self.run_("extract", "L/Notes.md"), "")
        self.run_("task", "toggle", "L/Käse.txt", "L/Käse.txt", "L/Käse.txt")
        self.run_("task", "toggle", "L/Käse.txt")
        self.assertEqual(self.run_("task", "toggle", "L/Käse.txt", "L/Käse.txt"), "task-started\ntask-done\n")
        with open(self.at("/L/Notes.md"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "Notes\n✓ Käse\n*  ✘ no\n")

    def test_stores_of_every_kind(self):
        past = datetime.datetime(1, 1, 1)
        store = {"a.md": "text", "b.md": {"DueDate": "no date", "State": ["done"]},
                 "c.md": {"DueDate": past, "RepeatType": "when due", "RepeatUnit": "hour", "RepeatFactor": "0",
                          "State": "started"},
                 "gone.md": {"DueDate": past}, "__DueItemCount__": {"x": 1}, "__DoneItemCount__": -5}
        self.write_plist("/L/TMTasklistDetails.plist", store)
        self.write("/Broken/TMTasklistDetails.plist", b"<plist")
        self.write("/Broken/x.md")
        self.assertEqual([row["title"] for row in self.json("due")], ["c.md"])
        self.assertEqual(self.json("reminders"), [])
        self.assertEqual(self.run_("task", "toggle", "L/c.md"), "task-done\n")
        self.assertEqual(self.run_("task", "toggle", "L/a.md"), "task-started\n")
        self.assertEqual(self.run_("tasks", "Broken"), "task-open\t/Broken/x.md\t\n")
        self.assertEqual(self.run_("op", "tm_correctTaskCountAtPath", "L"), "0\n")
        self.assertNotIn("gone.md", self.plist("/L/TMTasklistDetails.plist"))


    def test_orders_of_rows_and_books(self):
        last = 2 ** 63 - 1
        rows = [{"path": "/b", "modDate": "2026-01-02T00:00:00Z", "pinnedSequence": last},
                {"path": "/a", "modDate": "2026-01-01T00:00:00Z", "pinnedSequence": float(last)},
                {"path": "/undated", "pinnedSequence": last},
                {"path": "/pinned", "modDate": "2026-01-01T00:00:00Z", "pinnedSequence": 0}]
        answers = self.ops(["tm_sortByParameter", rows, "modDate", False], ["selectSortOrder", "/L", 2],
                           ["selectSortOrder", "/L", 4], ["$set", "hideDoneTasks", True],
                           ["tm_setTaskDetails", "/L/a.md", {"State": "done"}],
                           ["updateEmptyBookIndicatorText", "/L"], ["tm_todayMidnight", ""])
        self.assertEqual([row["path"] for row in answers[0]["result"]], ["/pinned", "/undated", "/a", "/b"])
        self.assertEqual(answers[0]["result"][1]["pinnedSequence"], last)
        self.assertEqual(self.plist("/L/BookProperties.plist"),
                         {"sortOrderForNotes": "modDate", "sortNotesDescending": "YES"})
        self.assertEqual(answers[5]["result"].split("\n")[0], " 1 Done Tasks")


class Watch(World):
    def test_ends_in_order_and_recounts_what_others_wrote(self):
        self.write("/L/a.md")
        self.write_plist("/L/TMTasklistDetails.plist", {"a.md": {"State": "done"}, "gone.md": {"State": "done"}})
        watch = subprocess.Popen([TOMELET, "--root", self.root, "watch"], env=self.env, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE)
        self.addCleanup(watch.stdout.close)
        self.addCleanup(watch.stderr.close)
        self.assertIn(b"following", watch.stderr.readline())
        line = watch.stdout.readline()
        self.assertIn(b"TMTasklistDetails.plist", line)
        watch.send_signal(signal.SIGTERM)
        self.assertEqual(watch.wait(60), 0)
        self.assertEqual(self.plist("/L/TMTasklistDetails.plist")["__DoneItemCount__"], "1")


if __name__ == "__main__":
    unittest.main()
