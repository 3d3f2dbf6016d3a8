"""Plays whole games between two UCI engines and checks every move.

The arbiter keeps the clocks, checks each move with its own rules code (and, if
asked to, the rules code with a third engine), and ends a game by the rules or
after a number of plies. A fault of an engine - an illegal move or line, a loss on
time, a hang, a missing or extra bestmove, an unexpected end - stops it with status
1 and the last lines of both engines.

    play_game.py --white ./mirvo --black ./mirvo --clock 2000+20 --ponder
"""

import argparse
import collections
import shutil
import sys
import time

from rules import START, Position, find_move, move_text, outcome
from time_control import Clock, TimeControl, go_words
from uci_engine import EngineFault, UciEngine

# Seconds past its clock after which a silent engine counts as hanging.
HANG_LIMIT = 10.0

Answer = collections.namedtuple("Answer", "move expected elapsed")


class Referee:
    """A third engine that lists legal moves (stockfish's "go perft 1")."""

    def __init__(self, command):
        self.engine = UciEngine("referee", command)
        self.engine.start([])

    def legal_moves(self, fen, moves):
        self.engine.send(position_line(fen, moves))
        self.engine.send("go perft 1")
        _, _, lines = self.engine.wait_for("Nodes", 10)
        return sorted(line.split(":")[0] for line in lines if line.endswith(": 1"))


class Player:
    """One engine, its clock and what it ponders on."""

    def __init__(self, engine, control):
        self.engine = engine
        self.clock = Clock(control)
        self.ponder_move = ""  # expected reply while it ponders, else empty

    def start_pondering(self, line, clocks, expected):
        self.ponder_move = expected
        self.engine.send(line)
        self.engine.send("go ponder " + clocks)

    def stop_pondering(self):
        """Ends a ponder search whose move was not played, and drops its answer."""
        self.engine.send("stop")
        self.engine.wait_for("bestmove", HANG_LIMIT)
        self.ponder_move = ""

    def begin_turn(self, line, clocks, played):
        """Starts the search for the position reached; returns the start time."""
        hit = self.ponder_move and self.ponder_move == played
        if self.ponder_move and not hit:
            self.stop_pondering()
        self.ponder_move = ""
        if not hit:
            self.engine.ready()
            self.engine.send(line)
        start = time.monotonic()
        self.engine.send("ponderhit" if hit else "go " + clocks)
        return start


def position_line(fen, moves):
    line = "position startpos" if fen == START else "position fen " + fen
    return line + (" moves " + " ".join(moves) if moves else "")


def check_line(name, position, line):
    """A reported principal variation must be playable. While pondering it begins
    with the expected reply in brackets, which is already on the board."""
    words = line.split()
    if words[:1] != ["info"] or "pv" not in words:
        return
    moves = words[words.index("pv") + 1:]
    if moves and moves[0].startswith("("):
        moves.pop(0)
    for text in moves:
        move = find_move(position, text)
        if move is None:
            raise EngineFault(f"{name} reports the unplayable move {text}: {line}")
        position = position.play(move)


def read_answer(player, position, start, margin):
    """Waits for the bestmove and books the time it took."""
    name = player.engine.name
    limit = player.clock.left / 1000 + HANG_LIMIT
    arrival, line, before = player.engine.wait_for("bestmove", limit)
    elapsed = 1000 * (arrival - start)
    for report in before:
        check_line(name, position, report)
    if elapsed > player.clock.left + margin:
        raise EngineFault(f"{name} lost on time: {elapsed:.0f} of {player.clock.left:.0f} ms")
    player.clock.book(elapsed)
    words = line.split()
    if len(words) not in (2, 4) or (len(words) == 4 and words[2] != "ponder"):
        raise EngineFault(f"{name} answers in an unknown form: {line}")
    return Answer(words[1], words[3] if len(words) == 4 else "", elapsed)


