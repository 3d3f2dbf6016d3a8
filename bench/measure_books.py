#!/usr/bin/env python3
"""Times "-createbook" and polyglot's make-book on the same generated games.

    measure_books.py BUILD_FOLDER [NUMBER_OF_GAMES ...]

Prints processor seconds (user and system) and peak memory of each; real time would
depend on the other load of the machine.
"""

import os
import subprocess
import sys
import tempfile

from engine import NOTHING, EngineProcess

PLIES = "40"


def cost(command, folder):
    """Processor seconds and peak megabytes of one run."""
    with EngineProcess(command, folder, input=None, output=NOTHING) as program:
        status = program.wait()
        if status != 0:
            sys.exit(f"{command[0]} failed with status {status}")
        return program.processor_seconds(), program.usage.ru_maxrss / 1024


def main():
    build = os.path.abspath(sys.argv[1])
    numbers = [int(word) for word in sys.argv[2:]] or [10000, 30000, 100000, 300000]
    mirvo = os.path.join(build, "shell", "mirvo")
    polyglot = "/usr/games/polyglot"
    print("| games | PGN | Mirvo | a game | memory | polyglot | a game | memory |")
    print("|---|---|---|---|---|---|---|---|")
    for number in numbers:
        with tempfile.TemporaryDirectory() as folder:
            games = os.path.join(folder, "games.pgn")
            with open(games, "w") as out:
                subprocess.run([os.path.join(build, "bench", "generate_games"), str(number)],
                               stdout=out, check=True)
            rows = [cost([mirvo, "-createbook", games, PLIES, "1", "ours.bk"], folder),
                    cost([polyglot, "make-book", "-pgn", games, "-bin", "theirs.bk",
                          "-max-ply", PLIES, "-min-game", "1"], folder)]
            cells = [f"{seconds:.2f} s | {seconds / number * 1e6:.0f} us | {memory:.0f} MB"
                     for seconds, memory in rows]
            size = os.path.getsize(games) / 1e6
            print(f"| {number:,} | {size:.0f} MB | {' | '.join(cells)} |", flush=True)


if __name__ == "__main__":
    main()
