"""Compares builds of Mirvo on this machine: processor time of searches to a
depth over the signature positions and of perft, in turns on one core.

Usage: compare_builds.py NAME=PROGRAM NAME=PROGRAM... [--depth D] [--rounds N]
                         [--perft D] [--core C] [--settings FILE]

Every build is compared with the first, by searches in new processes, as after the
start of an engine, and by searches in one process, whose tables are in use:
"ucinewgame" clears the transposition table, but not the evaluation caches. The
ratio of a position is the median over the rounds, the final figure the geometric
mean over the positions. Positions that the first build searches in less than 5 ms
are left out. If builds search different nodes, the number of such positions is
printed, because the times then compare different trees.
"""

import argparse
import os
import shutil
import statistics
import tempfile

from engine import Engine, geometric_mean, mirvo_perft, signature_positions

SHORTEST = 0.005  # seconds
INITIAL = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq"


def start_engine(program, options, folder):
    engine = Engine([program], options.core, folder)
    engine.start_uci(["Use Opening Book value false"])
    return engine


def search_times(programs, options, folder, new_processes):
    """{name: {position: (nodes, [seconds])}}, the builds taking turns."""
    results = {name: {} for name in programs}
    engines = {}
    if not new_processes:
        engines = {name: start_engine(program, options, folder)
                   for name, program in programs.items()}
    for _ in range(options.rounds):
        for position, fen in signature_positions():
            for name, program in programs.items():
                engine = engines.get(name) or start_engine(program, options, folder)
                nodes, seconds = engine.search_depth(fen, options.depth)
                results[name].setdefault(position, (nodes, []))[1].append(seconds)
                if new_processes:
                    engine.quit()
    for engine in engines.values():
        engine.quit()
    return results


def perft_times(programs, options, folder):
    """{name: [seconds]} of perft of the initial position."""
    results = {name: [] for name in programs}
    for _ in range(options.rounds):
        for name, program in programs.items():
            _, seconds = mirvo_perft(program, INITIAL, options.perft, options.core, folder)
            results[name].append(seconds)
    return results


def compare(first, other):
    """(geometric mean of first's time by other's, positions used, positions of
    different nodes)."""
    ratios, different = [], 0
    for position, (nodes, seconds) in first.items():
        if statistics.median(seconds) < SHORTEST:
            continue
        different += nodes != other[position][0]
        ratios.append(statistics.median(a / b for a, b in zip(seconds, other[position][1])))
    return geometric_mean(ratios), len(ratios), different


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("builds", nargs="+", metavar="NAME=PROGRAM")
    parser.add_argument("--depth", type=int, default=9, help="of the searches")
    parser.add_argument("--perft", type=int, default=5, help="depth of the perft")
    parser.add_argument("--rounds", type=int, default=3, help="each build runs so often")
    parser.add_argument("--core", type=int, default=0, help="processor to run on")
    parser.add_argument("--settings", help="config.txt of all builds; none: their defaults")
    options = parser.parse_args()
    programs = {}
    for build in options.builds:
        name, program = build.split("=", 1)
        programs[name] = os.path.abspath(program)
    with tempfile.TemporaryDirectory() as folder:
        if options.settings:
            shutil.copyfile(options.settings, os.path.join(folder, "config.txt"))
        perfts = perft_times(programs, options, folder)
        searches = {new: search_times(programs, options, folder, new) for new in (True, False)}
    first = next(iter(programs))
    print(f"Depth {options.depth}, perft {options.perft}; ratios are {first}'s time by the build's.\n")
    print("| build | searches of new processes | ratio | of one process | ratio | perft | ratio |")
    print("|---|---|---|---|---|---|---|")
    for name in programs:
        cells = [name]
        for new in (True, False):
            ratio, used, different = compare(searches[new][first], searches[new][name])
            total = sum(statistics.median(seconds) for _, seconds in searches[new][name].values())
            note = f", other nodes in {different} of {used} positions" if different else ""
            cells += [f"{total:.2f} s", f"{ratio:.2f}{note}"]
        perft = statistics.median(a / b for a, b in zip(perfts[first], perfts[name]))
        cells += [f"{statistics.median(perfts[name]):.3f} s", f"{perft:.2f}"]
        print("| " + " | ".join(cells) + " |")


if __name__ == "__main__":
    main()
