"""Plays in the window that mirvo-window opens, by mouse and keyboard. After each
act the engine must have been told the board that the window shows.

    window_test.py SOURCE_FOLDER MIRVO [unittest's arguments]
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

import client
from xboard_window import NEEDED, Screen, Window

SOURCES, MIRVO, SCREEN = "", "", None

GO = r"Adapter->Engine: go"
ANSWER = r"Adapter->GUI: move "
# A move takes as long as a test waits at most, unless it is told to move now.
FOR_EVER = ["--time", "600"]


def setUpModule():
    global SCREEN
    SCREEN = Screen()
    unittest.addModuleCleanup(SCREEN.close)


class Installed(unittest.TestCase):
    """What the package installs, with the program of this build, in a folder."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="mirvo window ")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.install()

    def install(self):
        programs = os.path.join(self.folder, "bin")
        shared = os.path.join(self.folder, "share", "mirvo")
        playing = os.path.join(self.folder, "data", "mirvo")
        for path in (programs, shared, playing):
            os.makedirs(path)
        os.symlink(MIRVO, os.path.join(programs, "mirvo"))
        for script in ("mirvo-play", "mirvo-window"):
            shutil.copy(os.path.join(SOURCES, "packaging", script), programs)
        shutil.copy(os.path.join(SOURCES, "packaging", "config.txt"), shared)
        # The person's own settings: no book, so that every move is searched.
        with open(os.path.join(playing, "config.txt"), "w", encoding="ascii") as file:
            file.write("UseOpeningBook=0\nMoveOverhead=50\n")

    def command(self, *options):
        return [os.path.join(self.folder, "bin", "mirvo-window"), *options]


class Playing(Installed):
    def open(self, *options):
        window = Window(SCREEN, self.command(*options), self.folder)
        self.addCleanup(window.close)
        return window

    def assert_same_board(self, window):
        self.assertEqual(window.board(), window.engines_board())

    def start_thinking(self, window, move="e2e4"):
        window.do(lambda: window.move(move), GO, f"the engine thinks about {move}")
        self.assert_same_board(window)

    def move_now(self, window):
        """Moves by both sides."""
        mark = window.do(lambda: window.key("ctrl+m"), ANSWER, "an answer")
        self.assertEqual(window.sent(mark)[0], "stop")

    def test_move_now(self):
        window = self.open(*FOR_EVER)
        self.start_thinking(window)
        self.move_now(window)
        self.assertEqual(window.board()[1], "w")

    def test_taking_back(self):
        window = self.open(*FOR_EVER)
        self.start_thinking(window)
        self.move_now(window)
        mark = window.do(lambda: window.key("ctrl+x"), "GUI->Adapter: remove", "taken back")
        self.assertEqual(window.board(), "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w".split())
        self.start_thinking(window, "d2d4")
        self.assertIn("position startpos moves d2d4", window.sent(mark))

    def test_analysis_follows_the_moves_made(self):
        window = self.open(*FOR_EVER)
        mark = window.do(lambda: window.key("ctrl+a"), GO, "analysis")
        self.assertEqual(window.sent(mark)[-2:], ["position startpos", "go infinite"])
        mark = window.do(lambda: window.move("g1f3"), GO, "analysis of the next position")
        self.assertEqual(window.sent(mark),
                         ["stop", "position startpos moves g1f3", "go infinite"])
        self.assert_same_board(window)

    def test_setting_up_a_position(self):
        window = self.open(*FOR_EVER)
        self.start_thinking(window)
        # While the engine thinks: nothing of that move may remain.
        window.do(lambda: window.key("ctrl+shift+e"), "Adapter->Engine: stop", "editing")
        for drag in ("d8off", "a2a5", "h7h4"):
            window.move(drag)
        mark = window.do(lambda: window.key("ctrl+b"), GO, "the engine plays Black")
        self.assertIn("position fen rnb1kbnr/ppppppp1/8/P7/4P2p/8/1PPP1PPP/RNBQKBNR b KQkq - 0 1",
                      window.sent(mark))
        self.assert_same_board(window)
        self.move_now(window)

    def test_a_new_game_and_the_other_colour(self):
        window = self.open(*FOR_EVER)
        self.start_thinking(window)
        self.move_now(window)
        window.do(lambda: window.key("ctrl+n"), "Adapter->Engine: ucinewgame", "a new game")
        mark = window.do(lambda: window.key("ctrl+w"), GO, "the engine plays White")
        self.assertIn("position startpos", window.sent(mark))
        self.move_now(window)
        # Black's side is below now.
        window.flipped = True
        self.start_thinking(window, "e7e5")
        self.assertRegex(window.sent()[-2], "^position startpos moves .... e7e5$")

    def test_a_board_turned_round(self):
        window = self.open(*FOR_EVER)
        window.key("F2")
        window.flipped = True
        self.start_thinking(window, "d2d4")

    def test_black_and_a_time_for_each_move(self):
        window = self.open("--black", "--time", "1")
        window.wait_for(ANSWER, "the engine's first move")
        self.assertIn("Engine->Adapter: Allowing 980 ms for move (1, 980, 0)", window.log_text())
        window.flipped = True
        mark = window.do(lambda: window.move("e7e5"), ANSWER, "the answer")
        self.assertIn("go movetime 980", window.sent(mark))

    def test_depth(self):
        window = self.open("--depth", "3")
        mark = window.do(lambda: window.move("e2e4"), ANSWER, "the answer")
        self.assertIn(" depth 3", window.sent(mark)[-1])
        self.assertNotIn("info depth 4 ", window.log_text())

    def test_clock(self):
        window = self.open("--clock", "3:30+4")
        self.assertIn("GUI->Adapter: level 0 3:30 4\n", window.log_text())
        window.do(lambda: window.move("e2e4"), GO, "the engine thinks")
        self.move_now(window)


