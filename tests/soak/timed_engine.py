"""An engine whose answers are timed, with the machine's share of each time.

A process that is ready to run may have to wait for a processor. The system counts
that time for every thread, so that it can be separated from the engine's own time.
"""

import re
import threading
import time

import starts  # noqa: F401  (finds the arbiter's folder)
from process_figures import waited
from uci_engine import UciEngine

ALLOTTED = re.compile(r"Allowing (\d+) ms for move")
ANSWER = ("bestmove", "readyok", "move ")


class TimedEngine(UciEngine):
    """Notes with every answer how long the engine and the thread that reads the
    answer have waited for a processor."""

    def __init__(self, name, command, settings=None):
        self.waits = {}  # arrival of an answer -> what `waits_now` was
        super().__init__(name, command, settings)

    def arrived(self, line):
        if line.text.startswith(ANSWER):
            self.waits[line.arrival] = self.waits_now(threading.get_native_id())

    def waits_now(self, reader=None):
        """Milliseconds that the engine and the reader have waited so far."""
        return waited(self.pid), waited("self", reader or self.reader.native_id)


class Turn:
    """Times of one answer, in milliseconds. `wall` is what an interface sees; `own`
    leaves out the waiting of the engine and then of the reader. An engine that does
    not rest after its answer may wait at the same time as the reader; then only the
    longer wait is left out. A wait already begun when the turn starts counts whole."""

    def __init__(self, engine, rests=True):
        self.engine, self.rests = engine, rests
        self.before = engine.waits_now()
        self.start = time.monotonic()
        self.wall = self.own = 0.0
        self.allotted = None

    def end(self, arrival):
        self.wall = 1000 * (arrival - self.start)
        after = self.engine.waits.pop(arrival)
        waits = [max(now - then, 0.0) for now, then in zip(after, self.before)]
        self.own = max(self.wall - (sum(waits) if self.rests else max(waits)), 0.0)

    def note(self, line):
        """Looks for the allotted time in a line that came before the answer."""
        found = ALLOTTED.search(line)
        if found:
            self.allotted = int(found.group(1))
