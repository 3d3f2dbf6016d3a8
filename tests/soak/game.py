"""One game of a soak as its referee sees it: position, moves and clocks."""

import collections

import starts  # noqa: F401  (finds the arbiter's folder)
from rules import Position, find_move

Clocks = collections.namedtuple("Clocks", "white own other increment")


class TurnClocks(Clocks):
    """Both clocks as the side to move is told them, in milliseconds."""

    def words(self):
        white, black = (self.own, self.other) if self.white else (self.other, self.own)
        return (f"wtime {white:.0f} btime {black:.0f} "
                f"winc {self.increment} binc {self.increment}")

    def limit(self):
        return self.own / 1000


class Game:
    """One game's position, moves and clocks."""

    def __init__(self, fen, moves, clock, increment):
        self.fen, self.moves = fen, list(moves)
        self.clock, self.increment = clock, increment
        self.position = Position(fen)
        self.keys = [self.position.repetition_key()]
        self.left = {True: float(clock), False: float(clock)}  # by colour, white is True
        for text in moves:
            self.position = self.position.play(find_move(self.position, text))
            self.keys.append(self.position.repetition_key())

    def make(self, text):
        self.position = self.position.play(find_move(self.position, text))
        self.moves.append(text)
        self.keys.append(self.position.repetition_key())

    def clocks(self):
        white = self.position.white
        return TurnClocks(white, self.left[white], self.left[not white], self.increment)
