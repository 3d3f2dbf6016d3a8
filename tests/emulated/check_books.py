"""Checks that books come out byte by byte alike, whatever the processor: the
shipped one, one of few games with every kind of move, a book of both, and what
the book tools print of each. Where polyglot is installed, a book that it made is
read by both programs too.

Usage: check_books.py PROGRAM OTHER_PROGRAM BOOK OTHER_BOOK GAMES.pgn
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile

POSITIONS = ["rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq",
             "rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq"]

# Castling to both sides by both colours, captures en passant, promotions.
SPECIAL_MOVES = """[Event "?"]
[Result "1/2-1/2"]

1. e4 c5 2. Nf3 Nc6 3. Bb5 g6 4. O-O Bg7 5. c3 Nf6 6. e5 O-O 7. Re1 d5 8. exd6
Qxd6 1/2-1/2

[Event "?"]
[Result "1-0"]

1. d4 d5 2. Nc3 Nc6 3. Bf4 Bf5 4. Qd2 Qd7 5. O-O-O O-O-O 6. h3 h5 7. h4 g5 8.
hxg5 f6 9. g4 hxg4 10. g6 f5 11. g7 f4 12. gxh8=Q 1-0
"""


class Both:
    """The two programs, each in a folder of its own with files of equal names."""

    def __init__(self, programs, scratch):
        self.sides = []
        for number, program in enumerate(programs):
            folder = pathlib.Path(scratch) / str(number)
            folder.mkdir()
            self.sides.append((program, folder))
        self.faults = 0

    def put(self, name, contents):
        for (_, folder), data in zip(self.sides, contents):
            (folder / name).write_bytes(data)

    def compare(self, what, results):
        if results[0] != results[1]:
            print(f"{what} differs:", *results, sep="\n")
            self.faults += 1

    def compare_files(self, name):
        data = [(folder / name).read_bytes() for _, folder in self.sides]
        self.compare(name, data)
        if len(data[0]) < 16:
            print(f"{name} is empty")
            self.faults += 1

    def run(self, *words):
        """Both print the same."""
        printed = [subprocess.run([program, *words], cwd=folder, stdin=subprocess.DEVNULL,
                                  capture_output=True, timeout=200, check=True).stdout
                   for program, folder in self.sides]
        self.compare(" ".join(words), printed)

    def look_into(self, book):
        self.run("-bookstats", book)
        for position in POSITIONS:
            self.run("-listmoves", book, *position.split())


def polyglot_book(games, folder):
    path = pathlib.Path(folder) / "polyglot.bk"
    subprocess.run(["polyglot", "make-book", "-pgn", games, "-bin", path, "-max-ply", "40",
                    "-min-game", "1"], cwd=folder, capture_output=True, timeout=60, check=True)
    return path.read_bytes()


def main(programs, books, games):
    with tempfile.TemporaryDirectory(prefix="mirvo-books-") as scratch:
        both = Both(programs, scratch)
        both.put("shipped.bk", [pathlib.Path(book).read_bytes() for book in books])
        both.put("special.pgn", [SPECIAL_MOVES.encode()] * 2)
        both.run("-createbook", "special.pgn", "40", "1", "special.bk")
        names = ["shipped.bk", "special.bk"]
        if shutil.which("polyglot"):
            both.put("polyglot.bk", [polyglot_book(games, scratch)] * 2)
            names.append("polyglot.bk")
        else:
            print("SKIP: polyglot's book: polyglot is not installed")
        for name in names[1:]:
            both.run("-mergebooks", "shipped.bk", name, "with_" + name)
        for name in [*names, *("with_" + name for name in names[1:])]:
            both.compare_files(name)
            both.look_into(name)
    print(f"{both.faults} differences")
    return 1 if both.faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:3], sys.argv[3:5], sys.argv[5]))
