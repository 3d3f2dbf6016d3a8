"""Exchanges book files with polyglot, both ways.

Usage: polyglot_books_test.py ENGINE GAMES.pgn

polyglot builds, reads and plays books of the same format, so it can check what
"-createbook" writes and make books for the engine to read.
"""

import os
import re
import struct
import subprocess
import sys
import tempfile

TESTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
sys.path[:0] = [TESTS, os.path.join(TESTS, "clients")]
import client  # noqa: E402
from kit.engine_process import JOINED, EngineProcess, Missed  # noqa: E402

START = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq".split()
PLIES = "40"

# Castling to both sides by both colours, and captures en passant by both. The
# captures end their games: the engine keeps the en-passant square in the key of
# the position right after such a capture, and polyglot does not.
SPECIAL_MOVES = """[Event "?"]
[Result "1/2-1/2"]

1. e4 c5 2. Nf3 Nc6 3. Bb5 g6 4. O-O Bg7 5. c3 Nf6 6. e5 O-O 7. Re1 d5 8. exd6
1/2-1/2

[Event "?"]
[Result "1-0"]

1. d4 d5 2. Nc3 Nc6 3. Bf4 Bf5 4. Qd2 Qd7 5. O-O-O O-O-O 6. h3 h5 7. h4 g5 8.
hxg5 f6 9. g4 hxg4 10. g6 1-0

[Event "?"]
[Result "0-1"]

1. a3 d5 2. h3 d4 3. e4 dxe3 0-1
"""


def records(path):
    with open(path, "rb") as file:
        return list(struct.iter_unpack(">QHHI", file.read()))


def single(value):
    """The nearest number in single precision."""
    return struct.unpack("f", struct.pack("f", value))[0]


def normalised(rows):
    """Weights of raw records as "-createbook" writes them."""
    totals = {}
    for key, _, weight, _ in rows:
        totals[key] = totals.get(key, 0) + weight
    return {(key, move): int(single(single(weight / totals[key]) * 65535.0))
            for key, move, weight, _ in rows}


def check(condition, *lines):
    if not condition:
        client.fail(*lines)


def build_both(engine, games, folder):
    """The two books of the same games, ours and polyglot's."""
    ours, theirs = os.path.join(folder, "ours.bk"), os.path.join(folder, "theirs.bk")
    client.run([engine, "-createbook", games, PLIES, "1", ours], folder, 60)
    client.run(["polyglot", "make-book", "-pgn", games, "-bin", theirs, "-max-ply", PLIES,
                "-min-game", "1"], folder, 60)
    return ours, theirs


def compare_records(ours, theirs):
    """The same moves at the same keys, with the weights that follow."""
    mine = {(key, move): weight for key, move, weight, _ in records(ours)}
    check(len(mine) == len(records(ours)), "a move stands twice in our book")
    expected = normalised(records(theirs))
    check(set(mine) == set(expected), "moves differ:",
          *sorted(f"{key:016X} {move:04X}" for key, move in set(mine) ^ set(expected)))
    for place, weight in expected.items():
        check(mine[place] == weight, f"weight of {place}: {mine[place]}, expected {weight}")
    keys = [key for key, *_ in records(ours)]
    check(keys == sorted(keys), "keys are not in order")


def compare_polyglots_view(ours, theirs, folder):
    """polyglot walks both books and finds the same lines in them."""
    views = []
    for book in (ours, theirs):
        views.append(client.run(["polyglot", "info-book", "-bin", book, "-exact"], folder, 60))
    check(views[0] == views[1], "info-book differs:", *views)
    for what in ("Unreachable white", "Unreachable black", "Isolated"):
        check(re.search(rf"{what} positions.*: +0$", views[0], re.MULTILINE), views[0])
    for colour in ("white", "black"):
        dump = os.path.join(folder, "dump.txt")
        client.run(["polyglot", "dump-book", "-bin", ours, "-color", colour, "-out", dump],
                   folder, 60)
        check("1:" in client.read(dump), f"nothing dumped for {colour}")


def read_their_book(engine, theirs, folder):
    """The engine's summary and list of a book that polyglot wrote."""
    rows = records(theirs)
    stats = client.run([engine, "-bookstats", theirs], folder, 60)
    check(f"Number positions: {len({key for key, *_ in rows})}\nNumber moves: {len(rows)}\n"
          in stats, stats)
    listed = client.run([engine, "-listmoves", theirs, *START], folder, 60)
    first = [(move, weight) for key, move, weight, _ in rows if key == 0x463B96181691FC9C]
    total = sum(weight for _, weight in first)
    lines = ""
    for move, weight in first:
        squares = [move >> 6 & 63, move & 63]
        text = "".join("abcdefgh"[square % 8] + str(square // 8 + 1) for square in squares)
        lines += f"{text:>5} {weight * 100 / total:5.2f}% ({weight})\n"
    check("\n\n" + lines in listed, "expected", lines, "in", listed)


def play_their_book(engine, theirs, folder):
    """The engine plays a move of the book without a search."""
    os.replace(theirs, os.path.join(folder, "book.bk"))
    with open(os.path.join(folder, "commands"), "w", encoding="ascii") as file:
        file.write("uci\nposition startpos\ngo depth 1\nquit\n")
    with open(os.path.join(folder, "commands"), encoding="ascii") as commands:
        printed = subprocess.run([engine], cwd=folder, stdin=commands, capture_output=True,
                                 text=True, timeout=60, check=True).stdout
    listed = set(re.findall(r"^ (\w{4}) +[\d.]+% \(\d+\)$", printed, re.MULTILINE))
    played = re.search(r"^bestmove (\w+)", printed, re.MULTILINE)
    check(played and played.group(1) in listed and "info depth" not in printed, printed)


def polyglot_plays_ours(engine, ours, folder):
    """polyglot answers from our book instead of asking its engine."""
    command = ["polyglot", "-noini", "-ec", engine, "-ed", folder, "-pg", "Book=true",
               "-pg", f"BookFile={ours}"]
    environment = dict(os.environ, HOME=folder, PATH=client.SEARCH_PATH)
    with EngineProcess(command, folder, environment=environment, errors=JOINED) as adapter:
        adapter.send("xboard", "protover 2", "new", "level 40 5 0", "post", "go")
        try:
            move = adapter.wait_for_line("move ", 60)[0].text.split()[1]
        except Missed:
            move = ""
        adapter.send("quit")
        adapter.wait(60)
    firsts = {move for key, move, _, _ in records(ours) if key == 0x463B96181691FC9C}
    encoded = sum((ord(c) - ord("a1"[i % 2])) << shift
                  for i, (c, shift) in enumerate(zip(move, (6, 9, 0, 3))))
    check(move and encoded in firsts, f"polyglot played {move!r}")


def main():
    engine, games = (os.path.abspath(word) for word in sys.argv[1:])
    client.need("polyglot")
    with tempfile.TemporaryDirectory(prefix="mirvo-books-") as folder:
        special = os.path.join(folder, "special.pgn")
        with open(special, "w", encoding="ascii") as file:
            file.write(SPECIAL_MOVES)
        # polyglot drops moves of positions whose every score is 0, as we do.
        for source in (special, games):
            ours, theirs = build_both(engine, source, folder)
            compare_records(ours, theirs)
            compare_polyglots_view(ours, theirs, folder)
        read_their_book(engine, theirs, folder)
        polyglot_plays_ours(engine, ours, folder)
        play_their_book(engine, theirs, folder)


if __name__ == "__main__":
    main()
