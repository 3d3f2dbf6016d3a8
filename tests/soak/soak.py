"""Plays many quick games between two Mirvo processes and counts every fault.

Four pairs of processes take turns: UCI and XBoard, with and without a book. Each
pair plays all its games, so that leaked memory or files add up.
Pondering, clocks, openings and positions change from game to game, the same way
for the same --seed. The last line is the summary; the status is 0 when every
count in it is 0.

    soak.py build/release/shell/mirvo --book build/release/data/book.bk --games 500

The clock of a player runs while its engine runs or sleeps, and stops while the
engine is ready to run but waits for a processor (as counted by the system). An
engine that exceeds its clock by more than --margin forfeits. "late" counts moves
that exceed clock and margin only in real time: delays of the machine, not of the
engine, and no fault.

The engines' settings have MoveOverhead=50, as every match should. Without it
(--overhead 0) they exceed their clocks by their own rules: the last move before a
time control may use all the time left, and a short clock with an increment more.
"""

import argparse
import collections
import pathlib
import random
import shlex
import sys
import time

import players as kinds
from figures import Control, printed_table, share
from game import Game
from players import Fault, Unjudged, UciPlayer, XBoardPlayer
from process_figures import open_files, status_kilobytes
from rules import outcome
from starts import choose_start, opening_lines
from time_control import TimeControl

# Of both sides, in milliseconds: the whole game's or MOVES/ for so many moves,
# and the increment.
CLOCKS = "1000+10,1000+0,500+5,300+0,200+2,100+1,50+5,10/500+0,20/1000+50,300+300"
PONDERS = {"turns": [False, True], "on": [True], "off": [False]}  # of four games each
KINDS = {"uci": [UciPlayer], "xboard": [XBoardPlayer], "both": [UciPlayer, XBoardPlayer]}

# Small tables are full after a few games; later growth is a leak.
SETTINGS = "TTHashSize=2 PawnHashSize=1 EvalHashSize=2 LoggingMode=1"

FAULTS = ["illegal", "forfeits", "crashes", "hangs", "stray", "memory", "exits"]


class Pair:
    """Two processes of one kind, and their memory after warming up."""

    def __init__(self, kind, command, settings):
        self.kind, self.command, self.settings = kind, command, settings
        self.players, self.games, self.base = [], 0, None
        self.grown = 0  # kilobytes; the greatest of all processes that this pair had

    def start(self):
        if not self.players:
            self.games, self.base = 0, None
            for name in ("first", "second"):
                self.players.append(self.kind(name, self.command, self.settings))

    def sizes(self):
        pids = [player.engine.pid for player in self.players]
        return [(status_kilobytes(pid), open_files(pid)) for pid in pids]

    def growth(self):
        """(kilobytes, files) of the process that grew most since the warm-up."""
        if self.base is None:
            return 0, 0
        pairs = list(zip(self.sizes(), self.base))
        grown = max(now[0] - then[0] for now, then in pairs)
        self.grown = max(self.grown, grown)
        return grown, max(now[1] - then[1] for now, then in pairs)

    def close(self):
        for player in self.players:
            player.engine.close()
        self.players, self.base = [], None


