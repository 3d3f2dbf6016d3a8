"""Tests of the start script and of the entries for XBoard's engine list and for
the desktop's menu.

    test_start_script.py SOURCE_FOLDER MIRVO
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCES, MIRVO = "", ""


class StartScript(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mirvo-play-")
        self.addCleanup(folder.cleanup)
        self.shared = os.path.join(folder.name, "shared")
        self.folder = os.path.join(folder.name, "data", "mirvo")
        os.mkdir(self.shared)
        with open(os.path.join(SOURCES, "packaging", "config.txt"), encoding="ascii") as file:
            self.settings = file.read()
        self.write(self.shared, "config.txt", self.settings)

    def write(self, folder, name, text):
        with open(os.path.join(folder, name), "w", encoding="ascii") as file:
            file.write(text)

    def read(self, name):
        with open(os.path.join(self.folder, name), encoding="ascii") as file:
            return file.read()

    def play(self):
        environment = dict(os.environ, MIRVO_SHARED=self.shared, MIRVO_PROGRAM=MIRVO,
                           XDG_DATA_HOME=os.path.dirname(self.folder))
        environment.pop("MIRVO_FOLDER", None)
        done = subprocess.run([os.path.join(SOURCES, "packaging", "mirvo-play"), "-quiet"],
                              env=environment, input=b"xboard\nquit\n", check=True, timeout=60,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return done.stdout.decode()

    def test_prepares_a_folder_and_says_nothing_itself(self):
        text = self.play()
        self.assertTrue(text.startswith("Welcome to Mirvo"))
        # XBoard reads these words as a failed start.
        self.assertNotIn("not found", text)
        self.assertIn("\nfeature ", text)
        self.assertEqual(self.read("config.txt"), self.settings)
        self.assertIn("MoveOverhead=50\n", self.settings)
        self.assertTrue(self.read("mirvo_0.2.7_d_log.txt").startswith("Welcome"))

    def test_keeps_the_users_settings_and_book(self):
        self.play()
        self.write(self.folder, "config.txt", "TTHashSize=17\n")
        self.write(self.folder, "book.bk", "")
        self.write(self.shared, "book.bk", "other")
        self.assertIn("TTHashSize=17\n", self.play())
        self.assertEqual(self.read("book.bk"), "")

    def test_follows_the_installed_book(self):
        self.write(self.shared, "book.bk", "one")
        self.play()
        self.write(self.shared, "book.bk", "two")
        self.assertEqual(self.read("book.bk"), "two")

    def test_settings_repeat_the_defaults(self):
        def report(text):
            return text[text.index("Config:"):text.index("feature")]
        self.assertEqual(report(self.play()), report(self.with_empty_settings()))

    def with_empty_settings(self):
        self.write(self.folder, "config.txt", "")
        return self.play()

    def test_engine_list_entry_names_the_script(self):
        with open(os.path.join(SOURCES, "packaging", "mirvo.eng"), encoding="ascii") as file:
            self.assertEqual(file.read(), "plugin spec 0.0\nmirvo-play\nchess\n")

    def test_menu_entry_is_one_that_desktops_read(self):
        entry = os.path.join(SOURCES, "packaging", "mirvo.desktop")
        with open(entry, encoding="ascii") as file:
            text = file.read()
        self.assertIn("\nExec=mirvo-window\nIcon=mirvo\nTerminal=false\n", text)
        if not shutil.which("desktop-file-validate"):
            self.skipTest("SKIP: desktop-file-validate is not installed")
        done = subprocess.run(["desktop-file-validate", entry], check=False, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.assertEqual((done.returncode, done.stdout), (0, ""))


if __name__ == "__main__":
    SOURCES, MIRVO = (os.path.abspath(path) for path in (sys.argv.pop(1), sys.argv.pop(1)))
    unittest.main()
