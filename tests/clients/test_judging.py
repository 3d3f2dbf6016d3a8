"""Tests of how the client tests read and check recorded games."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "arbiter"))

import pgn
import xboard_match

HEADER = '[Event "Test"]\n[White "Mirvo 0.2.7_d"]\n[Black "Fairy-Max 5.0b"]\n[Result "{0}"]\n\n'
FOOLS_MATE = "1. f3 {{+0.10/6 0.2}} e5 2. g4\n{{-1.00/6}} Qh4# {0} {1}\n\n"

# Result, final comment, and whether that is Mirvo's fault.
CLOSINGS = [
    ("0-1", "Xboard adjudication: Checkmate", False),
    ("0-1", "White mates", False),
    ("0-1", "White forfeits on time", True),
    ("1-0", "Black forfeits on time", False),
    ("0-1", "Forfeit due to illegal move: e2e5 (via a1b1) reason 0", True),
    ("0-1", "Mirvo exited unexpectedly", True),
    ("1/2-1/2", "XBoard adjudication: repetition draw", False),
    ("*", "", True),
]


def record(result, comment, moves=FOOLS_MATE):
    return HEADER.format(result) + moves.format("{" + comment + "}", result)


class Judging(unittest.TestCase):
    def test_games_are_read_with_moves_comments_and_result(self):
        found = pgn.games(record("0-1", "White mates") * 2)
        self.assertEqual(len(found), 2)
        self.assertEqual(found[1].moves, ["f3", "e5", "g4", "Qh4#"])
        self.assertEqual(found[1].result, "0-1")
        self.assertEqual(found[1].comments, ["+0.10/6 0.2", "-1.00/6", "White mates"])
        self.assertEqual(found[1].tags["Black"], "Fairy-Max 5.0b")

    def test_closing_words_tell_whose_fault_it_was(self):
        for result, comment, fault in CLOSINGS:
            with self.subTest(comment=comment, result=result):
                game = pgn.games(record(result, comment))[0]
                self.assertEqual(xboard_match.judge_game(game) is not None, fault)

    def test_illegal_move_in_the_record_is_found(self):
        moves = "1. e4 e5 2. Ke3 {0} {1}\n"
        game = pgn.games(record("1/2-1/2", "agreed", moves))[0]
        self.assertEqual(pgn.first_illegal_move(game), "Ke3")
        self.assertIn("Ke3", xboard_match.judge_game(game))


if __name__ == "__main__":
    unittest.main()