class Soak:
    """All games, their faults and figures."""

    def __init__(self, options):
        self.options = options
        self.random = random.Random(options.seed)
        self.lines = opening_lines()
        self.counts = collections.Counter()
        self.reasons = collections.Counter()
        self.controls = collections.defaultdict(Control)
        settings = f"{SETTINGS} MoveOverhead={options.overhead}"
        without = settings + " UseOpeningBook=0\n"
        book = settings + f" UseOpeningBook=1 Book={options.book}\n" if options.book else without
        self.pairs = [Pair(kind, options.engine, settings) for settings in (without, book)
                      for kind in KINDS[options.protocol]]
        self.clocks = [TimeControl.parse(clock) for clock in options.clocks.split(",")]

    def report(self, kind, number, text, pair):
        self.counts[kind] += 1
        print(f"FAULT ({kind}) in game {number}: {text}", flush=True)
        for player in pair.players:
            print(f"-- last lines of {player.engine.name}", *player.engine.transcript[-25:],
                  sep="\n")

    def judge_time(self, number, game, turn, player):
        """Books a move's time; a forfeit does not end the game."""
        clock = game.own_clock()
        left = clock.left
        self.control(player, game).add(turn, left)
        if turn.own > left + self.options.margin:
            self.counts["forfeits"] += 1
            game.forfeited = True
            print(f"FAULT (forfeits) in game {number}: {player.engine.name} took "
                  f"{turn.own:.1f} ms of {left:.1f}, {turn.wall:.1f} by the wall's clock, "
                  f"{turn.allotted} allotted, after {len(game.moves)} plies", flush=True)
        elif turn.wall > left + self.options.margin:
            self.counts["late"] += 1
        clock.book(turn.own)

    def control(self, player, game):
        """The figures of the games under the same protocol and clock."""
        return self.controls[player.PROTOCOL, game.control, player.ponders]

    def play_moves(self, number, game, order):
        """Plays to the end: (result, reason)."""
        while True:
            mover = order[0 if game.position.white else 1]
            text, turn = mover.play(game, game.clocks())
            self.judge_time(number, game, turn, mover)
            self.counts["moves"] += 1
            game.make(text)
            over = outcome(game.position, game.keys, self.options.plies)
            if over:
                return over
            mover.after(game, game.clocks())

    def play_game(self, number, pair):
        turns = PONDERS[self.options.ponder]
        ponders = turns[number // 4 % len(turns)]
        fen, moves = choose_start(self.random, self.lines, number)
        game = Game(fen, moves, self.clocks[number // 8 % len(self.clocks)])
        order = pair.players if self.random.random() < 0.5 else pair.players[::-1]
        for player in order:
            player.begin(game, ponders)
        try:
            over = self.play_moves(number, game, order)
        except Unjudged:
            over = ("1/2-1/2", "another promotion piece than expected")
        for player in order:
            player.finish(game, over[0])
        self.reasons[over[1]] += 1
        self.control(order[0], game).games += 1
        self.control(order[0], game).lost += game.forfeited
        if self.options.verbose:
            print(f"game {number}: {order[0].PROTOCOL}, ponder {ponders}, {game.control}, "
                  f"{over[0]} by {over[1]}, {len(game.moves)} plies, {pair.sizes()}", flush=True)

    def check_memory(self, number, pair):
        pair.games += 1
        if pair.games == self.options.warm_up:
            pair.base = pair.sizes()
        grown, files = pair.growth()
        if grown > self.options.growth or files > 0:
            self.report("memory", number, f"grew by {grown} kB and {files} open files in "
                        f"{pair.games - self.options.warm_up} games", pair)
            pair.base = pair.sizes()

    def run(self):
        for number in range(self.options.games):
            pair = self.pairs[number % len(self.pairs)]
            try:
                pair.start()
                self.play_game(number, pair)
                self.check_memory(number, pair)
            except Fault as fault:
                self.report(fault.kind, number, str(fault), pair)
                pair.close()
        for pair in self.pairs:
            for player in pair.players:
                self.end(player, pair)

    def end(self, player, pair):
        try:
            player.quit()
        except Fault as fault:
            kind = "stray" if fault.kind == "stray" else "exits"
            self.report(kind, self.options.games, str(fault), pair)

    def close(self):
        for pair in self.pairs:
            pair.close()


def summary(soak, seconds):
    """Prints all figures; the program's status."""
    whole = printed_table(soak.controls)
    endings = ", ".join(f"{count} {reason}" for reason, count in soak.reasons.most_common())
    print(f"endings: {endings}")
    print("past the allotted time, ms: "
          f"99 % {share(whole.oversteps, 0.99):.1f}, most {share(whole.oversteps, 1):.1f}; "
          f"by the wall's clock 99 % {share(whole.walls, 0.99):.1f}, "
          f"most {share(whole.walls, 1):.1f}")
    print(f"past the player's clock: {whole.overdrawn} moves, at most {whole.past_clock:.1f} ms; "
          f"late by the wall's clock alone: {soak.counts['late']}")
    print(f"growth after {soak.options.warm_up} games of a pair, kB: "
          + ", ".join(str(pair.grown) for pair in soak.pairs))
    faults = ", ".join(f"{soak.counts[fault]} {fault}" for fault in FAULTS)
    print(f"{whole.games} games, {soak.counts['moves']} moves in {seconds:.0f} s: {faults}")
    return 1 if any(soak.counts[fault] for fault in FAULTS) else 0


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("engine", help="command of the engine")
    parser.add_argument("--book", default="", help="book file; without it no game uses one")
    parser.add_argument("--protocol", choices=KINDS, default="both")
    parser.add_argument("--clocks", default=CLOCKS, help="of eight games each, by turns")
    parser.add_argument("--ponder", choices=PONDERS, default="turns",
                        help="in every game, in none, or in four of eight")
    parser.add_argument("--overhead", type=int, default=50,
                        help="MoveOverhead of both engines, milliseconds; 0 for none")
    parser.add_argument("--games", type=int, default=500)
    parser.add_argument("--plies", type=int, default=200, help="a longer game is a draw")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--margin", type=float, default=50,
                        help="milliseconds that a move may be past its clock")
    parser.add_argument("--hang", type=float, default=kinds.HANG_LIMIT,
                        help="seconds past its clock after which an engine hangs")
    parser.add_argument("--warm-up", type=int, default=8,
                        help="games of a pair before its memory counts")
    parser.add_argument("--growth", type=int, default=1024, help="kilobytes that are no fault")
    parser.add_argument("--verbose", action="store_true", help="a line for every game")
    options = parser.parse_args(arguments)
    if options.book:
        options.book = str(pathlib.Path(options.book).resolve())
    program, *words = shlex.split(options.engine)
    if pathlib.Path(program).exists():  # the engine runs in a folder of its own
        program = str(pathlib.Path(program).resolve())
    options.engine = shlex.join([program, *words])
    return options


def main(arguments):
    options = parse_arguments(arguments)
    kinds.HANG_LIMIT = options.hang
    start = time.monotonic()
    soak = Soak(options)
    try:
        soak.run()
        return summary(soak, time.monotonic() - start)
    finally:
        soak.close()


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
