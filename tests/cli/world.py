# SPDX-License-Identifier: GPL-3.0-or-later
"""A world of its own for the program `tomelet`: folders for settings, state and caches that nothing else uses."""
import json
import os
import plistlib
import shutil
import subprocess
import tempfile
import unittest

TOMELET = os.environ["TOMELET"]


class World(unittest.TestCase):
    """Each test has an empty notebook in self.root and a home without settings."""

    def setUp(self):
        self.base = os.path.realpath(tempfile.mkdtemp(prefix="tomelet-test-"))
        self.addCleanup(self.destroy)
        self.root = self.base + "/root"
        self.user = {}
        os.mkdir(self.root)
        self.env = dict(os.environ, HOME=self.base, LC_ALL="C.UTF-8", TZ="Europe/Berlin")
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"):
            self.env[name] = self.base + "/" + name

    def destroy(self):
        for folder, folders, _ in os.walk(self.base):
            for name in folders:
                if not os.path.islink(os.path.join(folder, name)):
                    os.chmod(os.path.join(folder, name), 0o700)
        shutil.rmtree(self.base)

    def as_nobody(self):
        """From here on the program runs without the rights of root, which nothing would stop."""
        if os.geteuid() != 0:
            return
        self.user = {"user": 65534, "group": 65534, "extra_groups": []}
        self.give_away()
        try:
            subprocess.run([TOMELET, "--version"], capture_output=True, check=True, **self.user)
        except (OSError, subprocess.CalledProcessError):
            self.skipTest("the program cannot be run by another user")

    def give_away(self):
        if self.user:
            subprocess.run(["chown", "-R", "-h", "65534:65534", self.base], check=True)

    def at(self, path):
        return self.root + path

    def write(self, path, data=b"text\n"):
        target = os.fsencode(self.root) + os.fsencode(path)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        with open(target, "wb") as file:
            file.write(data)
        return os.fsdecode(target)

    def write_plist(self, path, value, **options):
        return self.write(path, plistlib.dumps(value, **options))

    def plist(self, path):
        with open(self.at(path), "rb") as file:
            return plistlib.load(file)

    def call(self, *words, stdin=b"", **options):
        """Runs the program; gives status, standard output and standard error as texts."""
        result = subprocess.run([TOMELET, *words], input=stdin, capture_output=True, env=self.env,
                                cwd=self.base, timeout=120, check=False, **self.user, **options)
        return (result.returncode, result.stdout.decode("utf-8", "surrogateescape"),
                result.stderr.decode("utf-8", "surrogateescape"))

    def run_(self, *words, stdin=b""):
        """Runs the program on the notebook; it must succeed without a message. Gives its output."""
        status, out, err = self.call("--root", self.root, *words, stdin=stdin)
        self.assertEqual((status, err), (0, ""), words)
        return out

    def json(self, *words, stdin=b""):
        return json.loads(self.run_("--json", *words, stdin=stdin))

    def fails(self, *words, says="", at_root=True):
        """The operation fails with status 1 and exactly one line on standard error, which holds `says`."""
        status, out, err = self.call(*(("--root", self.root) if at_root else ()), *words)
        self.assertEqual((status, out), (1, ""), (words, err))
        self.assertEqual(err.count("\n"), 1, err)
        self.assertTrue(err.endswith("\n"), err)
        self.assertIn(says, err)
        return err

    def misused(self, *words, says=""):
        """Wrong usage: status 2 with a hint."""
        status, out, err = self.call("--root", self.root, *words)
        self.assertEqual((status, out), (2, ""), (words, err))
        self.assertIn("--help", err)
        self.assertIn(says, err)

    def ops(self, *lines, root=None):
        """Runs lines of `ops`; gives its answers."""
        text = "".join(json.dumps(line) + "\n" for line in lines)
        status, out, err = self.call("--root", root or self.root, "ops", stdin=text.encode())
        self.assertEqual((status, err), (0, ""))
        return [json.loads(line) for line in out.splitlines()]

    def files(self, folder=None):
        """All files and folders below the folder with their contents, to compare before and after."""
        found = {}
        folder = folder or self.base
        for where, folders, names in os.walk(folder):
            for name in folders:
                found[os.path.relpath(os.path.join(where, name), folder)] = None
            for name in names:
                path = os.path.join(where, name)
                if os.path.islink(path):
                    found[os.path.relpath(path, folder)] = os.readlink(path)
                elif os.access(path, os.R_OK):
                    with open(path, "rb") as file:
                        found[os.path.relpath(path, folder)] = file.read()
        return found