class Game:
    """One game: the position, its history and the two players."""

    def __init__(self, players, options, referee):
        self.players = players  # white, black
        self.options = options
        self.referee = referee
        self.position = Position(options.fen)
        self.moves = []
        self.keys = [self.position.repetition_key()]

    def clocks(self, player):
        """The clocks as sent to the player."""
        return go_words(self.players[0].clock, self.players[1].clock, player.clock)

    def ask_referee(self):
        if self.referee is None:
            return
        ours = sorted(move_text(move) for move in self.position.legal_moves())
        theirs = self.referee.legal_moves(self.options.fen, self.moves)
        if ours != theirs:
            raise EngineFault(f"the arbiter's rules differ from the referee's: {ours} {theirs}")

    def play_ply(self):
        """One move of the side to move, which then ponders if it may."""
        player = self.players[0 if self.position.white else 1]
        self.ask_referee()
        start = player.begin_turn(position_line(self.options.fen, self.moves),
                                  self.clocks(player), self.moves[-1] if self.moves else "")
        answer = read_answer(player, self.position, start, self.options.margin)
        move = find_move(self.position, answer.move)
        if move is None:
            raise EngineFault(f"{player.engine.name} plays the illegal move {answer.move} "
                              f"in {self.position.fen()}")
        self.position = self.position.play(move)
        self.moves.append(answer.move)
        self.keys.append(self.position.repetition_key())
        if answer.expected and find_move(self.position, answer.expected) is None:
            raise EngineFault(f"{player.engine.name} expects the illegal reply {answer.expected}")
        return player, answer

    def play(self):
        """Plays to the end: (result, reason)."""
        while True:
            over = outcome(self.position, self.keys, self.options.plies)
            if over:
                break
            player, answer = self.play_ply()
            if self.options.ponder and answer.expected and not outcome(
                    self.position, self.keys, self.options.plies):
                player.start_pondering(
                    position_line(self.options.fen, self.moves + [answer.expected]),
                    self.clocks(player), answer.expected)
        for player in self.players:
            if player.ponder_move:
                player.stop_pondering()
            player.engine.ready()
        return over


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--white", required=True, help="command of the first engine")
    parser.add_argument("--black", required=True, help="command of the second engine")
    parser.add_argument("--clock", default=TimeControl(0, 2000, 20), type=TimeControl.parse,
                        help="milliseconds, + increment, behind MOVES/ for so many moves")
    parser.add_argument("--fen", default=START, help="position to start from")
    parser.add_argument("--games", type=int, default=1, help="engines change colours every game")
    parser.add_argument("--ponder", action="store_true", help="let the engines ponder")
    parser.add_argument("--plies", type=int, default=400, help="a longer game is a draw")
    parser.add_argument("--margin", type=float, default=200,
                        help="milliseconds a clock may be overdrawn (a busy machine's delays)")
    parser.add_argument("--referee", help="engine that lists legal moves, for a cross-check")
    parser.add_argument("--settings", default=None,
                        help="contents of both engines' config.txt, as in MoveOverhead=50")
    parser.add_argument("--option", action="append", default=[], metavar="NAME=VALUE",
                        help="UCI option for both engines")
    return parser.parse_args(arguments)


def play_one(options, number, referee):
    """Starts both engines, plays game `number`, ends the engines."""
    commands = [("white", options.white), ("black", options.black)]
    if number % 2:
        commands = [("white", options.black), ("black", options.white)]
    engines = []
    try:
        for name, command in commands:
            engines.append(UciEngine(f"{name} ({command.split()[0]})", command, options.settings))
        for engine in engines:
            engine.start([f"Ponder={'true' if options.ponder else 'false'}", *options.option])
        players = [Player(engine, options.clock) for engine in engines]
        game = Game(players, options, referee)
        result, reason = game.play()
        for engine in engines:
            engine.quit()
    except EngineFault:
        for engine in engines:
            print(f"-- last lines of {engine.name}", *engine.transcript[-30:], sep="\n")
        raise
    finally:
        for engine in engines:
            engine.close()
    left = ", ".join(f"{player.clock.left / 1000:.1f} s" for player in players)
    print(f"game {number + 1}: {result} by {reason} after {len(game.moves)} plies, left {left}")
    print(" ".join(game.moves))


def main(arguments):
    options = parse_arguments(arguments)
    referee = None
    if options.referee:
        if shutil.which(options.referee):
            referee = Referee(options.referee)
        else:
            print(f"no referee: {options.referee} is not installed")
    try:
        for number in range(options.games):
            play_one(options, number, referee)
    except EngineFault as fault:
        print(f"FAULT: {fault}")
        return 1
    finally:
        if referee:
            referee.engine.close()
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
