"""The arbiter of XBoard games lets a clean game pass and notices each fault.

Usage: test_play_xboard_games.py ENGINE
"""

import contextlib
import io
import os
import pathlib
import sys
import unittest

import play_xboard_games

FOLDER = pathlib.Path(__file__).resolve().parent
ENGINE = ""

play_xboard_games.HANG_LIMIT = 6.0

# Fault -> what the arbiter says.
FAULTS = {
    "position": "expected",
    "silence": "",
    "move": "plays the illegal move e1e8",
    "reply": "ponders on the illegal reply e1e8",
    "hit": "but printed PONDER NOT HIT",
    "count": "counts differ",
}


def judge(fault):
    """Plays one short game; the arbiter's status and text."""
    text = io.StringIO()
    command = f"{sys.executable} {FOLDER / 'faulty_xboard_engine.py'} {ENGINE} {fault}"
    with contextlib.redirect_stdout(text):
        status = play_xboard_games.main([command, "--games", "1", "--plies", "60", "--clock",
                                         "3000", "--margin", "9000"])
    return status, text.getvalue()


class Arbiter(unittest.TestCase):
    def test_clean_game_passes(self):
        status, text = judge("none")
        self.assertEqual(status, 0, text)
        self.assertIn("game 1: ", text)

    def test_every_fault_is_noticed(self):
        for fault, words in FAULTS.items():
            with self.subTest(fault):
                status, text = judge(fault)
                self.assertEqual(status, 1, text)
                self.assertIn(words, text.splitlines()[-1])


if __name__ == "__main__":
    ENGINE = os.path.abspath(sys.argv.pop(1))
    unittest.main()
