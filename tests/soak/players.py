"""The two kinds of players in a soak: an engine under UCI and one under XBoard, with
the same interface.

A player notices the faults of its engine and raises `Fault` with the kind of fault.
It plays many games; `begin` starts one, `finish` ends it.
"""

import re
import time

import starts  # noqa: F401  (finds the arbiter's folder)
from rules import START, find_move
from timed_engine import TimedEngine, Turn
from uci_engine import EngineFault

HANG_LIMIT = 10.0  # seconds past its clock after which a silent engine hangs
LONG = 20          # seconds for anything that is no move

SEARCHED = re.compile(r"info depth|\s*\d+\s+-?\d+\s+\d+\s+\d+ ")
SYNC_LINE = "rnbqkbnr/pppppppp/8/8/8/P7/1PPPPPPP/RNBQKBNR b KQkq -"


class Fault(Exception):
    """`kind` is one of the columns of the summary, the text says what."""

    def __init__(self, kind, text):
        super().__init__(text)
        self.kind = kind


class Unjudged(Exception):
    """The engine continued with another promotion piece than was played."""


class Player:
    """What both protocols share: the engine, its clock and its faults."""

    def __init__(self, name, command, settings):
        self.engine = TimedEngine(name, command, settings)
        self.ponders = False
        self.searched = False  # in this game; a first search has twice its time

    def fault(self, kind, text):
        raise Fault(kind, f"{self.engine.name}: {text}")

    def guard(self, action, *arguments):
        """Does one read or write of the engine's pipe and names what went wrong."""
        try:
            return action(*arguments)
        except EngineFault as fault:
            text = str(fault)
            raise Fault("hangs" if "hangs" in text or "does not end" in text else
                        "stray" if "nobody asked" in text else "crashes", text) from fault

    def send(self, line):
        self.guard(self.engine.send, line)

    def read(self, limit):
        """The next line as (arrival, text)."""
        got = self.guard(self.engine.read, time.monotonic() + limit)
        if got is None:
            self.fault("hangs", f"no answer within {limit:.1f} s")
        return got

    def read_waiting(self):
        """Handles lines that came before anything was asked."""
        while True:
            got = self.guard(self.engine.read, time.monotonic())
            if got is None:
                return
            self.check_idle_line(got[1])

    def check_idle_line(self, line):
        if line.startswith(self.REPLY):
            self.fault("stray", f"an answer that nobody asked for: {line}")

    def read_reply(self, turn, limit):
        """Skips to the engine's move: its words. `skipped` sees other lines."""
        while True:
            arrival, line = self.read(limit)
            if line.startswith(self.REPLY):
                turn.end(arrival)
                return line.split()
            turn.note(line)
            if SEARCHED.match(line):
                self.searched = True
            self.skipped(line)

    def check_move(self, position, text, what="plays"):
        move = find_move(position, text)
        if move is None:
            self.fault("illegal", f"{what} the illegal move {text} in {position.fen()}")
        return move

    def quit(self):
        """Ends the engine, which must print nothing more."""
        self.settle()
        self.guard(self.engine.quit)


