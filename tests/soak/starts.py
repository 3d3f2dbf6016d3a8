"""Where the games of a soak begin."""

import pathlib
import sys

ARBITER = pathlib.Path(__file__).resolve().parent.parent / "arbiter"
sys.path.insert(0, str(ARBITER))

from rules import START, Position, find_san, move_text  # noqa: E402

OPENINGS = pathlib.Path(__file__).resolve().parents[2] / "data" / "opening_lines.pgn"

# Middlegames, endings, promotions, single castling rights; either side to move.
POSITIONS = [
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R b KQkq - 0 1",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 b - - 0 10",
    "r3kbnr/pppq1ppp/2np4/4p3/2B1P1b1/3P1N2/PPP2PPP/RNBQK2R b Qq - 0 6",
    "r3k2r/pppq1ppp/2npbn2/2b1p3/2B1P3/2NPBN2/PPPQ1PPP/R3K2R w Kq - 0 9",
    "r3k2r/pppq1ppp/2npbn2/2b1p3/2B1P3/2NPBN2/PPPQ1PPP/R3K2R b k - 0 9",
    "r3k3/8/8/8/8/8/8/4K2R w Kq - 0 1",
    "4k2r/8/8/8/8/8/8/R3K3 b Qk - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 b - - 0 1",
    "8/PPP4k/8/8/8/8/4Kppp/8 w - - 0 1",
    "8/PPP4k/8/8/8/8/4Kppp/8 b - - 0 1",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - 0 1",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N w - - 0 1",
    "8/ppp2k2/8/8/8/8/PPP2K2/8 w - - 0 1",
    "8/ppp2k2/8/8/8/8/PPP2K2/8 b - - 0 1",
    "6k1/5ppp/8/8/8/8/5PPP/3R2K1 b - - 0 1",
    "8/8/4k3/8/8/3QK3/8/8 w - - 0 1",
    "8/8/4k3/8/8/3QK3/8/8 b - - 0 1",
    "8/8/8/3k4/8/2KB4/3N4/8 w - - 0 1",
    "4k3/4p3/8/8/8/8/4P3/4K3 b - - 0 1",
    "1k6/1p6/8/8/5q2/8/1P6/1K1R3R w - - 0 1",
    "7k/6pp/8/8/8/3q4/PP6/K6Q b - - 0 1",
    "2r3k1/1q1nbppp/r3p3/3pP3/pPpP4/P1Q2N2/2RN1PPP/2R4K b - b3 0 23",
    "8/8/1p1k4/p2p1p1p/P2P1P1P/1P1K4/8/8 b - - 0 1",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8",
    "R6R/3Q4/1Q4Q1/4Q3/2Q4Q/Q4Q2/pp1Q4/kBNN1KB1 w - - 0 1",
    "3qk3/8/8/8/8/8/8/3QK3 b - - 90 80",
]


def opening_lines():
    """The lines of the opening file, in algebraic text."""
    return [text for text in OPENINGS.read_text(encoding="ascii").splitlines()
            if text.startswith("1.")]


def coordinate_moves(line):
    """The moves of an opening line as the protocols write them."""
    position, moves = Position(), []
    for word in line.split()[:-1]:  # the last word is the result
        if not word.endswith("."):
            move = find_san(position, word)
            position = position.play(move)
            moves.append(move_text(move))
    return moves


def choose_start(random, lines, number):
    """(FEN, moves played from it): by turns a position or part of an opening."""
    if number % 3 == 0:
        return POSITIONS[number // 3 % len(POSITIONS)], []
    moves = coordinate_moves(random.choice(lines))
    return START, moves[:random.randint(0, len(moves))]
