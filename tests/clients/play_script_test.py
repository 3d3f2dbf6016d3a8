"""A game in the window that play.sh opens: a move, its answer, a move taken
back, "Move Now". Builds build/run in the source folder, as run.sh does.

    play_script_test.py SOURCE_FOLDER
"""

import os
import sys
import tempfile
import unittest

import client
from xboard_window import NEEDED, Screen, Window

SOURCES = ""
BUILD_LIMIT = 280  # seconds, for a machine that is busy with other tests


class PlayScript(unittest.TestCase):
    def test_a_game_begins(self):
        folder = tempfile.TemporaryDirectory(prefix="mirvo-play-script-")
        self.addCleanup(folder.cleanup)
        screen = Screen()
        self.addCleanup(screen.close)
        script = os.path.join(SOURCES, "play.sh")
        window = Window(screen, [script, "--clock", "90"], folder.name, BUILD_LIMIT)
        self.addCleanup(window.close)
        # The answer comes from the book.
        window.do(lambda: window.move("e2e4"), "Adapter->GUI: move ", "an answer")
        window.do(lambda: window.key("ctrl+x"), "GUI->Adapter: remove", "a move taken back")
        window.do(lambda: window.move("a2a4"), "Adapter->Engine: go wtime", "the engine thinks")
        self.assertEqual(window.board(), window.engines_board())
        mark = window.do(lambda: window.key("ctrl+m"), "Adapter->GUI: move ", "an answer")
        self.assertEqual(window.sent(mark)[0], "stop")
        self.assertTrue(window.close(), "the window does not close")
        settings = os.path.join(folder.name, "data", "mirvo", "config.txt")
        self.assertEqual(client.read(settings),
                         client.read(os.path.join(SOURCES, "packaging", "config.txt")))


if __name__ == "__main__":
    SOURCES = os.path.abspath(sys.argv.pop(1))
    client.need(*NEEDED)
    unittest.main()