class Refusing(Installed):
    """What is told before a window opens."""

    def refuse(self, *options, display=":0"):
        """Status, what is said."""
        environment = dict(os.environ, XDG_DATA_HOME=os.path.join(self.folder, "data"))
        environment.pop("DISPLAY", None)
        if display:
            environment["DISPLAY"] = display
        done = subprocess.run(self.command(*options), env=environment, check=False, text=True,
                              capture_output=True, timeout=20)
        self.assertEqual(done.stdout, "")
        return done.returncode, done.stderr

    def test_options_that_make_no_sense(self):
        for options, said in [
                (["--blak"], "unknown option: --blak"),
                (["e4"], "unknown option: e4"),
                (["--clock"], '--clock needs minutes such as 5 or 1:30'),
                (["--clock", "5+"], 'not "5+"'),
                (["--clock", "1:75"], 'not "1:75"'),
                (["--clock", "0"], 'not "0"'),
                (["--clock", "0:00"], 'not "0:00"'),
                (["--depth", "0"], "--depth needs a number from 1 to 99"),
                (["--time", "0.5"], "--time needs whole seconds"),
        ]:
            with self.subTest(options=options):
                status, text = self.refuse(*options)
                self.assertEqual(status, 2)
                self.assertTrue(text.startswith("mirvo-window: "), text)
                self.assertIn(said, text)
                self.assertIn("--help", text)

    def test_no_screen(self):
        self.assertEqual(self.refuse(display=""), (
            1, "mirvo-window: there is no screen to open a window on (DISPLAY is not set)\n"))

    def test_no_xboard(self):
        """On this machine it is: the script runs with other folders for games."""
        programs = os.path.join(self.folder, "bin")
        for name in ("bash", "dirname", "readlink"):
            os.symlink(shutil.which(name), os.path.join(programs, name))
        script = client.read(os.path.join(programs, "mirvo-window")).replace("/usr/games", "/none")
        with open(os.path.join(programs, "mirvo-window"), "w", encoding="ascii") as file:
            file.write(script)
        done = subprocess.run(
            [os.path.join(programs, "bash"), os.path.join(programs, "mirvo-window")], check=False,
            env={"DISPLAY": ":0", "PATH": programs}, text=True, capture_output=True, timeout=20)
        self.assertEqual(done.returncode, 1)
        self.assertIn("xboard is not installed; on Debian: apt install xboard polyglot", done.stderr)

    def test_help(self):
        done = subprocess.run(self.command("--help"), env={"PATH": os.environ["PATH"]}, check=True,
                              text=True, capture_output=True, timeout=20)
        self.assertIn("Usage: mirvo-window", done.stdout)
        for option in ("--white", "--black", "--clock", "--depth", "--time"):
            self.assertIn(option, done.stdout)


if __name__ == "__main__":
    SOURCES, MIRVO = (os.path.abspath(path) for path in (sys.argv.pop(1), sys.argv.pop(1)))
    client.need(*NEEDED)
    unittest.main()