class UciPlayer(Player):
    """Ponders by "go ponder" on the reply that the engine expects."""

    PROTOCOL = "UCI"
    REPLY = "bestmove"

    def __init__(self, name, command, settings):
        super().__init__(name, command, settings)
        self.guard(self.engine.start, [])

    def begin(self, game, ponders):
        self.engine.transcript.clear()
        self.ponders, self.expected, self.searched = ponders, "", False
        self.send(f"setoption name Ponder value {'true' if ponders else 'false'}")
        self.send("ucinewgame")
        self.guard(self.engine.ready)
        self.position = None

    def skipped(self, line):
        """A reported variation must be playable. While pondering it begins with the
        expected reply in brackets, which is already on the board."""
        words = line.split()
        if words[:1] != ["info"] or "pv" not in words or self.position is None:
            return
        position = self.position
        for text in words[words.index("pv") + 1:]:
            if not text.startswith("("):
                position = position.play(self.check_move(position, text, "reports"))

    def lines(self, game, extra=()):
        text = "startpos" if game.fen == START else "fen " + game.fen
        moves = " ".join([*game.moves, *extra])
        return f"position {text}" + (f" moves {moves}" if moves else "")

    def play(self, game, clocks):
        """Answers the position of the game: (move's text, its Turn)."""
        hit = bool(self.expected) and self.expected == game.moves[-1]
        self.read_waiting()
        if self.expected:  # an answer before it is due comes before readyok
            self.searched = True
            self.guard(self.engine.ready)
        if self.expected and not hit:
            self.stop_pondering()
        if not hit:
            self.guard(self.engine.ready)
            self.send(self.lines(game))
        self.expected = ""
        self.position = game.position
        first = not self.searched
        turn = Turn(self.engine)
        self.send("ponderhit" if hit else f"go {clocks.words}")
        words = self.read_reply(turn, clocks.limit() + HANG_LIMIT)
        if first and turn.allotted is not None:
            turn.allotted *= 2
        if len(words) not in (2, 4) or (len(words) == 4 and words[2] != "ponder"):
            self.fault("illegal", f"answers in an unknown form: {words}")
        move = self.check_move(game.position, words[1])
        if len(words) == 4:
            self.check_move(game.position.play(move), words[3], "expects")
        self.position = None
        self.wanted = words[3] if len(words) == 4 and self.ponders else ""
        return words[1], turn

    def after(self, game, clocks):
        """Called when its move is on the board and the game continues."""
        if self.wanted:
            self.expected = self.wanted
            self.send(self.lines(game, [self.expected]))
            self.send(f"go ponder {clocks.words}")

    def stop_pondering(self):
        self.position = None
        self.send("stop")
        self.read_reply(Turn(self.engine), LONG)
        self.expected = ""

    def settle(self):
        self.guard(self.engine.ready)

    def finish(self, game, result):
        self.read_waiting()
        if self.expected:
            self.stop_pondering()
        self.settle()


class XBoardPlayer(Player):
    """Ponders by itself after "hard"."""

    PROTOCOL = "XBoard"
    REPLY = "move "

    def __init__(self, name, command, settings):
        super().__init__(name, command, settings)
        self.send("xboard")
        self.send("protover 2")
        self.guard(self.engine.wait_for, "feature", LONG)

    def settle(self):
        """Reads up to a line that shows that older output is past."""
        self.after_own = None
        for line in ("force", "new", "force", "a2a3"):
            self.send(line)
        while True:
            _, line = self.read(LONG)
            if line == SYNC_LINE:
                return
            self.check_idle_line(line)

    def begin(self, game, ponders):
        self.engine.transcript.clear()
        self.after_own = None
        self.ponders, self.expected, self.searched, self.playing = ponders, "", False, False
        control = game.control
        seconds = max(control.time // 1000, 1)
        level = f"level {control.moves} 0:{seconds:02d} {control.increment / 1000:g}"
        for line in ("new", level, "post", "hard" if ponders else "easy", "computer",
                     "force"):
            self.send(line)
        if game.fen != START:
            self.send("setboard " + game.fen)
        for text in game.moves:
            self.send(text)
        self.known = len(game.moves)

    def skipped(self, line):
        if line.startswith("PONDERING "):
            self.expected = line.split()[1]
            if not self.ponders:
                self.fault("stray", f"ponders although told not to: {line}")
            if self.after_own and find_move(self.after_own, self.expected) is None:
                self.fault("illegal", f"ponders on the illegal reply {self.expected}")

    def check_idle_line(self, line):
        super().check_idle_line(line)
        self.skipped(line)

    def play(self, game, clocks):
        self.read_waiting()
        first = not self.searched
        self.send(f"time {clocks.own // 10:.0f}")
        self.send(f"otim {clocks.other // 10:.0f}")
        if self.playing:
            turn = Turn(self.engine, rests=not self.ponders)
            self.send(game.moves[-1])
        else:
            for text in game.moves[self.known:]:
                self.send(text)
            self.send("white" if game.position.white else "black")
            turn = Turn(self.engine, rests=not self.ponders)
            self.send("go")
        self.playing = True
        words = self.read_reply(turn, clocks.limit() + HANG_LIMIT)
        if first and turn.allotted is not None:
            turn.allotted *= 2
        played = game.moves[-1] if game.moves else ""
        if self.expected and self.expected[:4] == played[:4] and self.expected != played:
            self.after_own = None
            raise Unjudged()
        self.expected = ""
        self.after_own = game.position.play(self.check_move(game.position, words[1]))
        return words[1], turn

    def after(self, game, clocks):
        self.after_own = game.position

    def finish(self, game, result):
        self.read_waiting()
        self.send(f"result {result} {{over}}")
        self.settle()  # the game is saved, and its file closed
