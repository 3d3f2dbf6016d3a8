"""Plays games between two Mirvo processes over XBoard, pondering, and checks every
line that shows a position.

The arbiter keeps the clocks and knows the rules. Between two moves an engine must
print exactly the positions of its game board: after the expected reply while it
ponders, after the real move on a miss, after its own answer. A wrong or missing
position, an illegal move, a loss on time, a hang or an unexpected end stops it
with status 1 and the engine's last lines.

    play_xboard_games.py ./mirvo --games 50 --clock 1000
"""

import argparse
import re
import sys
import time

from rules import Position, find_move, outcome
from uci_engine import EngineFault, UciEngine

HANG_LIMIT = 10.0  # seconds past its clock after which a silent engine hangs
POSITION = re.compile(r"^(?:[pnbrqkPNBRQK1-8]+/){7}[pnbrqkPNBRQK1-8]+ [wb] [KQkq-]+ -$")
STATISTICS = re.compile(r"^Ponder hits = (\d+), misses = (\d+), percenthits = (\d+\.\d)%$")
SYNC_LINE = "rnbqkbnr/pppppppp/8/8/8/P7/1PPPPPPP/RNBQKBNR b KQkq -"


class Undecidable(Exception):
    """The engine accepted another promotion piece as the expected one."""


def position_line(position):
    """What the engine prints for a position; it never names an en-passant square."""
    return " ".join(position.fen().split()[:3]) + " -"


class XBoardPlayer:
    """One engine: its clock, the position after its last move, its counts."""

    def __init__(self, name, command):
        self.engine = UciEngine(name, command)
        self.engine.send("xboard")
        self.engine.send("protover 2")
        self.engine.wait_for("feature", HANG_LIMIT)
        self.hits = self.misses = None  # not followed between games

    def fault(self, text):
        raise EngineFault(f"{self.engine.name}: {text}")

    def begin(self, clock, position):
        """Starts a game; reads up to a line that shows that older output is past."""
        for line in ("force", "new", "force", "a2a3"):
            self.engine.send(line)
        self.hits = self.misses = None
        while self.next_event(HANG_LIMIT) != SYNC_LINE:
            pass
        for line in ("new", "level 0 1 0", "post", "hard", "computer"):
            self.engine.send(line)
        self.position = position
        self.remaining = clock
        self.hits = self.misses = 0

    def next_event(self, limit):
        """The next line about the game, others skipped."""
        deadline = time.monotonic() + limit
        while True:
            got = self.engine.read(deadline)
            if got is None:
                self.fault(f"hangs for {limit:.1f} s")
            line = got[1]
            if line.startswith(("move ", "PONDER")) or POSITION.match(line):
                return line
            if STATISTICS.match(line) and self.hits is not None:
                self.check_statistics(line)

    def check_statistics(self, line):
        hits, misses, percent = STATISTICS.match(line).groups()
        if (int(hits), int(misses)) != (self.hits, self.misses):
            self.fault(f"counts differ: {line}, but {self.hits} and {self.misses}")
        if abs(float(percent) - 100 * self.hits / (self.hits + self.misses)) > 0.051:
            self.fault(f"wrong percentage: {line}")

    def expect_position(self, event, position, why):
        if event != position_line(position):
            self.fault(f"{why}: expected {position_line(position)}, got {event}")

    def read_opponents_move(self, text, limit):
        """Follows the engine up to the opponent's move on its board."""
        after = self.position.play(find_move(self.position, text))
        event = self.next_event(limit)
        if event.startswith("PONDERING "):
            expected = event.split()[1]
            move = find_move(self.position, expected)
            if move is None:
                self.fault(f"ponders on the illegal reply {expected}")
            self.expect_position(self.next_event(limit), self.position.play(move), event)
            hit = expected[:4] == text[:4]
            if hit and expected != text:
                raise Undecidable()
            self.hits += hit
            self.misses += not hit
            event = self.next_event(limit)
            wanted = "PONDER HIT. CONTINUING" if hit else "PONDER NOT HIT. STOPPING"
            if event != wanted:
                self.fault(f"expected {expected}, played {text}, but printed {event}")
            if hit:
                return after
            event = self.next_event(limit)
        self.expect_position(event, after, f"after {text}")
        return after

    def answer(self, opponents_move, opponents_clock, margin):
        """Sends the move (or "go" without one) and returns the reply."""
        self.engine.send(f"time {self.remaining // 10:.0f}")
        self.engine.send(f"otim {opponents_clock // 10:.0f}")
        start = time.monotonic()
        self.engine.send(opponents_move or "go")
        limit = self.remaining / 1000 + HANG_LIMIT
        if opponents_move:
            self.position = self.read_opponents_move(opponents_move, limit)
        shown = self.next_event(limit)
        event = self.next_event(limit)
        elapsed = 1000 * (time.monotonic() - start)
        if not event.startswith("move "):
            self.fault(f"expected a move, got {event}")
        text = event.split()[1]
        move = find_move(self.position, text)
        if move is None:
            self.fault(f"plays the illegal move {text} in {self.position.fen()}")
        self.position = self.position.play(move)
        self.expect_position(shown, self.position, event)
        if elapsed > self.remaining + margin:
            self.fault(f"lost on time: {elapsed:.0f} of {self.remaining:.0f} ms")
        self.remaining = max(self.remaining - elapsed, 20)
        return text


def play_game(players, options):
    """One game, players[0] has White: (result, reason, number of plies)."""
    position = Position()
    for player in players:
        player.begin(options.clock, position)
    keys, text = [position.repetition_key()], ""
    while True:
        over = outcome(position, keys, options.plies)
        if over:
            break
        mover, other = players if position.white else players[::-1]
        try:
            text = mover.answer(text, other.remaining, options.margin)
        except Undecidable:
            over = ("1/2-1/2", "another promotion piece than expected")
            break
        position = mover.position
        keys.append(position.repetition_key())
    loser = players[0 if position.white else 1]
    loser.engine.send(text)
    for player in players:
        player.engine.send(f"result {over[0]} {{{over[1]}}}")
    return *over, len(keys) - 1


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("engine", help="command of the engine, started twice")
    parser.add_argument("--games", type=int, default=2, help="colours change every game")
    parser.add_argument("--clock", type=float, default=1000, help="milliseconds for a game")
    parser.add_argument("--plies", type=int, default=300, help="a longer game is a draw")
    parser.add_argument("--margin", type=float, default=200,
                        help="milliseconds a clock may be overdrawn (a busy machine's delays)")
    return parser.parse_args(arguments)


def main(arguments):
    options = parse_arguments(arguments)
    players = []
    try:
        for name in ("first", "second"):
            players.append(XBoardPlayer(name, options.engine))
        for number in range(options.games):
            order = players if number % 2 == 0 else players[::-1]
            result, reason, plies = play_game(order, options)
            counts = " ".join(f"{p.hits}/{p.hits + p.misses}" for p in order)
            print(f"game {number + 1}: {result} by {reason}, {plies} plies, ponder hits {counts}",
                  flush=True)
        for player in players:
            player.engine.quit()
    except EngineFault as fault:
        for player in players:
            print(f"-- last lines of {player.engine.name}", *player.engine.transcript[-60:],
                  sep="\n")
        print(f"FAULT: {fault}")
        return 1
    finally:
        for player in players:
            player.engine.close()
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
