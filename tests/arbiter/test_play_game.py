"""Tests of the arbiter itself: it lets a clean game pass and notices each fault.

Usage: test_play_game.py   (unittest; run by CTest as arbiter.notices_faults)
"""

import contextlib
import io
import pathlib
import sys
import unittest

import play_game
from time_control import Clock, TimeControl, go_words

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

    def test_clock_is_filled_up_for_the_next_moves(self):
        # Twelve moves of 0.1 s at least, with a clock of 0.6 s for five.
        status, text = judge("slow", "none", "--clock", "5/600+0", "--plies", "24")
        self.assertEqual(status, 0, text)
        status, text = judge("slow", "none", "--clock", "600+0", "--plies", "24")
        self.assertEqual(status, 1, text)
        self.assertIn("lost on time", text)

    def test_game_may_begin_anywhere(self):
        status, text = judge("none", "none", "--fen", "7k/8/6K1/8/8/8/8/R7 w - - 98 1")
        self.assertEqual(status, 0, text)
        self.assertIn("fifty moves", text)


class TimeControls(unittest.TestCase):
    def test_are_read_and_written(self):
        for text, control in (("2000", (0, 2000, 0)), ("2000+20", (0, 2000, 20)),
                              ("10/2000+0", (10, 2000, 0)), ("20/6000+100", (20, 6000, 100))):
            self.assertEqual(TimeControl.parse(text), control)
        self.assertEqual(str(TimeControl(10, 2000, 0)), "10/2000+0")
        self.assertEqual(str(TimeControl(0, 2000, 20)), "2000+20")
        for text in ("", "+20", "10/", "10/2+", "1:00"):
            with self.assertRaises(ValueError):
                TimeControl.parse(text)

    def test_a_clock_counts_moves_to_its_next_time(self):
        clock = Clock(TimeControl(3, 1000, 10))
        seen = []
        for used in (100, 200, 700, 0):
            seen.append((clock.left, clock.moves_to_go()))
            clock.book(used)
        self.assertEqual(seen, [(1000, 3), (910, 2), (720, 1), (1030, 3)])

    def test_a_clock_never_falls_below_nothing(self):
        clock = Clock(TimeControl(0, 1000, 10))
        clock.book(5000)
        self.assertEqual((clock.left, clock.moves_to_go()), (10, 0))

    def test_a_go_names_moves_to_go_only_where_there_are_any(self):
        white, black = Clock(TimeControl(3, 1000, 0)), Clock(TimeControl(3, 1000, 0))
        white.book(400)
        self.assertEqual(go_words(white, black, white),
                         "wtime 600 btime 1000 winc 0 binc 0 movestogo 2")
        self.assertEqual(go_words(white, black, black)[-11:], "movestogo 3")
        white = black = Clock(TimeControl(0, 500, 5))
        self.assertEqual(go_words(white, black, white), "wtime 500 btime 500 winc 5 binc 5")


if __name__ == "__main__":
    unittest.main()
