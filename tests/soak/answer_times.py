"""Measures what the engine promises about time:

- "stop" to bestmove, and "isready" to readyok in a running search;
- how far a search goes past its allotted time, after a ponder hit too;
- processor time when the input has ended and the process stays.

Meanwhile --load processes compete for the processors. Prints a line for each
promise; the status is 1 when one of them does not hold.

    answer_times.py build/release/shell/mirvo

"wall" is the time that an interface sees. "own" leaves out the time in which the
engine was ready to run but waited for a processor, as counted by the system. With
--judge own a busy machine cannot break a promise.
"""

import argparse
import collections
import pathlib
import random
import shlex
import subprocess
import sys
import time

from figures import share
from process_figures import processor_time
from starts import POSITIONS
from timed_engine import TimedEngine, Turn
from uci_engine import EngineFault, UciEngine

LIMIT = 20  # seconds after which an answer is missing

# Positions whose search ends neither with a mate nor at the last depth.
SEARCHED = POSITIONS[:7] + [fen for fen in POSITIONS if fen.startswith(("2r3k1", "R6R"))]

# What the engine is told before its input ends, and the answer to wait for.
IDLE_STATES = [([], None), (["uci"], "uciok"), (["xboard"], "feature"),
               (["uci", "position startpos", "go ponder"], "uciok")]

Result = collections.namedtuple("Result", "name unit own wall bound")


class Measuring:
    """One engine in a conversation over UCI, and the figures."""

    def __init__(self, options):
        self.options = options
        self.random = random.Random(options.seed)
        self.engine = TimedEngine("engine", options.engine)
        self.engine.start([])
        # The first search of a game gets twice its time, so do it before.
        self.search("go wtime 10 btime 10 movestogo 1")
        self.answer("bestmove", Turn(self.engine))

    def search(self, go):
        self.engine.ready()
        self.engine.send("position fen " + self.random.choice(SEARCHED))
        self.engine.send(go)

    def answer(self, word, turn):
        arrival, _, lines = self.engine.wait_for(word, LIMIT)
        turn.end(arrival)
        for line in lines:
            turn.note(line)
        return turn

    def ask(self, line, word):
        """Sends a line after a moment of searching; returns the times of its answer."""
        time.sleep(self.random.uniform(0, 0.04))
        turn = Turn(self.engine, rests=line == "stop")
        self.engine.send(line)
        return self.answer(word, turn)

    def result(self, name, turns, bound):
        return Result(name, "ms", [turn.own for turn in turns], [turn.wall for turn in turns],
                      bound)

    def results(self):
        yield self.stops()
        yield self.readiness()
        yield self.oversteps("past the allotted time", pondering=False)
        yield self.oversteps("past the allotted time after a ponder hit", pondering=True)

    def stops(self):
        turns = []
        for _ in range(self.options.tries):
            self.search("go infinite")
            turns.append(self.ask("stop", "bestmove"))
        return self.result("stop to bestmove", turns, self.options.answer)

    def readiness(self):
        turns = []
        while len(turns) < self.options.tries:
            self.search("go infinite")
            turns += [self.ask("isready", "readyok") for _ in range(10)]
            self.ask("stop", "bestmove")
        return self.result("isready to readyok in a search", turns, self.options.answer)

    def timed(self, line, allotted):
        """An answer that is due in so many milliseconds after the line."""
        turn = Turn(self.engine)
        self.engine.send(line)
        time.sleep(allotted / 1000)
        turn.before = self.engine.waits_now()  # up to here its clock ran meanwhile
        return self.answer("bestmove", turn)

    def oversteps(self, name, pondering):
        turns = []
        for _ in range(self.options.tries):
            allotted = self.random.randint(10, 100)
            clocks = f"wtime {allotted} btime {allotted} movestogo 1"
            self.engine.ready()
            self.engine.send("position fen " + self.random.choice(SEARCHED))
            if pondering:
                self.engine.send(f"go ponder {clocks}")
                time.sleep(self.random.uniform(0, 0.04))
            turns.append(self.timed("ponderhit" if pondering else f"go {clocks}", allotted))
        return Result(name, "ms", [max(turn.own - turn.allotted, 0.0) for turn in turns],
                      [turn.wall - turn.allotted for turn in turns], self.options.overstep)


def processor_share(options, lines, answer):
    """Per cent of a processor that an engine uses after the end of its input."""
    engine = UciEngine("idle engine", options.engine)
    try:
        for line in lines:
            engine.send(line)
        if answer:
            engine.wait_for(answer, LIMIT)
        engine.close_input()
        time.sleep(1)  # for what it was doing to end
        pid, start = engine.pid, time.monotonic()
        before = processor_time(pid)
        time.sleep(options.idle_time)
        if engine.poll() is not None:
            raise EngineFault("the process ends when its input does")
        return (processor_time(pid) - before) / (10 * (time.monotonic() - start))
    finally:
        engine.close()


def idleness(options):
    shares = [processor_share(options, *state) for state in IDLE_STATES]
    return Result("processor time after the end of input", "%", shares, shares, options.idle)


def judge(result, judged):
    """Prints a line of figures; whether the promise holds for all but 1 %."""
    kept = share(getattr(result, judged), 0.99) < result.bound
    figures = ", ".join(
        f"{kind} {share(values, 0.5):.2f} / {share(values, 0.99):.2f} / {share(values, 1):.2f}"
        for kind, values in (("own", result.own), ("wall", result.wall)))
    print(f"{'kept  ' if kept else 'BROKEN'} {result.name}, {result.unit}: {figures} "
          f"(bound {result.bound:g}, {len(result.own)} tries)", flush=True)
    return kept


def measure(options):
    """All promises: whether every one holds."""
    print(f"median / 99 % / most; {options.load} processes compete for the processors")
    measuring = Measuring(options)
    try:
        results = [judge(result, options.judge) for result in measuring.results()]
    finally:
        measuring.engine.close()
    results.append(judge(idleness(options), options.judge))
    return all(results)


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("engine", help="command of the engine")
    parser.add_argument("--tries", type=int, default=200, help="for each promise")
    parser.add_argument("--load", type=int, default=2, help="competing processes")
    parser.add_argument("--judge", choices=["wall", "own"], default="wall")
    parser.add_argument("--answer", type=float, default=50, help="milliseconds for an answer")
    parser.add_argument("--overstep", type=float, default=30,
                        help="milliseconds past the allotted time")
    parser.add_argument("--idle", type=float, default=1, help="per cent of a processor")
    parser.add_argument("--idle-time", type=float, default=5, help="seconds to measure it")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args(arguments)
    program, *words = shlex.split(options.engine)
    if pathlib.Path(program).exists():  # the engine runs in a folder of its own
        program = str(pathlib.Path(program).resolve())
    options.engine = shlex.join([program, *words])
    return options


def main(arguments):
    options = parse_arguments(arguments)
    busy = [subprocess.Popen([sys.executable, "-c", "while True: pass"])
            for _ in range(options.load)]
    try:
        return 0 if measure(options) else 1
    except EngineFault as fault:
        print(f"FAULT: {fault}")
        return 1
    finally:
        for process in busy:
            process.kill()
            process.wait()


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
