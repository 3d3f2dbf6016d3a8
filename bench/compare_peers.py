"""Compares the speed of Mirvo with other engines: perft leaves and search nodes per
second of processor time, on one core, in one run, in turns.

Usage: compare_peers.py MIRVO [--rounds N] [--seconds S] [--fewer-plies N] [--core C]
                              [--only perft|search]

Each round runs every engine once; a ratio is Mirvo's speed divided by the other's in
the same round, and the best and the median over the rounds are shown. Engines that
are not installed or end early are left out with a message.
"""

import argparse
import os
import statistics
import sys
import tempfile

from engine import Engine, is_installed, mirvo_perft, read_nodes

# (name, FEN fields, depth) of the perfts.
PERFTS = [
    ("initial position", "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq", 6),
    ("middle game", "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq", 5),
]

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


class Ended(Exception):
    """An engine ended before its answer."""



def last_number(line):
    """The number at the end of a line, or None."""
    words = line.split()
    return int(words[-1]) if words and words[-1].isdecimal() else None


def perft_answer(lines, is_answer):
    """The count in the first line that has one."""
    for line in lines:
        if is_answer(line) and last_number(line) is not None:
            return last_number(line)
    raise Ended


def sjeng_perft(_, fen, depth, core, folder):
    engine = Engine(["sjeng"], core, folder)
    try:
        engine.send("xboard")
        engine.send(f"setboard {fen} - 0 1")
        engine.send("perft 1")
        perft_answer(engine.lines(), lambda line: "Raw nodes" in line)
        start = engine.seconds()
        engine.send(f"perft {depth}")
        leaves = perft_answer(engine.lines(), lambda line: "Raw nodes" in line)
        return leaves, engine.seconds() - start
    finally:
        engine.close()


def ethereal_perft(_, fen, depth, core, folder):
    engine = Engine(["ethereal-chess"], core, folder)
    try:
        engine.start_uci()
        engine.send(f"position fen {fen} - 0 1")
        engine.send("perft 1")
        perft_answer(engine.lines(), str.isdecimal)
        start = engine.seconds()
        engine.send(f"perft {depth}")
        leaves = perft_answer(engine.lines(), str.isdecimal)
        return leaves, engine.seconds() - start
    finally:
        engine.close()


# Name: command, measurement.
COUNTERS = {
    "sjeng": ("sjeng", sjeng_perft),
    "ethereal": ("ethereal-chess", ethereal_perft),
}


def search_position(engine, fen, limit):
    """Nodes of the last report within a time, and the processor time at it."""
    engine.new_position(fen)
    start = engine.seconds()
    engine.send("go infinite")
    best, stopped = (0, 0.0), False
    for line in engine.lines():
        used = engine.seconds() - start
        nodes = read_nodes(line)
        if nodes and not stopped:
            best = (nodes, used)
        if used >= limit and not stopped:
            stopped = True
            engine.send("stop")
        if line.startswith("bestmove"):
            return best
    raise Ended


def search_speed(command, settings, options, folder):
    """Nodes and processor seconds over all positions."""
    engine = Engine(command, options.core, folder)
    try:
        engine.start_uci(settings)
        results = [search_position(engine, fen, options.seconds) for fen in POSITIONS]
        return sum(nodes for nodes, _ in results), sum(seconds for _, seconds in results)
    finally:
        engine.close()


def take_turns(runs, rounds):
    """{name: [(count, seconds)]}: each round calls every run once. A run that fails is
    dropped, with its earlier results."""
    figures = {name: [] for name in runs}
    for _ in range(rounds):
        for name in list(figures):
            try:
                figures[name].append(runs[name]())
            except (Ended, OSError, StopIteration):
                print(f"{name} ended early and is left out")
                del figures[name]
    return figures


def ratios(figures):
    """{name: (best, median) of Mirvo's speed divided by the other's in each round}."""
    def speeds(name):
        return [count / seconds for count, seconds in figures[name]]

    result = {}
    for name in figures:
        rounds = [ours / theirs for ours, theirs in zip(speeds("mirvo"), speeds(name))]
        result[name] = max(rounds), statistics.median(rounds)
    return result


def report(title, unit, figures):
    """Prints the median speed of each engine and Mirvo's ratios to it."""
    print(title)
    if "mirvo" not in figures:
        print("  nothing to compare")
        return
    for name, (best, median) in ratios(figures).items():
        speed = statistics.median(count / seconds for count, seconds in figures[name])
        compared = f"   mirvo/{name} best {best:.2f}, median {median:.2f}" if name != "mirvo" else ""
        print(f"  {name:10} {speed / 1e6:8.2f} million {unit} per second{compared}")


def present(names):
    """Those of {name: command} that are installed; names the others."""
    found = [name for name, command in names.items() if is_installed(command)]
    for name in names:
        if name not in found:
            print(f"{name} is not installed and is left out")
    return found


def compare_perfts(mirvo, options, folder):
    """False when the engines count different leaves."""
    counters = present({name: command for name, (command, _) in COUNTERS.items()})
    measurements = {"mirvo": mirvo_perft, **{name: COUNTERS[name][1] for name in counters}}
    agree = True
    for title, fen, most in PERFTS:
        depth = max(1, most - options.fewer_plies)
        runs = {name: lambda measure=measure: measure(mirvo, fen, depth, options.core, folder)
                for name, measure in measurements.items()}
        figures = take_turns(runs, options.rounds)
        report(f"perft {depth}, {title}", "leaves", figures)
        counts = {name: figure[0][0] for name, figure in figures.items() if figure}
        if len(set(counts.values())) > 1:
            print(f"  the counts differ: {counts}")
            agree = False
    return agree


def compare_searches(mirvo, options, folder):
    searchers = present({name: command[0] for name, command, _ in SEARCHERS})
    jobs = {"mirvo": ([mirvo], ["Use Opening Book value false"])}
    jobs.update((name, (command, settings)) for name, command, settings in SEARCHERS
                if name in searchers)
    runs = {name: lambda job=job: search_speed(*job, options, folder)
            for name, job in jobs.items()}
    report(f"search, {len(POSITIONS)} positions, {options.seconds:g} s each", "nodes",
           take_turns(runs, options.rounds))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("mirvo")
    parser.add_argument("--rounds", type=int, default=3, help="each engine runs so often")
    parser.add_argument("--seconds", type=float, default=3, help="a search of one position")
    parser.add_argument("--fewer-plies", type=int, default=0, help="shallower perfts")
    parser.add_argument("--core", type=int, default=0, help="processor to run on")
    parser.add_argument("--only", choices=["perft", "search"], help="one of the two")
    options = parser.parse_args()
    mirvo = os.path.abspath(options.mirvo)
    agree = True
    with tempfile.TemporaryDirectory() as folder:
        if options.only != "search":
            agree = compare_perfts(mirvo, options, folder)
        if options.only != "perft":
            compare_searches(mirvo, options, folder)
    return 0 if agree else 1


if __name__ == "__main__":
    sys.exit(main())
