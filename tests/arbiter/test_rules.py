"""Tests of rules.py: perft counts, published and by stockfish where that is
installed, and how games end.

Usage: test_rules.py   (unittest; run by CTest as arbiter.rules)
"""

import pathlib
import random
import re
import shutil
import subprocess
import unittest

from rules import START, Position, find_move, find_san, move_text, outcome, perft

# Published counts, and stockfish's, of positions with every kind of move.
COUNTS = pathlib.Path(__file__).resolve().parent.parent / "data/perft/fast.txt"
# What plain Python counts at once. Every case has a depth below it.
FEW_MOVES = 9500

# Random games that stockfish is asked about as well, and how many plies into
# each of them.
N_GAMES = 6
QUESTIONS = range(4, 100, 8)

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


def stored_counts():
    """(name, FEN, depth, count) of the cases with few moves."""
    for line in COUNTS.read_text(encoding="utf-8").splitlines():
        if line.startswith("#") or not line:
            continue
        name, fen, depth, count = line.split(" | ")
        if int(count) <= FEW_MOVES:
            yield name, fen + " 0 1", int(depth), int(count)


def positions_of_random_games():
    choose = random.Random(1)
    for _ in range(N_GAMES):
        position = Position()
        for ply in range(max(QUESTIONS) + 1):
            moves = position.legal_moves()
            if not moves:
                break
            if ply in QUESTIONS:
                yield position
            position = position.play(choose.choice(moves))


def stockfish_splits(fens, depth):
    """For each position: the text of every legal move, and the moves behind it."""
    lines = [f"position fen {fen}\ngo perft {depth}" for fen in fens]
    printed = subprocess.run(["stockfish"], input="\n".join([*lines, "quit", ""]), text=True,
                             capture_output=True, timeout=200, check=True).stdout
    return [{move: int(count) for move, count in re.findall(r"^([a-h]\S+): (\d+)$", split, re.MULTILINE)}
            for split in printed.split("Nodes searched")[:-1]]


class Rules(unittest.TestCase):
    def test_perft_counts_are_the_published_ones(self):
        names = set()
        for name, fen, depth, count in stored_counts():
            names.add(name)
            with self.subTest(name=name, depth=depth):
                self.assertEqual(perft(Position(fen), depth), count)
        self.assertGreater(len(names), 30)

    @unittest.skipUnless(shutil.which("stockfish"), "stockfish is not installed")
    def test_stockfish_finds_the_same_moves_in_random_games(self):
        positions = list(positions_of_random_games())
        splits = stockfish_splits([position.fen() for position in positions], 2)
        self.assertGreater(len(splits), 40)
        self.assertEqual(len(splits), len(positions))
        for position, split in zip(positions, splits):
            with self.subTest(fen=position.fen()):
                ours = {move_text(move): perft(position.play(move), 1)
                        for move in position.legal_moves()}
                self.assertEqual(ours, split)

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
        for _, fen, depth, _ in stored_counts():
            if depth == 1:
                self.assertEqual(Position(fen).fen(), fen)
        after, _ = play_all(Position(), "e2e4 c7c5 g1f3")
        self.assertEqual(after.fen(), "rnbqkbnr/pp1ppppp/8/2p5/4P3/5N2/PPPP1PPP/RNBQKB1R b KQkq - 1 2")


if __name__ == "__main__":
    unittest.main()
