"""Tests of the soak itself: it lets clean games pass and counts each fault.

Usage: test_soak.py ENGINE   (run by CTest as soak.notices_faults)
"""

import contextlib
import io
import os
import sys
import unittest

import soak
import starts
from rules import Position, outcome

ENGINE = os.path.abspath(sys.argv.pop()) if len(sys.argv) > 1 else ""

# Fault of a UCI engine -> the column of the summary that counts it.
UCI_FAULTS = [
    ("illegal", "illegal"), ("null", "illegal"), ("line", "illegal"), ("reply", "illegal"),
    ("form", "illegal"), ("time", "forfeits"), ("death", "crashes"), ("hang", "hangs"),
    ("double", "stray"), ("leak", "memory"), ("files", "memory"), ("status", "exits"),
]
XBOARD_FAULTS = [("move", "illegal"), ("double", "stray"), ("unwanted", "stray")]


def command(name, *arguments):
    return " ".join([sys.executable, str(starts.ARBITER / name), *arguments])


def run(engine, *arguments):
    """A short soak; its status and text. The margin is wide, so that only the fault
    is found even on a busy machine."""
    text = io.StringIO()
    with contextlib.redirect_stdout(text):
        status = soak.main([engine, "--plies", "14", "--games", "2", "--warm-up", "1",
                            "--margin", "10000", "--clocks", "200+0", *arguments])
    return status, text.getvalue()


class Soak(unittest.TestCase):
    def check(self, column, result):
        status, text = result
        self.assertEqual(status, 1, text)
        self.assertNotIn(f" 0 {column}", text)
        for other in soak.FAULTS:
            if other != column:
                self.assertIn(f" 0 {other}", text, text)

    def test_clean_games_pass(self):
        status, text = run(command("faulty_engine.py", "none"), "--protocol", "uci",
                           "--games", "8")
        self.assertEqual(status, 0, text)
        self.assertIn("8 games", text)

    def test_every_uci_fault_is_counted(self):
        for fault, column in UCI_FAULTS:
            with self.subTest(fault=fault):
                games = "6" if column == "memory" else "2"
                hang = "0.5" if column == "hangs" else "10"
                margin = "500" if column == "forfeits" else "10000"
                self.check(column, run(command("faulty_engine.py", fault), "--protocol", "uci",
                                       "--games", games, "--hang", hang,
                                       "--margin", margin))

    def test_answer_while_it_should_ponder_is_stray(self):
        self.check("stray", run(command("faulty_engine.py", "early"), "--protocol", "uci",
                                "--games", "5"))

    @unittest.skipUnless(ENGINE, "needs the engine")
    def test_every_xboard_fault_is_counted(self):
        for fault, column in XBOARD_FAULTS:
            with self.subTest(fault=fault):
                self.check(column, run(command("faulty_xboard_engine.py", ENGINE, fault),
                                       "--protocol", "xboard"))

    def test_pair_plays_on_with_new_processes_after_a_fault(self):
        _, text = run(command("faulty_engine.py", "death"), "--protocol", "uci", "--games", "4")
        self.assertIn("4 crashes", text)

    def test_every_start_is_a_position_with_moves(self):
        for fen in starts.POSITIONS:
            with self.subTest(fen=fen):
                position = Position(fen)
                self.assertIsNone(outcome(position, [position.repetition_key()]))
                self.assertFalse(position.in_check(not position.white))

    def test_starts_have_either_side_to_move(self):
        sides = [fen.split()[1] for fen in starts.POSITIONS]
        self.assertGreaterEqual(min(sides.count("w"), sides.count("b")), 10)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
