"""Tests of rules.py: published perft counts, and how games end.

Usage: test_rules.py   (unittest; run by CTest as arbiter.rules)
"""

import unittest

from rules import START, Position, find_move, find_san, move_text, outcome, perft

# The counts that the chess programming community publishes for these
# positions; the depths are what plain Python counts in a few seconds.
PERFT = [
    ("initial position", START, [20, 400, 8902, 197281]),
    ("castling, pins, checks", "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
     [48, 2039, 97862]),
    ("en passant and pins", "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1", [14, 191, 2812, 43238]),
    ("promotions", "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1",
     [6, 264, 9467]),
    ("promotion with check", "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8", [44, 1486, 62379]),
    ("quiet middle game",
     "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10", [46, 2079, 89890]),
]

# FEN, result and reason; None for a game that goes on.
ENDINGS = [
    ("8/8/8/8/8/5k2/5q2/5K2 w - - 0 1", ("0-1", "checkmate")),
    ("R5k1/5ppp/8/8/8/8/8/6K1 b - - 0 1", ("1-0", "checkmate")),
    ("7k/5Q2/6K1/8/8/8/8/8 b - - 0 1", ("1/2-1/2", "stalemate")),
    ("7k/8/6K1/8/8/8/8/8 b - - 0 1", ("1/2-1/2", "insufficient material")),
    ("7k/8/6K1/8/8/8/8/6N1 b - - 0 1", ("1/2-1/2", "insufficient material")),
    ("7k/8/6K1/8/8/8/8/5B1b b - - 0 1", ("1/2-1/2", "insufficient material")),
    ("7k/8/6K1/8/8/8/8/4b2B b - - 0 1", None),
    ("7k/8/6K1/8/8/8/8/5NN1 b - - 0 1", None),
    ("7k/8/6K1/8/8/8/P7/8 b - - 99 80", None),
    ("7k/8/6K1/8/8/8/P7/8 b - - 100 80", ("1/2-1/2", "fifty moves")),
]


def play_all(position, moves):
    """The position after the moves, and the keys of all positions passed."""
    keys = [position.repetition_key()]
    for text in moves.split():
        position = position.play(find_move(position, text))
        keys.append(position.repetition_key())
    return position, keys


class Rules(unittest.TestCase):
    def test_perft_counts_are_the_published_ones(self):
        for name, fen, counts in PERFT:
            for depth, expected in enumerate(counts, 1):
                with self.subTest(name=name, depth=depth):
                    self.assertEqual(perft(Position(fen), depth), expected)

    def test_games_end_by_the_rules(self):
        for fen, expected in ENDINGS:
            with self.subTest(fen=fen):
                position = Position(fen)
                self.assertEqual(outcome(position, [position.repetition_key()]), expected)

    def test_third_occurrence_of_a_position_is_a_draw(self):
        shuffle = "g1f3 g8f6 f3g1 f6g8"
        twice = play_all(Position(), shuffle)
        self.assertIsNone(outcome(*twice))
        thrice = play_all(Position(), shuffle + " " + shuffle)
        self.assertEqual(outcome(*thrice), ("1/2-1/2", "repetition"))

    def test_repetition_needs_the_same_castling_rights(self):
        moves = "g1f3 g8f6 h1g1 h8g8 g1h1 g8h8 f3g1 f6g8 g1f3 g8f6 f3g1 f6g8"
        self.assertIsNone(outcome(*play_all(Position(), moves)))

    def test_en_passant_square_counts_only_when_capture_is_legal(self):
        plain = Position("4k3/8/8/8/4P3/8/8/4K3 b - - 0 1")
        useless = Position("4k3/8/8/8/4P3/8/8/4K3 b - e3 0 1")
        useful = Position("4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1")
        useful_plain = Position("4k3/8/8/8/3pP3/8/8/4K3 b - - 0 1")
        self.assertEqual(plain.repetition_key(), useless.repetition_key())
        self.assertNotEqual(useful.repetition_key(), useful_plain.repetition_key())

    def test_ply_limit_ends_the_game(self):
        position, keys = play_all(Position(), "e2e4 e7e5")
        self.assertIsNone(outcome(position, keys, ply_limit=2 + 1))
        self.assertEqual(outcome(position, keys + ["x"], ply_limit=2)[1], "adjudication at 2 plies")

    def test_illegal_texts_find_no_move(self):
        for text in ["e2e5", "e7e5", "0000", "", "e1e2", "e2e4q", "E2E4"]:
            with self.subTest(text=text):
                self.assertIsNone(find_move(Position(), text))

    def test_short_algebraic_text_names_one_move(self):
        knights = "r3k2r/P7/8/8/8/2N3N1/8/R3K2R w KQkq - 0 1"
        cases = [("O-O", "e1g1"), ("O-O-O", "e1c1"), ("Nce4", "c3e4"), ("Ne4", None),
                 ("axb8=Q", None), ("Rb1", "a1b1"), ("Rh1g1", "h1g1"), ("Kd2", "e1d2"),
                 ("Rxh8+", "h1h8"), ("e4", None), ("nonsense", None)]
        for text, expected in cases:
            with self.subTest(text=text):
                move = find_san(Position(knights), text)
                self.assertEqual(move and move_text(move), expected)
        promotion = Position("1n2k3/P7/8/8/8/8/8/4K3 w - - 0 1")
        self.assertEqual(move_text(find_san(promotion, "axb8=N")), "a7b8n")
        self.assertEqual(move_text(find_san(promotion, "a8=Q")), "a7a8q")

    def test_fen_round_trips(self):
        for _, fen, _ in PERFT:
            self.assertEqual(Position(fen).fen(), fen)
        after, _ = play_all(Position(), "e2e4 c7c5 g1f3")
        self.assertEqual(after.fen(), "rnbqkbnr/pp1ppppp/8/2p5/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq - 1 2")


if __name__ == "__main__":
    unittest.main()
