"""One game of a soak as its referee sees it: position, moves and clocks."""

import dataclasses

import starts  # noqa: F401  (finds the arbiter's folder)
from rules import Position, find_move
from time_control import Clock, go_words


@dataclasses.dataclass(frozen=True)
class TurnClocks:
    """Both clocks as sent to the side to move, in milliseconds."""

    own: float
    other: float
    words: str  # behind "go"

    def limit(self):
        return self.own / 1000


class Game:
    """One game's position, moves and clocks."""

    def __init__(self, fen, moves, control):
        self.fen, self.moves = fen, list(moves)
        self.control = control
        self.position = Position(fen)
        self.keys = [self.position.repetition_key()]
        self.forfeited = False
        self.sides = {True: Clock(control), False: Clock(control)}  # white is True
        for text in moves:
            self.position = self.position.play(find_move(self.position, text))
            self.keys.append(self.position.repetition_key())

    def make(self, text):
        self.position = self.position.play(find_move(self.position, text))
        self.moves.append(text)
        self.keys.append(self.position.repetition_key())

    def clocks(self):
        own, other = self.own_clock(), self.sides[not self.position.white]
        words = go_words(self.sides[True], self.sides[False], own)
        return TurnClocks(own.left, other.left, words)

    def own_clock(self):
        """The clock of the side to move."""
        return self.sides[self.position.white]
