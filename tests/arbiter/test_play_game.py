"""Tests of the arbiter itself: it lets a clean game pass and notices each fault.

Usage: test_play_game.py   (unittest; run by CTest as arbiter.notices_faults)
"""

import contextlib
import io
import pathlib
import sys
import unittest

import play_game

FOLDER = pathlib.Path(__file__).resolve().parent

# Fault of one engine -> what the arbiter says.
FAULTS = [
    ("illegal", "plays the illegal move e1e8"),
    ("null", "plays the illegal move 0000"),
    ("time", "lost on time"),
    ("hang", "hangs: no bestmove"),
    ("double", "a bestmove that nobody asked for"),
    ("death", "ended with status 3"),
    ("line", "reports the unplayable move e1e8"),
    ("reply", "expects the illegal reply e1e8"),
    ("form", "answers in an unknown form"),
    ("status", "ended with status 4"),
]


def command(fault):
    return f"{sys.executable} {FOLDER / 'faulty_engine.py'} {fault}"


def judge(white, black, *arguments):
    """Plays a short game; the arbiter's status and text."""
    text = io.StringIO()
    with contextlib.redirect_stdout(text):
        status = play_game.main(["--white", command(white), "--black", command(black),
                                 "--clock", "1000+0", "--margin", "0", "--plies", "12", *arguments])
    return status, text.getvalue()


class PlayGame(unittest.TestCase):
    def setUp(self):
        play_game.HANG_LIMIT = 0.5

    def test_clean_game_passes(self):
        status, text = judge("none", "none")
        self.assertEqual(status, 0, text)
        self.assertIn("adjudication at 12 plies", text)

    def test_every_fault_is_noticed(self):
        for fault, message in FAULTS:
            with self.subTest(fault=fault):
                status, text = judge("none", fault)
                self.assertEqual(status, 1)
                self.assertIn("FAULT: black", text)
                self.assertIn(message, text)

    def test_game_may_begin_anywhere(self):
        status, text = judge("none", "none", "--fen", "7k/8/6K1/8/8/8/8/R7 w - - 98 1")
        self.assertEqual(status, 0, text)
        self.assertIn("fifty moves", text)


if __name__ == "__main__":
    unittest.main()
