"""Speed of Mirvo beside other engines: leaves of a perft and nodes of a search
per second of processor time, all on one core, in one run, in turns.

Usage: compare_peers.py MIRVO [--rounds N] [--seconds S] [--depth D] [--core C]
"""

import argparse
import os
import statistics
import tempfile

from engine import Engine, read_nodes

POSITIONS = [
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r1bqkb1r/pp2pppp/2np1n2/6B1/3NP3/2N5/PPP2PPP/R2QKB1R b KQkq - 0 6",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10",
    "8/5pk1/4p1p1/1R5p/3r3P/6P1/5PK1/8 b - - 0 1",
]

# UCI engines: name, command, options that leave one thread and no book.
SEARCHERS = [
    ("toga2", ["toga2"], ["OwnBook value false"]),
    ("gnuchess", ["gnuchess", "--uci"], ["OwnBook value false"]),
    ("glaurung", ["glaurung"], ["OwnBook value false", "Threads value 1"]),
]


def mirvo_perft(mirvo, options, folder):
    engine = Engine([mirvo, "-perft", str(options.depth)], options.core, folder)
    engine.wait_for("Performing")
    start = engine.seconds()
    for line in engine.lines():
        if line.startswith("Splits"):
            used = engine.seconds() - start
        if line.split()[:1] == [str(options.depth)]:
            break
    engine.kill()
    return int(line.split()[1]), used


def sjeng_perft(options, folder):
    engine = Engine(["sjeng"], options.core, folder)
    start = engine.seconds()
    engine.send(f"perft {options.depth}")
    for line in engine.lines():
        if "Sjeng: " in line and line.split()[-1].isdigit():
            break
    used = engine.seconds() - start
    engine.kill()
    return int(line.split()[-1]), used


def ethereal_perft(options, folder):
    engine = Engine(["ethereal-chess"], options.core, folder)
    engine.start_uci()
    start = engine.seconds()
    engine.send(f"perft {options.depth}")
    line = next(line for line in engine.lines() if line.isdigit())
    used = engine.seconds() - start
    engine.kill()
    return int(line), used


def search_speed(command, settings, options, folder):
    """Nodes and processor seconds over all positions, at each position's last
    report within the time."""
    engine = Engine(command, options.core, folder)
    engine.start_uci(settings)
    nodes, seconds = 0, 0.0
    for fen in POSITIONS:
        engine.new_position(fen)
        start = engine.seconds()
        engine.send("go infinite")
        best = (0, 0.0)
        stopped = False
        for line in engine.lines():
            used = engine.seconds() - start
            if read_nodes(line) and not stopped:
                best = (read_nodes(line), used)
            if used >= options.seconds and not stopped:
                stopped = True
                engine.send("stop")
            if line.startswith("bestmove"):
                break
        nodes, seconds = nodes + best[0], seconds + best[1]
    engine.kill()
    return nodes, seconds


def report(title, unit, figures):
    """Prints the median speed of each engine and Mirvo's ratio to it."""
    print(title)
    speeds = {name: statistics.median(n / s for n, s in runs) for name, runs in figures.items()}
    for name, speed in speeds.items():
        ratio = speeds["mirvo"] / speed
        print(f"  {name:10} {speed / 1e6:8.2f} million {unit} a second   mirvo/{name} {ratio:5.2f}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("mirvo")
    parser.add_argument("--rounds", type=int, default=3, help="the median of these is shown")
    parser.add_argument("--seconds", type=float, default=3, help="a search of one position")
    parser.add_argument("--depth", type=int, default=6, help="of the perft")
    parser.add_argument("--core", type=int, default=0, help="processor to run on")
    options = parser.parse_args()
    mirvo = os.path.abspath(options.mirvo)
    perfts = {"mirvo": [], "sjeng": [], "ethereal": []}
    searches = {"mirvo": [], **{name: [] for name, _, _ in SEARCHERS}}
    with tempfile.TemporaryDirectory() as folder:
        for _ in range(options.rounds):
            perfts["mirvo"].append(mirvo_perft(mirvo, options, folder))
            perfts["sjeng"].append(sjeng_perft(options, folder))
            perfts["ethereal"].append(ethereal_perft(options, folder))
            searches["mirvo"].append(search_speed([mirvo], [], options, folder))
            for name, command, settings in SEARCHERS:
                searches[name].append(search_speed(command, settings, options, folder))
    counts = {runs[0][0] for runs in perfts.values()}
    assert len(counts) == 1, f"perft counts differ: {perfts}"
    report(f"perft {options.depth} of the initial position", "leaves", perfts)
    report(f"search, {len(POSITIONS)} positions, {options.seconds:g} s each", "nodes", searches)


if __name__ == "__main__":
    main()
