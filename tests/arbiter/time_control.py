"""A time control and a side's clock under it, in milliseconds.

Written "TIME", "TIME+INCREMENT" or "MOVES/TIME+INCREMENT": for so many moves
there is the time, and the same again for the next ones.
"""

import collections
import re

WRITTEN = re.compile(r"(?:(\d+)/)?(\d+)(?:\+(\d+))?")


class TimeControl(collections.namedtuple("TimeControl", "moves time increment")):
    """`moves` is 0 when the time is for the whole game."""

    @classmethod
    def parse(cls, text):
        found = WRITTEN.fullmatch(text)
        if found is None:
            raise ValueError(f"no time control: {text}")
        return cls(*(int(number or 0) for number in found.groups()))

    def __str__(self):
        session = f"{self.moves}/" if self.moves else ""
        return f"{session}{self.time}+{self.increment}"


class Clock:
    """What one side has left, and for how many moves."""

    def __init__(self, control):
        self.control = control
        self.left = float(control.time)
        self.made = 0

    def moves_to_go(self):
        """Moves up to the next time; 0 when there is none."""
        return self.control.moves and self.control.moves - self.made % self.control.moves

    def book(self, used):
        """A move took so long."""
        self.made += 1
        self.left = max(self.left - used, 0.0) + self.control.increment
        if self.control.moves and self.made % self.control.moves == 0:
            self.left += self.control.time


def go_words(white, black, mover):
    """The clocks as a "go" names them to the side whose clock is `mover`."""
    words = (f"wtime {white.left:.0f} btime {black.left:.0f} "
             f"winc {white.control.increment} binc {black.control.increment}")
    return words + (f" movestogo {mover.moves_to_go()}" if mover.control.moves else "")
