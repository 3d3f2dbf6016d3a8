"""Helpers for the measuring scripts: an engine on one core with its processor time,
its searches, and the signature positions."""

import math
import os
import pathlib
import shutil
import statistics
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
SEARCH_PATH = os.environ.get("PATH", "") + ":/usr/games"

sys.path.insert(0, str(ROOT / "tests"))
from kit.engine_process import NOTHING, EngineProcess  # noqa: E402


def is_installed(command):
    return shutil.which(command, path=SEARCH_PATH) is not None


def run_program(command, core, folder):
    """What a program prints on one core, and the processor seconds of its life."""
    with EngineProcess(command, folder, core=core, input=NOTHING, errors=None) as program:
        text = "".join(line.text + "\n" for line in program.read_rest())
        program.wait()
        return text, program.processor_seconds()


def mirvo_perft(program, fen, depth, core, folder):
    """Leaves and processor seconds, without the time of the start, which is measured
    with depth 1."""
    command = [program, "-perft"]
    text, seconds = run_program([*command, str(depth), *fen.split()], core, folder)
    _, start = run_program([*command, "1", *fen.split()], core, folder)
    counts = dict(line.split() for line in text.splitlines()
                  if len(line.split()) == 2 and line.replace(" ", "").isdecimal())
    return int(counts.get(str(depth), 0)), max(seconds - start, 1e-6)


class Engine(EngineProcess):
    """A program on one core; lines go in and out, its processor time is known."""

    def __init__(self, command, core, folder):
        path = shutil.which(command[0], path=SEARCH_PATH)
        super().__init__([path, *command[1:]], folder, core=core)

    def lines(self):
        return (line.text.strip() for line in self.all_lines())

    def wait_for(self, *beginnings):
        """The first line that begins with one of the words."""
        return self.wait_for_line(beginnings)[0].text

    def seconds(self):
        """Processor time used so far."""
        return self.processor_seconds()

    def start_uci(self, settings=()):
        """Sends "uci" and sets options ("NAME value VALUE")."""
        self.send("uci")
        self.wait_for("uciok")
        for setting in settings:
            self.send("setoption name " + setting)

    def new_position(self, fen):
        """Clears the tables and sets up a position."""
        self.send("ucinewgame")
        self.send("isready")
        self.wait_for("readyok")
        self.send("position fen " + fen)

    def search_depth(self, fen, depth):
        """Nodes and processor seconds of a search with empty tables."""
        self.new_position(fen)
        start, nodes = self.seconds(), 0
        self.send(f"go depth {depth}")
        for line in self.lines():
            nodes = read_nodes(line) or nodes
            if line.startswith("bestmove"):
                break
        return nodes, self.seconds() - start

    def quit(self):
        """Ends the engine; returns its peak memory in MB."""
        self.send("quit")
        self.wait()
        self.close()
        return self.usage.ru_maxrss / 1024


def read_nodes(line):
    """The node count of an "info" line, or None."""
    words = line.split()
    if words[:1] == ["info"] and "nodes" in words[:-1]:
        return int(words[words.index("nodes") + 1])
    return None


def signature_positions():
    """[(name, FEN)] of the node signature."""
    positions = []
    text = (ROOT / "tests/data/signature.txt").read_text(encoding="utf-8")
    for line in text.splitlines():
        if "|" in line and not line.startswith("#"):
            name, fields, _ = line.split(" | ")
            positions.append((name, fields + " - 0 1"))
    return positions


def geometric_mean(ratios):
    return math.exp(statistics.fmean(math.log(ratio) for ratio in ratios))
