"""The Windows program in folders of any name, and the line ends of its files.

    folders_test.py PROGRAM LOADER...

LOADER is the command that runs a Windows program.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from kit.engine_process import EngineProcess  # noqa: E402

PROGRAM = ""
LOADER = []
LOG_NAME = "mirvo_0.2.7_d_log.txt"
START = ("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR", "w", "KQkq")
GAME = '[Result "1-0"]\n\n1. e4 e5 2. Nf3 Nc6 3. Bb5 a6 1-0\n'
# Polyglot's own format: key, move, weight, learn; all big-endian. The move
# e2e4 of the first position, and its published key.
FIRST_ENTRY = "463b96181691fc9c031c"


class Folders(unittest.TestCase):

    def setUp(self):
        scratch = tempfile.TemporaryDirectory(prefix="mirvo-windows-")
        self.addCleanup(scratch.cleanup)
        self.scratch = pathlib.Path(scratch.name)

    def run_in(self, folder, *arguments, text=b""):
        done = subprocess.run([*LOADER, PROGRAM, *arguments], cwd=folder, input=text,
                              stdout=subprocess.PIPE, timeout=60, check=False)
        self.assertEqual(done.returncode, 0)
        return done.stdout

    def make(self, name):
        folder = self.scratch / name
        folder.mkdir()
        return folder

    def test_names_with_blanks_and_foreign_letters_do_no_harm(self):
        # Two names have letters outside the system's code page.
        for name in ("two words", "Zürich", "šach", "チェス ♞", "a&b (c) 100%"):
            with self.subTest(name):
                folder = self.make(name)
                output = self.run_in(folder, "-eval", *START)
                self.assertIn(b"Full eval: ", output)
                self.assertTrue((folder / LOG_NAME).is_file())

    def test_the_program_itself_may_lie_in_such_a_folder(self):
        for name in ("Program Files (x86)", "Schach-Größen ♞"):
            with self.subTest(name):
                program = self.make(name) / "my engine.exe"
                shutil.copy(PROGRAM, program)
                done = subprocess.run([*LOADER, program, "-perft", "2"], cwd=program.parent,
                                      input=b"", stdout=subprocess.PIPE, timeout=60, check=False)
                self.assertEqual(done.returncode, 0)
                self.assertIn(b"400", done.stdout)

    def test_input_may_be_a_file(self):
        folder = self.make("file")
        (folder / "commands.txt").write_bytes(b"uci\r\nisready\r\nquit\r\n")
        with open(folder / "commands.txt", "rb") as commands:
            done = subprocess.run([*LOADER, PROGRAM], cwd=folder, stdin=commands,
                                  stdout=subprocess.PIPE, timeout=60, check=False)
        self.assertEqual(done.returncode, 0)
        self.assertIn(b"uciok\r\n", done.stdout)
        self.assertIn(b"readyok\r\n", done.stdout)

    def test_a_search_meets_the_rest_of_a_file(self):
        # Peeking works only on pipes; its failure here counts as input.
        folder = self.make("search")
        (folder / "config.txt").write_bytes(b"UseOpeningBook=0\n")
        (folder / "commands.txt").write_bytes(b"uci\nposition startpos\ngo infinite\nisready\nquit\n")
        with open(folder / "commands.txt", "rb") as commands:
            done = subprocess.run([*LOADER, PROGRAM], cwd=folder, stdin=commands,
                                  stdout=subprocess.PIPE, timeout=60, check=False)
        self.assertEqual(done.returncode, 0)
        self.assertIn(b"readyok", done.stdout)

    def test_the_end_of_a_file_ends_an_endless_search(self):
        folder = self.make("end")
        (folder / "config.txt").write_bytes(b"UseOpeningBook=0\n")
        (folder / "commands.txt").write_bytes(b"uci\nposition startpos\ngo infinite\n")
        with open(folder / "commands.txt", "rb") as commands:
            engine = EngineProcess([*LOADER, PROGRAM], folder, input=commands)
        # Closed, since it then waits for the end that its interface has in mind for it.
        self.addCleanup(engine.close)
        engine.wait_for_line("bestmove ", 60)

    def test_tools_need_no_input_at_all(self):
        folder = self.make("none")
        done = subprocess.run(["sh", "-c", 'exec "$@" <&-', "sh", *LOADER, PROGRAM, "-perft", "1"],
                              cwd=folder, stdout=subprocess.PIPE, timeout=60, check=False)
        self.assertEqual(done.returncode, 0)
        self.assertIn(b"20", done.stdout)

    def test_files_with_blanks_in_their_names_are_found(self):
        folder = self.make("books")
        (folder / "my games.pgn").write_text(GAME)
        self.run_in(folder, "-createbook", "my games.pgn", "40", "1", "my book.bk")
        output = self.run_in(folder, "-listmoves", "my book.bk", *START)
        self.assertIn(b"e2e4", output)

    def test_a_path_with_a_drive_and_backslashes_is_a_path(self):
        folder = self.make("deep")
        (folder / "games.pgn").write_text(GAME)
        path = "Z:" + str(folder).replace("/", "\\") + "\\"
        self.run_in(folder, "-createbook", path + "games.pgn", "40", "1", path + "out.bk")
        self.assertTrue((folder / "out.bk").is_file())

    def test_unreadable_names_do_no_harm(self):
        folder = self.make("names")
        for name in ("none.bk", "NUL", "con.bk", "a*b?.bk", "x" * 400, "\\\\nowhere\\share\\b.bk"):
            with self.subTest(name[:20]):
                self.run_in(folder, "-bookstats", name)

    def test_wildcards_are_left_as_they_are(self):
        folder = self.make("stars")
        for name in ("a.pgn", "b.pgn"):
            (folder / name).write_text(GAME)
        self.run_in(folder, "-createbook", "*.pgn", "40", "1", "out.bk")
        self.assertFalse((folder / "out.bk").exists())

    def test_standard_output_and_log_end_lines_as_windows_does(self):
        folder = self.make("lines")
        output = self.run_in(folder, "-perft", "1")
        log = (folder / LOG_NAME).read_bytes()
        for text in (output, log):
            self.assertGreater(text.count(b"\n"), 20)
            self.assertEqual(text.count(b"\n"), text.count(b"\r\n"))
            self.assertNotIn(b"\r\r", text)

    def test_a_saved_game_ends_lines_as_windows_does(self):
        folder = self.make("game")
        (folder / "config.txt").write_bytes(b"LoggingMode=1\r\nDepthSearch=1\r\n")
        self.run_in(folder, text=b"xboard\r\nnew\r\nname A\r\neasy\r\ngo\r\nresult 1-0 {x}\r\nquit\r\n")
        text = (folder / "game000000.pgn").read_bytes()
        self.assertIn(b'[Result "', text)
        self.assertEqual(text.count(b"\n"), text.count(b"\r\n"))

    def test_settings_may_end_lines_either_way(self):
        for number, end in enumerate((b"\n", b"\r\n")):
            folder = self.make(f"settings{number}")
            (folder / "config.txt").write_bytes(b"TTHashSize=7" + end + b"Ponder=0" + end)
            output = self.run_in(folder, "-perft", "1")
            self.assertIn(b"TTHashSize=7\r\n", output)
            self.assertIn(b"Ponder=0\r\n", output)

    def test_books_hold_their_bytes_untouched(self):
        folder = self.make("bytes")
        (folder / "games.pgn").write_bytes(GAME.replace("\n", "\r\n").encode())
        self.run_in(folder, "-createbook", "games.pgn", "40", "1", "out.bk")
        data = (folder / "out.bk").read_bytes()
        self.assertEqual(len(data) % 16, 0)
        entries = [data[at:at + 16].hex() for at in range(0, len(data), 16)]
        self.assertEqual([entry[:20] for entry in entries if entry.startswith("463b")],
                         [FIRST_ENTRY])
        # A book whose bytes include line ends and the end-of-file character.
        ends = bytes.fromhex("463b96181691fc9c 031c 0d0a 1a0d0a1a".replace(" ", ""))
        (folder / "ends.bk").write_bytes(ends)
        self.assertIn(b"e2e4", self.run_in(folder, "-listmoves", "ends.bk", *START))


if __name__ == "__main__":
    PROGRAM, *LOADER = sys.argv[1:]
    PROGRAM = os.path.abspath(PROGRAM)
    unittest.main(argv=sys.argv[:1], verbosity=2)
